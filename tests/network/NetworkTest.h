#ifndef HOMELOOM_TESTS_NETWORK_NETWORKTEST_H
#define HOMELOOM_TESTS_NETWORK_NETWORKTEST_H

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "desktop/Log.h"
#include "desktop/Settings.h"
#include "desktop/Web.h"
#include "simulator/Agent.h"
#include "simulator/Cloud.h"
#include "simulator/HomeLoader.h"
#include "support/Places.h"

/// All hosts are the simulated cloud's, which serves the apartment.
class NetworkTest : public testing::Test {
protected:
    NetworkTest() {
        agent.load(simulator::loadHome(homeloom::test::apartmentFile()));
        cloud.resetRequests();
        cloud.start();
        homeloom::desktop::web::routeOtherHosts(cloud.port());
        homeloom::desktop::web::trust(cloud.caFile());
    }
    ~NetworkTest() override {
        homeloom::desktop::web::reset();
        cloud.clearFaults();
        cloud.stop();
    }

    std::string Token() const { return agent.home().account.accessToken; }

    /// What was logged at error level.
    std::vector<std::string> Errors() const {
        std::vector<std::string> messages;
        for (const auto& line : log.lines()) {
            if (line.priority == DLOG_ERROR) {
                const std::size_t text = line.message.find(")  ");  // behind file, function and line
                messages.push_back(text == std::string::npos ? line.message : line.message.substr(text + 3));
            }
        }
        return messages;
    }

    simulator::Agent& agent = simulator::Agent::instance();
    simulator::Cloud& cloud = simulator::Cloud::instance();
    homeloom::desktop::log::Capture log;
};

#endif
