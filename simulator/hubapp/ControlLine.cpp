#include "ControlLine.h"

#include <glib-unix.h>
#include <sys/socket.h>

#include <stdexcept>
#include <utility>

ControlLine::ControlLine(int descriptor, Obey obey, std::function<void()> closed)
    : _descriptor(descriptor), _obey(std::move(obey)), _closed(std::move(closed)) {
    const GUnixFDSourceFunc call = [](gint, GIOCondition, gpointer self) -> gboolean {
        static_cast<ControlLine*>(self)->read();
        return G_SOURCE_CONTINUE;
    };
    _source = g_unix_fd_add(_descriptor, G_IO_IN, call, this);
}

ControlLine::~ControlLine() {
    g_source_remove(_source);
    if (_idle != 0) {
        g_source_remove(_idle);
    }
}

void ControlLine::read() {
    char bytes[4096];
    const ssize_t size = recv(_descriptor, bytes, sizeof bytes, 0);
    if (size <= 0) {
        _closed();
        return;
    }
    _in.append(bytes, static_cast<std::size_t>(size));
    for (std::size_t end = _in.find('\n'); end != std::string::npos; end = _in.find('\n')) {
        const std::string line = _in.substr(0, end);
        _in.erase(0, end + 1);
        take(line);
    }
}

void ControlLine::take(const std::string& line) {
    const JsonValue command = JsonValue::Create(line);
    if (command["do"].asString() == "idle") {
        const GSourceFunc call = [](gpointer data) -> gboolean {
            auto& self = *static_cast<ControlLine*>(data);
            self._idle = 0;
            self.answer(JsonValue::CreateObject());
            return G_SOURCE_REMOVE;
        };
        _idle = g_idle_add_full(G_PRIORITY_LOW, call, this, nullptr);
        return;
    }
    JsonValue document = JsonValue::CreateObject();
    try {
        document.set("value", _obey(command));
    } catch (const std::exception& e) {
        document.set("error", e.what());
    }
    answer(document);
}

void ControlLine::answer(const JsonValue& document) const {
    const std::string line = document.toString() + "\n";
    std::size_t sent = 0;
    while (sent < line.size()) {
        const ssize_t size = send(_descriptor, line.data() + sent, line.size() - sent, MSG_NOSIGNAL);
        if (size <= 0) {
            return;
        }
        sent += static_cast<std::size_t>(size);
    }
}
