#ifndef HOMELOOM_COMMON_CHLUTIL_H
#define HOMELOOM_COMMON_CHLUTIL_H

#include <string>
#include <string_view>
#include <vector>

namespace VMFramework::json {
class JsonValue;
}

namespace VMFramework::HomeLoom {

struct device_property_info_struct;

/// Small functions that several subsystems share. None keeps state but PrintTimeStamp; all are thread-safe.
class CHLUtil {
public:
    CHLUtil() = delete;

    /// The version of the application that hosts the plug-in, or "".
    static std::string GetAppVersion();
    /// The TV's country code, or "".
    static std::string GetHLHubCountryCode();

    /// Reads the member `info.property_name` of an attributes object into `info.property_value`, as the text in which
    /// all values travel; `info.property_type` tells the type to read. False for an absent member or an unknown
    /// type. Throws std::runtime_error if `json` is no object or the member cannot be read as that type.
    static bool GetPropertyValue(const json::JsonValue& json, device_property_info_struct& info);
    /// The first of `members` that equals `key` but for case, as it stands in the list, or "".
    static std::string GetMemberFromMembers(const std::vector<std::string>& members, const std::string& key);
    /// The same two for who has found the member, and for who goes on with its place in the list; null for none.
    static bool GetValueOf(const json::JsonValue& member, device_property_info_struct& info);
    static const std::string* FindMember(const std::vector<std::string>& members, const std::string& key);
    /// Members of an object; false or "" for an absent one. They throw std::runtime_error if `json` is no object.
    static bool GetMemberBool(const json::JsonValue& json, const std::string& key);
    static std::string GetMemberString(const json::JsonValue& json, const std::string& key);

    /// Read from a device's detail JSON; "" where it says nothing.
    static std::string GetParentIdOfIRDevice(const std::string& json);
    static std::string GetDeviceNetworkType(const std::string& type, const std::string& json);

    static bool IsDuplicateWithSubscribeUrl(const std::vector<std::string>& urls, const std::string& url);

    static bool IsButtonDeviceType(std::string_view type);
    static bool IsDeviceTypeTVForActionState(std::string_view type);
    static bool IsDeviceTypeTVOrRefForActiveState(std::string_view type);

    /// Equality but for the case of ASCII letters. The host's locale has no say: in a Turkish one toupper would not
    /// take "i" for "I".
    static bool EqualsIgnoreCase(std::string_view left, std::string_view right);
    /// The same for single characters.
    static bool SameLetter(char left, char right) { return ToUpper(left) == ToUpper(right); }

    /// Logs the time and how long after the previous stamp it is, to follow a start.
    static void PrintTimeStamp(const std::string& label);

private:
    static char ToUpper(char letter) {
        return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    }
    static std::string ToUpper(std::string text);
};

}  // namespace VMFramework::HomeLoom

#endif
