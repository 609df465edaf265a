#ifndef HOMELOOM_RECORDER_FORMS_H
#define HOMELOOM_RECORDER_FORMS_H

#include <cstddef>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include <homeloom_client.h>

/// How calls, answers and callbacks of the agent are written on a tape: each as a JSON array of its values. Recorder
/// and player have this in common.
namespace recorder {

/// What an argument is. A function's type tells it, together with that of the argument behind: a list of texts that
/// goes in has its count there.
enum class Kind {
    Text,
    Number,
    Texts,
    Handle,
    List,
    OutText,
    OutNumber,
    OutTexts,
    OutHandle,
    OutList,
    Callback,
    UserData,
};

/// Texts and lists have their count in another argument.
constexpr bool isOut(Kind kind) {
    return kind >= Kind::OutText && kind <= Kind::OutList;
}
constexpr bool isIn(Kind kind) {
    return kind < Kind::OutText;
}

template <class T>
constexpr bool kIsHandle = std::is_pointer_v<T>&& std::is_class_v<std::remove_pointer_t<T>>;

template <class T, class Next>
constexpr Kind kindOf() {
    using Target = std::remove_pointer_t<T>;
    if constexpr (!std::is_pointer_v<T>) {
        return Kind::Number;
    } else if constexpr (std::is_void_v<Target>) {
        return Kind::UserData;
    } else if constexpr (std::is_function_v<Target>) {
        return Kind::Callback;
    } else if constexpr (std::is_same_v<T, const char*>) {
        return Kind::Text;
    } else if constexpr (std::is_same_v<T, char**> || std::is_same_v<T, const char**>) {
        return std::is_same_v<Next, int> ? Kind::Texts : Kind::OutText;
    } else if constexpr (std::is_same_v<T, char***>) {
        return Kind::OutTexts;
    } else if constexpr (kIsHandle<T>) {
        return Kind::Handle;
    } else if constexpr (kIsHandle<Target>) {
        return std::is_same_v<Next, int> ? Kind::List : Kind::OutHandle;
    } else if constexpr (std::is_pointer_v<Target>) {
        return Kind::OutList;
    } else {
        return Kind::OutNumber;
    }
}

template <class Tuple, std::size_t I>
constexpr Kind kindAt() {
    if constexpr (I + 1 < std::tuple_size_v<Tuple>) {
        return kindOf<std::tuple_element_t<I, Tuple>, std::tuple_element_t<I + 1, Tuple>>();
    } else {
        return kindOf<std::tuple_element_t<I, Tuple>, void>();
    }
}

/// The arguments of a function or callback as a tuple.
template <class Function>
struct Parameters;
template <class Result, class... Arguments>
struct Parameters<Result(Arguments...)> {
    using Tuple = std::tuple<Arguments...>;
};
template <class Result, class... Arguments>
struct Parameters<Result (*)(Arguments...)> : Parameters<Result(Arguments...)> {};
template <class Function>
using ParametersOf = typename Parameters<Function>::Tuple;
template <class Function, std::size_t I>
using ParameterOf = std::tuple_element_t<I, ParametersOf<Function>>;

/// Calls `visit` with std::integral_constant<std::size_t, I> for each element of the tuple.
template <class Visit, std::size_t... I>
void visitIndices(const Visit& visit, std::index_sequence<I...>) {
    (visit(std::integral_constant<std::size_t, I>()), ...);
}
template <class Tuple, class Visit>
void forEachIndex(const Visit& visit) {
    visitIndices(visit, std::make_index_sequence<std::tuple_size_v<Tuple>>());
}

/// The first argument behind I that is of type T: that of the count of a list that is handed out.
template <class T, class Tuple, std::size_t I>
constexpr std::size_t indexBehind() {
    if constexpr (std::is_same_v<std::tuple_element_t<I + 1, Tuple>, T>) {
        return I + 1;
    } else {
        return indexBehind<T, Tuple, I + 1>();
    }
}

/// The first argument of that kind; the number of arguments if there is none.
template <class Tuple, Kind kind, std::size_t I = 0>
constexpr std::size_t indexOf() {
    if constexpr (I == std::tuple_size_v<Tuple>) {
        return I;
    } else if constexpr (kindAt<Tuple, I>() == kind) {
        return I;
    } else {
        return indexOf<Tuple, kind, I + 1>();
    }
}

/// Where a text stands: in a call, in its answer or in a callback that it brought.
enum class Side { In, Out, Callback };
struct Place {
    const char* function;
    Side side;
    int index;  // of the argument; of an answer the field that was asked for, or -1
};

/// Decides what stands on the tape for handles and texts.
class Speller {
public:
    virtual ~Speller() = default;
    /// The name of a record's handle; a new one for one that is handed out just now.
    virtual std::string handle(const void* handle, bool isNew) = 0;
    virtual std::string text(const Place& place, const std::string& text) = 0;
};

/// Appends the text as JSON has it, in quotation marks.
void appendQuoted(std::string& line, const std::string& text);

/// Writes arguments as a JSON array: those that go in, or with Side::Out those that are handed out.
template <class Tuple>
class Form {
public:
    Form(Speller& speller, const char* function, Side side, const Tuple& arguments)
        : _speller(speller), _function(function), _side(side), _arguments(arguments) {}

    std::string written() {
        forEachIndex<Tuple>([this](auto index) {
            if constexpr (constexpr Kind kind = kindAt<Tuple, index>(); isIn(kind)) {
                if (_side != Side::Out) {
                    appendIn<index>();
                }
            } else if constexpr (isOut(kind)) {
                if (_side == Side::Out) {
                    appendOut<index>();
                }
            }
        });
        return _line.empty() ? "[]" : _line + ']';
    }

private:
    void next() { _line += _line.empty() ? '[' : ','; }
    template <std::size_t I>
    auto get() const {
        return std::get<I>(_arguments);
    }

    template <std::size_t I>
    void appendIn() {
        next();
        constexpr Kind kind = kindAt<Tuple, I>();
        if constexpr (kind == Kind::Text) {
            appendText(get<I>(), static_cast<int>(I));
        } else if constexpr (kind == Kind::Number) {
            appendNumber(get<I>());
        } else if constexpr (kind == Kind::Handle) {
            appendHandle(get<I>());
        } else {
            appendArray(get<I>(), get<I + 1>(), static_cast<int>(I));
        }
    }

    template <std::size_t I>
    void appendOut() {
        next();
        constexpr Kind kind = kindAt<Tuple, I>();
        const auto value = get<I>();
        if (value == nullptr) {
            _line += "null";
        } else if constexpr (kind == Kind::OutText) {
            appendText(*value, field());
        } else if constexpr (kind == Kind::OutNumber) {
            appendNumber(*value);
        } else if constexpr (kind == Kind::OutHandle) {
            appendHandle(*value);
        } else {
            const int* const count = get<indexBehind<int*, Tuple, I>()>();
            appendArray(*value, count == nullptr ? 0 : *count, field());
        }
    }

    int field() const {
        if constexpr (std::tuple_size_v < Tuple >> 1) {
            if constexpr (kindAt<Tuple, 1>() == Kind::Number) {
                return static_cast<int>(get<1>());
            }
        }
        return -1;
    }

    void appendText(const char* text, int index) {
        if (text == nullptr) {
            _line += "null";
        } else {
            appendQuoted(_line, _speller.text({_function, _side, index}, text));
        }
    }

    template <class Number>
    void appendNumber(Number number) {
        if constexpr (std::is_same_v<Number, bool>) {
            _line += number ? "true" : "false";
        } else {
            _line += std::to_string(static_cast<long long>(number));
        }
    }

    template <class Handle>
    void appendHandle(Handle handle) {
        if (handle == nullptr) {
            _line += "null";
        } else if constexpr (std::is_same_v<Handle, homeloom_client_h>) {
            _line += "\"client\"";  // a process has one
        } else {
            appendQuoted(_line, _speller.handle(handle, _side != Side::In));
        }
    }

    template <class Element>
    void appendArray(Element* elements, int count, int index) {
        if (elements == nullptr) {
            _line += "null";
            return;
        }
        _line += '[';
        for (int i = 0; i < count; ++i) {
            _line += i == 0 ? "" : ",";
            if constexpr (kIsHandle<Element>) {
                appendHandle(elements[i]);
            } else {
                appendText(elements[i], index);
            }
        }
        _line += ']';
    }

    Speller& _speller;
    const char* const _function;
    const Side _side;
    const Tuple& _arguments;
    std::string _line;
};

}  // namespace recorder

#endif
