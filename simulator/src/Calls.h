#ifndef HOMELOOM_SIMULATOR_CALLS_H
#define HOMELOOM_SIMULATOR_CALLS_H

#include <functional>
#include <mutex>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "Functions.h"
#include "World.h"

namespace simulator {

/// An argument of a C function: a text, which must not be null, or a number.
class Argument {
public:
    Argument(const char* text) : _text(text == nullptr ? "" : text), _isMissing(text == nullptr) {}
    Argument(int number) : _text(std::to_string(number)) {}
    Argument(bool flag) : _text(flag ? "true" : "false") {}

    const std::string& text() const { return _text; }
    bool isMissing() const { return _isMissing; }

private:
    std::string _text;
    bool _isMissing = false;
};
using Arguments = std::vector<Argument>;

/// What a call can't do without.
enum class Needs { Handle, Connection, SignIn };

/// A call of one of the agent's functions, on its way through what all of them have in common.
class Call {
public:
    /// `text` is where the function hands out its one text, if it does.
    Call(Function& function, homeloom_client_h client, const Arguments& arguments, Needs needs, char** text = nullptr);

    /// Answers before it returns. `work` takes World& and Client&, and the lock if it wants to wait, and gives the
    /// code.
    template <class Work>
    int now(Work work) const;

    /// Answers on the callback thread. `work` takes World& and gives an Answer, which has a member `error`; `deliver`
    /// calls back with it. With `work` not yet done, nothing has happened in the home.
    template <class Answer>
    int later(bool hasCallback, std::function<Answer(World&)> work, std::function<void(const Answer&)> deliver) const;

    /// The same for work that may hand something to drivers of devices: then `finish` gives the answer, once they have
    /// told what they do.
    template <class Answer>
    int later(bool hasCallback, std::function<Answer(World&, const HandoverPtr&)> work,
              std::function<Answer(World&, bool isRefused)> finish, std::function<void(const Answer&)> deliver) const;

    /// What a fault says in place of the home; null without such a fault.
    const std::string* said() const;
    const Fault* fault() const { return _fault ? &*_fault : nullptr; }
    bool isHitBy(Fault::Kind kind) const { return _fault && _fault->kind == kind; }
    void mark(Function::Trait trait) const { _function.mark(trait); }

private:
    template <class Answer>
    void finishLater(Client& client, Handover& handover, int deliveries,
                     const std::function<Answer(World&, bool isRefused)>& finish,
                     const std::function<void(const Answer&)>& deliver) const;
    /// Why the call can't be served; 0 if it can. Needs the mutex.
    int refusal(const World& world, const Client& client) const;

    Function& _function;
    homeloom_client_h _client;
    Needs _needs;
    char** _text;
    bool _isValid = true;
    std::optional<Hit> _fault;
};

template <class Work>
int Call::now(Work work) const {
    if (_fault) {
        _function.hold(*_fault);
        if (_fault->kind == Fault::Kind::Never) {
            return HOMELOOM_CLIENT_ERROR_IO;
        }
        if (_fault->code != 0) {
            return _fault->code;
        }
    }
    World& world = World::instance();
    std::unique_lock<std::mutex> lock(world.mutex);
    const auto client = world.clients.find(_client);
    if (!_isValid || client == world.clients.end()) {
        return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
    }
    const int code = refusal(world, client->second);
    if (code == 0 && _text != nullptr && (said() != nullptr || isHitBy(Fault::Kind::Null))) {
        *_text = said() != nullptr ? handOut(*said()) : nullptr;
        return HOMELOOM_CLIENT_ERROR_NONE;
    }
    if (code != 0) {
        return code;
    }
    if constexpr (std::is_invocable_v<Work, World&, Client&, std::unique_lock<std::mutex>&>) {
        return work(world, client->second, lock);
    } else {
        return work(world, client->second);
    }
}

template <class Answer>
int Call::later(bool hasCallback, std::function<Answer(World&)> work,
                std::function<void(const Answer&)> deliver) const {
    return later<Answer>(
        hasCallback, [work = std::move(work)](World& world, const HandoverPtr&) { return work(world); }, nullptr,
        std::move(deliver));
}

template <class Answer>
int Call::later(bool hasCallback, std::function<Answer(World&, const HandoverPtr&)> work,
                std::function<Answer(World&, bool isRefused)> finish,
                std::function<void(const Answer&)> deliver) const {
    mark(Function::HasCallback);
    if (_fault && _fault->kind == Fault::Kind::Fail) {
        return _fault->code;
    }
    World& world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    const auto found = world.clients.find(_client);
    if (!_isValid || !hasCallback || found == world.clients.end()) {
        return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
    }
    ++found->second.pendingCalls;
    const Fault fault = _fault ? Fault(*_fault) : Fault::answer(0);
    if (fault.kind == Fault::Kind::Never) {
        world.lastDropped = std::chrono::steady_clock::now();
        return HOMELOOM_CLIENT_ERROR_NONE;
    }
    const int deliveries = fault.kind == Fault::Kind::Twice ? 2 : 1;
    const auto prepare = [call = *this, code = fault.code, deliveries, work = std::move(work),
                          finish = std::move(finish), deliver = std::move(deliver)](Client& client) -> World::Delivery {
        --client.pendingCalls;
        Answer answer;
        answer.error = code != 0 ? code : call.refusal(World::instance(), client);
        if (answer.error == 0) {
            const HandoverPtr handover = finish ? std::make_shared<Handover>() : nullptr;
            answer = work(World::instance(), handover);
            if (handover != nullptr && handover->open > 0) {
                call.finishLater(client, *handover, deliveries, finish, deliver);
                return nullptr;
            }
        }
        return [deliver, answer = std::move(answer)] { deliver(answer); };
    };
    world.post(found->second, _function.name().c_str(), prepare, fault.delay, deliveries);
    return HOMELOOM_CLIENT_ERROR_NONE;
}

template <class Answer>
void Call::finishLater(Client& client, Handover& handover, int deliveries,
                       const std::function<Answer(World&, bool isRefused)>& finish,
                       const std::function<void(const Answer&)>& deliver) const {
    ++client.pendingCalls;
    handover.ended = [&handover, id = client.id, name = _function.name().c_str(), deliveries, finish, deliver] {
        World& world = World::instance();
        Client* caller = world.client(id);
        if (caller == nullptr) {
            return;
        }
        const auto prepare = [isRefused = handover.isRefused, finish, deliver](Client& receiver) -> World::Delivery {
            --receiver.pendingCalls;
            return [deliver, answer = finish(World::instance(), isRefused)] { deliver(answer); };
        };
        world.post(*caller, name, prepare, {}, deliveries);
    };
}

/// The common reply of the core family.
struct JsonAnswer {
    int error = 0;
    std::string message;
    std::string json;
};
JsonAnswer failure(int error, const std::string& message);
JsonAnswer success(const std::string& json);
int answerJson(const Call& call, homeloom_core_json_cb callback, void* userData,
               std::function<JsonAnswer(World&)> work);
int answerJson(const Call& call, homeloom_core_json_cb callback, void* userData,
               std::function<JsonAnswer(World&, const HandoverPtr&)> work,
               std::function<JsonAnswer(World&, bool isRefused)> finish);

/// A list of records, or the one record of a reply.
struct ListAnswer {
    int error = 0;
    Records records;
};
/// Hands a list out as the call's fault has it.
template <class Handle>
void giveList(const Call& call, Records records, Handle** list, int* count) {
    call.mark(Function::AnswersList);
    if (call.isHitBy(Fault::Kind::Miscount)) {
        records.emplace_back();
    }
    *list = call.isHitBy(Fault::Kind::Null) ? nullptr : makeList<Handle>(records);
    *count = static_cast<int>(records.size());
}
template <class Handle>
int answerList(const Call& call, void (*callback)(int, Handle*, int, void*), void* userData,
               std::function<Records(World&)> work) {
    call.mark(Function::AnswersList);
    return call.later<ListAnswer>(
        callback != nullptr,
        [work = std::move(work)](World& world) {
            ListAnswer answer;
            answer.records = work(world);
            return answer;
        },
        [call, callback, userData](const ListAnswer& answer) {
            Handle* list = nullptr;
            int count = 0;
            if (answer.error == 0) {
                giveList(call, answer.records, &list, &count);
            }
            callback(answer.error, list, count, userData);
        });
}
/// `work` gives null when there is no such thing.
template <class Handle>
int answerRecord(const Call& call, void (*callback)(int, Handle, void*), void* userData,
                 std::function<SharedRecord(World&)> work) {
    return call.later<ListAnswer>(
        callback != nullptr,
        [work = std::move(work)](World& world) {
            const SharedRecord record = work(world);
            ListAnswer answer;
            answer.error = record == nullptr ? HOMELOOM_CLIENT_ERROR_NO_DATA : HOMELOOM_CLIENT_ERROR_NONE;
            answer.records.push_back(record);
            return answer;
        },
        [callback, userData](const ListAnswer& answer) {
            const bool isThere = answer.error == 0;
            callback(answer.error, isThere ? new std::remove_pointer_t<Handle>(answer.records.front()) : nullptr,
                     userData);
        });
}

}  // namespace simulator

#endif
