#include "Calls.h"

namespace simulator {

namespace {

std::vector<std::string> textsOf(const Arguments& arguments) {
    std::vector<std::string> texts;
    for (const Argument& argument : arguments) {
        texts.push_back(argument.text());
    }
    return texts;
}

}  // namespace

Call::Call(Function& function, homeloom_client_h client, const Arguments& arguments, Needs needs, char** text)
    : _function(function), _client(client), _needs(needs), _text(text) {
    for (const Argument& argument : arguments) {
        _isValid = _isValid && !argument.isMissing();
    }
    if (text != nullptr) {
        mark(Function::AnswersText);
    }
    _fault = function.enter(textsOf(arguments));
}

const std::string* Call::said() const {
    return _fault && _fault->kind == Fault::Kind::Say ? &_fault->text : nullptr;
}

int Call::refusal(const World& world, const Client& client) const {
    if (_needs != Needs::Handle && client.state != Client::State::Connected) {
        return HOMELOOM_CLIENT_ERROR_NOT_CONNECTED;
    }
    if (_needs == Needs::SignIn && !world.isSignedIn) {
        return HOMELOOM_CLIENT_ERROR_PERMISSION_DENIED;
    }
    return HOMELOOM_CLIENT_ERROR_NONE;
}

JsonAnswer failure(int error, const std::string& message) {
    return {error, message, ""};
}

JsonAnswer success(const std::string& json) {
    return {HOMELOOM_CLIENT_ERROR_NONE, "", json};
}

int answerJson(const Call& call, homeloom_core_json_cb callback, void* userData,
               std::function<JsonAnswer(World&)> work) {
    return answerJson(
        call, callback, userData, [work = std::move(work)](World& world, const HandoverPtr&) { return work(world); },
        nullptr);
}

int answerJson(const Call& call, homeloom_core_json_cb callback, void* userData,
               std::function<JsonAnswer(World&, const HandoverPtr&)> work,
               std::function<JsonAnswer(World&, bool isRefused)> finish) {
    call.mark(Function::AnswersText);
    if (call.isHitBy(Fault::Kind::Null)) {
        return call.later<JsonAnswer>(
            callback != nullptr, [](World&) { return success(""); },
            [callback, userData](const JsonAnswer& answer) { callback(answer.error, nullptr, nullptr, userData); });
    }
    if (call.said() != nullptr) {
        work = [text = *call.said()](World&, const HandoverPtr&) { return success(text); };
    }
    const auto deliver = [callback, userData](const JsonAnswer& answer) {
        if (answer.error != 0) {
            callback(answer.error, CallbackText(answer.message), nullptr, userData);
        } else {
            callback(answer.error, nullptr, CallbackText(answer.json), userData);
        }
    };
    return call.later<JsonAnswer>(callback != nullptr, std::move(work), std::move(finish), deliver);
}

}  // namespace simulator
