#ifndef HOMELOOM_HOMELOOM_UIMETA_UIMETADATASTRUCTS_H
#define HOMELOOM_HOMELOOM_UIMETA_UIMETADATASTRUCTS_H

#include <map>
#include <memory>
#include <string>
#include <vector>

/// The parsed form of the document in which the platform tells how the devices of one model (`vid`) are shown. The
/// member of the document that a field comes from is named where the two differ.
namespace VMFramework::HomeLoom {

/// What stands in for a place-holder "<name>" of a state's label.
struct device_argument_struct {
    std::string name;  ///< "n"
    std::string href;
    std::string property;
    std::map<std::string, std::string> alternatives;  ///< a value, and the text that is shown for it
    std::vector<std::string> inactive_keys;           ///< the values that show the device as inactive
};

/// A main state ("ms"): a text that may be shown for the device.
struct device_state_struct {
    std::string name;
    bool emphasis = false;
    std::string group;
    std::string icon_url;
    int order = 0;
    std::string type;
    std::string label;  ///< a text or a translation code ("__..."), with place-holders
    std::vector<device_argument_struct> arguments;
    bool has_visible = false;  ///< without a rule a state is always visible
    std::string visible_href;
    std::string visible_property;
    std::string visible_operand;
    std::string visible_operator;
    std::string visible_type;
};

/// One value of an action or of a display resource.
struct device_alternative_struct {
    std::string key;
    std::string value;
    std::string type;
};

/// A main action ("ma"): a property that the device's card can set.
struct device_action_struct {
    std::string href;
    std::string interface_name;  ///< "if"
    std::string rt;
    std::string control_type;
    std::string property;
    std::vector<std::string> alternative_keys;  ///< the values that can be set, in the order of the document
    std::vector<device_alternative_struct> alternatives;
    std::string group;
    std::string icon_url;
    int order = 0;
    bool has_visible = false;  ///< without a rule an action is always visible
    std::string visible_href;
    std::string visible_property;
    std::string visible_operand;
    std::string visible_operator;
};

/// A resource that other screens show ("dpResources").
struct device_dp_resource_struct {
    bool controllable = false;
    int order = 0;
    std::string href;
    std::string interface_name;  ///< "if"
    std::string rt;
    std::string property;
    std::string control_type;
    std::vector<device_alternative_struct> alternatives;
    std::vector<int> range;
    std::string label;
    bool emphasis = false;
    bool rule_event = false;
    bool rule_action = false;
};

struct device_ui_metadata_struct {
    std::string vid;
    bool is_generic = false;  ///< the platform's stand-in for models without a document of their own
    std::string version;
    std::vector<device_state_struct> main_states;    ///< ascending by order
    std::vector<std::string> state_groups;           ///< each but the default one, in the order first met
    std::vector<device_action_struct> main_actions;  ///< ascending by order
    std::vector<std::string> action_groups;          ///< each but the default one, in the order first met
    std::vector<device_dp_resource_struct> dp_resources;
    std::vector<std::string> subscribe_uris;  ///< every distinct href of states, their rules, and actions
    std::string generic_subscribe_uri;        ///< the URI that answered; known only once a device was read
    std::string main_action_href;
    std::string main_action_property;
    std::string dp_uri;
    std::string icon_url;
    std::vector<std::string> languages;
    std::map<std::string, std::string> translations;  ///< locale and code in one key ("en__PO_ON"), and the text
    std::string solenne_server_dp_uri;
    /// For each href the properties that something shows, without repeats: of arguments, then of states' rules, then of
    /// dp_resources. Worked out when the document was read.
    std::map<std::string, std::vector<std::string>> shown_names;
};

/// How a device's main action and sub devices are to be drawn now. The texts are the metadata's and the device's, and
/// stand for as long as the lock is held that guards the device.
struct device_presentation_struct {
    const std::string& context_value;  ///< of the state text: the cards' own texts change the device's
    const std::string& control_type;
    const std::string& action_state;
    const std::string& action_url;
    const std::string& solenne_server_dp_uri;
    bool has_cards = false;  ///< whether the device's JSON of sub device cards is worth sending, be it an empty one
    int card_count = 0;
    std::shared_ptr<const device_ui_metadata_struct> metadata;  ///< where the caller doesn't hold it
};

}  // namespace VMFramework::HomeLoom

#endif
