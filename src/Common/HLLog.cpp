// Formats a log line once and writes it to both sinks, with the place that it comes from.
#include "Common/HLLog.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "Common/CException.h"

namespace VMFramework::HomeLoom::Log {

namespace {

// The trace sink's lines are cut to this size; the log's are not.
constexpr std::size_t kTraceLineSize = 1024;

const char* BaseName(const char* path) {
    const char* slash = std::strrchr(path, '/');
    return slash != nullptr ? slash + 1 : path;
}

// "Queue" of "VMFramework::HomeLoom::Queue<void (*)(int)>(int)::<lambda()>".
std::string_view NameOf(std::string_view function) {
    std::size_t begin = 0;
    std::size_t end = 0;
    int depth = 0;  // within template arguments
    for (std::size_t i = 0; i < function.size() && (depth > 0 || function[i] != '('); ++i) {
        if (function[i] == '<') {
            ++depth;
        } else if (function[i] == '>') {
            --depth;
        } else if (depth == 0) {
            end = i + 1;
            begin = function[i] == ' ' || function[i] == ':' ? end : begin;
        }
    }
    return function.substr(begin, end - begin);
}

std::string Format(const char* format, va_list arguments) {
    va_list measured;
    va_copy(measured, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    if (length <= 0) {
        return {};
    }
    std::string text(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

}  // namespace

void Write(log_priority priority, const char* tag, const Place& place, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::string message = Format(format, arguments);
    va_end(arguments);

    if (dlog_trace_is_active()) {
        char line[kTraceLineSize];
        std::snprintf(line, sizeof(line), "[HLPLUGIN] %s", message.c_str());
        dlog_trace_write(line);
    }
    const std::string_view name = NameOf(place.function);
    dlog_print(priority, tag, "%s : %.*s(%d)  %s", BaseName(place.file), static_cast<int>(name.size()), name.data(),
               place.line, message.c_str());
}

void WriteException(const Place& place, const std::exception& exception) {
    if (!IsTaken(DLOG_ERROR, kTag)) {
        return;
    }
    if (const auto* coded = dynamic_cast<const CodedException*>(&exception)) {
        Write(DLOG_ERROR, kTag, place, "Exception !! - %s(error_code:%d)", coded->what(), coded->GetErrorCode());
    } else {
        Write(DLOG_ERROR, kTag, place, "Exception !! - %s", exception.what());
    }
}

CallTrace::CallTrace(const Place& place, const void* object) : _place(place), _object(object) {
    _Write("Entered");
}

CallTrace::~CallTrace() {
    _Write("Left");
}

void CallTrace::_Write(const char* what) const {
    if (dlog_is_enabled(DLOG_DEBUG, kTag)) {
        dlog_print(DLOG_DEBUG, kTag, "%s :[%p] %s(%d) > %s", BaseName(_place.file), _object, _place.function,
                   _place.line, what);
    }
}

}  // namespace VMFramework::HomeLoom::Log
