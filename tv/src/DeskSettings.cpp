#include "DeskSettings.h"

#include <VMFramework/JsonValue.h>
#include <desktop/Settings.h>
#include <simulator/Home.h>

namespace homeloom::tv {

namespace settings = desktop::settings;

void applyDeskSettings(const simulator::Account& account, const std::string& file, std::optional<bool> disclaimer) {
    auto signUp = VMFramework::json::JsonValue::CreateObject();
    signUp.set("di", account.deviceId);
    settings::setString("db/es_master/signup_info", signUp.toString());
    settings::setString("db/menu_widget/language", "en_US.utf8");
    settings::setString("db/comss/countrycode", "US");
    settings::setInt(kDisclaimerKey, 1);
    if (!file.empty()) {
        settings::keepIn(file);
    }
    if (disclaimer) {
        settings::setInt(kDisclaimerKey, *disclaimer ? 1 : 0);
    }
}

bool isDisclaimerAccepted() {
    return settings::get(kDisclaimerKey) == settings::Value(1);
}

}  // namespace homeloom::tv
