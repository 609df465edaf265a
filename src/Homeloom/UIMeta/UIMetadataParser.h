#ifndef HOMELOOM_HOMELOOM_UIMETA_UIMETADATAPARSER_H
#define HOMELOOM_HOMELOOM_UIMETA_UIMETADATAPARSER_H

#include <string>
#include <string_view>
#include <vector>

#include "Homeloom/UIMeta/UIMetadataStructs.h"

namespace VMFramework::json {
class JsonValue;
}

namespace VMFramework::HomeLoom {

/// Turns the platform's UI metadata document into a record. It keeps no state.
///
/// A document is taken as far as it goes: an entry that cannot be read ends its list, and the other lists are read all
/// the same.
class UIMetadataParser {
public:
    /// False, with `out` as it was, for an empty or malformed text and for a document that says that it has nothing to
    /// show. Never throws.
    bool ParseMetadata(const std::string& vid, const std::string& json_text, device_ui_metadata_struct& out) const;

    /// Whether a state or action belongs to the device's own card and not to a sub device card.
    static bool isDefaultMainGroup(std::string_view group);

private:
    using JsonValue = json::JsonValue;

    bool parseMetadata(const std::string& vid, const JsonValue& document, device_ui_metadata_struct& out) const;
    bool parseGenericMetadata(const JsonValue& data) const;
    void parseStateList(const JsonValue& data, std::vector<device_state_struct>& states,
                        std::vector<std::string>& groups, std::vector<std::string>& uris) const;
    void parseActionList(const JsonValue& data, std::vector<device_action_struct>& actions,
                         std::vector<std::string>& groups, std::string& out_href, std::string& out_property,
                         std::vector<std::string>& uris) const;
    void parseDPResourceList(const JsonValue& data, std::vector<device_dp_resource_struct>& resources) const;
    void parseDPUri(const JsonValue& data, std::string& out) const;
    void parseIconUrl(const JsonValue& value, std::string& out) const;
    void parseLanguageList(const JsonValue& data, std::vector<std::string>& languages,
                           std::map<std::string, std::string>& translations) const;
    std::string parseSolenneServerDpUri(const JsonValue& data) const;

    device_state_struct parseState(const JsonValue& entry, std::vector<std::string>& groups,
                                   std::vector<std::string>& uris) const;
    device_argument_struct parseArgument(const JsonValue& entry, std::vector<std::string>& uris) const;
    device_action_struct parseAction(const JsonValue& entry, std::vector<std::string>& groups,
                                     std::vector<std::string>& uris) const;
    device_dp_resource_struct parseDPResource(const JsonValue& entry) const;
    std::vector<device_alternative_struct> parseAlternatives(const JsonValue& entry) const;

    static bool isPowerResource(std::string_view rt, std::string_view property, std::string_view control_type);
    static bool isUriExist(const std::string& uri, const std::vector<std::string>& uris);
    static void addUri(const std::string& uri, std::vector<std::string>& uris);
    static void addSubGroupNameList(const std::string& group, std::vector<std::string>& groups);
    static bool ms_compare_order(const device_state_struct& left, const device_state_struct& right);
    static bool ma_compare_order(const device_action_struct& left, const device_action_struct& right);
};

}  // namespace VMFramework::HomeLoom

#endif
