#include "simulator/HubApp.h"

#include <cstdlib>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <thread>

#include <VMFramework/JsonValue.h>
#include <desktop/Packages.h>
#include <desktop/RpcPort.h>

#include "HubProgram.h"

namespace simulator {

namespace {

using VMFramework::json::JsonValue;

// Far above what anything takes.
constexpr std::chrono::seconds kWaitLimit{30};
constexpr std::chrono::milliseconds kLookInterval{2};

struct Settings {
    bool rejects = false;
    HubApp::Course onboarding = HubApp::Course::Succeed;
    HubApp::Course reset = HubApp::Course::Succeed;
    std::chrono::milliseconds pace{0};
    HubApp::Answers answers = HubApp::Answers::Normal;
    std::string userId;
    std::string hubDeviceId;
};

struct Shared {
    std::mutex mutex;
    HubProgram program;
    bool isLaunched = false;  // and has not been asked anything yet
    Settings settings;
};

// Never destroyed: a test may end in the middle. The program is ended before the sockets' folder goes.
Shared& shared() {
    static Shared& shared = *new Shared;
    return shared;
}

void killAtExit() {
    const std::lock_guard<std::mutex> lock(shared().mutex);
    shared().program.kill();
}

JsonValue command(const char* what) {
    JsonValue document = JsonValue::CreateObject();
    document.set("do", what);
    return document;
}

// The numbers of course and answers are those of the program.
JsonValue commandOf(const Settings& settings) {
    JsonValue document = command("set");
    document.set("rejects", settings.rejects);
    document.set("onboarding", static_cast<int>(settings.onboarding));
    document.set("reset", static_cast<int>(settings.reset));
    document.set("pace_ms", static_cast<int>(settings.pace.count()));
    document.set("answers", static_cast<int>(settings.answers));
    document.set("user_id", settings.userId);
    document.set("hub_di", settings.hubDeviceId);
    return document;
}

JsonValue ask(const JsonValue& what) {
    const std::lock_guard<std::mutex> lock(shared().mutex);
    return shared().program.ask(what);
}

void change(const std::function<void(Settings&)>& function) {
    const std::lock_guard<std::mutex> lock(shared().mutex);
    function(shared().settings);
    if (shared().program.isRunning() && !shared().isLaunched) {
        shared().program.ask(commandOf(shared().settings));
    }
}

// With the mutex held.
void spawnProgram() {
    const std::string socketPath = homeloom::desktop::rpc::socketPath(HubApp::kAppId, HubApp::kPortName);
    static const int registered = std::atexit(killAtExit);
    static_cast<void>(registered);
    shared().program.start(socketPath, socketPath + ".info");
    shared().isLaunched = true;
}

bool waitUntil(const std::function<bool()>& test) {
    const auto end = std::chrono::steady_clock::now() + kWaitLimit;
    while (!test()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(kLookInterval);
    }
    return true;
}

std::string toHex(const std::string& bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const char byte : bytes) {
        text += kDigits[static_cast<unsigned char>(byte) >> 4];
        text += kDigits[static_cast<unsigned char>(byte) & 0xf];
    }
    return text;
}

HubApp::Request toRequest(const JsonValue& document) {
    HubApp::Request request;
    request.name = document["name"].asString();
    const JsonValue fields = document["fields"];
    for (std::size_t i = 0; i < fields.size(); ++i) {
        request.fields.push_back(fields[i].asString());
    }
    request.hasDelegate = !document["delegate"].isNull();
    request.delegateId = document["delegate"].asInt();
    request.delegateSequence = document["sequence"].asInt();
    request.isOnce = document["once"].asBool();
    return request;
}

}  // namespace

HubApp& HubApp::instance() {
    static HubApp& instance = *new HubApp;
    return instance;
}

void HubApp::install() {
    start();
    homeloom::desktop::packages::install(kAppId);
}

void HubApp::uninstall() {
    stop();
    homeloom::desktop::packages::uninstall(kAppId);
}

void HubApp::launch() {
    const std::lock_guard<std::mutex> lock(shared().mutex);
    if (!shared().program.isRunning()) {
        spawnProgram();
    }
}

void HubApp::start() {
    const std::lock_guard<std::mutex> lock(shared().mutex);
    HubProgram& program = shared().program;
    if (!program.isRunning()) {
        spawnProgram();
    } else if (!shared().isLaunched) {
        return;
    }
    shared().isLaunched = false;
    try {
        program.ask(commandOf(shared().settings));
    } catch (...) {
        program.kill();
        throw;
    }
}

void HubApp::stop() {
    const std::lock_guard<std::mutex> lock(shared().mutex);
    shared().program.stop();
}

void HubApp::kill() {
    const std::lock_guard<std::mutex> lock(shared().mutex);
    shared().program.kill();
}

bool HubApp::isRunning() const {
    return processId() != 0;
}

int HubApp::processId() const {
    const std::lock_guard<std::mutex> lock(shared().mutex);
    return shared().program.isRunning() ? shared().program.processId() : 0;
}

void HubApp::pause() {
    const std::lock_guard<std::mutex> lock(shared().mutex);
    shared().program.pause();
}

void HubApp::resume() {
    const std::lock_guard<std::mutex> lock(shared().mutex);
    shared().program.resume();
}

// ---- Settings ----

void HubApp::resetSettings() {
    change([](Settings& settings) { settings = {}; });
}

void HubApp::rejectConnections(bool rejects) {
    change([&](Settings& settings) { settings.rejects = rejects; });
}

void HubApp::setIdentity(const std::string& userId, const std::string& hubDeviceId) {
    change([&](Settings& settings) {
        settings.userId = userId;
        settings.hubDeviceId = hubDeviceId;
    });
}

void HubApp::setOnboarding(Course course) {
    change([&](Settings& settings) { settings.onboarding = course; });
}

void HubApp::setReset(Course course) {
    change([&](Settings& settings) { settings.reset = course; });
}

void HubApp::setPace(std::chrono::milliseconds step) {
    change([&](Settings& settings) { settings.pace = step; });
}

void HubApp::setAnswers(Answers answers) {
    change([&](Settings& settings) { settings.answers = answers; });
}

// ---- Now ----

void HubApp::setHubInfo(const std::string& info) {
    JsonValue document = command("set-info");
    document.set("info", info);
    ask(document);
}

std::string HubApp::hubInfo() {
    return ask(command("info")).asString();
}

void HubApp::sendEvent(int event, const std::string& data) {
    JsonValue document = command("event");
    document.set("event", event);
    document.set("data", data);
    ask(document);
}

void HubApp::sendEventTo(std::size_t index, int event, const std::string& data) {
    JsonValue document = command("event");
    document.set("event", event);
    document.set("data", data);
    document.set("request", static_cast<int>(index));
    ask(document);
}

void HubApp::releaseAnswers() {
    ask(command("release"));
}

void HubApp::sendBytes(const std::string& bytes, bool toMainPort) {
    JsonValue document = command("bytes");
    document.set("hex", toHex(bytes));
    document.set("main", toMainPort);
    ask(document);
}

// ---- What came ----

std::vector<HubApp::Request> HubApp::requests() const {
    const JsonValue list = ask(command("requests"));
    std::vector<Request> requests;
    for (std::size_t i = 0; i < list.size(); ++i) {
        requests.push_back(toRequest(list[i]));
    }
    return requests;
}

bool HubApp::waitForRequests(int count) const {
    return waitUntil([&] { return ask(command("status"))["requests"].asInt() >= count; });
}

int HubApp::connections() const {
    return ask(command("status"))["connections"].asInt();
}

bool HubApp::waitForConnections(int count) const {
    return waitUntil([&] { return connections() == count; });
}

bool HubApp::isOwing() const {
    const std::lock_guard<std::mutex> lock(shared().mutex);
    HubProgram& program = shared().program;
    try {
        return program.isRunning() && (program.isPaused() || program.ask(command("status"))["owes"].asBool());
    } catch (const std::runtime_error&) {
        return false;  // it has just ended
    }
}

void HubApp::waitIdle() const {
    ask(command("idle"));
}

}  // namespace simulator
