#include "Soak.h"

#include <malloc.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <thread>

#include <desktop/Guard.h>
#include <fmt/format.h>
#include <simulator/Agent.h>
#include <simulator/Cloud.h>

#include "Command.h"
#include "CommandError.h"
#include "Desk.h"
#include "Script.h"
#include "Stage.h"

namespace homeloom::sweep {

namespace {

constexpr int kEventsOfAnHour = 60000;
constexpr int kStepsOfAnHour = 120;
constexpr std::chrono::seconds kStep{30};
constexpr int kDevices = 200;
constexpr int kHoursOfALine = 12;
// Heap may differ by what buffers have grown to meanwhile.
constexpr double kHeapTolerance = 1.02;

/// What the process holds when it rests.
struct Holdings {
    std::size_t heap = 0;
    std::size_t files = 0;
    int threads = 0;
};

Holdings holdingsNow() {
    namespace fs = std::filesystem;
    simulator::Cloud::instance().resetRequests();
    const struct mallinfo2 info = mallinfo2();
    const auto files = std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    return {info.uordblks + info.hblkhd, static_cast<std::size_t>(files), threadCount()};
}

/// A day's troubles, one for each of these hours.
const Script& troubleOf(int hour) {
    static const std::vector<Script> troubles{
        {"sim sign-out", "sim sign-in"},
        {"sim update start", "sim update end"},
        {"sim drop homeloom_core_get_scene_list_async#1", "scan", "sim clear"},
        {"sim agent io-error", "sim agent connected"},
        {"sim fail homeloom_client_get_remote_attributes -5 20", "scan", "sim clear"},
        {"sim hub kill", "sim hub start"},
        {"sim sign-in guest@home.example", "sim sign-in mina@home.example"},
        {"sim delay homeloom_core_get_device_list_async 31s 1", "scan"},
    };
    return troubles[static_cast<std::size_t>(hour) % troubles.size()];
}

class Life {
public:
    Life(tv::Desk& desk, const simulator::Home& home) : _desk(desk), _home(home) {}

    void liveAnHour(int hour) {
        for (int step = 0; step < kStepsOfAnHour; ++step) {
            for (int event = 0; event < kEventsOfAnHour / kStepsOfAnHour; ++event) {
                moveDevice();
            }
            letTimePass();
        }
        for (const std::string& line : troubleOf(hour)) {
            try {
                tv::runCommand(_desk, line);
            } catch (const tv::CommandError&) {
                // It is what goes wrong that is wanted.
            }
        }
        letTimePass();
    }

    long events() const { return _events; }

private:
    // The sleep ends when everything that is to happen meanwhile has happened.
    void letTimePass() {
        std::this_thread::sleep_for(kStep);
        _desk.pump();
    }

    void moveDevice() {
        const simulator::Device& device = _home.devices[_random() % _home.devices.size()];
        const simulator::Resource& resource = device.resources[_random() % device.resources.size()];
        const simulator::Property& property = resource.properties[_random() % resource.properties.size()];
        simulator::Agent::instance().set(device.id, resource.uri, property.name, valueFor(property));
        ++_events;
    }

    std::string valueFor(const simulator::Property& property) {
        if (property.value == "true" || property.value == "false") {
            return _random() % 2 == 0 ? "true" : "false";
        }
        const bool isText = property.value.compare(0, 1, "\"") == 0;
        return isText ? (_random() % 2 == 0 ? "Run" : "Ready") : std::to_string(_random() % 100);
    }

    tv::Desk& _desk;
    const simulator::Home& _home;
    std::minstd_rand _random;
    long _events = 0;
};

void printLine(int hour, long events, const Holdings& held) {
    fmt::print("{:>6} {:>12} {:>10.0f} {:>8} {:>8}\n", hour, events, static_cast<double>(held.heap) / 1024, held.files,
               held.threads);
    std::fflush(stdout);
}

}  // namespace

int soak(const Options& options) {
    StageOptions stageOptions = options.stage;
    if (stageOptions.home.empty() && stageOptions.generate == 0) {
        stageOptions.generate = kDevices;
    }
    Stage stage(stageOptions);
    const simulator::Home home = homeOf(stageOptions);
    Holdings first;
    Holdings last;
    fmt::print("{:>6} {:>12} {:>10} {:>8} {:>8}\n", "hour", "events", "heap KiB", "files", "threads");
    const auto left = stage.perform([&](tv::Desk& desk) {
        settleStart(desk);
        Life life(desk, home);
        const auto end = machineNow() + std::chrono::minutes(options.soak);
        int hour = 0;
        do {
            life.liveAnHour(hour++);
            last = holdingsNow();
            first = hour == 1 ? last : first;
            if (hour == 1 || hour % kHoursOfALine == 0) {
                printLine(hour, life.events(), last);
            }
        } while (machineNow() < end);
        printLine(hour, life.events(), last);
    });
    for (const std::string& thing : left) {
        fmt::print("left behind: {}\n", thing);
    }
    const bool isSteady = static_cast<double>(last.heap) <= static_cast<double>(first.heap) * kHeapTolerance &&
                          last.files <= first.files && last.threads <= first.threads;
    fmt::print("{}\n",
               isSteady ? "It holds no more than after the first hour." : "It holds more than after the first hour.");
    return isSteady && left.empty() ? kExitSuccess : kExitFailure;
}

}  // namespace homeloom::sweep
