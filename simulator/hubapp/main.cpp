// The hub control application of the desk TV. The desk starts it with the socket to listen at and the file of its hub
// info, and tells it over standard input, a socket, what to do.
#include <glib.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <optional>
#include <stdexcept>

#include <clock/Clock.h>

#include "ControlLine.h"
#include "HubControl.h"

namespace {

using VMFramework::json::JsonValue;

HubControl::Settings readSettings(const JsonValue& command) {
    HubControl::Settings settings;
    settings.rejects = command["rejects"].asBool();
    settings.onboarding = static_cast<HubControl::Course>(command["onboarding"].asInt());
    settings.reset = static_cast<HubControl::Course>(command["reset"].asInt());
    settings.paceMilliseconds = static_cast<unsigned>(command["pace_ms"].asInt());
    settings.answers = static_cast<HubControl::Answers>(command["answers"].asInt());
    settings.userId = command["user_id"].asString();
    settings.hubDeviceId = command["hub_di"].asString();
    return settings;
}

JsonValue describe(const HubControl::Request& request) {
    JsonValue document = JsonValue::CreateObject();
    document.set("name", nameOf(request.method));
    JsonValue fields = JsonValue::CreateArray();
    for (const std::string& field : request.fields) {
        fields.append(field);
    }
    document.set("fields", fields);
    if (request.delegate) {
        document.set("delegate", request.delegate->id);
        document.set("sequence", request.delegate->sequence);
        document.set("once", request.delegate->once);
    }
    return document;
}

JsonValue describe(const std::vector<HubControl::Request>& requests) {
    JsonValue list = JsonValue::CreateArray();
    for (const HubControl::Request& request : requests) {
        list.append(describe(request));
    }
    return list;
}

JsonValue status(const HubControl& hub) {
    JsonValue document = JsonValue::CreateObject();
    document.set("requests", static_cast<int>(hub.requestCount()));
    document.set("connections", hub.connections());
    document.set("owes", hub.owes());
    return document;
}

std::string fromHex(const std::string& digits) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
    }
    return bytes;
}

JsonValue obey(HubControl& hub, const JsonValue& command) {
    const std::string what = command["do"].asString();
    if (what == "set") {
        hub.set(readSettings(command));
    } else if (what == "info") {
        return hub.info();
    } else if (what == "set-info") {
        hub.setInfo(command["info"].asString());
    } else if (what == "event") {
        const JsonValue request = command["request"];
        hub.fire(command["event"].asInt(), command["data"].asString(),
                 request.isNull() ? std::nullopt : std::optional<std::size_t>(request.asInt()));
    } else if (what == "release") {
        hub.releaseAnswers();
    } else if (what == "bytes") {
        hub.sendBytes(fromHex(command["hex"].asString()),
                      command["main"].asBool() ? RPC_PORT_PORT_MAIN : RPC_PORT_PORT_CALLBACK);
    } else if (what == "requests") {
        return describe(hub.requests());
    } else if (what == "status") {
        return status(hub);
    } else {
        throw std::runtime_error("unknown command: " + what);
    }
    return JsonValue();
}

}  // namespace

int main(int argc, char** argv) {
    homeloom::clock::join();
    if (argc != 3) {
        std::fprintf(stderr, "usage: homeloom-hub-app SOCKET INFO-FILE; the desk TV starts it\n");
        return 2;
    }
    GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
    try {
        HubControl hub(argv[1], argv[2]);
        const ControlLine line(
            STDIN_FILENO, [&hub](const JsonValue& command) { return obey(hub, command); },
            [loop] { g_main_loop_quit(loop); });
        g_main_loop_run(loop);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "homeloom-hub-app: %s\n", e.what());
        g_main_loop_unref(loop);
        return 1;
    }
    g_main_loop_unref(loop);
    return 0;
}
