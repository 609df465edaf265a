#include "Plan.h"

#include <algorithm>
#include <cstdint>

namespace homeloom::sweep {

namespace {

constexpr std::uint64_t kQuarters = 4;

// The same on every machine, which std::hash needn't be.
std::uint64_t hashOf(const std::string& text) {
    std::uint64_t hash = 14695981039346656037U;
    for (const char c : text) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
    }
    return hash >> 32U;
}

// From the first to the last, equally spread.
std::vector<int> callsOf(int count, int depth) {
    std::vector<int> calls;
    const int wanted = depth == 0 ? count : std::min(count, depth);
    for (int i = 0; i < wanted; ++i) {
        calls.push_back(wanted == 1 ? 1 : 1 + static_cast<int>(std::int64_t{count - 1} * i / (wanted - 1)));
    }
    return calls;
}

}  // namespace

std::vector<Place> planOf(const Census& census, int depth, const std::vector<std::string>& only) {
    std::vector<Place> places;
    for (const auto& [function, calls] : census) {
        if (!only.empty() && std::find(only.begin(), only.end(), function) == only.end()) {
            continue;
        }
        const bool hasSingleCalls = partyOf(function) != Party::Hub;
        for (const FaultKind kind : calls.faults) {
            for (const int call : hasSingleCalls ? callsOf(calls.count, depth) : std::vector<int>()) {
                places.push_back({function, call, kind});
            }
            if (calls.count > 1 || !hasSingleCalls) {
                places.push_back({function, 0, kind});
            }
        }
    }
    return places;
}

int quarterOf(const std::string& text) {
    return static_cast<int>(hashOf(text) % kQuarters) + 1;
}

std::vector<Place> placesIn(int quarter, const std::vector<Place>& places) {
    std::vector<Place> chosen;
    std::copy_if(places.begin(), places.end(), std::back_inserter(chosen),
                 [&](const Place& place) { return quarterOf(place.text()) == quarter; });
    return chosen;
}

}  // namespace homeloom::sweep
