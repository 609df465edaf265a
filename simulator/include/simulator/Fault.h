#ifndef HOMELOOM_SIMULATOR_FAULT_H
#define HOMELOOM_SIMULATOR_FAULT_H

#include <chrono>
#include <string>

namespace simulator {

/// How one function of the agent misbehaves. Made by name and narrowed by count:
///
///     agent.fault("homeloom_core_get_scene_list_async", Fault::answer(-5).times(2));
///     agent.fault("homeloom_client_device_detail_get_string", Fault::fail(-5).after(3));
struct Fault {
    enum class Kind { Fail, Answer, Say, Late, Never, Twice, Null, Miscount };

    /// The function returns this code at once, does nothing and never calls back.
    static Fault fail(int code);
    /// The function returns 0, does nothing, and calls back with this code. The same as fail() where there is no
    /// callback.
    static Fault answer(int code);
    /// The function does nothing and answers 0 with this text, be it JSON or not. No effect on functions that answer
    /// something else than one text.
    static Fault say(std::string text);
    /// The work and its answer come later; without a callback, the caller waits.
    static Fault late(std::chrono::milliseconds delay);
    /// Nothing is done and no answer comes; without a callback, the caller waits until the fault is cleared.
    static Fault never();
    /// The work is done once, and answered twice. No effect without a callback.
    static Fault twice();
    /// The function says that it succeeded, and answers null in place of its text or its list; the list's count stays.
    /// No effect on functions that answer neither.
    static Fault null();
    /// The list's count is one too high: its last element is null. No effect on functions that answer no list.
    static Fault miscount();

    /// For that many calls; without it, for good.
    Fault times(int calls) const;
    /// Only after that many good calls.
    Fault after(int calls) const;

    Kind kind = Kind::Fail;
    int code = 0;
    std::string text;
    std::chrono::milliseconds delay{0};
    int remaining = -1;  // calls that it still hits; -1: all
    int skip = 0;        // calls that it still lets pass
};

}  // namespace simulator

#endif
