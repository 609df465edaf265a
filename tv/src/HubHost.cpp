#include "HubHost.h"

#include <desktop/Packages.h>
#include <desktop/System.h>
#include <simulator/Home.h>
#include <simulator/HubApp.h>

namespace homeloom::tv {

namespace {

constexpr char kHubFeature[] = "com.norvane/featureconf/iot_hub.support";

}  // namespace

HubHost::HubHost(bool isInstalled) : _isInstalled(isInstalled) {
    desktop::system::setFeature(kHubFeature, true);
    if (_isInstalled) {
        simulator::HubApp::instance().launch();
    }
}

HubHost::~HubHost() {
    simulator::HubApp::instance().kill();
}

void HubHost::identify(const simulator::Home& home) {
    simulator::HubApp::instance().setIdentity(home.account.loginId, home.hub.deviceId);
}

void HubHost::start() {
    if (_isInstalled) {
        simulator::HubApp::instance().start();
        desktop::packages::setInstalled(simulator::HubApp::kAppId);
    }
}

}  // namespace homeloom::tv
