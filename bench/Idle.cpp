// How often a plug-in at rest wakes the processor. Five of its threads look twice a second whether they are to end;
// nothing else has a reason to wake.
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "support/Desk.h"
#include "support/Figures.h"
#include "support/Homes.h"

namespace {

constexpr auto kWatched = std::chrono::seconds(5);
constexpr double kWanted = 10;

// Each wait of another thread ended once for each time that the thread gave the processor away by itself.
long countWaits() {
    const std::string self = std::to_string(gettid());
    long waits = 0;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
        if (thread.path().filename() == self) {
            continue;
        }
        std::ifstream status(thread.path() / "status");
        for (std::string line; std::getline(status, line);) {
            if (line.rfind("voluntary_ctxt_switches:", 0) == 0) {
                waits += std::stol(line.substr(line.find(':') + 1));
            }
        }
    }
    return waits;
}

double wakesPerSecond() {
    bench::Desk::waitForRest();
    const long before = countWaits();
    const auto start = bench::Clock::now();
    std::this_thread::sleep_for(kWatched);
    return static_cast<double>(countWaits() - before) / bench::Seconds(bench::Clock::now() - start).count();
}

std::string text(double rate) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f/s", rate);
    return text;
}

}  // namespace

int main() {
    bench::Desk desk(homeloom::test::apartment());
    const double around = wakesPerSecond();  // the simulated TV's own
    desk.show();
    const double wakes = wakesPerSecond() - around;
    // Half a wake more or less is where the seconds begin and end.
    bench::print({"wake-ups of the plug-in at rest", text(wakes), "five threads, twice a second each", text(kWanted),
                  wakes / kWanted, "at most 1.05", wakes <= 1.05 * kWanted});
    return bench::exitStatus();
}
