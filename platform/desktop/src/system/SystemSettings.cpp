#include <system_settings.h>

#include <cstring>
#include <string>

#include "desktop/Settings.h"

namespace {

// A desk has one language: that of the menus, which comes with an encoding ("en_US.utf8").
constexpr char kLanguageKey[] = "db/menu_widget/language";

}  // namespace

int system_settings_get_value_string(system_settings_key_e key, char** value) {
    const auto setting = homeloom::desktop::settings::get(kLanguageKey);
    const std::string* const language = setting ? std::get_if<std::string>(&*setting) : nullptr;
    if (value == nullptr || language == nullptr || key != SYSTEM_SETTINGS_KEY_LOCALE_LANGUAGE) {
        return -1;
    }
    char* const text = strdup(language->substr(0, language->find('.')).c_str());
    if (text == nullptr) {
        return -1;
    }
    *value = text;
    return 0;
}
