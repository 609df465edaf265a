#include "AgentTape.h"

#include <cmath>
#include <fstream>
#include <map>
#include <stdexcept>

#include <fmt/format.h>
#include <recorder/Blanking.h>
#include <recorder/Functions.h>
#include <boost/json.hpp>

#include "Player.h"

namespace homeloom::tv {

namespace {

namespace json = boost::json;
using recorder::Kind;

/// What values a function has on the tape: of the call, its answer and its callback.
struct Shape {
    std::vector<Kind> in;
    std::vector<Kind> out;
    std::vector<Kind> callback;
    bool hasCallback = false;
};

template <class Tuple>
void addKinds(Shape& shape, bool isCallback) {
    recorder::forEachIndex<Tuple>([&](auto index) {
        constexpr Kind kind = recorder::kindAt<Tuple, index>();
        if constexpr (recorder::isIn(kind)) {
            (isCallback ? shape.callback : shape.in).push_back(kind);
        } else if constexpr (recorder::isOut(kind)) {
            shape.out.push_back(kind);
        } else if constexpr (kind == Kind::Callback) {
            shape.hasCallback = true;
            addKinds<recorder::ParametersOf<std::tuple_element_t<index, Tuple>>>(shape, true);
        }
    });
}

template <class Function>
Shape shapeOf() {
    Shape shape;
    addKinds<recorder::ParametersOf<Function>>(shape, false);
    return shape;
}

const std::map<std::string, Shape>& shapes() {
#define HOMELOOM_SHAPE(number, name) {#name, shapeOf<decltype(name)>()},
    static const auto& all = *new std::map<std::string, Shape>{HOMELOOM_AGENT_FUNCTIONS(HOMELOOM_SHAPE)};
#undef HOMELOOM_SHAPE
    return all;
}

bool isA(const json::value& value, Kind kind) {
    switch (kind) {
        case Kind::Number:
        case Kind::OutNumber:
            return value.is_int64() || value.is_bool() || (value.is_null() && kind == Kind::OutNumber);
        case Kind::Text:
        case Kind::OutText:
        case Kind::Handle:
        case Kind::OutHandle:
            return value.is_string() || value.is_null();
        default:
            break;
    }
    if (!value.is_array()) {
        return value.is_null();
    }
    for (const json::value& element : value.get_array()) {
        if (!element.is_string() && !element.is_null()) {
            return false;
        }
    }
    return true;
}

// The agent's texts are what they are.
json::parse_options lenient() {
    json::parse_options options;
    options.allow_invalid_utf8 = true;
    return options;
}

bool holds(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

bool endsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

class Reader {
public:
    explicit Reader(const std::string& file) : _file(file) {}

    AgentTape read() {
        std::ifstream stream(_file);
        if (!stream) {
            throw std::runtime_error(fmt::format("there is no tape {}", _file));
        }
        for (std::string line; std::getline(stream, line);) {
            ++_line;
            // A process that died may have left half a line at the end.
            if (stream.eof() && _line > 1) {
                break;
            }
            readLine(parsed(line));
        }
        if (_line == 0) {
            ++_line;
            fail("the tape is empty");
        }
        return std::move(_tape);
    }

private:
    [[noreturn]] void fail(const std::string& reason) const {
        throw std::runtime_error(fmt::format("{}:{}: {}", _file, _line, reason));
    }

    json::object parsed(const std::string& line) const {
        json::error_code error;
        const json::value value = json::parse(line, error, {}, lenient());
        if (error || !value.is_object()) {
            fail(error ? error.message() : "is no JSON object");
        }
        return value.get_object();
    }

    void readLine(const json::object& line) {
        if (_line == 1) {
            if (number(line, "agent_tape") != 1) {
                fail("this program plays agent_tape 1");
            }
            _tape.hasNames = line.contains("names") && line.at("names") == json::value(true);
        } else if (line.contains("call")) {
            readCall(line);
        } else if (line.contains("answer")) {
            readAnswer(line);
        } else if (line.contains("callback")) {
            readCallback(line);
        } else {
            fail("is no call, no answer and no callback");
        }
    }

    void readCall(const json::object& line) {
        AgentTape::Call call;
        call.line = _line;
        call.at = time(line);
        const json::value* const function = line.if_contains("function");
        if (function == nullptr || !function->is_string() || shapes().count(function->get_string().c_str()) == 0) {
            fail("function is none of the agent's");
        }
        call.function = function->get_string().c_str();
        const Shape& shape = shapes().at(call.function);
        call.key = agentCallKey(call.function, json::serialize(values(line, "in", shape.in)), _tape.hasNames);
        call.isActing =
            !holds(call.function, "_get_") && !holds(call.function, "_is_") && !endsSomething(call.function);
        call.isRegistration =
            shape.hasCallback && (endsWith(call.function, "_cb") || endsWith(call.function, "_connect") ||
                                  endsWith(call.function, "_subscribe"));
        if (!_indices.emplace(number(line, "call"), _tape.calls.size()).second) {
            fail("there is such a call already");
        }
        if (call.isActing) {
            _lastActing = _tape.calls.size();
        }
        _tape.calls.push_back(std::move(call));
    }

    void readAnswer(const json::object& line) {
        AgentTape::Call& call = _tape.calls[callOf(line, "answer")];
        if (call.isAnswered) {
            fail("the call has been answered");
        }
        call.isAnswered = true;
        call.duration = time(line) - call.at;
        call.code = static_cast<int>(number(line, "code"));
        if (line.contains("out")) {
            call.out = values(line, "out", shapes().at(call.function).out);
        }
    }

    void readCallback(const json::object& line) {
        AgentTape::Callback callback;
        callback.line = _line;
        callback.at = time(line);
        callback.call = callOf(line, "callback");
        callback.gate = _lastActing;
        AgentTape::Call& call = _tape.calls[callback.call];
        const Shape& shape = shapes().at(call.function);
        if (!shape.hasCallback) {
            fail(fmt::format("{} has no callback", call.function));
        }
        callback.in = values(line, "in", shape.callback);
        // What comes of a connection first is its outcome.
        const bool isOutcome = endsWith(call.function, "_connect") && call.replies.empty();
        if (call.isRegistration && !isOutcome) {
            _tape.events.push_back(std::move(callback));
        } else {
            call.replies.push_back(std::move(callback));
        }
    }

    json::array values(const json::object& line, const char* member, const std::vector<Kind>& kinds) const {
        const json::value* const found = line.if_contains(member);
        if (found == nullptr || !found->is_array() || found->get_array().size() != kinds.size()) {
            fail(fmt::format("{} is no array of {} values", member, kinds.size()));
        }
        for (std::size_t i = 0; i < kinds.size(); ++i) {
            if (!isA(found->get_array()[i], kinds[i])) {
                fail(fmt::format("value {} of {} is of another kind", i + 1, member));
            }
        }
        return found->get_array();
    }

    std::size_t callOf(const json::object& line, const char* member) const {
        const auto found = _indices.find(number(line, member));
        if (found == _indices.end()) {
            fail("there is no such call before");
        }
        return found->second;
    }

    std::int64_t number(const json::object& line, const char* member) const {
        const json::value* const found = line.if_contains(member);
        if (found == nullptr || !found->is_int64()) {
            fail(fmt::format("{} is no number", member));
        }
        return found->get_int64();
    }

    AgentTape::Time time(const json::object& line) const {
        const json::value* const found = line.if_contains("at");
        if (found == nullptr || !found->is_number() || !(std::abs(found->to_number<double>()) < 1e9)) {
            fail("at is no time in seconds");
        }
        return AgentTape::Time(std::llround(found->to_number<double>() * 1e6));
    }

    const std::string _file;
    std::size_t _line = 0;
    std::size_t _lastActing = 0;
    std::map<std::int64_t, std::size_t> _indices;
    AgentTape _tape;
};

}  // namespace

AgentTape readAgentTape(const std::string& file) {
    return Reader(file).read();
}

std::string agentCallKey(const std::string& function, const std::string& in, bool hasNames) {
    const std::string plain = json::serialize(json::parse(in, {}, lenient()));
    return function + (hasNames ? plain : recorder::withoutNumbers(plain));
}

bool endsSomething(const std::string& function) {
    return holds(function, "_unset_") || holds(function, "_unsubscribe") || holds(function, "_destroy") ||
           holds(function, "_disconnect") || holds(function, "_stop_");
}

std::string accessTokenOf(const AgentTape& tape) {
    for (const AgentTape::Call& call : tape.calls) {
        if (call.function == "homeloom_client_get_access_token" && call.code == 0 && !call.out.empty() &&
            call.out.front().is_string()) {
            return call.out.front().get_string().c_str();
        }
    }
    return "";
}

void playAgentTape(const AgentTape& tape) {
    Player::instance().load(tape);
}

bool isAgentTapeOwing() {
    return Player::instance().isPlaying() && Player::instance().isOwing();
}

AgentTapeState agentTapeState() {
    return Player::instance().isPlaying() ? Player::instance().state() : AgentTapeState();
}

}  // namespace homeloom::tv
