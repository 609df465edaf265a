#include "Player.h"

#include <algorithm>
#include <exception>
#include <utility>

#include <dlog.h>

namespace homeloom::tv {

namespace {

const char* const tag = "HL_TAPE";

// Nobody waits longer for what a call causes.
constexpr std::chrono::seconds kLongestWait{30};

}  // namespace

// Never destroyed: the plug-in calls as late as in the destructors of its own statics.
Player& Player::instance() {
    static Player& player = *new Player;
    return player;
}

void Player::load(const AgentTape& tape) {
    _tape = tape;
    for (std::size_t i = 0; i < _tape.calls.size(); ++i) {
        _byKey[_tape.calls[i].key].indices.push_back(i);
    }
    _isPlaying = true;
}

const AgentTape::Call* Player::call(const char* function, const std::string& in, Deliver deliver) {
    static const AgentTape::Call ended = [] {
        AgentTape::Call call;
        call.isAnswered = true;
        return call;
    }();
    const std::string key = agentCallKey(function, in, _tape.hasNames);
    const AgentTape::Call* call = nullptr;
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        if (endsSomething(function)) {
            unregister(function, key);
        }
        const auto found = _byKey.find(key);
        if (found != _byKey.end()) {
            Calls& calls = found->second;
            const bool isFirst = calls.next < calls.indices.size();
            const std::size_t index = isFirst ? calls.indices[calls.next++] : calls.indices.back();
            call = &_tape.calls[index];
            note(index, isFirst, deliver);
        } else if (!endsSomething(function) && _missing.insert(key).second) {
            dlog_print(DLOG_WARN, tag, "the tape has no %s", key.c_str());
        }
    }
    _wake.notify_all();
    if (call == nullptr) {
        return endsSomething(function) ? &ended : nullptr;
    }
    if (call->duration >= std::chrono::milliseconds(1)) {
        std::this_thread::sleep_for(call->duration);
    }
    return call->isAnswered ? call : nullptr;
}

void Player::note(std::size_t index, bool isFirst, const Deliver& deliver) {
    const AgentTape::Call& call = _tape.calls[index];
    const auto now = Clock::now();
    if (isFirst) {
        _made[index] = now;
        if (call.isActing) {
            _lastActing = std::max(_lastActing, index + 1);
        }
    }
    if (!deliver) {
        return;
    }
    if (!_thread.joinable()) {
        _thread = std::thread([this] { run(); });
    }
    if (call.isRegistration) {
        _events[call.key] = deliver;
        _everRegistered.insert(call.key);
    }
    for (const AgentTape::Callback& reply : call.replies) {
        _replies.emplace(std::pair(now + (reply.at - call.at), reply.line), Reply{&reply, deliver});
    }
}

// homeloom_client_unset_x_cb ends all that homeloom_client_set_x_cb began, whatever its other arguments were.
void Player::unregister(const std::string& function, const std::string& key) {
    std::string begin = function;
    if (const auto at = begin.find("_unset_"); at != std::string::npos) {
        begin.replace(at, 7, "_set_");
        begin += '[';
    } else if (const auto behind = begin.find("_unsubscribe"); behind != std::string::npos) {
        begin.replace(behind, 12, "_subscribe");
        begin += key.substr(function.size());
    } else {
        return;
    }
    for (auto it = _events.lower_bound(begin); it != _events.end() && it->first.compare(0, begin.size(), begin) == 0;) {
        it = _events.erase(it);
    }
}

void Player::disconnect() {
    std::unique_lock<std::mutex> lock(_mutex);
    _replies.clear();
    _events.clear();
    if (_thread.get_id() != std::this_thread::get_id()) {
        _idle.wait(lock, [this] { return !_isRunning; });
    }
}

std::optional<Player::Clock::time_point> Player::eventTime() const {
    if (_nextEvent == _tape.events.size()) {
        return std::nullopt;
    }
    const AgentTape::Callback& event = _tape.events[_nextEvent];
    if (_everRegistered.count(_tape.calls[event.call].key) == 0 || _lastActing < event.gate + 1) {
        return std::nullopt;
    }
    const auto made = _made.find(event.gate);
    return made == _made.end() ? Clock::time_point() : made->second + (event.at - _tape.calls[event.gate].at);
}

Player::Reply Player::takeEvent() {
    const AgentTape::Callback& event = _tape.events[_nextEvent++];
    const auto found = _events.find(_tape.calls[event.call].key);
    return {&event, found == _events.end() ? Deliver() : found->second};
}

// Of what is due, replies come before events only where they stand so on the tape.
void Player::run() {
    std::unique_lock<std::mutex> lock(_mutex);
    while (true) {
        const auto event = eventTime();
        const auto reply = _replies.begin();
        const bool hasReply = reply != _replies.end();
        if (!event && !hasReply) {
            _wake.wait(lock);
            continue;
        }
        const auto now = Clock::now();
        const bool eventIsDue = event && *event <= now;
        const bool replyIsDue = hasReply && reply->first.first <= now;
        if (eventIsDue && (!replyIsDue || _tape.events[_nextEvent].line < reply->first.second)) {
            deliver(takeEvent(), lock);
        } else if (replyIsDue) {
            const Reply taken = std::move(reply->second);
            _replies.erase(reply);
            deliver(taken, lock);
        } else {
            _wake.wait_until(lock, !hasReply || (event && *event < reply->first.first) ? *event : reply->first.first);
        }
    }
}

void Player::deliver(const Reply& reply, std::unique_lock<std::mutex>& lock) {
    if (!reply.deliver) {
        dlog_print(DLOG_WARN, tag, "nobody is registered for line %zu of the tape", reply.callback->line);
        return;
    }
    dlog_print(DLOG_DEBUG, tag, "line %zu of the tape comes", reply.callback->line);
    _isRunning = true;
    lock.unlock();
    std::string exception;
    try {
        reply.deliver(reply.callback->in);
    } catch (const std::exception& e) {
        exception = e.what();
    } catch (...) {
        exception = "not an exception";
    }
    lock.lock();
    if (!exception.empty()) {
        _exceptions.push_back(exception);
    }
    _isRunning = false;
    _idle.notify_all();
}

void* Player::makeHandle(const std::string& name) {
    ++_handles;
    return new std::string(name);
}

void Player::destroyHandle(const void* handle) {
    if (handle != nullptr) {
        --_handles;
        delete static_cast<const std::string*>(handle);
    }
}

bool Player::isOwing() const {
    const std::lock_guard<std::mutex> lock(_mutex);
    const auto event = eventTime();
    return _isRunning || !_replies.empty() || (event && *event <= Clock::now() + kLongestWait);
}

AgentTapeState Player::state() const {
    const std::lock_guard<std::mutex> lock(_mutex);
    AgentTapeState state;
    state.records = _handles;
    state.exceptions = _exceptions;
    state.missing.assign(_missing.begin(), _missing.end());
    for (std::size_t i = 0; i < _tape.calls.size(); ++i) {
        state.calls += _tape.calls[i].isActing ? 1 : 0;
        state.madeCalls += _tape.calls[i].isActing && _made.count(i) > 0 ? 1 : 0;
    }
    state.openEvents = _tape.events.size() - _nextEvent;
    if (_nextEvent < _tape.events.size() && !eventTime()) {
        const AgentTape::Callback& event = _tape.events[_nextEvent];
        state.waitsFor = _tape.calls[_lastActing < event.gate + 1 ? event.gate : event.call].key;
    }
    return state;
}

std::string Player::handle(const void* handle, bool) {
    return *static_cast<const std::string*>(handle);
}

std::string Player::text(const recorder::Place& place, const std::string& text) {
    if (_tape.hasNames) {
        return text;
    }
    const std::lock_guard<std::mutex> lock(_blankingMutex);
    return _blanking.shown(place, text);
}

}  // namespace homeloom::tv
