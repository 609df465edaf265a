#ifndef HOMELOOM_BENCH_SUPPORT_INSTRUCTIONS_H
#define HOMELOOM_BENCH_SUPPORT_INSTRUCTIONS_H

namespace bench {

/// Whether this program was asked for instructions instead of times: "--instructions". It then runs in callgrind, which
/// lets one thread run at a time and counts what all of them do.
bool isCountingInstructions(int count, char** arguments);

/// What callgrind counted before is forgotten.
void beginCount();
/// Callgrind writes down what it counted since beginCount(); scripts/bench divides it by `times` and shows it under
/// that name.
void endCount(const char* name, int times);

/// While one lives, what this thread does is not counted.
class CountPause {
public:
    CountPause();
    ~CountPause();
    CountPause(const CountPause&) = delete;
    CountPause& operator=(const CountPause&) = delete;
};

}  // namespace bench

#endif
