#include <dlfcn.h>

#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <vmf_service_handler.h>

#include "CPluginMgr.h"
#include "Common/CException.h"
#include "Helpers/CPropertyListHelper.h"
#include "desktop/CallFaults.h"
#include "desktop/Guard.h"
#include "support/Desk.h"

namespace framework = homeloom::desktop::framework;
using namespace std::chrono_literals;
using homeloom::desktop::failCalls;
using homeloom::desktop::passCalls;
using simulator::Agent;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

vmf_request_service_cb requestCallback = nullptr;

int ExceptionsLogged(const Desk& desk, const char* what) {
    return desk.log.count(std::string("Exception !! - ") + what + "(error:2)(error_code:2)");
}

}  // namespace

// In the way of the real one, to get hold of what the plug-in registers.
int vmf_service_handler_set_request_service_callback(vmf_service_handler_h handler, vmf_request_service_cb callback,
                                                     void* userData) {
    requestCallback = callback;
    return reinterpret_cast<decltype(&vmf_service_handler_set_request_service_callback)>(dlsym(RTLD_NEXT, __func__))(
        handler, callback, userData);
}

// ---- A step of the start that fails is logged, and the session comes up all the same ----

struct FailingStep {
    const char* function;
    int callbacksReached;
    std::vector<const char*> complaints;
};
void PrintTo(const FailingStep& step, std::ostream* out) {
    *out << step.function;
}

class FailingStart : public testing::TestWithParam<FailingStep> {};

TEST_P(FailingStart, IsLoggedAndTheSessionComesUp) {
    const FailingStep& step = GetParam();
    Desk desk(homeloom::test::apartmentWith({}));
    failCalls(step.function, VMF_ERROR_FAILED);
    desk.start();
    desk.waitForStatus(0);
    for (const char* complaint : step.complaints) {
        EXPECT_EQ(ExceptionsLogged(desk, complaint), 1) << complaint;
    }
    // In the order in which they are set.
    const std::vector<std::pair<std::function<void()>, const char*>> calls{
        {[] { framework::request("nonsense"); }, "  _on_request_service"},
        {[] { framework::search(); }, "  _on_start_search"},
        {[] { framework::stopSearch(); }, "  _on_search_stop"},
        {[] { framework::requestDeviceList(); }, "  _on_get_device_list"},
        {[] { framework::listen(); }, "  _on_listen"},
        {[] { framework::stopListening(); }, "  _on_listen_stop"},
        {[] { framework::addDevice({}); }, "  _on_add_device"},
    };
    int reached = 0;
    for (const auto& [call, line] : calls) {
        const int before = desk.log.count(line);
        call();
        framework::waitIdle();
        EXPECT_EQ(desk.log.count(line) - before, reached < step.callbacksReached ? 1 : 0) << line;
        ++reached;
    }
    passCalls();
}

INSTANTIATE_TEST_SUITE_P(
    Controller, FailingStart,
    testing::Values(
        FailingStep{"vmf_service_handler_create",
                    0,
                    {"service_handler handle creation failed", "service_handler subscribe service failed",
                     "set service property cb failed "}},
        FailingStep{"vmf_service_handler_subscribe_service", 0, {"service_handler subscribe service failed"}},
        FailingStep{"vmf_service_handler_set_request_service_callback", 0, {"set service property cb failed "}},
        FailingStep{"vmf_service_handler_set_active_search_callback", 1, {"set search cb failed"}},
        FailingStep{"vmf_service_handler_set_active_search_stop_callback", 2, {"set search stop cb failed"}},
        FailingStep{"vmf_service_handler_set_search_all_callback", 3, {"set get device list cb failed"}},
        FailingStep{"vmf_service_handler_set_passive_search_callback", 4, {"set listen cb failed"}},
        FailingStep{"vmf_service_handler_set_passive_search_stop_callback", 5, {"set listen stop cb failed "}},
        FailingStep{"vmf_service_handler_set_add_device_callback", 6, {"add devie cb failed "}}));

TEST(Controller, AFailingEndIsLogged) {
    Desk desk(homeloom::test::apartmentWith({}));
    desk.start();
    failCalls("vmf_service_handler_unsubscribe_service", VMF_ERROR_FAILED);
    desk.stop();
    EXPECT_EQ(ExceptionsLogged(desk, "service_handler unsubscribe service failed"), 1);
    passCalls();
}

// ---- Load status ----

TEST(Controller, TheLoadStatusFreezesAtTheFirstZero) {
    Desk desk(homeloom::test::apartmentWith({}));
    desk.agent.setConnectOutcome(Agent::Connection::Rejected);
    desk.start();
    desk.waitForStatus(1);
    desk.agent.setConnectOutcome(Agent::Connection::Connected);
    desk.elapse(5s);
    desk.waitForStatus(0);
    desk.agent.changeConnection(Agent::Connection::Rejected);
    EXPECT_TRUE(desk.log.waitFor("already loaded"));
    desk.settle();
    EXPECT_EQ(desk.screen().status, 0);
}

TEST(Controller, AStatusThatCouldNotBeSentIsSentWithTheNextReport) {
    Desk desk(homeloom::test::apartmentWith({}));
    failCalls("vmf_plugin_send_load_result", VMF_ERROR_FAILED, homeloom::desktop::firstCalls(1));
    desk.start();
    ASSERT_TRUE(desk.log.waitFor("PLUGIN STATUS REPORTED"));
    EXPECT_EQ(ExceptionsLogged(desk, "send load result failed"), 2) << "here and by the manager";
    EXPECT_EQ(desk.screen().status, -1);
    desk.agent.changeConnection(Agent::Connection::Disconnected);
    desk.elapse(5s);
    desk.waitForStatus(0);
}

// ---- Too early, too late, and without user data ----

TEST(Controller, ARequestBeforeTheSessionIsDroppedWithoutAWord) {
    Desk desk(homeloom::test::apartmentWith({}));
    framework::TransactionId early = 0;
    // The second context to begin is the session's; its line comes before it takes anything.
    desk.atLogLine("CHomeLoomClientE] Initiate", [&] {
        early = framework::request("hl_change_device_name");
        framework::waitIdle();
    });
    desk.start();
    desk.settle();
    EXPECT_NE(early, 0u);
    EXPECT_FALSE(desk.isAnswered(early));
    EXPECT_EQ(desk.log.count("normal request : hl_change_device_name"), 0);
    desk.ask("hl_change_device_name", {});
}

TEST(Controller, ARequestOrReportAfterTheEndIsRefused) {
    Desk desk(homeloom::test::apartmentWith({}));
    desk.start();
    desk.waitForLists(1);
    framework::TransactionId late = 0;
    desk.atLogLine("CServiceControllerE] TerminateSync", [&] {
        desk.atLogLine("Sync result(1)", [&] {  // ended, and still subscribed
            late = framework::request("hl_change_device_name");
            framework::waitIdle();
        });
    });
    desk.stop();
    EXPECT_NE(late, 0u);
    EXPECT_FALSE(desk.isAnswered(late));
    EXPECT_THAT(homeloom::desktop::pluginExceptions(), ElementsAre("request callback: InvokeTask Fail!!(error:2)"));
    homeloom::desktop::forgetPluginExceptions();

    desk.mark();
    auto& manager = VMFramework::HomeLoom::CPluginMgr::GetInstance();
    manager.ReportServiceNotify(VMFramework::HomeLoom::IPropertyListHelper::Create());
    manager.ReportPluginStatus(VMFramework::HomeLoom::PluginStatus::Unavailable);
    EXPECT_EQ(ExceptionsLogged(desk, "InvokeTask Fail!!"), 2);
    EXPECT_THAT(desk.lines(), IsEmpty());
}

TEST(Controller, ACallbackWithoutUserDataThrows) {
    Desk desk(homeloom::test::apartmentWith({}));
    desk.start();
    ASSERT_NE(requestCallback, nullptr);
    EXPECT_THROW(requestCallback(nullptr, nullptr, nullptr, nullptr), VMFramework::HomeLoom::CException);
}
