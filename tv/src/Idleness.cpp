#include "Idleness.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <utility>

#include <simulator/HubApp.h>

namespace homeloom::tv {

namespace {

// The door's threads only take commands for this one, and tell what happened.
constexpr char kDoorThread[] = "(door ";

// The state letter stands behind the thread's name, which may hold brackets itself.
bool isBusy(const std::filesystem::path& task) {
    std::ifstream file(task / "stat");
    std::string line;
    std::getline(file, line);
    const std::size_t nameEnd = line.rfind(')');
    if (nameEnd == std::string::npos || nameEnd + 2 >= line.size()) {
        return false;  // it has just ended
    }
    if (line.find(kDoorThread) != std::string::npos) {
        return false;
    }
    const char state = line[nameEnd + 2];
    return state == 'R' || state == 'D';
}

bool othersRest(const std::string& process) {
    const std::string self = std::to_string(gettid());
    std::error_code error;
    for (const auto& task : std::filesystem::directory_iterator("/proc/" + process + "/task", error)) {
        if (task.path().filename() != self && isBusy(task.path())) {
            return false;
        }
    }
    return true;
}

}  // namespace

Idleness::Idleness(std::function<std::uint64_t()> activity)
    : _activity(std::move(activity)), _lastActivity(_activity()), _since(Clock::now()) {}

void Idleness::restart() {
    _lastActivity = _activity();
    _since = Clock::now();
}

std::chrono::milliseconds Idleness::restingFor() {
    // The hub control application works for the same commands.
    const int hub = simulator::HubApp::instance().processId();
    const bool rests = othersRest("self") && (hub == 0 || othersRest(std::to_string(hub)));
    const std::uint64_t activity = _activity();
    const Clock::time_point now = Clock::now();
    if (!rests || activity != _lastActivity) {
        _since = now;
        _lastActivity = activity;
    }
    return std::chrono::duration_cast<std::chrono::milliseconds>(now - _since);
}

}  // namespace homeloom::tv
