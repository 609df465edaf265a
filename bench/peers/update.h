#ifndef HOMELOOM_BENCH_PEERS_UPDATE_H
#define HOMELOOM_BENCH_PEERS_UPDATE_H

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

// What every peer carries, and how all of them are measured: the washer's update of bench/Update.cpp, a hundred on the
// way at once, the median of five batches.
namespace peers {

constexpr int kOnTheWay = 100;
constexpr int kBatches = 5;
constexpr int kBatch = 20000;

constexpr const char* kUpdates[] = {
    R"({"x.com.norvane.da.state":"Run","x.com.norvane.da.progress":"Wash","x.com.norvane.da.remainingMinutes":42})",
    R"({"x.com.norvane.da.state":"Pause","x.com.norvane.da.progress":"Wash","x.com.norvane.da.remainingMinutes":42})"};

/// Runs the batches and prints the median of updates per second. 'send' sends one update; 'receive' waits and answers
/// how many have arrived since it was last asked.
template <typename Send, typename Receive>
void measure(Send send, Receive receive) {
    std::vector<double> rates;
    for (int batch = 0; batch <= kBatches; ++batch) {
        const auto begin = std::chrono::steady_clock::now();
        int sent = 0;
        for (int arrived = 0; arrived < kBatch; arrived += receive()) {
            for (; sent < kBatch && sent - arrived < kOnTheWay; ++sent) {
                send(kUpdates[sent % 2]);
            }
        }
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
        rates.push_back(kBatch / taken.count());
    }
    rates.erase(rates.begin());  // the first one warms up
    std::sort(rates.begin(), rates.end());
    std::printf("%.0f\n", rates[kBatches / 2]);
}

}  // namespace peers

#endif
