#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <simulator/Agent.h>

#include "Command.h"
#include "CommandError.h"
#include "Desk.h"
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

// "switch" and "x.com.norvane.da.state" are both found by their last part, in any case.
bool isProperty(const std::string& property, const std::string& wanted) {
    const std::string name = lowered(property);
    const std::string text = lowered(wanted);
    return name == text ||
           (name.size() > text.size() && name.compare(name.size() - text.size(), text.size(), text) == 0 &&
            name[name.size() - text.size() - 1] == '.');
}

simulator::Change findProperty(const simulator::Device& device, const std::string& wanted, const std::string& value) {
    std::vector<simulator::Change> found;
    for (const auto& resource : device.resources) {
        for (const auto& property : resource.properties) {
            if (isProperty(property.name, wanted)) {
                found.push_back({resource.uri, property.name, value});
            }
        }
    }
    if (found.size() == 1) {
        return found.front();
    }
    Words all;
    for (const auto& resource : device.resources) {
        for (const auto& property : resource.properties) {
            if (found.empty() || isProperty(property.name, wanted)) {
                all.push_back(resource.uri + " " + property.name);
            }
        }
    }
    throw CommandError(fmt::format("{} has {} property \"{}\"; it has:\n  {}", device.id,
                                   found.empty() ? "no" : "more than one", wanted, fmt::join(all, "\n  ")));
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
    std::vector<simulator::Change> changes;
    if (words.size() == at + 3 && words[at].compare(0, 1, "/") == 0) {
        changes.push_back({words[at], words[at + 1], words[at + 2]});
    } else {
        for (; at < words.size(); ++at) {
            const auto assignment = splitAssignment(words[at]);
            if (!assignment) {
                throw UsageError();
            }
            changes.push_back(findProperty(device, assignment->first, assignment->second));
        }
    }
    if (changes.empty()) {
        throw UsageError();
    }
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
