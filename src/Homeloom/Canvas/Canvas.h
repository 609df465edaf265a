#ifndef HOMELOOM_HOMELOOM_CANVAS_CANVAS_H
#define HOMELOOM_HOMELOOM_CANVAS_CANVAS_H

#include <map>
#include <mutex>
#include <string>

#include <VMFramework/JsonValue.h>

namespace VMFramework::HomeLoom {

/// The documents that tell how devices of the local hub are shown and controlled: what the UI metadata is for other
/// devices. They are stored under the presentation's id, which for these devices is the vid.
///
/// Of each list in a document only the first entry is read, of the languages too. Thread-safe. No operation throws:
/// what cannot be read answers empty or false.
class Canvas {
public:
    /// Stores a document, in place of one of that vid. False, and nothing stored, if it is empty.
    bool CreateCanvasMap(const std::string& vid, const std::string& canvas);
    bool IsAddedCanvasMap(const std::string& vid) const;

    /// The translated text of a state.
    std::string GetStateText(const std::string& vid, const std::string& state) const;
    /// The type of a state's alternative: "active" for an active one.
    std::string GetActiveState(const std::string& vid, const std::string& state) const;

    /// Both with one look-up: what an event is answered by.
    void GetShownState(const std::string& vid, const std::string& state, std::string& text, std::string& type) const;

    /// Which capability tells the device's state. False if either is empty.
    bool GetStatesParam(const std::string& vid, std::string& component, std::string& capability) const;
    /// Which capability the device's action sets, and how. False if any is empty.
    bool GetActionsParam(const std::string& vid, std::string& component, std::string& capability,
                         std::string& display_type) const;
    /// The first of the action's commands that is not `current`; the last one if all are.
    std::string GetCommandValue(const std::string& vid, const std::string& display_type,
                                const std::string& current) const;

    /// The "value" of one attribute in a capability's status text.
    static std::string GetCurrentStateValue(const std::string& text, const std::string& attribute);
    /// Writes the text of a one-command request.
    static bool MakeActionJsonValue(const std::string& component, const std::string& capability,
                                    const std::string& command, std::string& out);

private:
    using JsonValue = json::JsonValue;

    /// How a state is shown.
    struct Shown {
        std::string text;
        std::string type;
    };
    /// A document, and what it says about each state, so that an event needs not walk it. A document that can't be
    /// walked to its end has no states: it is walked by each event, as far as that goes.
    struct Presentation {
        JsonValue document;
        std::map<std::string, Shown> states;
        bool has_states = false;
    };

    static std::map<std::string, Shown> readStates(const JsonValue& document);
    bool findShown(const std::string& vid, const std::string& state, Shown& out) const;
    JsonValue findDocument(const std::string& vid) const;
    JsonValue findFirst(const std::string& vid, const char* list) const;
    JsonValue findAlternative(const std::string& vid, const std::string& state) const;
    std::string getPOCode(const std::string& vid, const std::string& state) const;
    std::string getTranslatedStateText(const std::string& vid, const std::string& po_code) const;
    static JsonValue firstOf(const JsonValue& document, const char* list);
    static std::string translate(const JsonValue& document, const std::string& po_code);
    static std::string getMemberString(const JsonValue& document, const std::string& name);

    mutable std::mutex _mutex;  // a leaf: guards _canvasMap
    std::map<std::string, Presentation> _canvasMap;
};

}  // namespace VMFramework::HomeLoom

#endif
