#ifndef HOMELOOM_BENCH_SUPPORT_FIGURES_H
#define HOMELOOM_BENCH_SUPPORT_FIGURES_H

#include <chrono>
#include <string>
#include <vector>

namespace bench {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

/// What was measured, beside a floor that was measured in the same run: machines differ, ratios less.
struct Figure {
    std::string name;
    std::string measured;
    std::string floorName;
    std::string floor;
    double ratio;        // measured to floor, larger meaning slower
    std::string wanted;  // empty: no target
    bool isMet = true;
};

/// Prints one line of the table.
void print(const Figure& figure);
/// For main(): 0 if every figure that was printed met its target.
int exitStatus();

/// "12.3 us", "4.56 ms", "1.20 s".
std::string text(Seconds time);
std::string perSecond(double rate);

Seconds median(std::vector<Seconds> times);
/// The median time of one call, over `rounds` rounds of `calls` calls.
template <typename Function>
Seconds timeOf(int rounds, int calls, Function function) {
    std::vector<Seconds> times;
    for (int round = 0; round < rounds; ++round) {
        const auto start = Clock::now();
        for (int call = 0; call < calls; ++call) {
            function();
        }
        times.push_back(Seconds(Clock::now() - start) / calls);
    }
    return median(std::move(times));
}

}  // namespace bench

#endif
