#include <chrono>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "support/Desk.h"
#include "support/Gate.h"

namespace framework = homeloom::desktop::framework;
using namespace std::chrono_literals;
using simulator::Agent;
using simulator::Fault;
using testing::ElementsAre;
using testing::StartsWith;

namespace {

constexpr char kCreateRoom[] = "homeloom_core_create_room_async";
// Blocks its thread until the agent answers.
framework::TransactionId RequestRoom(const std::string& name) {
    return framework::request("hl_create_room", {{"location_id", "home"}, {"room_name", name}});
}

}  // namespace

TEST(RequestDispatch, WhatHasNoHandlerGetsNoAnswerAndHoldsNobodyUp) {
    Desk desk(homeloom::test::apartmentWith({}));
    desk.start();
    const std::vector<framework::TransactionId> requests{
        framework::request("nonsense"), framework::request("nonsense"), framework::request(""),
        framework::request("hl_create_routine")};  // the name of a notification
    desk.settle();
    EXPECT_EQ(desk.log.count("[Normal][nonsense] exception from job : bad_function_call"), 2);
    EXPECT_EQ(desk.log.count("[Normal][hl_create_routine] exception from job : bad_function_call"), 1);
    EXPECT_EQ(desk.log.count("property_name is empty!(error:4)(error_code:4)"), 1);
    for (const auto request : requests) {
        EXPECT_FALSE(desk.isAnswered(request));
    }
}

TEST(RequestDispatch, EachRequestGoesItsWayAndIsGuarded) {
    Desk desk(homeloom::test::apartmentWith({}));
    desk.setDisclaimer(0);  // neither connected nor signed in
    desk.start();
    const std::string normal = "normal request for ";
    const std::string prior = "prior request for ";
    const std::string silent;
    const struct {
        std::string way;
        std::string refusal;  // what follows in the log
        std::vector<std::string> names;
    } cases[] = {
        {normal,
         "hl-client is not available",
         {"hl_onboard_ir_device", "hl_delete_device", "hl_get_device_icon_info", "hl_get_scene_icon_info",
          "hl_execute_scene", "hl_create_scene", "hl_update_scene", "hl_delete_scene",
          "hl_update_routine_enable_status"}},
        {normal,
         silent,
         {"hl_start_hub_device_discovery", "hl_stop_hub_device_discovery", "create_locksmith_key_value",
          "get_locksmith_key_value", "update_locksmith_key_value", "delete_locksmith_key_value"}},
        {normal,
         "agent not connected. skip!",
         {"hl_create_room", "hl_remove_room", "hl_change_room_name", "hl_move_devices"}},
        {prior,
         "agent not connected. skip!",
         {"set_third_party_notification", "get_third_party_notification", "set_third_party_notification_status"}},
        {prior, "account not signed in", {"get_third_party_notification_status"}},
        {normal,
         "exception from job : manager not available(error:2)",
         {"set_cost_efficiency", "hl_do_main_action", "hl_get_refrigerator_innerview_url", "hl_set_camera_notification",
          "hl_unset_camera_notification", "hl_get_device_info", "hl_get_avp_camera_url", "hl_get_none_avp_camera_url",
          "hl_get_ring_doorbell_url", "hl_set_server_env", "hl_get_accesstoken_uid"}},
    };
    for (const auto& [way, refusal, names] : cases) {
        for (const auto& name : names) {
            desk.log.clear();
            const auto request = framework::request(name);
            EXPECT_TRUE(
                desk.log.waitFor("][" + name + (refusal.find("exception") == 0 ? "] exception" : "] after job")))
                << name;
            EXPECT_TRUE(desk.log.contains(way + name));
            EXPECT_TRUE(desk.log.contains(refusal)) << name << ": " << refusal;
            EXPECT_FALSE(desk.isAnswered(request)) << name;
        }
    }
}

TEST(RequestDispatch, NormalRequestsKeepTheirOrderAndPriorOnesOvertake) {
    Desk desk(homeloom::test::apartmentWith({}));
    desk.start();
    desk.waitForLists(1);
    framework::setThreads(1);
    desk.agent.fault(kCreateRoom, Fault::late(10s).times(1));
    desk.mark();
    RequestRoom("Attic");
    framework::request("hl_change_device_name", {{"device_id", "a"}});
    framework::request("hl_change_device_name", {{"device_id", "b"}});
    desk.waitForLateCall();
    framework::request("get_third_party_notification_status");
    EXPECT_TRUE(desk.log.waitFor("prior request for get_third_party_notification_status"));
    EXPECT_FALSE(desk.log.contains("[Normal][hl_create_room] after job"));
    desk.elapse(10s);
    desk.waitForReport("b", [](const auto& report) { return report.properties.text("device_id") == "b"; });
    std::vector<std::string> answers;
    for (const auto& line : desk.lines()) {
        if (line.find("_result=") != std::string::npos) {
            answers.push_back(line);
        }
    }
    EXPECT_THAT(answers, ElementsAre(StartsWith("notify hl_create_room_result create_room_result=true"),
                                     "notify hl_change_device_name change_device_name_result=false device_id='a'",
                                     "notify hl_change_device_name change_device_name_result=false device_id='b'"));
}

TEST(RequestDispatch, WhatIsQueuedAtTheEndIsDropped) {
    Desk desk(homeloom::test::apartmentWith({}));
    desk.start();
    desk.waitForLists(1);
    desk.agent.fault(kCreateRoom, Fault::never());
    RequestRoom("Attic");
    desk.waitForLateCall();
    std::vector<framework::TransactionId> queued;
    for (int i = 0; i < 5; ++i) {
        queued.push_back(RequestRoom("Cellar"));
        queued.push_back(framework::request("hl_change_device_name"));
    }
    framework::waitIdle();
    desk.stop();
    for (const auto request : queued) {
        EXPECT_FALSE(desk.isAnswered(request));
    }
    EXPECT_EQ(desk.agent.callCount(kCreateRoom), 1);
}

// Threads that report under the device handler's mutex run whatever they find in the controller's context. What they
// find there must not want the session's mutex, whose holder may wait for the device handler's.
TEST(RequestDispatch, ADeviceListRequestDuringAReportDoesNotLockUp) {
    Desk desk(homeloom::test::apartmentWith({"washer"}));
    desk.startAndShow();
    desk.waitForState("washer", "Ready");
    desk.settle();

    // A thread that reads the washer's values stands still in the middle of its report.
    Gate report;
    bool isHeld = false;
    const int listener = framework::addListener([&](const Desk::ReportPtr& shown) {
        if (shown->name == "hl_device_state_updated" && !std::exchange(isHeld, true)) {
            report.pass();
        }
    });
    desk.agent.fault("homeloom_client_get_remote_attributes", Fault::late(10s));
    framework::request("hl_get_device_info", {{"device_id", "washer"}});
    desk.waitForLateCall();
    framework::waitIdle();  // or the framework's thread might be the one that reports
    desk.elapse(10s);
    report.waitUntilEntered();
    // Meanwhile the framework asks for the list, and the scheduler begins to build one with the session's mutex.
    framework::requestDeviceList();
    framework::waitIdle();
    desk.log.clear();
    desk.agent.sendDeviceDetailList(desk.agent.home().devices);
    EXPECT_TRUE(desk.log.waitFor("device_detail_size: 1"));

    const int lists = desk.screen().lists;
    report.open();
    desk.waitForLists(lists + 2);  // one that was asked for, one for the details
    framework::removeListener(listener);
}
