#include "DeviceChanges.h"

#include <VMFramework/JsonValue.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include "CommandError.h"

namespace homeloom::tv {

namespace {

using VMFramework::json::JsonValue;

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

}  // namespace

std::vector<simulator::Change> readChanges(const simulator::Device& device, const Words& words, std::size_t at) {
    if (words.size() == at + 3 && words[at].compare(0, 1, "/") == 0) {
        return {{words[at], words[at + 1], words[at + 2]}};
    }
    std::vector<simulator::Change> changes;
    for (; at < words.size(); ++at) {
        const auto assignment = splitAssignment(words[at]);
        if (!assignment) {
            throw UsageError();
        }
        changes.push_back(findProperty(device, assignment->first, assignment->second));
    }
    if (changes.empty()) {
        throw UsageError();
    }
    return changes;
}

std::string jsonLine(const simulator::DeviceCommand& command) {
    std::string values;
    for (const simulator::Change& change : command.changes) {
        values += (values.empty() ? "" : ",") + JsonValue(change.property).toString() + ":" + change.value;
    }
    return fmt::format("{{\"number\":{},\"device_id\":{},\"uri\":{},\"values\":{{{}}}}}", command.number,
                       JsonValue(command.deviceId).toString(), JsonValue(command.uri).toString(), values);
}

}  // namespace homeloom::tv
