#include "SimDocument.h"

#include <algorithm>
#include <chrono>
#include <ctime>

#include <clock/Clock.h>
#include <desktop/CallFaults.h>
#include <desktop/Settings.h>
#include <simulator/Agent.h>
#include <simulator/Cloud.h>
#include <boost/json.hpp>

#include "DeviceChanges.h"
#include "SimNames.h"

namespace homeloom::tv {

namespace {

namespace json = boost::json;
using simulator::CloudFault;
using simulator::Fault;

// A value is JSON text already. What can't be read as such stays a text.
json::value valueOf(const std::string& text) {
    json::error_code error;
    json::value value = json::parse(text, error);
    return error ? json::value(text) : value;
}

json::value deviceJson(const simulator::Device& device, bool isDriven) {
    json::array resources;
    for (const simulator::Resource& resource : device.resources) {
        json::object values;
        for (const simulator::Property& property : resource.properties) {
            values[property.name] = valueOf(property.value);
        }
        resources.push_back({{"uri", resource.uri}, {"values", std::move(values)}});
    }
    return {{"id", device.id},
            {"name", device.nick.empty() ? device.name : device.nick},
            {"type", device.types.empty() ? "" : device.types.front()},
            {"vid", device.vid},
            {"present", true},
            {"driven", isDriven},
            {"status", deviceStatusNames().at(static_cast<std::size_t>(device.status))},
            {"resources", std::move(resources)}};
}

// The words of the commands that set them.
const char* kindOf(const Fault& fault) {
    switch (fault.kind) {
        case Fault::Kind::Fail:
            return "fail";
        case Fault::Kind::Answer:
            return "answer";
        case Fault::Kind::Say:
            return "say";
        case Fault::Kind::Late:
            return "delay";
        case Fault::Kind::Never:
            return "drop";
        case Fault::Kind::Twice:
            return "twice";
        case Fault::Kind::Null:
            return "null";
        case Fault::Kind::Miscount:
            return "miscount";
    }
    return "";
}

const char* kindOf(const CloudFault& fault) {
    switch (fault.kind) {
        case CloudFault::Kind::Status:
            return "fail";
        case CloudFault::Kind::Body:
            return "answer";
        case CloudFault::Kind::Header:
            return "header";
        case CloudFault::Kind::Late:
            return "delay";
        case CloudFault::Kind::Never:
            return "drop";
        case CloudFault::Kind::Cut:
            return "cut";
        case CloudFault::Kind::Huge:
            return "huge";
        case CloudFault::Kind::Endless:
            return "endless";
        case CloudFault::Kind::RedirectLoop:
            return "loop";
        case CloudFault::Kind::Chunks:
            return "chunks";
    }
    return "";
}

template <typename AnyFault>
json::object faultJson(const char* subject, const std::string& name, const AnyFault& fault) {
    json::object object{{subject, name}, {"kind", kindOf(fault)}};
    if (fault.code != 0) {
        object["code"] = fault.code;
    }
    if (!fault.text.empty()) {
        object["text"] = fault.text;
    }
    if (fault.delay.count() > 0) {
        object["delay_ms"] = fault.delay.count();
    }
    if (fault.skip > 0) {
        object["skip"] = fault.skip;
    }
    if (fault.remaining >= 0) {
        object["remaining"] = fault.remaining;
    }
    return object;
}

json::array agentFaults() {
    json::array faults;
    for (const auto& [function, fault] : simulator::Agent::instance().faults()) {
        faults.push_back(faultJson("function", function, fault));
    }
    for (const auto& [function, code] : desktop::failingCalls()) {
        faults.push_back({{"function", function}, {"kind", "fail"}, {"code", code}});
    }
    return faults;
}

json::array cloudFaults() {
    json::array faults;
    for (const auto& [endpoint, fault] : simulator::Cloud::instance().faults()) {
        json::object object = faultJson("endpoint", endpoint, fault);
        if (!fault.filter.empty()) {
            object["part"] = fault.filter;
        }
        faults.push_back(std::move(object));
    }
    return faults;
}

std::string agentState() {
    const auto connection = simulator::Agent::instance().connectOutcome();
    const auto& names = connectionNames();
    return std::find_if(names.begin(), names.end(), [&](const auto& name) { return name.second == connection; })->first;
}

std::string now() {
    const auto seconds =
        static_cast<std::time_t>(std::chrono::duration_cast<std::chrono::seconds>(clock::date()).count());
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    char text[sizeof "2024-05-01T09:00:00Z"];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text;
}

json::array textsOf(const std::vector<std::string>& texts) {
    return json::array(texts.begin(), texts.end());
}

}  // namespace

std::string languageSetting() {
    const auto value = desktop::settings::get("db/menu_widget/language");
    const auto* const text = value ? std::get_if<std::string>(&*value) : nullptr;
    return text != nullptr ? *text : "";
}

std::string simDocument() {
    const auto& agent = simulator::Agent::instance();
    json::array devices;
    const std::vector<std::string> driven = agent.driven();
    for (const simulator::Device& device : agent.home().devices) {
        devices.push_back(deviceJson(device, std::binary_search(driven.begin(), driven.end(), device.id)));
    }
    json::array commands;
    for (const simulator::DeviceCommand& command : agent.openCommands()) {
        commands.push_back(valueOf(jsonLine(command)));
    }
    return json::serialize(json::object{{"devices", std::move(devices)},
                                        {"device_commands", std::move(commands)},
                                        {"faults", agentFaults()},
                                        {"cloud_faults", cloudFaults()},
                                        {"agent_functions", textsOf(simulator::Agent::functionNames())},
                                        {"desk_functions", textsOf(desktop::failableFunctions())},
                                        {"cloud_endpoints", textsOf(simulator::Cloud::endpointNames())},
                                        {"signed_in", agent.isSignedIn()},
                                        {"agent_state", agentState()},
                                        {"language", languageSetting()},
                                        {"time", {{"mode", clock::isStanding() ? "auto" : "real"}, {"now", now()}}}});
}

}  // namespace homeloom::tv
