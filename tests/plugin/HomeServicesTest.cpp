// What the platform keeps for the user: push profile, blocked notifications, locker setting, and usage events.

#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "Homeloom/ExternalService/ExternalServiceHandler.h"
#include "Homeloom/Tessel/TesselHandler.h"
#include "simulator/Fault.h"
#include "support/Desk.h"
#include "support/Screen.h"

using simulator::Fault;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class HomeServices : public testing::Test {
protected:
    HomeServices() {
        desk.startAndShow();
        desk.settle();
        desk.mark();
    }

    std::string Ask(const std::string& name, const Desk::Fields& arguments = {}) {
        return toText(*desk.ask(name, arguments));
    }

    Desk desk{homeloom::test::apartmentWith({"washer", "hall-motion"})};
};

}  // namespace

TEST_F(HomeServices, OnlyAListOfTextsChangesTheBlockedDevices) {
    const auto block = [&](const std::string& list) {
        return Ask("set_third_party_notification_status", {{"block_device_ids", list}});
    };
    const std::string answer = "notify set_third_party_notification_status result=";
    constexpr char kSet[] = "homeloom_client_set_third_party_notification_status";
    for (const char* list : {"", "no JSON", "null", "7", "{}", R"("washer")", R"({"0":"washer"})", "[null]", "[7]",
                             R"(["washer",{}])", R"([["washer"]])", R"(["washer"]x)"}) {
        EXPECT_EQ(block(list), answer + "false") << list;
    }
    EXPECT_EQ(desk.agent.callCount(kSet), 0);
    EXPECT_THAT(desk.agent.home().blockedDevices, ElementsAre("hall-motion"));

    EXPECT_EQ(block(R"(["washer","other"])"), answer + "true");
    EXPECT_THAT(desk.agent.home().blockedDevices, ElementsAre("washer", "other"));
    EXPECT_EQ(Ask("get_third_party_notification_status"),
              R"(notify get_third_party_notification_status result=true block_device_ids='["washer","other"]')");
    EXPECT_EQ(block("[]"), answer + "true");
    EXPECT_THAT(desk.agent.home().blockedDevices, IsEmpty());
    EXPECT_EQ(Ask("get_third_party_notification_status"), "notify get_third_party_notification_status result=true");

    for (const Fault& fault : {Fault::fail(-5), Fault::answer(-5)}) {
        desk.agent.fault(kSet, fault);
        desk.agent.fault("homeloom_client_get_third_party_notification_status", fault);
        EXPECT_EQ(block("[]"), answer + "false");
        EXPECT_THAT(Ask("get_third_party_notification_status"), HasSubstr("result=false"));
    }
}

// No request registers it; an application of the TV may.
TEST_F(HomeServices, AChangeOfTheBlockedDevicesIsToldWhileItIsWatched) {
    const auto handler = std::make_shared<VMFramework::HomeLoom::ExternalServiceHandler>(
        VMFramework::HomeLoom::TesselHandler::GetInstance());
    const auto change = [&] {
        desk.mark();
        desk.agent.sendThirdPartyNotificationStatusChange();
        desk.settle();
        return desk.lines();
    };
    EXPECT_THAT(change(), IsEmpty());
    handler->SetThirdPartyNotification(nullptr, "p", "r", "a", "l");
    desk.settle();
    EXPECT_THAT(change(), ElementsAre("notify third_party_notification_status_updated"));
    handler->UnsetThirdPartyNotificationUpdateCb();
    EXPECT_THAT(change(), IsEmpty());
}
