// Reads each list of a UI metadata document into a record.
#include "Homeloom/UIMeta/UIMetadataParser.h"

#include <algorithm>
#include <utility>

#include <VMFramework/JsonValue.h>

#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr std::string_view kSwitchResourceType = "oic.r.switch.binary";
constexpr std::string_view kStandbyPowerSwitch = "StandbyPowerSwitch";

std::map<std::string, std::vector<std::string>> shownNames(const device_ui_metadata_struct& meta) {
    std::map<std::string, std::vector<std::string>> names;
    const auto add = [&names](const std::string& href, const std::string& property) {
        std::vector<std::string>& of_href = names[href];
        if (std::find(of_href.begin(), of_href.end(), property) == of_href.end()) {
            of_href.push_back(property);
        }
    };
    for (const device_state_struct& state : meta.main_states) {
        for (const device_argument_struct& argument : state.arguments) {
            add(argument.href, argument.property);
        }
    }
    for (const device_state_struct& state : meta.main_states) {
        add(state.visible_href, state.visible_property);
    }
    for (const device_dp_resource_struct& resource : meta.dp_resources) {
        add(resource.href, resource.property);
    }
    return names;
}

/// Reads the entries of a list that are not null, until one can't be read. False if there is no list.
template <typename Read>
bool ForEachEntry(const json::JsonValue& data, const char* member, const char* complaint, const Read& read,
                  const Log::Place& caller = HL_CALLER) {
    const auto walk = [&] {
        const json::JsonValue entries = data[member];
        if (entries.isNull()) {
            HL_LOG_AT(DLOG_INFO, caller, "%s", complaint);
            return false;
        }
        for (std::size_t i = 0; i < entries.size(); ++i) {
            const json::JsonValue entry = entries[i];
            if (!entry.isNull()) {
                read(entry);
            }
        }
        return true;
    };
    return GuardedOr(true, walk, caller);
}

}  // namespace

bool UIMetadataParser::ParseMetadata(const std::string& vid, const std::string& json_text,
                                     device_ui_metadata_struct& out) const {
    return GuardedOr(false, [&] {
        if (json_text.empty()) {
            HL_LOGE("**Get Failed**DEVICE_VID_MNMN***** [{}] ");
            return false;
        }
        const JsonValue document = JsonValue::Create(json_text);
        if (document.isNull()) {
            HL_LOGE("parser is null!");
            return false;
        }
        return parseMetadata(vid, document, out);
    });
}

bool UIMetadataParser::parseMetadata(const std::string& vid, const JsonValue& document,
                                     device_ui_metadata_struct& out) const {
    const std::string message = document["message"].asString();
    if (message == "RESOURCE_NOT_FOUND_PATH") {
        HL_LOGI("Skip displaying the status of this device");
        return false;
    }
    if (message != "SUCCESS") {
        HL_LOGE("message is not SUCCESS[%s]. return!", message.c_str());
        return false;
    }
    const JsonValue data = document["data"];
    if (data.isNull()) {
        HL_LOGE("data not exit in ui metadata");
        return false;
    }

    device_ui_metadata_struct meta;
    meta.vid = vid;
    meta.version = data["version"].asString();
    HL_LOGI("vid: [%s], version: [%s]", vid.c_str(), meta.version.c_str());

    meta.is_generic = parseGenericMetadata(data);
    parseStateList(data, meta.main_states, meta.state_groups, meta.subscribe_uris);
    parseActionList(data, meta.main_actions, meta.action_groups, meta.main_action_href, meta.main_action_property,
                    meta.subscribe_uris);
    parseDPResourceList(data, meta.dp_resources);
    parseDPUri(data, meta.dp_uri);
    parseIconUrl(data, meta.icon_url);
    parseLanguageList(data, meta.languages, meta.translations);
    meta.solenne_server_dp_uri = parseSolenneServerDpUri(data);
    meta.shown_names = shownNames(meta);

    out = std::move(meta);
    HL_LOGI("parsing DONE");
    return true;
}

bool UIMetadataParser::parseGenericMetadata(const JsonValue& data) const {
    return GuardedOr(false, [&] { return data["vid"].asString() == Names::GENERIC_DEFAULT_METADATA; });
}

void UIMetadataParser::parseStateList(const JsonValue& data, std::vector<device_state_struct>& states,
                                      std::vector<std::string>& groups, std::vector<std::string>& uris) const {
    const auto read = [&](const JsonValue& entry) { states.push_back(parseState(entry, groups, uris)); };
    if (!ForEachEntry(data, "ms", "ms not eixt in ui metadata!", read)) {
        return;
    }
    // What was read before a bad entry is shown, so it is sorted too.
    std::stable_sort(states.begin(), states.end(), ms_compare_order);
    HL_LOGI("State count = %zu", states.size());
}

device_state_struct UIMetadataParser::parseState(const JsonValue& entry, std::vector<std::string>& groups,
                                                 std::vector<std::string>& uris) const {
    device_state_struct state;
    state.name = entry["name"].asString();
    state.emphasis = entry["emphasis"].asBool();
    state.group = entry["group"].asString();
    addSubGroupNameList(state.group, groups);
    parseIconUrl(entry, state.icon_url);
    state.order = entry["order"].asInt();
    state.type = entry["type"].asString();

    const JsonValue label = entry["label"];
    if (!label.isNull()) {
        state.label = label["label"].asString();
        const JsonValue arguments = label["arguments"];
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            state.arguments.push_back(parseArgument(arguments[i], uris));
        }
    }

    const JsonValue visible = entry["visible"];
    if (!visible.isNull()) {
        state.has_visible = true;
        state.visible_href = visible["href"].asString();
        addUri(state.visible_href, uris);
        state.visible_property = visible["property"].asString();
        state.visible_operand = visible["operand"].asString();
        state.visible_operator = visible["operator"].asString();
        state.visible_type = visible["type"].asString();
    }
    return state;
}

device_argument_struct UIMetadataParser::parseArgument(const JsonValue& entry, std::vector<std::string>& uris) const {
    device_argument_struct argument;
    argument.name = entry["n"].asString();
    argument.href = entry["href"].asString();
    addUri(argument.href, uris);
    argument.property = entry["property"].asString();
    for (device_alternative_struct& alternative : parseAlternatives(entry)) {
        if (alternative.type == "inactive") {
            argument.inactive_keys.push_back(alternative.key);
        }
        // A repeated key takes the last value.
        argument.alternatives[std::move(alternative.key)] = std::move(alternative.value);
    }
    return argument;
}

void UIMetadataParser::parseActionList(const JsonValue& data, std::vector<device_action_struct>& actions,
                                       std::vector<std::string>& groups, std::string& out_href,
                                       std::string& out_property, std::vector<std::string>& uris) const {
    ForEachEntry(data, "ma", "ma not eixt in ui metadata!", [&](const JsonValue& entry) {
        device_action_struct action = parseAction(entry, groups, uris);
        // In the order of the document: the last power action, or else the first action of all.
        if (isPowerResource(action.rt, action.property, action.control_type) ||
            (out_href.empty() && out_property.empty())) {
            out_href = action.href;
            out_property = action.property;
        }
        actions.push_back(std::move(action));
    });
    std::stable_sort(actions.begin(), actions.end(), ma_compare_order);
}

device_action_struct UIMetadataParser::parseAction(const JsonValue& entry, std::vector<std::string>& groups,
                                                   std::vector<std::string>& uris) const {
    device_action_struct action;
    action.control_type = entry["controlType"].asString();
    const JsonValue link = entry["link"];
    if (!link.isNull()) {
        action.href = link["href"].asString();
        addUri(action.href, uris);
        action.interface_name = link["if"].asString();
        action.rt = link["rt"].asString();
        if (action.rt == kSwitchResourceType) {
            // Whatever the document says: the screens draw every binary switch as a standby switch.
            action.control_type = kStandbyPowerSwitch;
        }
    }
    action.property = entry["property"].asString();
    action.alternatives = parseAlternatives(entry);
    for (const device_alternative_struct& alternative : action.alternatives) {
        action.alternative_keys.push_back(alternative.key);
    }
    action.group = entry["group"].asString();
    addSubGroupNameList(action.group, groups);
    action.order = entry["order"].asInt();
    parseIconUrl(entry, action.icon_url);

    const JsonValue visible = entry["visible"];
    if (!visible.isNull()) {
        // Unlike a state's, this rule's URI is not subscribed.
        action.has_visible = true;
        action.visible_href = visible["href"].asString();
        action.visible_property = visible["property"].asString();
        action.visible_operand = visible["operand"].asString();
        action.visible_operator = visible["operator"].asString();
    }
    return action;
}

void UIMetadataParser::parseDPResourceList(const JsonValue& data,
                                           std::vector<device_dp_resource_struct>& resources) const {
    ForEachEntry(data, "dpResources", "dpResources is not exit in ui metadata!",
                 [&](const JsonValue& entry) { resources.push_back(parseDPResource(entry)); });
}

device_dp_resource_struct UIMetadataParser::parseDPResource(const JsonValue& entry) const {
    device_dp_resource_struct resource;
    resource.controllable = entry["controllable"].asBool();
    resource.order = entry["order"].asInt();
    const JsonValue link = entry["link"];
    resource.href = link["href"].asString();
    resource.interface_name = link["if"].asString();
    resource.rt = link["rt"].asString();
    resource.property = entry["property"].asString();
    resource.control_type = entry["controlType"].asString();
    resource.alternatives = parseAlternatives(entry);
    const JsonValue range = entry["range"];
    for (std::size_t i = 0; i < range.size(); ++i) {
        const JsonValue bound = range[i];
        resource.range.push_back(bound.asInt());
    }
    const JsonValue label = entry["label"];
    resource.label = label["label"].asString();
    resource.emphasis = entry["emphasis"].asBool();
    resource.rule_event = entry["ruleEvent"].asBool();
    resource.rule_action = entry["ruleAction"].asBool();
    return resource;
}

std::vector<device_alternative_struct> UIMetadataParser::parseAlternatives(const JsonValue& entry) const {
    const JsonValue entries = entry["alternatives"];
    std::vector<device_alternative_struct> alternatives;
    alternatives.reserve(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const JsonValue alternative = entries[i];
        alternatives.push_back(
            {alternative["key"].asString(), alternative["value"].asString(), alternative["type"].asString()});
    }
    return alternatives;
}

void UIMetadataParser::parseDPUri(const JsonValue& data, std::string& out) const {
    // The last entry wins, an empty one too.
    ForEachEntry(data, "dpInfo", "dpInfo not exist in ui metadata",
                 [&](const JsonValue& entry) { out = entry["dpUri"].asString(); });
}

std::string UIMetadataParser::parseSolenneServerDpUri(const JsonValue& data) const {
    return GuardedOr(std::string(), [&]() -> std::string {
        const JsonValue entries = data["dpInfo"];
        if (entries.isNull()) {
            HL_LOGI("dpInfo not exist in ui metadata");
            return {};
        }
        for (std::size_t i = 0; i < entries.size(); ++i) {
            const JsonValue entry = entries[i];
            if (entry["os"].asString() == "solenne") {
                return entry["serverDpUri"].asString();
            }
        }
        return {};
    });
}

void UIMetadataParser::parseIconUrl(const JsonValue& value, std::string& out) const {
    constexpr std::string_view kPreload = "preload://";
    Guarded([&] {
        const JsonValue icon = value["iconUrl"];
        std::string text = icon["mid"].asString();
        if (text.empty()) {
            return;
        }
        // A preloaded icon is known to the screens by its bare file name.
        const std::size_t preload = text.find(kPreload);
        if (preload != std::string::npos) {
            text.erase(preload, kPreload.size());
        }
        out = std::move(text);
    });
}

void UIMetadataParser::parseLanguageList(const JsonValue& data, std::vector<std::string>& languages,
                                         std::map<std::string, std::string>& translations) const {
    ForEachEntry(data, "language", "language not exist in ui metadata", [&](const JsonValue& entry) {
        const std::string locale = entry["locale"].asString();
        if (!locale.empty()) {
            languages.push_back(locale);
        }
        const JsonValue codes = entry["poCodes"];
        for (std::size_t j = 0; j < codes.size(); ++j) {
            const JsonValue code = codes[j];
            if (!code.isNull()) {
                translations[locale + code["po"].asString()] = code["label"].asString();
            }
        }
    });
}

bool UIMetadataParser::isPowerResource(std::string_view rt, std::string_view property, std::string_view control_type) {
    if (rt != kSwitchResourceType && property.find("power") == std::string_view::npos) {
        return false;
    }
    return control_type == kStandbyPowerSwitch || control_type == "OffPowerSwitch" || control_type == "ToggleSwitch";
}

bool UIMetadataParser::isUriExist(const std::string& uri, const std::vector<std::string>& uris) {
    return std::find(uris.begin(), uris.end(), uri) != uris.end();
}

void UIMetadataParser::addUri(const std::string& uri, std::vector<std::string>& uris) {
    if (!isUriExist(uri, uris)) {
        uris.push_back(uri);
    }
}

bool UIMetadataParser::isDefaultMainGroup(std::string_view group) {
    return group.empty() || group == Names::DEFAULT_VALUE;
}

void UIMetadataParser::addSubGroupNameList(const std::string& group, std::vector<std::string>& groups) {
    if (!isDefaultMainGroup(group) && std::find(groups.begin(), groups.end(), group) == groups.end()) {
        groups.push_back(group);
    }
}

bool UIMetadataParser::ms_compare_order(const device_state_struct& left, const device_state_struct& right) {
    return left.order < right.order;
}

bool UIMetadataParser::ma_compare_order(const device_action_struct& left, const device_action_struct& right) {
    return left.order < right.order;
}

}  // namespace VMFramework::HomeLoom
