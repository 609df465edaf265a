#ifndef HOMELOOM_SWEEP_OPTIONS_H
#define HOMELOOM_SWEEP_OPTIONS_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <desktop/Log.h>

#include "Fault.h"
#include "Stage.h"

namespace homeloom::sweep {

inline constexpr int kExitSuccess = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;

struct Options {
    StageOptions stage;
    std::string script;  // file; empty: the standard one
    int jobs = 1;
    std::chrono::seconds limit{120};

    // The sweep
    std::vector<std::string> only;
    int depth = 4;
    std::string quarter;  // what chooses it; empty: everything
    bool plan = false;
    std::string junit;  // file; empty: none

    // Storms
    struct Seeds {
        std::uint64_t first = 0;
        std::uint64_t last = 0;
    };
    std::optional<Seeds> storm;
    int length = 40;
    bool shrink = false;
    bool printsStorm = false;

    int unload = 0;  // moments; 0: none

    // One run, in this process
    std::vector<Place> faults;
    bool isOneRun = false;
    bool commandsMayFail = false;
    std::vector<int> unloadAt;
    std::optional<log_priority> log;
    int verdicts = -1;  // the file to which they go; -1: they are printed
};

/// The command line's options; or the exit status with which it is all done, its text having been printed.
std::variant<Options, int> parseOptions(int argc, char** argv);

/// The options that a run in a process of its own needs to meet the same home, script and plug-in.
std::vector<std::string> commonArguments(const Options& options);

}  // namespace homeloom::sweep

#endif
