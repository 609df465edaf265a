#ifndef HOMELOOM_SIMULATOR_HUBAPP_CONTROLLINE_H
#define HOMELOOM_SIMULATOR_HUBAPP_CONTROLLINE_H

#include <functional>
#include <string>

#include <VMFramework/JsonValue.h>

/// The desk's way to tell the program what to do: one JSON object a line over a socket, each answered by one line,
/// {"value": ...} or {"error": "..."}.
class ControlLine {
public:
    using JsonValue = VMFramework::json::JsonValue;
    /// What it throws becomes the error.
    using Obey = std::function<JsonValue(const JsonValue& command)>;

    /// `closed` is called when the other side is gone. "idle" is obeyed here: its answer comes when nothing else is to
    /// be done.
    ControlLine(int descriptor, Obey obey, std::function<void()> closed);
    ~ControlLine();
    ControlLine(const ControlLine&) = delete;
    ControlLine& operator=(const ControlLine&) = delete;

private:
    void read();
    void take(const std::string& line);
    void answer(const JsonValue& document) const;

    const int _descriptor;
    const Obey _obey;
    const std::function<void()> _closed;
    std::string _in;
    unsigned _source = 0;
    unsigned _idle = 0;
};

#endif
