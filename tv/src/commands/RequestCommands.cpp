#include <algorithm>

#include <VMFramework/JsonValue.h>
#include <fmt/format.h>

#include "Command.h"
#include "CommandError.h"
#include "Desk.h"
#include "DeviceNames.h"
#include "Differences.h"
#include "JsonOutput.h"
#include "Lookups.h"
#include "Output.h"
#include "RequestTable.h"

namespace homeloom::tv {

namespace {

namespace framework = desktop::framework;

using VMFramework::json::JsonValue;

constexpr char kRaw[] = "--raw";

bool isStateOf(const Report& report, const std::string& deviceId) {
    return report.kind == Report::Kind::Notify && report.name == "hl_device_state_updated" &&
           report.properties.text("device_id") == deviceId;
}

bool isAnswerTo(const Report& report, framework::TransactionId request) {
    const bool canAnswer = report.kind == Report::Kind::Notify || report.kind == Report::Kind::Result;
    return canAnswer && report.transaction == request;
}

framework::TransactionId send(Desk& desk, const std::string& name, const Fields& arguments) {
    desk.pump();
    const framework::TransactionId request = framework::request(name, arguments);
    if (request == 0) {
        throw CommandError("the plug-in takes no requests");
    }
    return request;
}

/// The main action: the result, and the state to which it leads. They may come in either order.
void doMainAction(Desk& desk, const Words& words) {
    std::size_t at = 0;
    const std::string id = deviceLookup(desk.home()).take(words, at);
    if (words.size() > at + 1) {
        throw UsageError();
    }
    Fields arguments;
    arguments.add("action_url", at < words.size() ? words[at] : "");
    arguments.add("device_id", id);
    const framework::TransactionId request = send(desk, "hl_do_main_action", arguments);
    bool answered = false;
    bool succeeded = false;
    bool changed = false;
    const bool complete = desk.await([&](const Report& report) {
        if (isAnswerTo(report, request)) {
            answered = true;
            succeeded = report.properties.flag("result");
        }
        changed = changed || isStateOf(report, id);
        return answered && (changed || !succeeded);
    });
    if (!answered) {
        throw CommandError("no answer came " + desk.silence());
    }
    if (!succeeded) {
        desk.settle();
        throw CommandError("the plug-in could not do it");
    }
    if (!complete) {
        throw CommandError("it was done, but no new state came " + desk.silence());
    }
    desk.settle();
}

void awaitAnswer(Desk& desk, const RequestSpec* spec, framework::TransactionId request, const std::string& deviceId) {
    const bool byState = spec != nullptr && spec->answer == RequestSpec::Answer::State;
    bool succeeded = false;
    const bool answered = desk.await([&](const Report& report) {
        if (byState ? !isStateOf(report, deviceId) : !isAnswerTo(report, request)) {
            return false;
        }
        succeeded = byState || tellsSuccess(spec, report);
        return true;
    });
    if (!answered) {
        throw CommandError("no answer came " + desk.silence());
    }
    desk.settle();
    if (!succeeded) {
        throw CommandError("the plug-in could not do it");
    }
}

void request(Desk& desk, const Words& words) {
    Words rest = words;
    const auto raw = std::find(rest.begin(), rest.end(), kRaw);
    const bool isRaw = raw != rest.end();
    if (isRaw) {
        rest.erase(raw);
    }
    if (rest.empty()) {
        throw UsageError();
    }
    const std::string name = rest.front();
    rest.erase(rest.begin());
    const RequestSpec* const spec = findRequest(name);
    if (spec == nullptr && !isRaw) {
        Words names;
        for (const RequestSpec& known : requestTable()) {
            names.push_back(known.name);
        }
        throw CommandError(fmt::format("there is no request {}{}; {} sends it all the same", name,
                                       nearHint(nearTo(name, names)), kRaw));
    }
    const Fields arguments = isRaw ? guessedArguments(rest) : typedArguments(*spec, rest);
    const framework::TransactionId id = send(desk, name, arguments);
    if (spec != nullptr && spec->answer == RequestSpec::Answer::None) {
        desk.settleOrSay();
        return;
    }
    awaitAnswer(desk, spec, id, arguments.text("device_id"));
}

JsonValue documentOf(const HomeView& home) {
    return JsonValue::Create(jsonLine(home));
}

void sayChanges(Desk& desk, const JsonValue& before) {
    const auto changes = differences(before, documentOf(desk.home()));
    Table table(2);
    for (const auto& change : changes) {
        table.add({change.place.substr(change.place.find('/') + 1),
                   change.before.value_or("(nothing)"),
                   {"-> " + change.after.value_or("(nothing)"), Tone::Strong}});
    }
    desk.out().say(changes.empty() ? "Nothing has changed." : "What has changed:");
    desk.out().say(table);
}

void scan(Desk& desk, const Words& words) {
    if (!words.empty()) {
        throw UsageError();
    }
    desk.pump();
    const JsonValue before = documentOf(desk.home());
    framework::requestDeviceList();
    if (!desk.await([](const Report& report) { return report.kind == Report::Kind::DeviceList; })) {
        throw CommandError("no list came " + desk.silence());
    }
    desk.settle();
    sayChanges(desk, before);
}

void search(Desk& desk, const Words& words) {
    if (words.size() > 1 || (words.size() == 1 && words[0] != "stop")) {
        throw UsageError();
    }
    desk.pump();
    words.empty() ? framework::search() : framework::stopSearch();
    desk.settleOrSay();
}

}  // namespace

std::vector<Command> requestCommands() {
    using Kind = Hint::Kind;
    return {
        {"do",
         "DEVICE [ACTION_URL]",
         "runs a device's main action, or that of the card with the URL, and waits for the new state",
         {"do washer", "do reading lamp", "do aircon /power/zone2/vs/0"},
         doMainAction,
         {Kind::Device}},
        {"request",
         "[--raw] NAME [KEY=VALUE ...]",
         "sends a request and waits for its answer; --raw takes any name and any keys",
         {"request hl_execute_scene location_id=home scene_id=good-night",
          R"(request hl_create_favorite location_id=home favorite_info={"memberId": "robot"})",
          "request --raw hl_get_property device_id=washer"},
         request,
         {Kind::Request}},
        {"scan",
         "",
         "asks for the device list, as the home screen does when it opens, and tells what has changed",
         {"scan"},
         scan,
         {}},
        {"search",
         "[stop]",
         "starts or stops the framework's search",
         {"search", "search stop"},
         search,
         {Hint(std::vector<std::string>{"stop"})}},
    };
}

}  // namespace homeloom::tv
