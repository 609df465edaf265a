// A document of the cloud that the plug-in reads or hands on: the text stands for each of them, and everything that
// reads one is asked for.

#include <desktop/Framework.h>

#include "support/Input.h"
#include "support/Plugin.h"

namespace framework = homeloom::desktop::framework;

namespace {

simulator::Home homeOf(simulator::Home home, const std::string& document) {
    for (auto& device : home.devices) {
        for (std::string* text :
             {&device.core.details, &device.core.icons, &device.core.possibleIcons, &device.core.badgeIcons}) {
            *text = document;
        }
    }
    for (auto& [id, canvas] : home.presentations) {
        canvas = document;
    }
    for (auto& scene : home.scenes) {
        scene.document = document;
    }
    for (auto& routine : home.routines) {
        routine.document = document;
    }
    for (auto& app : home.installedApps) {
        app.ui = app.dashboard = document;
    }
    home.catalog = home.sceneIcons = home.wifiLocker = document;
    return home;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto& plugin = fuzz::Plugin::running();
    plugin.agent.load(homeOf(plugin.home, fuzz::text(data, size)));
    plugin.agent.sendEvent(0x2, R"({"lifecycle":"UPDATE"})");  // reads the home anew
    plugin.waitForEvents();
    framework::requestDeviceList();
    const std::string id = "hub-plug";
    for (const char* name : {"hl_get_device_icon_info", "hl_get_scene_icon_info", "get_wifi_locker_user_setting",
                             "hl_do_main_action", "get_capability_status"}) {
        framework::request(
            name, {{"device_id", id}, {"component", std::string("main")}, {"capability", std::string("switch")}});
    }
    framework::request("hl_get_installed_service_app_info", {{"location_id", std::string("home")}});
    framework::request("hl_get_energy_info", {{"installed_app_id", std::string("installed-energy")}});
    plugin.waitForRequests();
    return 0;
}
