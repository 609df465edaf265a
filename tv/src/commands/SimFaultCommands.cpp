#include <algorithm>

#include <desktop/CallFaults.h>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <simulator/Agent.h>

#include "Command.h"
#include "CommandError.h"
#include "Desk.h"
#include "DeviceNames.h"
#include "Output.h"
#include "Text.h"

namespace homeloom::tv {

namespace {

using simulator::Agent;
using simulator::Fault;

Agent& agent() {
    return Agent::instance();
}

// Functions may be named without what all of them have in front.
std::string functionNamed(const std::string& name) {
    const auto& names = Agent::functionNames();
    for (const char* const prefix : {"", "homeloom_client_", "homeloom_core_"}) {
        if (std::binary_search(names.begin(), names.end(), prefix + name)) {
            return prefix + name;
        }
    }
    throw CommandError(fmt::format("the agent has no function {}{}", name, nearHint(nearTo(name, names))));
}

// "get_scene_list_async#3" is the third call from now on, and that one alone.
struct Place {
    std::string function;
    int number = 0;  // 0: all calls
};

Place placeOf(const std::string& word) {
    const std::size_t hash = word.find('#');
    if (hash == std::string::npos) {
        return {word, 0};
    }
    const auto number = parseInt(word.substr(hash + 1));
    if (!number || *number < 1) {
        throw UsageError();
    }
    return {word.substr(0, hash), *number};
}

// For how many calls; -1 for all, when nothing says it.
int timesOf(const Words& words, std::size_t at) {
    if (words.size() > at + 1 || words.size() < at) {
        throw UsageError();
    }
    const auto times = words.size() > at ? parseInt(words[at]) : std::optional<int>(-1);
    if (!times || *times == 0 || *times < -1) {
        throw UsageError();
    }
    return *times;
}

// The fault for the first function; a number at `countAt` says for how many calls.
void setFault(const Words& words, std::size_t countAt, const Fault& fault) {
    const int times = timesOf(words, countAt);
    const Place place = placeOf(words[0]);
    agent().fault(functionNamed(place.function),
                  place.number > 0 ? fault.after(place.number - 1).times(1) : fault.times(times));
}

int codeOf(const Words& words) {
    const auto code = words.size() > 1 ? parseInt(words[1]) : std::nullopt;
    if (!code) {
        throw UsageError();
    }
    return *code;
}

bool isOfDesk(const std::string& function) {
    const auto& names = desktop::failableFunctions();
    return std::binary_search(names.begin(), names.end(), function);
}

// The desk's own functions can do nothing but fail.
void fail(Desk&, const Words& words) {
    const int code = codeOf(words);
    const Place place = placeOf(words[0]);
    if (!isOfDesk(place.function)) {
        setFault(words, 2, Fault::fail(code));
        return;
    }
    const int times = place.number > 0 ? 1 : timesOf(words, 2);
    desktop::failCalls(place.function, code, {place.number > 0 ? place.number - 1 : 0, times});
}

void answer(Desk&, const Words& words) {
    setFault(words, 2, Fault::answer(codeOf(words)));
}

void say(Desk&, const Words& words) {
    if (words.size() < 2) {
        throw UsageError();
    }
    setFault(words, 2, Fault::say(words[1]));
}

void delay(Desk&, const Words& words) {
    const auto time = words.size() > 1 ? parseDuration(words[1]) : std::nullopt;
    if (!time) {
        throw UsageError();
    }
    setFault(words, 2, Fault::late(*time));
}

void drop(Desk&, const Words& words) {
    setFault(words, 1, Fault::never());
}

void twice(Desk&, const Words& words) {
    setFault(words, 1, Fault::twice());
}

void answerNull(Desk&, const Words& words) {
    setFault(words, 1, Fault::null());
}

void miscount(Desk&, const Words& words) {
    setFault(words, 1, Fault::miscount());
}

std::string faultText(const Fault& fault) {
    switch (fault.kind) {
        case Fault::Kind::Fail:
            return fmt::format("fails with {}", fault.code);
        case Fault::Kind::Answer:
            return fmt::format("answers {}", fault.code);
        case Fault::Kind::Say:
            return fmt::format("says {}", fault.text);
        case Fault::Kind::Late:
            return fmt::format("answers {} late", durationText(fault.delay));
        case Fault::Kind::Never:
            return "never answers";
        case Fault::Kind::Twice:
            return "answers twice";
        case Fault::Kind::Null:
            return "answers null";
        case Fault::Kind::Miscount:
            return "counts one too many";
    }
    return "";
}

void list(Desk& desk, const Words& words) {
    if (!words.empty()) {
        throw UsageError();
    }
    Table table;
    for (const auto& [name, fault] : agent().faults()) {
        table.add({name,
                   faultText(fault),
                   {fault.remaining < 0 ? "" : "for " + counted(static_cast<std::size_t>(fault.remaining), "call"),
                    Tone::Dim}});
    }
    for (const auto& [name, code] : desktop::failingCalls()) {
        table.add({name, faultText(Fault::fail(code))});
    }
    desk.out().say(table);
}

void clear(Desk& desk, const Words& words) {
    if (words.size() > 1) {
        throw UsageError();
    }
    desk.pump();
    if (words.empty()) {
        agent().clearFaults();
        desktop::passCalls();
    } else if (isOfDesk(words[0])) {
        desktop::passCalls(words[0]);
    } else {
        agent().clearFault(functionNamed(words[0]));
    }
    desk.settle();
}

void calls(Desk& desk, const Words& words) {
    if (words.size() > 1) {
        throw UsageError();
    }
    if (words == Words{"reset"}) {
        agent().resetCalls();
        return;
    }
    const std::string only = words.empty() ? "" : functionNamed(words[0]);
    Table table;
    for (const auto& [name, call] : agent().calls()) {
        if (only.empty() || name == only) {
            table.add({fmt::format("{:>5}", call.count),
                       name,
                       {fmt::format("{}", fmt::join(call.arguments, ", ")), Tone::Dim}});
        }
    }
    desk.out().say(table);
}

void conditions(Desk& desk, const Words& words) {
    if (!words.empty()) {
        throw UsageError();
    }
    Table table;
    for (const auto& condition : agent().conditions()) {
        table.add({condition.deviceId,
                   condition.uri,
                   condition.property,
                   condition.type,
                   condition.value,
                   {condition.appId + " " + condition.bundle, Tone::Dim}});
    }
    desk.out().say(table);
}

}  // namespace

std::vector<Command> simFaultCommands() {
    const Hint function = Hint::Kind::AgentFunction;
    return {
        {"sim fail",
         "FUNCTION[#NUMBER] CODE [CALLS]",
         "has a function of the agent, or of the desk (vmf_..., vconf_..., rpc_port_...), fail at once, and do "
         "nothing; with #3, as all of these take it, at its third "
         "call from now on",
         {"sim fail homeloom_core_execute_scene_async -5", "sim fail homeloom_client_connect -1 3"},
         fail,
         {function}},
        {"sim answer",
         "FUNCTION CODE [CALLS]",
         "has a function do nothing and answer with that code",
         {"sim answer homeloom_core_get_scene_list_async -5"},
         answer,
         {function}},
        {"sim say",
         "FUNCTION TEXT [CALLS]",
         "has a function do nothing and answer with that text",
         {R"(sim say get_device_status {"components": []})", R"(sim say create_ir_device "no JSON" 1)"},
         say,
         {function}},
        {"sim delay",
         "FUNCTION TIME [CALLS]",
         "has a function answer late",
         {"sim delay homeloom_core_get_scene_list_async 31s"},
         delay,
         {function}},
        {"sim drop",
         "FUNCTION [CALLS]",
         "has a function never answer",
         {"sim drop get_scene_list_async"},
         drop,
         {function}},
        {"sim twice",
         "FUNCTION [CALLS]",
         "has a function answer twice",
         {"sim twice get_scene_list_async"},
         twice,
         {function}},
        {"sim null",
         "FUNCTION [CALLS]",
         "has a function answer null in place of its text or its list",
         {"sim null get_scene_list_async"},
         answerNull,
         {function}},
        {"sim miscount",
         "FUNCTION [CALLS]",
         "has a function answer a list whose count is one too high",
         {"sim miscount get_device_list_async 1"},
         miscount,
         {function}},
        {"sim faults", "", "lists what was set so", {"sim faults"}, list, {}},
        {"sim clear", "[FUNCTION]", "takes back one of them, or all", {"sim clear"}, clear, {function}},
        {"sim calls",
         "[FUNCTION|reset]",
         "counts the plug-in's calls to the agent, with the last arguments",
         {"sim calls", "sim calls get_scene_list_async", "sim calls reset"},
         calls,
         {function}},
        {"sim conditions",
         "",
         "lists the app launch conditions that the plug-in set",
         {"sim conditions"},
         conditions,
         {}},
    };
}

}  // namespace homeloom::tv
