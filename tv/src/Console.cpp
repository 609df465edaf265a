#include "Console.h"

#include <poll.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <fstream>
#include <istream>

#include <desktop/Framework.h>
#include <fmt/format.h>

#include "Command.h"
#include "Completion.h"
#include "Desk.h"
#include "DeskSettings.h"
#include "HomeText.h"
#include "Inbox.h"
#include "LineEditor.h"
#include "Output.h"
#include "ReportText.h"
#include "door/Door.h"

namespace homeloom::tv {

namespace {

// A home of ten thousand devices takes its time.
constexpr std::chrono::seconds kStartLimit{120};
constexpr char kPrompt[] = "homeloom> ";

/// Lines of a pipe, as they come; what comes from elsewhere meanwhile is told.
class PipeLines {
public:
    template <typename WokenUp>
    bool next(std::string& line, int wakeupFile, WokenUp wokenUp) {
        while (true) {
            const std::size_t end = _buffer.find('\n');
            if (end != std::string::npos || (_ended && !_buffer.empty())) {
                line = _buffer.substr(0, end);
                _buffer.erase(0, end == std::string::npos ? end : end + 1);
                return true;
            }
            if (_ended) {
                return false;
            }
            pollfd files[] = {{STDIN_FILENO, POLLIN, 0}, {wakeupFile, POLLIN, 0}};
            poll(files, 2, -1);
            if (files[1].revents != 0 && !wokenUp()) {
                return false;
            }
            if (files[0].revents != 0) {
                fill();
            }
        }
    }

private:
    void fill() {
        char bytes[4096];
        const ssize_t count = read(STDIN_FILENO, bytes, sizeof bytes);
        _ended = count <= 0;
        _buffer.append(bytes, count > 0 ? static_cast<std::size_t>(count) : 0);
    }

    std::string _buffer;
    bool _ended = false;
};

}  // namespace

Console::Console(const Arguments& arguments, Desk& desk, Inbox& inbox, Door* door, std::string title)
    : _arguments(arguments), _desk(desk), _inbox(inbox), _door(door), _title(std::move(title)) {}

bool Console::isInteractive(const Arguments& arguments) {
    return arguments.script.empty() && arguments.commands.empty() && arguments.replay.empty() &&
           isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0 && !arguments.json;
}

bool Console::run() {
    try {
        showStart();
        openDoor();
        if (!_arguments.script.empty()) {
            runScript(_arguments.script);
        }
        runArguments();
        if (_arguments.script.empty() && _arguments.commands.empty() && _arguments.replay.empty()) {
            isInteractive(_arguments) ? runTerminal() : runPipe();
        }
        if (_door != nullptr && !isInteractive(_arguments)) {
            serve();
        }
    } catch (const std::exception& e) {
        _allSucceeded = false;
        fmt::print(stderr, "homeloom-tv: {}\n", e.what());
    }
    return _allSucceeded;
}

void Console::showStart() {
    Output& out = _desk.out();
    out.mute(true);
    _desk.settle(kStartLimit);
    // The TV's home screen asks for the list when it opens. By then the plug-in knows what to show of each device; its
    // own lists may have overtaken that. The bare stream of calls holds nothing that the plug-in wasn't asked for.
    if (_desk.home().isKnown() && (!_arguments.json || _arguments.settled)) {
        desktop::framework::requestDeviceList();
        _desk.settle(kStartLimit);
    }
    out.mute(false);
    out.endStart(_desk.home());
    if (_arguments.json) {
        return;
    }
    out.say(out.style().paint(Tone::Strong, _title));
    if (_desk.loadStatus() < 0) {
        out.say(isDisclaimerAccepted()
                    ? "The plug-in has reported no load status."
                    : "The disclaimer is not accepted: the plug-in keeps still. \"sim disclaimer on\" accepts it.");
    } else {
        out.say(fmt::format("The plug-in is {}.", loadStatusText(_desk.loadStatus())));
    }
    if (_desk.home().isKnown()) {
        out.say("");
        showRooms(out, _desk.home());
        out.say(out.style().paint(Tone::Strong, "Scenes"));
        showScenes(out, _desk.home());
        out.say(out.style().paint(Tone::Strong, "Routines"));
        showRoutines(out, _desk.home());
        out.say("");
    }
}

void Console::openDoor() {
    if (_door != nullptr) {
        const std::string address = _door->open();
        fmt::print(_arguments.json ? "{{\"door\":\"{}\"}}\n" : "{}\n", address);
        std::fflush(stdout);
    }
}

void Console::runArguments() {
    for (const std::string& command : _arguments.commands) {
        takeInbox();
        if (!_desk.hasQuit()) {
            runLine(command);
        }
    }
}

void Console::runScript(const std::string& path) {
    std::ifstream file(path);
    for (std::string line; !_desk.hasQuit() && std::getline(file, line);) {
        runLine(line);
        takeInbox();
    }
}

void Console::runPipe() {
    PipeLines lines;
    std::string line;
    const auto wokenUp = [this] {
        takeInbox();
        return !_inbox.isInterrupted() && !_desk.hasQuit();
    };
    while (!_desk.hasQuit() && lines.next(line, _inbox.wakeupFile(), wokenUp)) {
        runLine(line);
    }
}

void Console::runTerminal() {
    LineEditor::Callbacks callbacks;
    callbacks.complete = [this](const std::string& line) { return completions(line, _desk.home()); };
    callbacks.wokenUp = [this] { takeInbox(); };
    callbacks.isInterrupted = [this] { return _inbox.takeInterruption() || _desk.hasQuit(); };
    LineEditor editor(kPrompt, historyFile(), _inbox.wakeupFile(), callbacks);
    while (!_desk.hasQuit()) {
        callbacks.wokenUp();  // what came while a command ran needs no new prompt
        const auto line = editor.read();
        if (!line) {
            break;
        }
        runLine(*line);
    }
    _allSucceeded = true;
}

void Console::runLine(const std::string& line) {
    const std::size_t start = line.find_first_not_of(" \t\r");
    if (start == std::string::npos || line[start] == '#') {
        return;
    }
    const std::string command = line.substr(start, line.find_last_not_of(" \t\r") + 1 - start);
    _allSucceeded = tv::runLine(_desk, command) && _allSucceeded;
}

void Console::takeInbox() {
    _inbox.takeWakeups();
    _desk.pump();
    while (const Inbox::Job job = _desk.hasQuit() ? nullptr : _inbox.takeJob()) {
        job(_desk);
    }
}

// Whoever gave the commands has no more, and others may come. Nobody need read what it writes from now on: who started
// it wanted the address, and a pipe that nobody empties would hold it up.
void Console::serve() {
    _desk.out().mute(true);
    while (!_desk.hasQuit() && !_inbox.isInterrupted()) {
        pollfd file{_inbox.wakeupFile(), POLLIN, 0};
        poll(&file, 1, -1);
        takeInbox();
    }
}

}  // namespace homeloom::tv
