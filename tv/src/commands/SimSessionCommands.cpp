#include <algorithm>
#include <map>

#include <VMFramework/JsonValue.h>
#include <desktop/Settings.h>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <homeloom_core.h>
#include <simulator/Agent.h>
#include <simulator/ServiceManager.h>

#include "Command.h"
#include "CommandError.h"
#include "Desk.h"
#include "DeskSettings.h"
#include "DeviceNames.h"
#include "Output.h"
#include "SimNames.h"
#include "Text.h"
#include "Words.h"

namespace homeloom::tv {

namespace {

using simulator::Agent;
using VMFramework::json::JsonValue;

// Long enough for the plug-in's own retry, which comes after five seconds.
constexpr std::chrono::milliseconds kReconnectTime{6500};

Agent& agent() {
    return Agent::instance();
}

const std::map<std::string, int>& eventKinds() {
    static const std::map<std::string, int> kinds{{"device-event", HOMELOOM_CORE_SSE_DEVICE_EVENT},
                                                  {"device-lifecycle", HOMELOOM_CORE_SSE_DEVICE_LIFECYCLE},
                                                  {"device-health", HOMELOOM_CORE_SSE_DEVICE_HEALTH},
                                                  {"scene", HOMELOOM_CORE_SSE_SCENE_LIFECYCLE},
                                                  {"installed-app", HOMELOOM_CORE_SSE_INSTALLED_APP_LIFECYCLE},
                                                  {"smart-app", HOMELOOM_CORE_SSE_SMART_APP_EVENT},
                                                  {"routine", HOMELOOM_CORE_SSE_ROUTINE_LIFECYCLE},
                                                  {"favorite", HOMELOOM_CORE_SSE_FAVORITE_LIFECYCLE}};
    return kinds;
}

template <typename T>
Words keysOf(const std::map<std::string, T>& map) {
    Words keys;
    for (const auto& [key, value] : map) {
        keys.push_back(key);
    }
    return keys;
}

void signOut(Desk& desk, const Words& words) {
    if (!words.empty()) {
        throw UsageError();
    }
    desk.pump();
    agent().signOut();
    desk.settleOrSay();
}

void signIn(Desk& desk, const Words& words) {
    if (words.size() > 1) {
        throw UsageError();
    }
    desk.pump();
    if (words.empty()) {
        agent().signIn();
    } else {
        simulator::Account account;
        account.loginId = words[0];
        account.userId = words[0];
        if (agent().isSignedIn()) {
            agent().signOut();
        }
        agent().signIn(account);
    }
    desk.settleOrSay();
}

// A connection that has come up shows by the account's state, which the plug-in tells anew each time.
void awaitConnection(Desk& desk, bool wasConnected) {
    if (wasConnected) {
        if (desk.settle() == 0) {
            desk.out().say("The plug-in was connected already.");
        }
        return;
    }
    if (!desk.await([](const Report& report) { return report.name == "sign_in_state_changed"; }, kReconnectTime)) {
        desk.out().say("The plug-in has not connected again.");
    }
    desk.settle();
}

void connection(Desk& desk, const Words& words) {
    const auto found = words.size() == 1 ? connectionNames().find(words[0]) : connectionNames().end();
    if (found == connectionNames().end()) {
        const auto number = words.size() == 1 ? parseInt(words[0]) : std::nullopt;
        if (!number) {
            throw UsageError();
        }
        desk.pump();
        agent().announceConnection(*number);
        desk.settleOrSay();
        return;
    }
    desk.pump();
    const bool wasConnected = agent().isConnected();
    agent().setConnectOutcome(found->second);
    agent().changeConnection(found->second);
    if (found->second == Agent::Connection::Connected) {
        awaitConnection(desk, wasConnected);
    } else {
        desk.settleOrSay();
    }
}

void state(Desk& desk, const Words& words) {
    const auto number = words.size() == 1 ? parseInt(words[0]) : std::nullopt;
    if (!number) {
        throw UsageError();
    }
    agent().setState(*number);
    desk.settle();
}

void update(Desk& desk, const Words& words) {
    if (words.size() != 1 || (words[0] != "start" && words[0] != "end")) {
        throw UsageError();
    }
    desk.pump();
    if (words[0] == "start") {
        simulator::ServiceManager::instance().startUpdate();
        desk.settleOrSay();
    } else {
        const bool wasConnected = agent().isConnected();
        simulator::ServiceManager::instance().endUpdate();
        awaitConnection(desk, wasConnected);
    }
}

void disclaimer(Desk& desk, const Words& words) {
    if (words.size() != 1 || (words[0] != "on" && words[0] != "off")) {
        throw UsageError();
    }
    desk.pump();
    desktop::settings::setInt(kDisclaimerKey, words[0] == "on" ? 1 : 0);
    desk.settleOrSay();
}

// "true" and "false" are yes and no, objects and arrays are such, anything else is a text.
JsonValue eventJson(const Words& words) {
    JsonValue json = JsonValue::CreateObject();
    for (const std::string& word : words) {
        const auto assignment = splitAssignment(word);
        if (!assignment) {
            throw CommandError(fmt::format("\"{}\" is neither JSON nor key=value", word));
        }
        const auto& [key, value] = *assignment;
        const JsonValue parsed = JsonValue::Create(value);
        json.set(key, parsed.isBool() || parsed.isObject() || parsed.isArray() ? parsed : JsonValue(value));
    }
    return json;
}

void event(Desk& desk, const Words& words) {
    if (words.empty()) {
        throw UsageError();
    }
    const auto known = eventKinds().find(words[0]);
    const auto kind = known != eventKinds().end() ? std::optional<int>(known->second) : parseInt(words[0]);
    if (!kind) {
        throw CommandError(fmt::format("there is no event \"{}\"; there are {}, and any number", words[0],
                                       fmt::join(keysOf(eventKinds()), ", ")));
    }
    const bool isDocument = words.size() == 2 && words[1].compare(0, 1, "{") == 0;
    const Words fields(words.begin() + 1, words.end());
    const std::string json = isDocument ? words[1] : eventJson(fields).toString();
    desk.pump();
    agent().sendEvent(*kind, json);
    desk.settleOrSay();
}

}  // namespace

std::vector<Command> simSessionCommands() {
    return {
        {"sim sign-out", "", "signs the account out", {"sim sign-out"}, signOut, {}},
        {"sim sign-in",
         "[ACCOUNT]",
         "signs the account in again, or another one in its place",
         {"sim sign-in", "sim sign-in jun@home.example"},
         signIn,
         {}},
        {"sim agent",
         "connected|disconnected|rejected|io-error|updating|NUMBER",
         "changes the agent's connection; new ones turn out the same until it is connected again. A number only tells "
         "the plug-in of that state",
         {"sim agent io-error", "sim agent connected", "sim agent 7"},
         connection,
         {keysOf(connectionNames())}},
        {"sim state",
         "NUMBER",
         "sets the agent's own state; 2 means that it waits for the cloud",
         {"sim state 2"},
         state,
         {}},
        {"sim update",
         "start|end",
         "updates the agent: it goes away, and comes back",
         {"sim update start"},
         update,
         {Hint({"start", "end"})}},
        {"sim disclaimer",
         "on|off",
         "has the person accept the disclaimer, or take that back",
         {"sim disclaimer off"},
         disclaimer,
         {Hint({"on", "off"})}},
        {"sim sse",
         "KIND JSON | KIND KEY=VALUE ...",
         "sends an event of the cloud; KIND is " + fmt::format("{}", fmt::join(keysOf(eventKinds()), ", ")) +
             ", or a number",
         {"sim sse device-health deviceId=hub-plug status=OFFLINE",
          R"(sim sse scene {"lifecycle": "UPDATE", "locationId": "home", "sceneId": "good-night"})"},
         event,
         {keysOf(eventKinds())}},
    };
}

}  // namespace homeloom::tv
