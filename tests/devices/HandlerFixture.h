#ifndef HOMELOOM_TESTS_DEVICES_HANDLERFIXTURE_H
#define HOMELOOM_TESTS_DEVICES_HANDLERFIXTURE_H

#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Homeloom/Devices/DeviceHandler.h"
#include "Homeloom/Tessel/TesselHandler.h"
#include "desktop/Framework.h"
#include "simulator/Agent.h"

namespace VMFramework::HomeLoom {

/// A device handler over the simulated agent. The plug-in is bound to the framework, but its session rests: without
/// the user's agreement it connects nothing, and the fixture connects the facade itself.
class HandlerFixture : public testing::Test {
protected:
    using ReportPtr = homeloom::desktop::framework::ReportPtr;

    HandlerFixture();
    ~HandlerFixture() override;

    static Device::_deviceInfo infoOf(const std::string& id, const std::string& vid, const std::string& type,
                                      int status = 0);
    /// Makes the device known to agent and handler.
    std::shared_ptr<Device> add(const std::string& id, const std::string& vid, const std::string& type,
                                const std::vector<std::string>& uris, int status = 0);
    void parse(const std::string& vid, const std::string& document);
    /// What the agent answers when it is asked for the metadata.
    void setUiMetadata(const std::string& vid, const std::string& document);

    /// Waits until agent and job threads have nothing more to do.
    void settle();
    /// Lets every timer of the main loop fire now; how many there were.
    static int elapsedTimers();
    /// The notifications since the last call.
    std::vector<ReportPtr> takeNotifications();
    /// Their texts under that key.
    std::vector<std::string> takeTexts(const std::string& key);
    /// Sends the list of all devices, as the session does, and gives what the framework got.
    ReportPtr sendDeviceList();
    /// "DEVICE URIS" of each subscription, sorted.
    static std::set<std::string> subscriptions();

    simulator::Agent& agent = simulator::Agent::instance();
    std::shared_ptr<DeviceHandler> handler = std::make_shared<DeviceHandler>(TesselHandler::GetInstance());
    std::set<std::string> hubDevices;

private:
    std::size_t _mark = 0;
};

}  // namespace VMFramework::HomeLoom

#endif
