#include <chrono>
#include <optional>

#include <clock/Clock.h>
#include <fmt/chrono.h>
#include <fmt/format.h>

#include "Command.h"
#include "CommandError.h"
#include "Desk.h"
#include "Output.h"
#include "Text.h"

namespace homeloom::tv {

namespace {

// Ten years, for which the simulated cloud's certificates are good.
constexpr std::chrono::hours kLongest{24 * 3650};

/// Tells the clock's time, turns it, or says who does.
void time(Desk& desk, const Words& words) {
    if (words.empty()) {
        const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
        desk.out().say(fmt::format("{:%F %T}, {}", fmt::localtime(now), clock::isStanding() ? "auto" : "real"));
        return;
    }
    if (words.size() > 1) {
        throw UsageError();
    }
    if (words[0] == "auto" || words[0] == "real") {
        words[0] == "auto" ? clock::stand() : clock::run();
        return;
    }
    const auto duration = words[0][0] == '+' ? parseDuration(words[0].substr(1), kLongest) : std::nullopt;
    if (!duration) {
        throw CommandError(fmt::format("\"{}\" is no time to go on by: +31s, +500ms, +2m, +3h, +7d", words[0]));
    }
    desk.pump();
    clock::advance(*duration);
    desk.settle();
}

}  // namespace

std::vector<Command> simTimeCommands() {
    return {
        {"sim time",
         "[+DURATION|auto|real]",
         "tells the time; or has all happen at once that happens in that time; or lets the clock go on by itself "
         "whenever "
         "nobody works, or as the machine's does",
         {"sim time", "sim time +31s", "sim time auto"},
         time,
         {Hint({"auto", "real"})}},
    };
}

}  // namespace homeloom::tv
