#include <algorithm>

#include <fmt/format.h>
#include <simulator/Agent.h>

#include "Command.h"
#include "CommandError.h"
#include "Desk.h"
#include "DeviceChanges.h"
#include "Lookups.h"
#include "Output.h"
#include "SimNames.h"
#include "Text.h"
#include "Words.h"

namespace homeloom::tv {

namespace {

simulator::Agent& agent() {
    return simulator::Agent::instance();
}

[[noreturn]] void refuse(const simulator::Device& device, const std::vector<simulator::Change>& changes) {
    for (const auto& change : changes) {
        const auto* const resource = device.find(change.uri);
        const auto* const property = resource == nullptr ? nullptr : resource->find(change.property);
        if (property != nullptr && !simulator::isOfType(change.value, property->type)) {
            throw CommandError(fmt::format("{} takes no \"{}\" for {}; it is of type {}: {}", device.id, change.value,
                                           property->name, property->type, simulator::rangeOf(property->type)));
        }
    }
    throw CommandError(fmt::format("{} has gone", device.id));
}

void set(Desk& desk, const Words& words) {
    std::size_t at = 0;
    const std::string id = deviceLookup(agent().home()).take(words, at);
    const simulator::Device device = agent().device(id).value();
    const std::vector<simulator::Change> changes = readChanges(device, words, at);
    desk.pump();
    if (!agent().set(id, changes)) {
        refuse(device, changes);
    }
    desk.settleOrSay();
}

void status(Desk& desk, const Words& words) {
    std::size_t at = 0;
    const std::string id = deviceLookup(agent().home()).take(words, at);
    const auto& names = deviceStatusNames();
    const auto found = words.size() == at + 1 ? std::find(names.begin(), names.end(), words[at]) : names.end();
    if (found == names.end()) {
        throw UsageError();
    }
    desk.pump();
    agent().setStatus(id, static_cast<int>(found - names.begin()));
    desk.settleOrSay();
}

void show(Desk& desk, const Words& words) {
    const auto device = agent().device(deviceLookup(agent().home()).takeAll(words, 0)).value();
    Table table;
    table.add({{"id", Tone::Dim}, "", device.id});
    table.add({{"nick", Tone::Dim}, "", {device.nick, Tone::Strong}});
    table.add({{"vid", Tone::Dim}, "", device.vid});
    table.add({{"status", Tone::Dim}, "", deviceStatusNames().at(static_cast<std::size_t>(device.status))});
    for (const auto& resource : device.resources) {
        for (const auto& property : resource.properties) {
            table.add({{resource.uri, Tone::Dim}, property.name, property.value});
        }
    }
    desk.out().say(table);
}

}  // namespace

std::vector<Command> simDeviceCommands() {
    using Kind = Hint::Kind;
    return {
        {"sim set",
         "DEVICE URI PROPERTY VALUE | DEVICE PROPERTY=VALUE ...",
         "changes a device, as a person at it would; a property may be named by its last part",
         {"sim set washer state=Run", "sim set washer /operational/state/vs/0 x.com.norvane.da.state Run"},
         set,
         {Kind::Device}},
        {"sim status",
         "DEVICE connected|disconnected|inactive|hidden",
         "changes a device's state in the cloud",
         {"sim status dryer disconnected"},
         status,
         {Kind::Device, deviceStatusNames()}},
        {"sim device",
         "DEVICE",
         "shows the resources of a device in the home",
         {"sim device washer"},
         show,
         {Kind::Device}},
    };
}

}  // namespace homeloom::tv
