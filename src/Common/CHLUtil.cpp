// Small helpers over texts, JSON members and the TV's settings.
#include "Common/CHLUtil.h"

#include <app_common.h>
#include <vconf.h>

#include <algorithm>
#include <atomic>
#include <charconv>
#include <chrono>
#include <cstdlib>
#include <limits>
#include <memory>

#include <VMFramework/JsonValue.h>

#include "Common/CText.h"
#include "Common/DeviceInfoStructs.h"
#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

using json::JsonValue;

namespace {

constexpr char kCountryCodeKey[] = "db/comss/countrycode";

using AppTextFunction = int (*)(char** text);

/// The text that one of the application functions answers; null on failure.
OwnedText readAppText(AppTextFunction read) {
    char* text = nullptr;
    const int result = read(&text);
    OwnedText owned(text);
    return result == 0 ? std::move(owned) : nullptr;
}

/// What printf makes of "%f", but with a decimal point in every locale of the host: the text goes back to the agent.
std::string fixedText(double value) {
    constexpr int kDecimals = 6;
    char text[std::numeric_limits<double>::max_exponent10 + kDecimals + 4];  // digits, sign, point
    const auto end = std::to_chars(std::begin(text), std::end(text), value, std::chars_format::fixed, kDecimals);
    return {text, end.ptr};
}

}  // namespace

std::string CHLUtil::GetAppVersion() {
    const OwnedText name = readAppText(app_get_name);
    if (!name) {
        HL_LOGE("failed to get app name");
        return {};
    }
    const OwnedText version = readAppText(app_get_version);
    if (!version) {
        HL_LOGE("failed to get app version");
        return {};
    }
    HL_LOGI("appName: %s, appVersion : %s", name.get(), version.get());
    return version.get();
}

std::string CHLUtil::GetHLHubCountryCode() {
    const OwnedText code(vconf_get_str(kCountryCodeKey));
    if (!code) {
        HL_LOGE("failed to get country code");
        return {};
    }
    HL_LOGI("gladedeck_country_code: %s", code.get());
    return code.get();
}

bool CHLUtil::GetPropertyValue(const JsonValue& json, device_property_info_struct& info) {
    if (!json.isMember(info.property_name)) {
        HL_LOGE("No member for : %s", info.property_name.c_str());
        return false;
    }
    return GetValueOf(json[info.property_name], info);
}

bool CHLUtil::GetValueOf(const JsonValue& member, device_property_info_struct& info) {
    const std::string_view type = info.property_type;
    if (type == "Boolean") {
        info.property_value = member.asBool() ? "true" : "false";
    } else if (type == "String") {
        info.property_value = member.asString();
    } else if (type == "Integer") {
        info.property_value = std::to_string(member.asInt());
    } else if (type == "Double") {
        info.property_value = fixedText(member.asDouble());
    } else if (type == "Array") {
        info.property_value = member.toString();
    } else {
        HL_LOGE("invalid property type : %s", info.property_type.c_str());
        return false;
    }
    return true;
}

std::string CHLUtil::GetMemberFromMembers(const std::vector<std::string>& members, const std::string& key) {
    const std::string* const member = FindMember(members, key);
    return member != nullptr ? *member : std::string();
}

const std::string* CHLUtil::FindMember(const std::vector<std::string>& members, const std::string& key) {
    const bool isTaken = Log::IsTaken(DLOG_INFO, Log::kTag);
    for (const std::string& member : members) {
        if (isTaken) {
            HL_LOGI("key_upper %s, member_name_upper %s", ToUpper(key).c_str(), ToUpper(member).c_str());
        }
        // Mostly they are the same to the letter, which is sooner seen.
        if (key == member || EqualsIgnoreCase(key, member)) {
            HL_LOGI("Found property: %s", member.c_str());
            return &member;
        }
    }
    return nullptr;
}

bool CHLUtil::GetMemberBool(const JsonValue& json, const std::string& key) {
    const JsonValue member = json[key];
    return (!member.isNull() || json.isMember(key)) && member.asBool();
}

std::string CHLUtil::GetMemberString(const JsonValue& json, const std::string& key) {
    const JsonValue member = json[key];
    return !member.isNull() || json.isMember(key) ? member.asString() : std::string();
}

std::string CHLUtil::GetParentIdOfIRDevice(const std::string& json) {
    const JsonValue document = JsonValue::Create(json);
    return document["irOcf"]["parentDeviceId"].asString();
}

std::string CHLUtil::GetDeviceNetworkType(const std::string& type, const std::string& json) {
    if (type != "DTH") {
        return {};
    }
    const JsonValue document = JsonValue::Create(json);
    return document["dth"]["deviceNetworkType"].asString();
}

bool CHLUtil::IsDuplicateWithSubscribeUrl(const std::vector<std::string>& urls, const std::string& url) {
    return std::find(urls.begin(), urls.end(), url) != urls.end();
}

bool CHLUtil::IsButtonDeviceType(std::string_view type) {
    return type == "x.com.hl.d.button" || type == "x.com.hl.d.remotecontroller";
}

bool CHLUtil::IsDeviceTypeTVForActionState(std::string_view type) {
    return type == "oic.d.tv" || type == "x.com.hl.d.projector" || type == "x.com.hl.d.monitor";
}

bool CHLUtil::IsDeviceTypeTVOrRefForActiveState(std::string_view type) {
    // The stray "k" stands so in the platform's vocabulary: an ordinary refrigerator does not count here.
    return IsDeviceTypeTVForActionState(type) || type == "oic.d.krefrigerator";
}

bool CHLUtil::EqualsIgnoreCase(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), SameLetter);
}

std::string CHLUtil::ToUpper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char letter) { return ToUpper(letter); });
    return text;
}

void CHLUtil::PrintTimeStamp(const std::string& label) {
    using std::chrono::milliseconds;
    using std::chrono::system_clock;
    static std::atomic<long> previous{0};

    // A long of 32 bits holds the lower half only, so the difference is taken where overflow is defined.
    const auto now =
        static_cast<long>(std::chrono::duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count());
    const long before = previous.exchange(now);
    const auto difference = static_cast<long>(static_cast<unsigned long>(now) - static_cast<unsigned long>(before));
    HL_LOGI("[%s]: %ld, (diff = cur-prev = %ld)", label.c_str(), now, difference);
}

}  // namespace VMFramework::HomeLoom
