#include <algorithm>
#include <atomic>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <vmf_service_handler.h>

#include "desktop/CallFaults.h"
#include "desktop/Framework.h"
#include "desktop/Guard.h"
#include "support/Gate.h"
#include "support/Screen.h"

namespace {

using namespace homeloom::desktop;
using framework::Report;
using std::chrono::milliseconds;

vmf_string_t text(const std::string& characters) {
    return vmf_string_new(characters.data(), characters.size());
}

vmf_property_list_h makeList(const char* name, int number) {
    vmf_error_e error = VMF_ERROR_NONE;
    const vmf_property_list_h list = vmf_property_list_create(&error);
    vmf_property_list_set_name(list, name);
    vmf_property_list_push_property(list, vmf_property_create_int("number", number, &error));
    return list;
}

// A plug-in that does what each test says.
class FrameworkTest : public testing::Test {
protected:
    FrameworkTest() {
        handler = vmf_service_handler_create(text("test"));
        EXPECT_EQ(vmf_service_handler_subscribe_service(handler, text("homeloom")), 0);
        EXPECT_EQ(vmf_service_handler_set_request_service_callback(
                      handler,
                      [](vmf_service_handler_h, vmf_transaction_h transaction, vmf_property_list_h list, void* self) {
                          static_cast<FrameworkTest*>(self)->onRequest(transaction, list);
                      },
                      this),
                  0);
    }
    ~FrameworkTest() override {
        passCalls();
        if (handler != nullptr) {
            end();
        }
        EXPECT_EQ(framework::liveHandles().total(), 0u);
        EXPECT_THAT(pluginExceptions(), testing::IsEmpty());
    }

    void end() {
        EXPECT_EQ(vmf_service_handler_unsubscribe_service(handler, text("homeloom")), 0);
        EXPECT_EQ(vmf_service_handler_destroy(handler), 0);
        handler = nullptr;
    }

    int send(int number, vmf_transaction_h transaction = nullptr, bool result = true) {
        const vmf_property_list_h list = makeList(result ? "answer" : "news", number);
        const auto function = result ? vmf_service_handler_send_request_result : vmf_service_handler_notify;
        const int sent = function(handler, text("homeloom"), list, transaction, 0);
        vmf_property_list_destroy(list);
        return sent;
    }

    vmf_service_handler_h handler;
    std::function<void(vmf_transaction_h, vmf_property_list_h)> onRequest = [](auto...) {};
};

TEST_F(FrameworkTest, ARequestIsAnsweredLateAndAgain) {
    std::promise<vmf_transaction_h> arrived;
    std::string asked;
    onRequest = [&](vmf_transaction_h transaction, vmf_property_list_h list) {
        const char* id = nullptr;
        bool on = false;
        vmf_property_get_string(vmf_property_list_find(list, "id"), &id);
        vmf_property_get_bool(vmf_property_list_find(list, "on"), &on);
        asked = std::string(vmf_property_list_get_name(list)) + " " + id + (on ? " on" : " off");
        arrived.set_value(transaction);
    };
    EXPECT_EQ(framework::request("hl_ask", {}, "elsewhere"), 0u);
    const auto id = framework::request("hl_ask", {{"id", "w1"}, {"on", true}});
    const vmf_transaction_h transaction = arrived.get_future().get();
    EXPECT_EQ(asked, "hl_ask w1 on");
    EXPECT_TRUE(framework::waitIdle());
    EXPECT_EQ(framework::liveHandles().propertyLists, 0u);

    EXPECT_EQ(framework::waitFor([](const Report&) { return true; }, milliseconds(1)), nullptr);
    EXPECT_EQ(send(1, transaction), 0);
    EXPECT_EQ(send(2, transaction, false), 0);
    EXPECT_EQ(send(3), 0);
    const auto reports = framework::reports();
    ASSERT_EQ(reports.size(), 3u);
    const std::pair<framework::TransactionId, const char*> expected[] = {
        {id, "result answer number=1"}, {id, "notify news number=2"}, {0, "result answer number=3"}};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(reports[i]->number, i);
        EXPECT_EQ(reports[i]->service, "homeloom");
        EXPECT_EQ(reports[i]->transaction, expected[i].first);
        EXPECT_EQ(toText(*reports[i]), expected[i].second);
    }
    const vmf_service_handler_h ended = handler;
    end();
    handler = ended;
    EXPECT_NE(send(4, transaction), 0);
    EXPECT_NE(send(4), 0);
    EXPECT_EQ(framework::reportCount(), 3u);
    handler = nullptr;
}

TEST_F(FrameworkTest, EveryKindOfReportIsCopiedWhole) {
    vmf_error_e error = VMF_ERROR_NONE;
    const vmf_endpoint_list_h list = vmf_endpoint_list_create(&error);
    for (const char* id : {"b", "a"}) {
        const vmf_endpoint_h endpoint = vmf_endpoint_create();
        vmf_endpoint_set_device_id(endpoint, id);
        vmf_endpoint_set_extra_data_bool(endpoint, "on", true);
        vmf_endpoint_set_extra_data(endpoint, "empty", "");
        vmf_endpoint_list_push_endpoint(list, endpoint);
    }
    EXPECT_EQ(vmf_service_handler_report_device_list(handler, list), 0);
    EXPECT_EQ(vmf_service_handler_report_device_found(handler, vmf_endpoint_list_find(list, "a")), 0);
    EXPECT_EQ(vmf_plugin_send_load_result(text("homeloom"), 2), 0);
    vmf_endpoint_list_destroy(list);

    const auto reports = framework::reports();
    ASSERT_EQ(reports.size(), 3u);
    EXPECT_STREQ(nameOf(reports[0]->kind), "device_list");
    ASSERT_EQ(reports[0]->endpoints.size(), 2u);
    EXPECT_EQ(reports[0]->endpoints[0].deviceId, "b");
    EXPECT_EQ(reports[0]->endpoints[0].deviceName, std::nullopt);
    EXPECT_TRUE(reports[0]->endpoints[1].extraData == (Fields{{"on", true}, {"empty", ""}}));
    EXPECT_EQ(reports[0]->endpoint("c"), nullptr);
    EXPECT_STREQ(nameOf(reports[1]->kind), "device_found");
    EXPECT_EQ(reports[1]->endpoints[0].deviceId, "a");
    EXPECT_STREQ(nameOf(reports[2]->kind), "load_result");
    EXPECT_EQ(reports[2]->status, 2);

    framework::keepReports(1);
    EXPECT_EQ(framework::reportCount(), 3u);
    ASSERT_EQ(framework::reports().size(), 1u);
    EXPECT_EQ(framework::reports()[0]->number, 2u);
    EXPECT_TRUE(framework::reports(3).empty());
}

TEST_F(FrameworkTest, SeveralCallbacksRunAtOnce) {
    std::promise<void> first;
    std::shared_future<void> firstDone = first.get_future().share();
    std::atomic<int> calls{0};
    onRequest = [&](vmf_transaction_h, vmf_property_list_h) {
        if (++calls == 2) {
            first.set_value();  // would never come if they waited for each other
        }
        firstDone.wait();
    };
    framework::request("one");
    framework::request("two");
    EXPECT_TRUE(framework::waitIdle());
    EXPECT_EQ(calls, 2);
}

TEST_F(FrameworkTest, EndingWaitsForWhatIsInFlight) {
    Gate gate;
    std::atomic<bool> left{false};
    int ownEnd = 0;
    onRequest = [&](vmf_transaction_h transaction, vmf_property_list_h) {
        ownEnd = vmf_service_handler_destroy(handler);  // can't wait for itself
        gate.pass();
        EXPECT_EQ(send(1, transaction), 0);  // still good
        left = true;
    };
    framework::request("long");
    gate.waitUntilEntered();
    EXPECT_NE(ownEnd, 0);
    std::thread release([&] { gate.open(); });
    EXPECT_EQ(vmf_service_handler_unsubscribe_service(handler, text("homeloom")), 0);
    EXPECT_TRUE(left);
    EXPECT_FALSE(framework::isSubscribed());
    EXPECT_EQ(framework::request("too late"), 0u);
    EXPECT_EQ(vmf_service_handler_destroy(handler), 0);
    handler = nullptr;
    release.join();
}

TEST_F(FrameworkTest, ListenersKnowEveryReportInOrder) {
    std::vector<std::size_t> seen;
    const int listener =
        framework::addListener([&](const framework::ReportPtr& report) { seen.push_back(report->number); });
    std::vector<std::thread> senders;
    for (int i = 0; i < 4; ++i) {
        senders.emplace_back([this] {
            for (int number = 0; number < 50; ++number) {
                send(number, nullptr, false);
            }
        });
    }
    EXPECT_NE(framework::waitFor([](const Report& report) { return report.properties.number("number") == 49; }),
              nullptr);
    for (std::thread& sender : senders) {
        sender.join();
    }
    framework::removeListener(listener);
    send(0);
    ASSERT_EQ(seen.size(), 200u);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
}

TEST_F(FrameworkTest, CallsFailAsTold) {
    failCalls("vmf_service_handler_notify", -5, {1, 2});
    for (const int result : {0, -5, -5, 0}) {
        EXPECT_EQ(send(1, nullptr, false), result);
    }
    EXPECT_EQ(framework::reportCount(), 2u);
    failCalls("vmf_endpoint_create", VMF_ERROR_FAILED);
    EXPECT_EQ(vmf_endpoint_create(), nullptr);
    EXPECT_EQ(vmf_endpoint_create(), nullptr);
    EXPECT_THROW(failCalls("vmf_endpoint_creat", -1), std::invalid_argument);
    EXPECT_THROW(failCalls("vmf_endpoint_create", 0), std::invalid_argument);

    EXPECT_EQ(vmf_service_handler_subscribe_service(handler, text("homeloom")), VMF_ERROR_INVALID_STATE);
    const vmf_property_list_h list = makeList("x", 1);
    EXPECT_NE(vmf_service_handler_send_request_result(handler, text("homeloom"), list, nullptr, 1), 0);
    vmf_property_list_destroy(list);
}

}  // namespace
