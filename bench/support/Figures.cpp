#include "support/Figures.h"

#include <algorithm>
#include <cstdio>

namespace bench {

namespace {

bool allMet = true;

std::string formatted(const char* format, double value) {
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

}  // namespace

void print(const Figure& figure) {
    const std::string target = figure.wanted.empty() ? "" : figure.wanted + (figure.isMet ? ", met" : ", MISSED");
    std::printf("| %-50s | %12s | %-38s | %12s | %8.2f | %-22s |\n", figure.name.c_str(), figure.measured.c_str(),
                figure.floorName.c_str(), figure.floor.c_str(), figure.ratio, target.c_str());
    std::fflush(stdout);
    allMet = allMet && figure.isMet;
}

int exitStatus() {
    return allMet ? 0 : 1;
}

std::string text(Seconds time) {
    const double seconds = time.count();
    if (seconds >= 1) {
        return formatted("%.2f s", seconds);
    }
    return seconds >= 1e-3 ? formatted("%.2f ms", seconds * 1e3) : formatted("%.2f us", seconds * 1e6);
}

std::string perSecond(double rate) {
    return formatted("%.0f /s", rate);
}

Seconds median(std::vector<Seconds> times) {
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

}  // namespace bench
