#include "DeskSettings.h"

#include <VMFramework/JsonValue.h>
#include <desktop/Settings.h>
#include <simulator/Home.h>

namespace homeloom::tv {

void applyDeskSettings(const simulator::Account& account, bool disclaimerAccepted) {
    using VMFramework::json::JsonValue;
    namespace settings = desktop::settings;
    JsonValue signUp = JsonValue::CreateObject();
    signUp.set("di", account.deviceId);
    settings::setString("db/es_master/signup_info", signUp.toString());
    settings::setString("db/menu_widget/language", "en_US.utf8");
    settings::setString("db/comss/countrycode", "US");
    settings::setInt(kDisclaimerKey, disclaimerAccepted ? 1 : 0);
}

}  // namespace homeloom::tv
