#ifndef HOMELOOM_COMMON_HLLOG_H
#define HOMELOOM_COMMON_HLLOG_H

#include <exception>

#include <dlog.h>

// One message, two sinks: the platform's trace sink and its log. File, function and line come by themselves.
// The arguments are not even evaluated unless one of the sinks takes the line.
//
//   HL_LOGI("device_id : %s status : %d", id.c_str(), status);
#define HL_LOGD(...) HL_LOG_TAGGED(DLOG_DEBUG, VMFramework::HomeLoom::Log::kTag, __VA_ARGS__)
#define HL_LOGI(...) HL_LOG_TAGGED(DLOG_INFO, VMFramework::HomeLoom::Log::kTag, __VA_ARGS__)
#define HL_LOGE(...) HL_LOG_TAGGED(DLOG_ERROR, VMFramework::HomeLoom::Log::kTag, __VA_ARGS__)

#define HL_LOG_TAGGED(priority, tag, ...)                                                                     \
    do {                                                                                                      \
        if (VMFramework::HomeLoom::Log::IsTaken(priority, tag)) {                                             \
            VMFramework::HomeLoom::Log::Write(priority, tag, {__FILE__, HL_FUNCTION, __LINE__}, __VA_ARGS__); \
        }                                                                                                     \
    } while (false)

// A lambda has no name of its own: its lines name the function around it, for which the log needs the whole signature.
#define HL_FUNCTION (VMFramework::HomeLoom::Log::IsLambda(__func__) ? __PRETTY_FUNCTION__ : __func__)

// For a helper that logs on behalf of its caller: the line names the caller, and the helper takes
// 'const Log::Place& caller = HL_CALLER' as its last parameter. An exception is logged by Log::WriteException.
#define HL_CALLER \
    { __builtin_FILE(), __builtin_FUNCTION(), __builtin_LINE() }
#define HL_LOG_AT(priority, place, ...)                                                                        \
    do {                                                                                                       \
        if (VMFramework::HomeLoom::Log::IsTaken(priority, VMFramework::HomeLoom::Log::kTag)) {                 \
            VMFramework::HomeLoom::Log::Write(priority, VMFramework::HomeLoom::Log::kTag, place, __VA_ARGS__); \
        }                                                                                                      \
    } while (false)

// The call trace of the frame: "Entered" here, "Left" at the end of the scope.
#define HL_TRACE(object) const VMFramework::HomeLoom::Log::CallTrace hlCallTrace({__FILE__, __func__, __LINE__}, object)

// What every catch shell does with what it caught (the shells are in Guarded.h).
#define HL_LOG_EXCEPTION(exception) \
    VMFramework::HomeLoom::Log::WriteException({__FILE__, HL_FUNCTION, __LINE__}, exception)

namespace VMFramework::HomeLoom::Log {

inline constexpr char kTag[] = "VM_HOMELOOM_PLUGIN";

struct Place {
    const char* file;
    const char* function;  // of a lambda the signature
    int line;
};

constexpr bool IsLambda(const char* function) {
    return __builtin_strcmp(function, "operator()") == 0;
}

inline bool IsTaken(log_priority priority, const char* tag) {
    return dlog_is_enabled(priority, tag) || dlog_trace_is_active();
}

void Write(log_priority priority, const char* tag, const Place& place, const char* format, ...)
    __attribute__((format(printf, 4, 5)));

/// Logs "Exception !! - ..." at error level, with the code if it is a CodedException.
void WriteException(const Place& place, const std::exception& exception);

class CallTrace {
public:
    CallTrace(const Place& place, const void* object);
    ~CallTrace();
    CallTrace(const CallTrace&) = delete;
    CallTrace& operator=(const CallTrace&) = delete;

private:
    void _Write(const char* what) const;

    const Place _place;
    const void* const _object;
};

}  // namespace VMFramework::HomeLoom::Log

#endif
