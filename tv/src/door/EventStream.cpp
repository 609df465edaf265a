#include "EventStream.h"

#include <pthread.h>

#include <random>

#include <VMFramework/JsonValue.h>
#include <clock/Clock.h>
#include <desktop/Framework.h>
#include <fmt/format.h>
#include <simulator/Agent.h>

#include "DeviceChanges.h"
#include "JsonOutput.h"
#include "door/SimDocument.h"

namespace homeloom::tv {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kPause{10};
constexpr milliseconds kSimPause{250};
// So little that the plug-in doesn't notice when a client is served on its processor.
constexpr std::size_t kBlockBytes = std::size_t{16} << 10;
// No eye sees more of it, and a client then takes all that came meanwhile in one piece.
constexpr milliseconds kClientPause{50};
constexpr char kKeepAlive[] = ":\n\n";
// Numbers of one run. They leave a browser's numbers exact, which have 53 bits.
constexpr unsigned kRunBits = 22;

// Each run counts from a place of its own: a client that was there before the program was started anew must not take
// the new run's events for the rest of the old one's.
EventId chooseStart() {
    std::random_device random;
    return static_cast<EventId>(1 + (random() >> 2)) << kRunBits;
}

std::string quoted(const std::string& text) {
    return VMFramework::json::JsonValue(text).toString();
}

}  // namespace

EventStream::EventStream(EventRing::Limits limits) : _start(chooseStart()), _ring(_start, limits) {
    _listener = desktop::framework::addListener([this](const ReportPtr& report) { push(report); });
    simulator::Agent::instance().setChangeObserver([this] { publishSimChange(); });
    simulator::Agent::instance().setCommandObserver([this](const simulator::DeviceCommand& command) {
        publish("device_command", fmt::format("{{\"device_command\":{}}}", jsonLine(command)));
    });
    _thread = std::thread([this] { run(); });
}

EventStream::~EventStream() {
    simulator::Agent::instance().setChangeObserver(nullptr);
    simulator::Agent::instance().setCommandObserver(nullptr);
    desktop::framework::removeListener(_listener);
    close();
    {
        const std::lock_guard<std::mutex> lock(_incomingMutex);
        _ends = true;
    }
    _came.notify_all();
    _thread.join();
}

void EventStream::publish(const char* type, std::string document) {
    push(Document{type, std::move(document)});
}

void EventStream::publishSimChange() {
    {
        const std::lock_guard<std::mutex> lock(_incomingMutex);
        _simChanged = true;
    }
    _came.notify_one();
}

bool EventStream::isDue() const {
    return _ends || !_incoming.empty() || (_simChanged && Clock::now() >= _nextSim);
}

void EventStream::push(Incoming incoming) {
    bool wasEmpty = false;
    {
        const std::lock_guard<std::mutex> lock(_incomingMutex);
        wasEmpty = _incoming.empty();
        _incoming.push_back(std::move(incoming));
    }
    if (wasEmpty) {
        _came.notify_one();
    }
}

void EventStream::run() {
    const clock::Exempt exempt;
    pthread_setname_np(pthread_self(), "door events");
    std::unique_lock<std::mutex> incoming(_incomingMutex);
    while (!_ends) {
        while (!isDue()) {
            _simChanged ? static_cast<void>(_came.wait_until(incoming, _nextSim)) : _came.wait(incoming);
        }
        incoming.unlock();
        {
            const std::lock_guard<std::mutex> lock(_mutex);
            sort();
        }
        incoming.lock();
        _came.wait_for(incoming, kPause, [this] { return _ends; });
    }
}

// Puts all that came in its place. The mutex is held from the first to the last, or who asks for the home meanwhile
// would see an older one.
void EventStream::sort() {
    std::vector<Incoming> came;
    bool simChanged = false;
    {
        const std::lock_guard<std::mutex> lock(_incomingMutex);
        came.swap(_incoming);
        if (_simChanged && Clock::now() >= _nextSim) {
            _simChanged = false;
            simChanged = true;
            _nextSim = Clock::now() + kSimPause;
        }
    }
    for (const Incoming& one : came) {
        if (const auto* const report = std::get_if<ReportPtr>(&one)) {
            take(*report);
        } else {
            const auto& document = std::get<Document>(one);
            _ring.add(document.type, document.text);
        }
    }
    if (simChanged) {
        _ring.add("sim", "{\"sim\":{}}");
    }
    if (_ring.head() != _helloId) {
        _hello = {};
        _published.notify_all();
    }
}

void EventStream::take(const ReportPtr& report) {
    _home.apply(*report);
    if (report->kind == Report::Kind::LoadResult) {
        _loadStatus = report->status;
    } else if (report->kind == Report::Kind::Notify && report->name == "sign_in_state_changed") {
        _isSignedIn = report->properties.flag("is_sign_in");
    }
    _ring.add(report);
}

// Made once for all that come while nothing happens.
std::string EventStream::hello() {
    if (_hello.empty()) {
        std::string home = jsonLine(_home);
        home = home.substr(1, home.size() - 2);  // {"home":{...}} without its outer brackets
        _hello = fmt::format(
            "{{\"hello\":{{\"version\":{},{},\"catalogue\":{},\"load_status\":{},\"signed_in\":{},\"language\":{}}}}}",
            quoted(HOMELOOM_VERSION), home, quoted(HOMELOOM_VERSION), _loadStatus, _isSignedIn,
            quoted(languageSetting()));
        _helloId = _ring.head();
    }
    return eventMessage(_helloId, "hello", _hello);
}

std::optional<std::string> EventStream::next(Position& position, milliseconds wait) {
    std::unique_lock<std::mutex> lock(_mutex);
    const auto follows = [this, &position] { return position._last && _ring.reachesBackTo(*position._last); };
    if (follows()) {
        _published.wait_for(lock, wait, [this, &position] { return _closed || _ring.head() > *position._last; });
        _ended.wait_until(lock, position._next, [this] { return _closed; });
    }
    if (_closed) {
        return std::nullopt;
    }
    if (!follows()) {
        return begin(position);
    }
    const std::string text = _ring.textAfter(*position._last, kBlockBytes);
    if (*position._last == _ring.head()) {
        position._next = Clock::now() + kClientPause;
    }
    return text.empty() ? kKeepAlive : text;
}

// The whole home, for a client that knows nothing yet or too little to go on from.
std::string EventStream::begin(Position& position) {
    sort();
    std::string text;
    // A number of another run says nothing about how much is lost.
    if (position._last && *position._last >= _start && *position._last <= _ring.head()) {
        text = eventMessage(*position._last, "lost", fmt::format("{{\"lost\":{}}}", _ring.head() - *position._last));
    }
    position._last = _ring.head();
    return text + hello();
}

std::string EventStream::home() {
    const std::lock_guard<std::mutex> lock(_mutex);
    sort();
    return jsonLine(_home);
}

std::optional<std::string> EventStream::device(const std::string& id) {
    const std::lock_guard<std::mutex> lock(_mutex);
    sort();
    const HomeView::Device* const device = _home.device(id);
    return device != nullptr ? std::optional(jsonLine(*device)) : std::nullopt;
}

void EventStream::close() {
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _closed = true;
    }
    _published.notify_all();
    _ended.notify_all();
}

}  // namespace homeloom::tv
