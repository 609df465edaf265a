#include "Taping.h"

#include <stdexcept>
#include <utility>

#include <fmt/format.h>

#include "Recorder.h"
#include "Replay.h"

namespace homeloom::tv {

Taping::Taping(Arguments& arguments) : _arguments(arguments) {
    if (!arguments.replay.empty()) {
        _recorded = readTape(arguments.replay);
        applyTapeOptions(*_recorded, arguments);
    }
}

Taping::~Taping() = default;

std::string Taping::homeDocument() const {
    return _recorded ? homeOfTape(*_recorded) : "";
}

void Taping::applySettings() const {
    if (_recorded) {
        applyTapeSettings(*_recorded);
    }
}

std::unique_ptr<Output> Taping::tap(std::unique_ptr<Output> behind, const simulator::Home& home) {
    Recorder::Write write;
    if (_recorded) {
        // The tape's own head stays: a home's document may have been written by hand.
        _replayed.lines.push_back(_recorded->lines.front());
        write = [this](const std::string& line) { _replayed.lines.push_back(line); };
        behind.reset();
    } else if (!_arguments.record.empty()) {
        _file.open(_arguments.record);
        if (!(_file << tapeHead(_arguments, home) << std::endl)) {
            throw std::runtime_error(fmt::format("{} can't be written", _arguments.record));
        }
        // Line by line: what led to a crash is on the tape.
        write = [this](const std::string& line) { _file << line << std::endl; };
    } else {
        return behind;
    }
    auto recorder = std::make_unique<Recorder>(std::move(write), _arguments.brief, std::move(behind));
    _recorder = recorder.get();
    return recorder;
}

bool Taping::end(bool succeeded) {
    if (_recorder != nullptr) {
        _recorder->end();
    }
    if (!_recorded) {
        if (_file.is_open() && !_file.flush()) {
            fmt::print(stderr, "homeloom-tv: {} could not be written to its end\n", _arguments.record);
            return false;
        }
        return succeeded;
    }
    return judge();
}

bool Taping::judge() const {
    if (_arguments.update) {
        writeTape(_arguments.replay, _replayed);
        return true;
    }
    const std::vector<std::string> found = tapeDifferences(*_recorded, _replayed);
    for (const std::string& difference : found) {
        fmt::print("{}\n", difference);
    }
    if (!found.empty()) {
        fmt::print("{}: {} differences\n", _arguments.replay, found.size());
    }
    return found.empty();
}

}  // namespace homeloom::tv
