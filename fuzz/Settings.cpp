// The texts of the settings that the plug-in reads.

#include <stdexcept>

#include <desktop/Settings.h>
#include <glib.h>

#include "Common/CHLUtil.h"
#include "Homeloom/Devices/DeviceHandler.h"
#include "Homeloom/Tessel/CServerEnvMgr.h"
#include "Homeloom/Tessel/TesselHandler.h"
#include "Homeloom/UIMeta/Metadata.h"
#include "support/Input.h"

using namespace VMFramework::HomeLoom;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = fuzz::text(data, size);
    for (const char* key :
         {"db/es_master/signup_info", "db/homeloom/server/env", "db/menu_widget/language", "db/comss/countrycode"}) {
        homeloom::desktop::settings::setString(key, text);
    }
    DeviceHandler(TesselHandler::GetInstance()).IsMyTV("this-tv");
    CHLUtil::GetHLHubCountryCode();
    // It watches the language, so the main loop tells it.
    Metadata::GetInstance();
    while (g_main_context_iteration(nullptr, FALSE) == TRUE) {
    }
    try {
        CServerEnvMgr().GetIoTCloudServerEnv();
        CServerEnvMgr().GetUImetaServerEnv();
    } catch (const std::exception&) {
        // Who asks is told so.
    }
    return 0;
}
