#ifndef HOMELOOM_TESTS_FACADE_SMALLHOME_H
#define HOMELOOM_TESTS_FACADE_SMALLHOME_H

#include "simulator/Home.h"

namespace test {

/// A home with at least one of everything: two locations, one of them another's and without rooms.
inline simulator::Home SmallHome() {
    simulator::Home home;
    home.account = {"mia@example.com", "user-mia", "token-mia", "tv-1"};

    simulator::Location flat;
    flat.id = "flat";
    flat.name = "Flat";
    flat.permission = "rw";
    flat.ownerId = "user-mia";
    flat.ownerName = "Mia";
    flat.rooms = {{"kitchen", "Kitchen"}, {"bath", "Bath"}};
    flat.favoritesMigrated = true;
    flat.favoritesMigratedDate = "2024-04-01";
    flat.favoritesMigratedModel = "TV-A";
    simulator::Location lodge;
    lodge.id = "lodge";
    lodge.name = "Lodge";
    lodge.permission = "r";
    lodge.ownerId = "user-noah";
    lodge.ownerName = "Noah";
    home.locations = {flat, lodge};

    simulator::Device washer;
    washer.id = "washer";
    washer.name = "Washer";
    washer.nick = "Washer";
    washer.vid = "vid-washer";
    washer.types = {"oic.d.washer"};
    washer.location = "flat";
    washer.room = "kitchen";
    washer.resources = {{"/capability/switch/main/0", {{"switch", "String", "\"off\""}}, false}};
    washer.core.presentationId = "presentation-washer";
    washer.core.manufacturerName = "maker";
    home.devices = {washer};
    home.models["vid-washer"].vid = "vid-washer";
    home.models["vid-washer"].uiMetadata = R"({"ms":[]})";
    home.models["vid-washer"].commands = {
        {"main", "switch", "on", {{"/capability/switch/main/0", "switch", "\"on\""}}}};
    home.presentations["presentation-washer"] = R"({"dashboard":{}})";
    home.hub = {"tv-1", {"washer"}};

    home.scenes = {{"scene-evening", "flat", R"({"id":"scene-evening","name":"Evening"})", {}},
                   {"scene-arrive", "lodge", R"({"id":"scene-arrive","name":"Arrive"})", {}}};
    home.routines = {{"routine-wake", "flat", true, R"({"id":"routine-wake","name":"Wake"})"},
                     {"routine-secret", "flat", true, R"({"id":"routine-secret","meta":{"hidden":true}})"},
                     {"routine-frost", "lodge", true, R"({"id":"routine-frost","meta":{"hidden":false}})"}};
    home.favorites = {{"favorite-1", "flat", "washer", "DEVICE", "2024-01-01", "2024-01-02", 1},
                      {"favorite-2", "flat", "scene-evening", "SCENE", "2024-01-03", "2024-01-04", 2}};
    home.installedApps = {{"installed-1", "Energy", "AUTHORIZED", "app-1", "flat", "{}", R"({"cards":[]})"}};
    home.catalog = R"({"apps":[]})";
    home.sceneIcons = R"({"icons":[]})";
    home.wifiLocker = R"({"enabled":1})";
    home.keyValues["key"] = "value";
    home.notificationProfile = {"provider", "registration", "app", "en_US"};
    return home;
}

}  // namespace test

#endif
