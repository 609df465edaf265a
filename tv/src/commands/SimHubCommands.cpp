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

// How the program reports through the plug-in is worth showing after some commands; others only arrange something.
enum class Shows { Reports, Nothing };

HubApp& hub() {
    return HubApp::instance();
}

const std::map<std::string, HubApp::Course>& courses() {
    static const std::map<std::string, HubApp::Course> names{
        {"succeeds", HubApp::Course::Succeed}, {"fails", HubApp::Course::Fail}, {"waits", HubApp::Course::Manual}};
    return names;
}

const std::map<std::string, HubApp::Answers>& answerKinds() {
    static const std::map<std::string, HubApp::Answers> names{{"normal", HubApp::Answers::Normal},
                                                              {"held", HubApp::Answers::Held},
                                                              {"half", HubApp::Answers::Half},
                                                              {"after-event", HubApp::Answers::AfterEvent},
                                                              {"malformed", HubApp::Answers::Malformed}};
    return names;
}

template <typename Value>
Value choose(const std::map<std::string, Value>& values, const std::string& word) {
    const auto found = values.find(word);
    if (found == values.end()) {
        throw UsageError();
    }
    return found->second;
}

template <typename Value>
Words namesOf(const std::map<std::string, Value>& values) {
    Words names;
    for (const auto& [name, value] : values) {
        names.push_back(name);
    }
    return names;
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

struct Count {
    std::size_t fewest;
    std::size_t most;
};

Command hubCommand(const std::string& verb, const std::string& usage, const std::string& summary,
                   const std::string& example, Count count, Shows shows,
                   const std::function<void(Desk& desk, const Words& words)>& run, std::vector<Hint> hints = {}) {
    const std::string name = "sim hub " + verb;
    return {name,
            usage,
            summary,
            {name + (example.empty() ? "" : " " + example)},
            [=](Desk& desk, const Words& words) {
                if (words.size() < count.fewest || words.size() > count.most) {
                    throw UsageError();
                }
                desk.pump();
                try {
                    run(desk, words);
                } catch (const CommandError&) {
                    throw;
                } catch (const std::runtime_error& e) {
                    throw CommandError(e.what());
                }
                shows == Shows::Reports ? desk.settleOrSay() : void(desk.settle());
            },
            std::move(hints)};
}

/// A command of one word alone.
Command plainCommand(const std::string& verb, const std::string& summary, Shows shows,
                     const std::function<void()>& run) {
    return hubCommand(verb, "", summary, "", {0, 0}, shows, [run](Desk&, const Words&) { run(); });
}

}  // namespace

std::vector<Command> simHubCommands() {
    constexpr std::size_t kAnyNumber = 100;
    const std::string courseUsage = "succeeds|fails|waits";
    return {
        plainCommand("install", "installs the application, as a user does: it is listed and started", Shows::Reports,
                     [] { hub().install(); }),
        plainCommand("uninstall", "ends it and takes it from the list", Shows::Reports, [] { hub().uninstall(); }),
        plainCommand("start", "starts the program, if it doesn't run", Shows::Nothing, [] { hub().start(); }),
        plainCommand("stop", "ends it, as it ends itself", Shows::Reports, [] { hub().stop(); }),
        plainCommand("kill", "ends it without a warning", Shows::Reports, [] { hub().kill(); }),
        plainCommand("pause", "halts the program: connections stand, and nothing is answered", Shows::Nothing,
                     [] { hub().pause(); }),
        plainCommand("resume", "lets it go on", Shows::Reports, [] { hub().resume(); }),
        plainCommand("reject", "has it turn away new connections", Shows::Nothing,
                     [] { hub().rejectConnections(true); }),
        plainCommand("accept", "has it take new connections again", Shows::Nothing,
                     [] { hub().rejectConnections(false); }),
        hubCommand(
            "event", "NUMBER [DATA]",
            "has it tell the plug-in of an event: 0 progress with the per cent, 1 onboarded, 3 onboarding failed, "
            "4 reset, 5 reset failed, 9 installation begun, 10 a dongle came or went",
            "0 42", {1, kAnyNumber}, Shows::Reports, event),
        hubCommand("onboarding", courseUsage, "says how onboardings go; \"waits\" leaves all to \"sim hub event\"",
                   "fails", {1, 1}, Shows::Nothing,
                   [](Desk&, const Words& words) { hub().setOnboarding(choose(courses(), words[0])); },
                   {namesOf(courses())}),
        hubCommand("reset", courseUsage, "says how resets go, in the same way", "waits", {1, 1}, Shows::Nothing,
                   [](Desk&, const Words& words) { hub().setReset(choose(courses(), words[0])); },
                   {namesOf(courses())}),
        hubCommand("pace", "TIME", "sets how long each step of an onboarding takes; 0 at the start", "500ms", {1, 1},
                   Shows::Nothing, pace),
        hubCommand("answers", "normal|held|half|after-event|malformed",
                   "says how it answers for the hub info: at once, at \"sim hub release\", half of it until then, "
                   "behind an event, with values of other types",
                   "half", {1, 1}, Shows::Nothing,
                   [](Desk&, const Words& words) { hub().setAnswers(choose(answerKinds(), words[0])); },
                   {namesOf(answerKinds())}),
        plainCommand("release", "sends what was held back", Shows::Reports, [] { hub().releaseAnswers(); }),
        hubCommand("info", "[JSON]", "shows the hub info as it stands, or sets it",
                   R"({"hub_di": "hub-1", "user_id": "user-mina"})", {0, 1}, Shows::Nothing, info),
        hubCommand("requests", "", "lists what the plug-in asked it for", "", {0, 0}, Shows::Nothing, requests),
    };
}

}  // namespace homeloom::tv
