#include <map>
#include <stdexcept>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <simulator/HubApp.h>

#include "Command.h"
#include "CommandError.h"
#include "Desk.h"
#include "DeviceNames.h"
#include "Output.h"
#include "Text.h"
#include "Words.h"

namespace homeloom::tv {

namespace {

using simulator::HubApp;

// How the program reports through the plug-in is worth showing after some lines; others only arrange something.
enum class Shows { Reports, Nothing };
struct Line {
    std::size_t fewest;
    std::size_t most;
    Shows shows;
    std::function<void(Desk& desk, const Words& words)> run;
};

HubApp& hub() {
    return HubApp::instance();
}

template <typename Value>
Value choose(const std::map<std::string, Value>& values, const std::string& word) {
    const auto found = values.find(word);
    if (found == values.end()) {
        throw UsageError();
    }
    return found->second;
}

HubApp::Course courseNamed(const std::string& word) {
    return choose<HubApp::Course>(
        {{"succeeds", HubApp::Course::Succeed}, {"fails", HubApp::Course::Fail}, {"waits", HubApp::Course::Manual}},
        word);
}

void answers(Desk&, const Words& words) {
    hub().setAnswers(choose<HubApp::Answers>({{"normal", HubApp::Answers::Normal},
                                              {"held", HubApp::Answers::Held},
                                              {"half", HubApp::Answers::Half},
                                              {"after-event", HubApp::Answers::AfterEvent},
                                              {"malformed", HubApp::Answers::Malformed}},
                                             words[0]));
}

void event(Desk&, const Words& words) {
    const auto number = parseInt(words[0]);
    if (!number) {
        throw UsageError();
    }
    hub().sendEvent(*number, joinWords(Words(words.begin() + 1, words.end())));
}

void pace(Desk&, const Words& words) {
    const auto duration = parseDuration(words[0]);
    if (!duration) {
        throw UsageError();
    }
    hub().setPace(*duration);
}

void info(Desk& desk, const Words& words) {
    if (words.empty()) {
        desk.out().say(hub().hubInfo());
    } else {
        hub().setHubInfo(words[0]);
    }
}

void requests(Desk& desk, const Words&) {
    Table table;
    for (const HubApp::Request& request : hub().requests()) {
        table.add({request.name, fmt::format("{}", fmt::join(request.fields, " "))});
    }
    if (table.empty()) {
        desk.out().say("The plug-in asked it for nothing.");
    }
    desk.out().say(table);
}

const std::map<std::string, Line>& lines() {
    static const std::map<std::string, Line> table{
        {"install", {0, 0, Shows::Reports, [](Desk&, const Words&) { hub().install(); }}},
        {"uninstall", {0, 0, Shows::Reports, [](Desk&, const Words&) { hub().uninstall(); }}},
        {"start", {0, 0, Shows::Nothing, [](Desk&, const Words&) { hub().start(); }}},
        {"stop", {0, 0, Shows::Reports, [](Desk&, const Words&) { hub().stop(); }}},
        {"kill", {0, 0, Shows::Reports, [](Desk&, const Words&) { hub().kill(); }}},
        {"pause", {0, 0, Shows::Nothing, [](Desk&, const Words&) { hub().pause(); }}},
        {"resume", {0, 0, Shows::Reports, [](Desk&, const Words&) { hub().resume(); }}},
        {"reject", {0, 0, Shows::Nothing, [](Desk&, const Words&) { hub().rejectConnections(true); }}},
        {"accept", {0, 0, Shows::Nothing, [](Desk&, const Words&) { hub().rejectConnections(false); }}},
        {"event", {1, 100, Shows::Reports, event}},
        {"onboarding",
         {1, 1, Shows::Nothing, [](Desk&, const Words& words) { hub().setOnboarding(courseNamed(words[0])); }}},
        {"reset", {1, 1, Shows::Nothing, [](Desk&, const Words& words) { hub().setReset(courseNamed(words[0])); }}},
        {"pace", {1, 1, Shows::Nothing, pace}},
        {"answers", {1, 1, Shows::Nothing, answers}},
        {"release", {0, 0, Shows::Reports, [](Desk&, const Words&) { hub().releaseAnswers(); }}},
        {"info", {0, 1, Shows::Nothing, info}},
        {"requests", {0, 0, Shows::Nothing, requests}},
    };
    return table;
}

Words lineNames() {
    Words names;
    for (const auto& [name, line] : lines()) {
        names.push_back(name);
    }
    return names;
}

void run(Desk& desk, const Words& words) {
    const auto found = words.empty() ? lines().end() : lines().find(words[0]);
    if (found == lines().end()) {
        throw UsageError();
    }
    const Line& line = found->second;
    const Words rest(words.begin() + 1, words.end());
    if (rest.size() < line.fewest || rest.size() > line.most) {
        throw UsageError();
    }
    desk.pump();
    try {
        line.run(desk, rest);
    } catch (const CommandError&) {
        throw;
    } catch (const std::runtime_error& e) {
        throw CommandError(e.what());
    }
    line.shows == Shows::Reports ? desk.settleOrSay() : void(desk.settle());
}

}  // namespace

std::vector<Command> simHubCommands() {
    return {
        {"sim hub",
         fmt::format("{} [...]", fmt::join(lineNames(), "|")),
         "works the hub control application: installs and ends it; fires an event with its data; says how onboarding "
         "and reset go (succeeds, fails, waits), how long each step takes (pace), and how it answers for the hub info "
         "(normal, held, half, after-event, malformed; release sends what was held); shows what it was asked for",
         {"sim hub install", "sim hub kill", "sim hub event 0 42", "sim hub onboarding fails", "sim hub pace 500ms",
          "sim hub answers half"},
         run,
         {Hint(lineNames())}}};
}

}  // namespace homeloom::tv
