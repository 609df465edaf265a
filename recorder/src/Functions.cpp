// The agent's functions as the plug-in meets them when the recorder was loaded before the agent's libraries.
#include "recorder/Functions.h"

#include <dlfcn.h>
#include <link.h>

#include <cstdio>
#include <cstring>

#include "Recorder.h"

namespace {

using namespace recorder;

struct Search {
    const char* name;
    void* found;
};

int lookInto(dl_phdr_info* library, std::size_t, void* search) {
    auto& [name, found] = *static_cast<Search*>(search);
    void* const handle = dlopen(library->dlpi_name, RTLD_LAZY | RTLD_NOLOAD);
    if (handle == nullptr) {
        return 0;
    }
    void* const symbol = dlsym(handle, name);
    dlclose(handle);
    Dl_info place{};
    Dl_info own{};
    if (symbol != nullptr && dladdr(symbol, &place) != 0 && dladdr(reinterpret_cast<void*>(&lookInto), &own) != 0 &&
        place.dli_fbase != own.dli_fbase) {
        found = symbol;
    }
    return found == nullptr ? 0 : 1;
}

/// The agent's own function. A library that came in with the plug-in stands in nobody's order of search, so all that
/// are loaded are asked then.
void* findReal(const char* name) {
    Search search{name, dlsym(RTLD_NEXT, name)};
    if (search.found == nullptr) {
        dl_iterate_phdr(lookInto, &search);
    }
    if (search.found == nullptr) {
        std::fprintf(stderr, "homeloom-agent-recorder: no library has %s\n", name);
    }
    return search.found;
}

template <class Callback>
struct Trampoline;
template <class... Arguments>
struct Trampoline<void (*)(Arguments...)> {
    using Tuple = std::tuple<Arguments...>;
    static constexpr std::size_t kUserData = sizeof...(Arguments) - 1;

    static void call(Arguments... arguments) {
        Tuple passed(arguments...);
        const auto& registration = *static_cast<const Registration*>(std::get<kUserData>(passed));
        Recorder& recorder = Recorder::instance();
        recorder.callback(registration, Form<Tuple>(recorder, registration.function, Side::Callback, passed).written());
        std::get<kUserData>(passed) = registration.userData;
        std::apply(reinterpret_cast<void (*)(Arguments...)>(registration.callback), passed);
    }
};

/// Puts the recorder between the agent and the callback.
template <class Tuple>
void replaceCallback(Tuple& arguments, const char* function, long long call) {
    constexpr std::size_t kIndex = indexOf<Tuple, Kind::Callback>();
    if constexpr (kIndex < std::tuple_size_v<Tuple>) {
        auto& callback = std::get<kIndex>(arguments);
        void*& userData = std::get<kIndex + 1>(arguments);
        if (callback != nullptr) {
            userData = Recorder::instance().keep({function, call, reinterpret_cast<void (*)()>(callback), userData});
            callback = Trampoline<std::remove_reference_t<decltype(callback)>>::call;
        }
    }
}

// The one that may hand out a list although it failed.
bool handsOut(const char* function, int code) {
    return code == 0 || std::strcmp(function, "homeloom_core_replace_favorites") == 0;
}

template <class... Arguments>
int record(const char* function, int (*real)(Arguments...), Arguments... arguments) {
    using Tuple = std::tuple<Arguments...>;
    if (real == nullptr) {
        return HOMELOOM_CLIENT_ERROR_IO;
    }
    Recorder& recorder = Recorder::instance();
    if (!recorder.isOn()) {
        return real(arguments...);
    }
    Tuple passed(arguments...);
    const long long call = recorder.call(function, Form<Tuple>(recorder, function, Side::In, passed).written());
    replaceCallback(passed, function, call);
    const int code = std::apply(real, passed);
    recorder.answer(call, code,
                    handsOut(function, code) ? Form<Tuple>(recorder, function, Side::Out, passed).written() : "");
    return code;
}

}  // namespace

#define HOMELOOM_RECORD(number, name)                                                \
    int name(HOMELOOM_PARAMETERS_##number(name)) {                                   \
        static const auto real = reinterpret_cast<decltype(&name)>(findReal(#name)); \
        return record(#name, real, HOMELOOM_PASS_##number);                          \
    }
HOMELOOM_AGENT_FUNCTIONS(HOMELOOM_RECORD)
