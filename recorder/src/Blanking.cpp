#include "recorder/Blanking.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include <homeloom_core.h>

namespace recorder {

namespace {

using What = Blanking::What;

// Shorter ones may well stand in a text by chance.
constexpr std::size_t kShortestSecret = 6;
constexpr std::size_t kShortestName = 3;

struct Secret {
    const char* function;
    Side side;
    int index;  // as of Place; of the answer of a function that hands out one text, -1
    What what;
};

const Secret secrets[] = {
    {"homeloom_client_get_access_token", Side::Out, -1, What::Token},
    {"homeloom_client_get_login_id", Side::Out, -1, What::Account},
    {"homeloom_client_get_connected_user_id", Side::Out, -1, What::Account},
    {"homeloom_client_device_detail_get_string", Side::Out, HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_NICK_NAME,
     What::Name},
    {"homeloom_client_device_detail_get_string", Side::Out, HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_PREFIX, What::Name},
    {"homeloom_client_group_get_string", Side::Out, HOMELOOM_CLIENT_GROUP_PROPERTY_NAME, What::Name},
    {"homeloom_client_set_third_party_notification", Side::In, 2, What::Token},
    {"homeloom_core_location_get_string", Side::Out, HOMELOOM_CORE_LOCATION_NAME, What::Name},
    {"homeloom_core_create_room_async", Side::In, 2, What::Name},
    {"homeloom_core_change_room_name_async", Side::In, 3, What::Name},
    {"homeloom_core_device_get_string", Side::Out, HOMELOOM_CORE_DEVICE_NAME, What::Name},
    {"homeloom_core_change_device_name", Side::In, 2, What::Name},
    {"homeloom_core_installed_app_get_string", Side::Out, HOMELOOM_CORE_INSTALLED_APP_DISPLAY_NAME, What::Name},
    {"homeloom_core_locksmith_create_keyvalue", Side::In, 2, What::Token},
    {"homeloom_core_locksmith_update_keyvalue", Side::In, 2, What::Token},
    {"homeloom_core_update_notification_profile", Side::In, 2, What::Token},
    {"homeloom_core_get_notification_profile", Side::Callback, 3, What::Token},
};

What whatAt(const Place& place) {
    for (const Secret& secret : secrets) {
        if (secret.side == place.side && secret.index == place.index &&
            std::strcmp(secret.function, place.function) == 0) {
            return secret.what;
        }
    }
    return What::Nothing;
}

bool isOneOf(const std::string& text, std::initializer_list<const char*> others) {
    return std::any_of(others.begin(), others.end(), [&](const char* other) { return text == other; });
}

bool holdsOneOf(const std::string& text, std::initializer_list<const char*> parts) {
    return std::any_of(parts.begin(), parts.end(),
                       [&](const char* part) { return text.find(part) != std::string::npos; });
}

/// What a member of a JSON document holds.
What whatOf(const Place& place, std::string key) {
    std::transform(key.begin(), key.end(), key.begin(), [](unsigned char c) { return std::tolower(c); });
    if (holdsOneOf(key, {"token", "password", "passphrase", "passwd", "secret", "credential", "authorization"}) ||
        isOneOf(key, {"regid", "reg_id", "pin", "psk"}) ||
        (key == "value" && std::strstr(place.function, "locksmith") != nullptr)) {
        return What::Token;
    }
    if (isOneOf(key,
                {"norvaneaccountid", "accountid", "userid", "user_id", "ownerid", "loginid", "login_id", "email"})) {
        return What::Account;
    }
    return isOneOf(key, {"name", "label", "nick", "nickname", "displayname", "devicename", "devicelabel", "roomname",
                         "locationname", "scenename", "rulename", "username", "ownername", "ssid"})
               ? What::Name
               : What::Nothing;
}

/// The documents of a device model are the same in all homes, and their names are no person's.
bool isOfModel(const Place& place) {
    return isOneOf(place.function, {"homeloom_client_get_ui_metadata", "homeloom_core_get_device_presentation"});
}

bool isDocument(const std::string& text) {
    const std::size_t start = text.find_first_not_of(" \t\r\n");
    return start != std::string::npos && (text[start] == '{' || text[start] == '[');
}

bool isSentence(const std::string& text) {
    return text.find(' ') != std::string::npos;
}

bool isBlank(const std::string& text) {
    return text.front() == '<' && withoutNumbers(text) != text;
}

void replaceAll(std::string& text, const std::string& part, const std::string& by) {
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + by.size())) {
        text.replace(at, part.size(), by);
    }
}

void appendUtf8(std::string& text, unsigned long code) {
    const auto append = [&text](unsigned long byte) { text += static_cast<char>(byte); };
    if (code < 0x80) {
        append(code);
    } else if (code < 0x800) {
        append(0xC0 | code >> 6);
        append(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        append(0xE0 | code >> 12);
        append(0x80 | (code >> 6 & 0x3F));
        append(0x80 | (code & 0x3F));
    } else {
        append(0xF0 | code >> 18);
        append(0x80 | (code >> 12 & 0x3F));
        append(0x80 | (code >> 6 & 0x3F));
        append(0x80 | (code & 0x3F));
    }
}

unsigned long hexAt(const std::string& raw, std::size_t at) {
    return at + 4 <= raw.size() ? std::strtoul(raw.substr(at, 4).c_str(), nullptr, 16) : 0;
}

/// What a JSON text means, given what stands between its quotation marks.
std::string unescaped(const std::string& raw) {
    std::string text;
    for (std::size_t i = 0; i < raw.size(); ++i) {
        if (raw[i] != '\\' || i + 1 == raw.size()) {
            text += raw[i];
            continue;
        }
        static const char codes[] = "bfnrt";
        static const char meant[] = "\b\f\n\r\t";
        const char c = raw[++i];
        if (c == 'u') {
            unsigned long code = hexAt(raw, i + 1);
            i += 4;
            if (code >= 0xD800 && code < 0xDC00 && raw.compare(i + 1, 2, "\\u") == 0) {
                code = 0x10000 + ((code - 0xD800) << 10) + (hexAt(raw, i + 3) - 0xDC00);
                i += 6;
            }
            appendUtf8(text, code);
        } else {
            const char* const found = std::strchr(codes, c);
            text += found == nullptr ? c : meant[found - codes];
        }
    }
    return text;
}

}  // namespace

std::string Blanking::shown(const Place& place, const std::string& text) {
    if (const What what = whatAt(place); what != What::Nothing) {
        return blank(what, text);
    }
    return isDocument(text) && !isOfModel(place) ? shownDocument(place, text) : shownInside(text);
}

std::string Blanking::blank(What what, const std::string& text) {
    if (text.empty() || isBlank(text)) {
        return text;
    }
    if (what == What::Name) {
        return _names.emplace(text, "<name " + std::to_string(_names.size() + 1) + ">").first->second;
    }
    std::string& blank = _secrets[text];
    if (blank.empty()) {
        blank = what == What::Account ? "<account " + std::to_string(++_accounts) + ">"
                                      : "<token " + std::to_string(++_tokens) + ">";
    }
    return blank;
}

std::string Blanking::shownInside(const std::string& text) const {
    std::string shown = text;
    for (const auto& [secret, blank] : _secrets) {
        if (shown == secret || secret.size() >= kShortestSecret) {
            replaceAll(shown, secret, blank);
        }
    }
    if (isSentence(shown)) {
        for (const auto& [name, blank] : _names) {
            if (name.size() >= kShortestName) {
                replaceAll(shown, name, blank);
            }
        }
    }
    return shown;
}

// Only the texts of the document are looked at, and the rest stays as it is, so that also one that is no JSON after all
// comes through.
std::string Blanking::shownDocument(const Place& place, const std::string& document) {
    std::string shown;
    std::string key;
    for (std::size_t i = 0; i < document.size(); ++i) {
        if (document[i] != '"') {
            shown += document[i];
            continue;
        }
        const std::size_t start = i + 1;
        for (++i; i < document.size() && document[i] != '"'; ++i) {
            i += document[i] == '\\' ? 1 : 0;
        }
        const std::string raw = document.substr(start, i - start);
        const std::size_t behind = document.find_first_not_of(" \t\r\n", i + 1);
        const std::string text = unescaped(raw);
        if (behind != std::string::npos && document[behind] == ':') {
            key = text;
            shown += '"' + raw + '"';
            continue;
        }
        const What what = whatOf(place, key);
        const std::string now = what != What::Nothing ? blank(what, text)
                                : isDocument(text)    ? shownDocument(place, text)
                                                      : shownInside(text);
        if (now == text) {
            shown += '"' + raw + '"';
        } else {
            appendQuoted(shown, now);
        }
    }
    return shown;
}

std::string withoutNumbers(const std::string& text) {
    std::string shown = text;
    for (const std::string kind : {"<name ", "<account ", "<token "}) {
        for (std::size_t at = shown.find(kind); at != std::string::npos; at = shown.find(kind, at + kind.size())) {
            const std::size_t start = at + kind.size() - 1;
            const std::size_t end = shown.find_first_not_of("0123456789", start + 1);
            if (end != std::string::npos && shown[end] == '>') {
                shown.erase(start, end - start);
            }
        }
    }
    return shown;
}

}  // namespace recorder
