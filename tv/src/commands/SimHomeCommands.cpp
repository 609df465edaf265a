#include <fstream>
#include <stdexcept>

#include <fmt/format.h>
#include <simulator/Agent.h>
#include <simulator/HomeLoader.h>

#include "Command.h"
#include "CommandError.h"
#include "Desk.h"
#include "DeviceNames.h"
#include "Lookups.h"
#include "Output.h"
#include "Words.h"

namespace homeloom::tv {

namespace {

const Hint kWhat(Words{"device", "room", "location"});

simulator::Agent& agent() {
    return simulator::Agent::instance();
}

// Longer than the plug-in gathers changes of rooms before it reads the home again.
constexpr std::chrono::milliseconds kReloadTime{1500};

void awaitHome(Desk& desk) {
    if (!desk.await([](const Report& report) { return report.kind == Report::Kind::DeviceList; }, kReloadTime)) {
        desk.out().say("The plug-in sent no new list.");
    }
    desk.settle();
}

// What stands behind the part that was read: a name of any number of words.
std::string nameFrom(const Words& words, std::size_t at) {
    if (at >= words.size()) {
        throw UsageError();
    }
    return joinWords(words, at);
}

// A new device begins as its model says, in the first location or in the room that is named.
void addDevice(const Words& words) {
    const simulator::Home home = agent().home();
    if (words.size() < 3) {
        throw UsageError();
    }
    const simulator::Model* const model = home.model(words[2]);
    if (model == nullptr) {
        Words vids;
        for (const auto& [vid, known] : home.models) {
            vids.push_back(vid);
        }
        throw CommandError(fmt::format("there is no model \"{}\"{}", words[2], nearHint(nearTo(words[2], vids))));
    }
    if (model->types.empty()) {
        throw CommandError(fmt::format("the model {} tells no types, and without them no device is shown", words[2]));
    }
    simulator::Device device = simulator::newDevice(*model);
    device.id = words[1];
    device.nick = words[1];
    device.location = home.locations.empty() ? "" : home.locations.front().id;
    if (words.size() > 3) {
        device.room = roomLookup(home).takeAll(words, 3);
        for (const auto& location : home.locations) {
            for (const auto& room : location.rooms) {
                device.location = room.id == device.room ? location.id : device.location;
            }
        }
    }
    if (!agent().addDevice(device)) {
        throw CommandError(fmt::format("there is a device {} already", device.id));
    }
}

void add(Desk& desk, const Words& words) {
    desk.pump();
    if (words.empty()) {
        throw UsageError();
    }
    if (words[0] == "device") {
        addDevice(words);
    } else if (words[0] == "room") {
        std::size_t at = 1;
        const std::string location = locationLookup(agent().home()).take(words, at);
        agent().addRoom(location, nameFrom(words, at));
    } else if (words[0] == "location") {
        agent().addLocation(nameFrom(words, 1));
    } else {
        throw UsageError();
    }
    awaitHome(desk);
}

void remove(Desk& desk, const Words& words) {
    desk.pump();
    const std::string what = words.empty() ? "" : words[0];
    if (what == "device") {
        agent().removeDevice(deviceLookup(agent().home()).takeAll(words, 1));
    } else if (what == "room") {
        agent().removeRoom(roomLookup(agent().home()).takeAll(words, 1));
    } else if (what == "location") {
        agent().removeLocation(locationLookup(agent().home()).takeAll(words, 1));
    } else {
        throw UsageError();
    }
    awaitHome(desk);
}

void rename(Desk& desk, const Words& words) {
    desk.pump();
    const std::string what = words.empty() ? "" : words[0];
    std::size_t at = 1;
    if (what == "device") {
        const std::string id = deviceLookup(agent().home()).take(words, at);
        agent().renameDevice(id, nameFrom(words, at));
    } else if (what == "room") {
        const std::string id = roomLookup(agent().home()).take(words, at);
        agent().renameRoom(id, nameFrom(words, at));
    } else if (what == "location") {
        const std::string id = locationLookup(agent().home()).take(words, at);
        agent().renameLocation(id, nameFrom(words, at));
    } else {
        throw UsageError();
    }
    awaitHome(desk);
}

void move(Desk& desk, const Words& words) {
    desk.pump();
    const simulator::Home home = agent().home();
    std::size_t at = 0;
    const std::string device = deviceLookup(home).take(words, at);
    const std::string room = roomLookup(home).takeAll(words, at);
    for (const auto& location : home.locations) {
        for (const auto& candidate : location.rooms) {
            if (candidate.id == room) {
                agent().moveDevice(device, location.id, room);
            }
        }
    }
    awaitHome(desk);
}

void save(Desk&, const Words& words) {
    if (words.size() != 1) {
        throw UsageError();
    }
    std::string document;
    try {
        document = simulator::writeHome(agent().home());
    } catch (const std::runtime_error& e) {
        throw CommandError(e.what());
    }
    if (std::ofstream file(words[0]); !(file << document << std::flush)) {
        throw CommandError(fmt::format("{} can't be written", words[0]));
    }
}

}  // namespace

std::vector<Command> simHomeCommands() {
    using Kind = Hint::Kind;
    return {
        {"sim add",
         "device ID VID [ROOM] | room LOCATION NAME | location NAME",
         "adds something to the home",
         {"sim add device washer-2 HL-WASHER-WF24 kitchen", "sim add room home Study"},
         add,
         {kWhat, Hint(Kind::Location, "room"), Hint(Kind::Model, "device"), Hint(Kind::Room, "device")}},
        {"sim remove",
         "device|room|location NAME",
         "removes something from the home",
         {"sim remove device dryer", "sim remove room laundry"},
         remove,
         {kWhat, Kind::Device}},
        {"sim rename",
         "device|room|location NAME NEW_NAME",
         "gives something in the home another name",
         {"sim rename device washer My Washer", "sim rename room laundry Washhouse"},
         rename,
         {kWhat, Kind::Device}},
        {"sim move",
         "DEVICE ROOM",
         "moves a device to a room",
         {"sim move washer kitchen"},
         move,
         {Kind::Device, Kind::Room}},
        {"sim save",
         "FILE",
         "writes the home as it is now, models and all, as a document that --home takes",
         {"sim save my-home.json"},
         save,
         {}},
    };
}

}  // namespace homeloom::tv
