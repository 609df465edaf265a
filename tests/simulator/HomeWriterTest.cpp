#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <tuple>

#include "AgentTest.h"
#include "simulator/HomeLoader.h"

namespace simulator {

// Every member by name: one that joins a record doesn't compile until it is compared here.
#define SAME(Record, ...)                                      \
    bool operator==(const Record& left, const Record& right) { \
        const auto members = [](const Record& record) {        \
            const auto& [__VA_ARGS__] = record;                \
            return std::tie(__VA_ARGS__);                      \
        };                                                     \
        return members(left) == members(right);                \
    }
SAME(Property, name, type, value)
SAME(Resource, uri, properties, osv)
SAME(Change, uri, property, value)
SAME(Reaction, uri, property, value, changes, after, status)
SAME(Command, component, capability, command, changes)
SAME(CoreRecord, type, presentation, manufacturer, details, icons, possibleIcons, badgeIcons)
SAME(Confirmation, uri, property, value, refuses, after, changes)
SAME(Model, vid, name, types, core, uiMetadata, resources, reactions, commands, confirmations)
SAME(Device, id, name, nick, prefix, vid, types, status, location, room, resources, core, energy, stream, images)
SAME(Room, id, name)
SAME(Location, id, name, permission, ownerId, ownerName, rooms, migrated, migratedDate, migratedModel)
SAME(SceneAction, device, change)
SAME(Scene, id, location, document, actions)
SAME(Routine, id, location, enabled, document)
SAME(Favorite, id, location, memberId, memberType, createDate, lastUpdateDate, order)
SAME(InstalledApp, id, displayName, status, appId, location, ui, dashboard)
SAME(Account, loginId, userId, accessToken, deviceId)
SAME(Hub, deviceId, serves)
SAME(NotificationProfile, provider, registrationId, appId, locale)
SAME(Home, now, account, locations, devices, models, presentations, scenes, routines, favorites, apps, catalog,
     sceneIcons, wifiLocker, hub, keyValues, profile, thirdParty, blocked, environments)
#undef SAME

}  // namespace simulator

using simulator::Home;

namespace {

/// What of it a saved home lacks; empty when it loads as the same home.
std::string lostBySaving(const Home& home) {
    const Home loaded = simulator::parseHome(simulator::writeHome(home), "saved");
    for (const simulator::Device& device : home.devices) {
        const simulator::Device* const same = loaded.device(device.id);
        if (same == nullptr || !(*same == device)) {
            return "device " + device.id;
        }
    }
    return loaded == home ? "" : "something beside the devices";
}

}  // namespace

TEST(HomeWriter, WritesEveryHomeSoThatItLoadsAsTheSame) {
    for (const auto& entry : std::filesystem::directory_iterator(homeloom::test::homesFolder())) {
        if (entry.path().extension() == ".json") {
            EXPECT_EQ(lostBySaving(simulator::loadHome(entry.path())), "") << entry.path();
        }
    }
    simulator::HomePlan plan;
    plan.devices = 40;
    plan.hubDevices = 10;
    plan.locations = 3;
    plan.scenes = plan.routines = 5;
    EXPECT_EQ(lostBySaving(simulator::generateHome(plan)), "");
}

class HomeAsItIs : public AgentTest {};

TEST_F(HomeAsItIs, IsWrittenAfterAllThatHappenedInIt) {
    agent.set("aircon", "/temperatures/vs/0", "x.com.norvane.da.desired", "21.5");
    agent.setStatus("dryer", simulator::Inactive);
    agent.renameDevice("washer", "\"\\ \x1b é");
    agent.moveDevice("washer", "parents", "");
    agent.addRoom(agent.addLocation("Hut"), "Attic");
    agent.removeRoom("kitchen");
    simulator::Device odd = *agent.device("oven");
    odd.id = "odd";
    odd.core = {};
    odd.energyThisMonth = 0;
    odd.resources.push_back({"/unknown", {{"on", "String", "null"}}, false});
    odd.resources.push_back({"/odd", {{"whole", "Double", "5"}, {"shape", "Object", "{}"}}, true});
    agent.addDevice(odd);
    simulator::Device bare = simulator::newDevice(agent.home().models.at("HL-OVEN-OV7"));
    bare.id = "bare";
    bare.location = "home";
    agent.addDevice(bare);
    EXPECT_EQ(lostBySaving(agent.home()), "");

    // A scene loses the action of a device that has gone: nothing could come of it, and the document would be refused.
    Home home = agent.home();
    const std::string gone = home.scenes.front().actions.front().device;
    agent.removeDevice(gone);
    const Home loaded = simulator::parseHome(simulator::writeHome(agent.home()), "saved");
    EXPECT_EQ(loaded.device(gone), nullptr);
    EXPECT_EQ(loaded.scenes.size(), home.scenes.size());

    home.routines.front().document = "{no JSON";
    EXPECT_THROW(simulator::writeHome(home), std::runtime_error);
}
