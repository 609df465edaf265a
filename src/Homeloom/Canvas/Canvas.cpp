// Reads state texts, actions and commands of local hub devices out of their stored documents.
#include "Homeloom/Canvas/Canvas.h"

#include <exception>
#include <utility>

#include "Common/Guarded.h"
#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

bool Canvas::CreateCanvasMap(const std::string& vid, const std::string& canvas) {
    if (canvas.empty()) {
        // Not stored, so that it is fetched again the next time.
        HL_LOGE("canvas is empty, vid : %s", vid.c_str());
        return false;
    }
    // Parsed once, as every event of a hub device asks. A malformed document is kept as null and answers empty.
    Presentation presentation;
    presentation.document = JsonValue::Create(canvas);
    try {
        presentation.states = readStates(presentation.document);
        presentation.has_states = true;
    } catch (const std::exception&) {
        // Told by whoever asks for a state that can't be read.
    }
    std::size_t size = 0;
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _canvasMap[vid] = std::move(presentation);
        size = _canvasMap.size();
    }
    HL_LOGI("canvas is added, vid : %s, vid canvas map size : %zu", vid.c_str(), size);
    return true;
}

bool Canvas::IsAddedCanvasMap(const std::string& vid) const {
    const std::lock_guard<std::mutex> lock(_mutex);
    return _canvasMap.count(vid) > 0;
}

std::map<std::string, Canvas::Shown> Canvas::readStates(const JsonValue& document) {
    std::map<std::string, Shown> states;
    const JsonValue first = firstOf(document, "states");
    const JsonValue alternatives = first["alternatives"];
    for (std::size_t i = 0; i < alternatives.size(); ++i) {
        const JsonValue alternative = alternatives[i];
        const std::string po_code = getMemberString(alternative, "value");
        // The first alternative of a state counts.
        states.emplace(getMemberString(alternative, "key"),
                       Shown{po_code.empty() ? std::string() : translate(document, po_code),
                             getMemberString(alternative, "type")});
    }
    return states;
}

/// False if the document has to be walked: because it could not be read as a whole, or because somebody reads in the
/// log what is found on the way.
bool Canvas::findShown(const std::string& vid, const std::string& state, Shown& out) const {
    if (Log::IsTaken(DLOG_INFO, Log::kTag)) {
        return false;
    }
    const std::lock_guard<std::mutex> lock(_mutex);
    const auto found = _canvasMap.find(vid);
    if (found == _canvasMap.end() || !found->second.has_states) {
        return false;
    }
    const auto shown = found->second.states.find(state);
    if (shown != found->second.states.end()) {
        out = shown->second;
    }
    return true;
}

std::string Canvas::GetStateText(const std::string& vid, const std::string& state) const {
    Shown shown;
    if (findShown(vid, state, shown)) {
        return shown.text;
    }
    return GuardedOr(std::string(), [&]() -> std::string {
        HL_LOGI("vid : %s, state : %s", vid.c_str(), state.c_str());
        const std::string po_code = getPOCode(vid, state);
        if (po_code.empty()) {
            HL_LOGI("state is not matched with po code");
            return {};
        }
        std::string text = getTranslatedStateText(vid, po_code);
        HL_LOGI("state text : %s", text.c_str());
        return text;
    });
}

std::string Canvas::GetActiveState(const std::string& vid, const std::string& state) const {
    Shown shown;
    if (findShown(vid, state, shown)) {
        return shown.type;
    }
    return GuardedOr(std::string(), [&]() -> std::string {
        std::string type = getMemberString(findAlternative(vid, state), "type");
        HL_LOGI("state : %s, matched type : %s", state.c_str(), type.c_str());
        return type;
    });
}

void Canvas::GetShownState(const std::string& vid, const std::string& state, std::string& text,
                           std::string& type) const {
    Shown shown;
    if (findShown(vid, state, shown)) {
        text = std::move(shown.text);
        type = std::move(shown.type);
        return;
    }
    text = GetStateText(vid, state);
    // Nobody shows the type of a state without a text.
    type = text.empty() ? std::string() : GetActiveState(vid, state);
}

bool Canvas::GetStatesParam(const std::string& vid, std::string& component, std::string& capability) const {
    return GuardedOr(false, [&] {
        const JsonValue states = findFirst(vid, "states");
        component = getMemberString(states, "component");
        capability = getMemberString(states, "capability");
        if (component.empty() || capability.empty()) {
            return false;
        }
        HL_LOGI("component : %s, capability : %s, full states json value : %s", component.c_str(), capability.c_str(),
                states.toString().c_str());
        return true;
    });
}

bool Canvas::GetActionsParam(const std::string& vid, std::string& component, std::string& capability,
                             std::string& display_type) const {
    return GuardedOr(false, [&] {
        const JsonValue actions = findFirst(vid, "actions");
        component = getMemberString(actions, "component");
        capability = getMemberString(actions, "capability");
        display_type = getMemberString(actions, "displayType");
        if (component.empty() || capability.empty() || display_type.empty()) {
            return false;
        }
        HL_LOGI("component : %s, capability : %s, display type : %s, full actions json value : %s", component.c_str(),
                capability.c_str(), display_type.c_str(), actions.toString().c_str());
        return true;
    });
}

std::string Canvas::GetCommandValue(const std::string& vid, const std::string& display_type,
                                    const std::string& current) const {
    return GuardedOr(std::string(), [&]() -> std::string {
        const JsonValue actions = findFirst(vid, "actions");
        const JsonValue display = actions[display_type];
        const JsonValue command = display["command"];
        HL_LOGI("command json : %s", command.toString().c_str());
        std::string value;
        for (const std::string& name : command.getMemberNames()) {
            value = getMemberString(command, name);
            if (value != current) {
                break;
            }
        }
        HL_LOGI("execute command value : %s", value.c_str());
        return value;
    });
}

std::string Canvas::GetCurrentStateValue(const std::string& text, const std::string& attribute) {
    return GuardedOr(std::string(), [&]() -> std::string {
        const JsonValue document = JsonValue::Create(text);
        const JsonValue member = document[attribute];
        return getMemberString(member, "value");
    });
}

bool Canvas::MakeActionJsonValue(const std::string& component, const std::string& capability,
                                 const std::string& command, std::string& out) {
    return GuardedOr(false, [&] {
        JsonValue action = JsonValue::CreateObject();
        action.set("component", component);
        action.set("capability", capability);
        action.set("command", command);
        JsonValue commands = JsonValue::CreateArray();
        commands.append(std::move(action));
        JsonValue document = JsonValue::CreateObject();
        document.set("commands", std::move(commands));
        out = document.toString();
        HL_LOGI("action json value : %s", out.c_str());
        return true;
    });
}

json::JsonValue Canvas::findDocument(const std::string& vid) const {
    const std::lock_guard<std::mutex> lock(_mutex);
    const auto found = _canvasMap.find(vid);
    return found != _canvasMap.end() ? found->second.document : JsonValue();
}

/// The first entry of that list of the document's "dashboard".
json::JsonValue Canvas::findFirst(const std::string& vid, const char* list) const {
    return firstOf(findDocument(vid), list);
}

json::JsonValue Canvas::firstOf(const JsonValue& document, const char* list) {
    const JsonValue dashboard = document["dashboard"];
    const JsonValue entries = dashboard[list];
    return entries[0];
}

/// The first alternative of the state list's first entry that stands for `state`; null if none does.
json::JsonValue Canvas::findAlternative(const std::string& vid, const std::string& state) const {
    const JsonValue states = findFirst(vid, "states");
    const JsonValue alternatives = states["alternatives"];
    for (std::size_t i = 0; i < alternatives.size(); ++i) {
        const JsonValue alternative = alternatives[i];
        if (getMemberString(alternative, "key") == state) {
            return alternative;
        }
    }
    return {};
}

std::string Canvas::getPOCode(const std::string& vid, const std::string& state) const {
    std::string po_code = getMemberString(findAlternative(vid, state), "value");
    HL_LOGI("state : %s, matched po code : %s", state.c_str(), po_code.c_str());
    return po_code;
}

std::string Canvas::getTranslatedStateText(const std::string& vid, const std::string& po_code) const {
    std::string text = translate(findDocument(vid), po_code);
    HL_LOGI("translated state text : %s, po code : %s", text.c_str(), po_code.c_str());
    return text;
}

std::string Canvas::translate(const JsonValue& document, const std::string& po_code) {
    const JsonValue languages = document["language"];
    // The TV's language is not asked for here: a presentation comes in one, and the first serves.
    const JsonValue language = languages[0];
    const JsonValue codes = language["poCodes"];
    std::string text;
    for (std::size_t i = 0; i < codes.size(); ++i) {
        const JsonValue code = codes[i];
        if (getMemberString(code, "po") == po_code) {
            text = getMemberString(code, "label");
            break;
        }
    }
    return text;
}

std::string Canvas::getMemberString(const JsonValue& document, const std::string& name) {
    return document[name].asString();
}

}  // namespace VMFramework::HomeLoom
