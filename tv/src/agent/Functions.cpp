// The agent's functions stand in the program, before those of the library, which they call; unless a tape is played.
#include <recorder/Functions.h>

#include <dlfcn.h>

#include <cstdlib>
#include <cstring>

#include <boost/json.hpp>

#include "Player.h"

namespace {

using namespace homeloom::tv;
namespace json = boost::json;
using recorder::Kind;

// What is handed out is the receiver's to free.
char* textOf(const json::value& value) {
    return value.is_null() ? nullptr : strdup(value.get_string().c_str());
}

template <class Handle>
Handle handleOf(const json::value& value) {
    return value.is_null() ? nullptr : static_cast<Handle>(Player::instance().makeHandle(value.get_string().c_str()));
}

template <class Number>
Number numberOf(const json::value& value) {
    if constexpr (std::is_same_v<Number, bool>) {
        return value.is_bool() ? value.get_bool() : value.get_int64() != 0;
    } else {
        return static_cast<Number>(value.is_bool() ? value.get_bool() : value.get_int64());
    }
}

template <class Element>
Element* arrayOf(const json::value& value) {
    if (value.is_null()) {
        return nullptr;
    }
    const json::array& values = value.get_array();
    // One more, so that an empty one isn't null.
    auto* const elements = static_cast<Element*>(std::calloc(values.size() + 1, sizeof(Element)));
    for (std::size_t i = 0; i < values.size(); ++i) {
        if constexpr (recorder::kIsHandle<Element>) {
            elements[i] = handleOf<Element>(values[i]);
        } else {
            elements[i] = textOf(values[i]);
        }
    }
    return elements;
}

/// A callback's arguments, made from the tape. Frees what stays the caller's.
template <class... Arguments>
class Delivery {
public:
    using Tuple = std::tuple<Arguments...>;

    Delivery(const json::array& in, void* userData) {
        std::size_t next = 0;
        recorder::forEachIndex<Tuple>([&](auto index) {
            constexpr Kind kind = recorder::kindAt<Tuple, index>();
            auto& argument = std::get<index>(_arguments);
            using Argument = std::tuple_element_t<index, Tuple>;
            if constexpr (kind == Kind::UserData) {
                argument = userData;
            } else if constexpr (kind == Kind::Text) {
                argument = textOf(in[next++]);
            } else if constexpr (kind == Kind::Number) {
                argument = numberOf<Argument>(in[next++]);
            } else if constexpr (kind == Kind::Handle) {
                argument = handleOf<Argument>(in[next++]);
            } else {
                _sizes[index] = in[next].is_null() ? 0 : in[next].get_array().size();
                argument = arrayOf<std::remove_pointer_t<Argument>>(in[next++]);
            }
        });
    }
    ~Delivery() {
        recorder::forEachIndex<Tuple>([this](auto index) {
            constexpr Kind kind = recorder::kindAt<Tuple, index>();
            const auto argument = std::get<index>(_arguments);
            if constexpr (kind == Kind::Text) {
                std::free(const_cast<char*>(argument));
            } else if constexpr (std::is_same_v<std::tuple_element_t<index, Tuple>, homeloom_client_group_h*>) {
                for (std::size_t i = 0; i < _sizes[index]; ++i) {
                    Player::instance().destroyHandle(argument[i]);
                }
                std::free(argument);
            } else if constexpr (kind == Kind::Texts) {
                for (std::size_t i = 0; i < _sizes[index]; ++i) {
                    std::free(argument[i]);
                }
                std::free(argument);
            }
        });
    }
    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;

    void call(void (*callback)(Arguments...)) const { std::apply(callback, _arguments); }

private:
    Tuple _arguments{};
    std::size_t _sizes[sizeof...(Arguments)] = {};
};

template <class... Arguments>
Player::Deliver delivery(void (*callback)(Arguments...), void* userData) {
    if (callback == nullptr) {
        return nullptr;
    }
    return [callback, userData](const json::array& in) { Delivery<Arguments...>(in, userData).call(callback); };
}

/// Hands out what the tape has.
template <class Tuple>
void giveOut(const json::array& out, const Tuple& arguments) {
    std::size_t next = 0;
    recorder::forEachIndex<Tuple>([&](auto index) {
        constexpr Kind kind = recorder::kindAt<Tuple, index>();
        if constexpr (recorder::isOut(kind)) {
            const auto place = std::get<index>(arguments);
            const json::value& value = out[next++];
            if (place == nullptr) {
                return;
            }
            using Value = std::remove_pointer_t<decltype(place)>;
            if constexpr (kind == Kind::OutText) {
                *place = textOf(value);
            } else if constexpr (kind == Kind::OutNumber) {
                *place = value.is_null() ? Value() : numberOf<Value>(value);
            } else if constexpr (std::is_same_v<Value, homeloom_client_h>) {
                *place = *place == nullptr ? handleOf<Value>(value) : *place;  // it's used again
            } else if constexpr (kind == Kind::OutHandle) {
                *place = handleOf<Value>(value);
            } else {
                *place = arrayOf<std::remove_pointer_t<Value>>(value);
            }
        }
    });
}

template <class Tuple>
int play(const char* function, const Tuple& arguments) {
    Player& player = Player::instance();
    const std::string in = recorder::Form<Tuple>(player, function, recorder::Side::In, arguments).written();
    Player::Deliver deliver;
    constexpr std::size_t kCallback = recorder::indexOf<Tuple, Kind::Callback>();
    if constexpr (kCallback < std::tuple_size_v<Tuple>) {
        deliver = delivery(std::get<kCallback>(arguments), std::get<kCallback + 1>(arguments));
    }
    const AgentTape::Call* const call = player.call(function, in, deliver);
    if (call == nullptr) {
        return HOMELOOM_CLIENT_ERROR_IO;
    }
    if (!call->out.empty()) {
        giveOut(call->out, arguments);
    }
    const std::string name = function;
    const bool isDisconnect = name == "homeloom_client_disconnect";
    if (isDisconnect && call->code == 0) {
        player.disconnect();
    }
    if constexpr (recorder::kIsHandle<std::tuple_element_t<0, Tuple>>) {
        if (call->code == 0 && (isDisconnect || name.find("_destroy") != std::string::npos)) {
            player.destroyHandle(std::get<0>(arguments));
        }
    }
    return call->code;
}

template <class... Arguments>
int pass(const char* function, int (*next)(Arguments...), Arguments... arguments) {
    if (Player::instance().isPlaying()) {
        return play(function, std::tuple<Arguments...>(arguments...));
    }
    return next(arguments...);
}

}  // namespace

#define HOMELOOM_PASS(number, name)                                                          \
    int name(HOMELOOM_PARAMETERS_##number(name)) {                                           \
        static const auto next = reinterpret_cast<decltype(&name)>(dlsym(RTLD_NEXT, #name)); \
        return pass(#name, next, HOMELOOM_PASS_##number);                                    \
    }
HOMELOOM_AGENT_FUNCTIONS(HOMELOOM_PASS)
