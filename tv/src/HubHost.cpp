#include "HubHost.h"

#include <desktop/Packages.h>
#include <desktop/System.h>
#include <simulator/Home.h>
#include <simulator/HubApp.h>

namespace homeloom::tv {

namespace {

constexpr char kHubFeature[] = "com.norvane/featureconf/iot_hub.support";

}  // namespace

HubHost::HubHost(const simulator::Home& home, bool isInstalled) {
    desktop::system::setFeature(kHubFeature, true);
    auto& app = simulator::HubApp::instance();
    app.setIdentity(home.account.loginId, home.hub.deviceId);
    if (isInstalled) {
        app.start();
        desktop::packages::setInstalled(simulator::HubApp::kAppId);
    }
}

HubHost::~HubHost() {
    simulator::HubApp::instance().kill();
}

}  // namespace homeloom::tv
