// A change of the agent's groups: one reload for a burst, and none for a handler that has gone.

#include <memory>

#include <gmock/gmock.h>

#include "Homeloom/Location/LocationHandler.h"
#include "Homeloom/Tessel/TesselHandler.h"
#include "support/Desk.h"

using namespace VMFramework::HomeLoom;
using namespace std::chrono_literals;
using testing::HasSubstr;

namespace {

class GroupChange : public testing::Test {
protected:
    GroupChange() { desk.startAndShow(); }

    Desk desk{homeloom::test::apartmentWith({"washer"})};
    simulator::Agent& agent = desk.agent;
};

}  // namespace

TEST_F(GroupChange, ABurstOfGroupChangesEndsInOneReload) {
    agent.sendGroupChange(0, HOMELOOM_CLIENT_GROUP_TYPE_ROOM);
    ASSERT_TRUE(desk.log.waitFor("skip group noti_type_default"));
    desk.mark();
    // Where the main loop stands still, the timer can't go off by itself.
    desk.loop.call([&] {
        for (int change = 0; change < 3; ++change) {
            agent.sendGroupChange(1, HOMELOOM_CLIENT_GROUP_TYPE_ROOM);
        }
        agent.renameRoom("kitchen", "Galley");
        // Each change takes away the timer of the one before.
        desk.waitUntil("the last change",
                       [&] { return desk.log.count("[_HomeLoomClientLocationListUpdated] after job") == 4; });
        EXPECT_EQ(1, desk.armedTimers());
    });
    desk.elapse(500ms);
    const auto home = desk.waitForReport("the home", [](const auto& list) { return list.endpoint("home") != nullptr; });
    EXPECT_THAT(home->endpoint("home")->extraData.text("room_info"), HasSubstr(R"("room_name":"Galley")"));
    EXPECT_EQ(1, desk.log.count("_LocationTimerCallback() start"));
    EXPECT_EQ(1, desk.log.count("profileUpdate will be called"));

    // The spent timer is cleaned up by the next change, without a word of GLib.
    desk.log.clear();
    agent.sendGroupChange(1, HOMELOOM_CLIENT_GROUP_TYPE_ROOM);
    EXPECT_TRUE(desk.log.waitFor("already has timer, remove previous one"));
}

TEST_F(GroupChange, ATimerOutlivesItsHandlerWithoutHarm) {
    auto handler = std::make_shared<LocationHandler>(TesselHandler::GetInstance());
    bool isCalled = false;
    handler->SetGetDevicesInfoCallback([&] { return isCalled = true; });
    handler->SetGroupListUpdateCallback();
    desk.loop.call([&] {
        agent.sendGroupChange(1, HOMELOOM_CLIENT_GROUP_TYPE_LOCATION);
        desk.waitUntil("the timer", [&] { return desk.armedTimers() == 1; });
        handler.reset();
        EXPECT_EQ(0, desk.armedTimers());
    });
    // The agent still knows the handler that has gone.
    agent.sendGroupChange(1, HOMELOOM_CLIENT_GROUP_TYPE_LOCATION);
    desk.settle();
    EXPECT_EQ(0, desk.armedTimers());
    EXPECT_FALSE(isCalled);
}
