#include "support/Instructions.h"

#include <cstring>
#include <string>

#if __has_include(<valgrind/callgrind.h>)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"
#include <valgrind/callgrind.h>
#pragma GCC diagnostic pop
#endif

#include "support/Desk.h"

namespace bench {

bool isCountingInstructions(int count, char** arguments) {
    return count == 2 && std::strcmp(arguments[1], "--instructions") == 0;
}

#ifdef CALLGRIND_ZERO_STATS

void beginCount() {
    CALLGRIND_ZERO_STATS;
}

void endCount(const char* name, int times) {
    const std::string trigger = std::to_string(times) + " " + name;
    CALLGRIND_DUMP_STATS_AT(trigger.c_str());
}

CountPause::CountPause() {
    CALLGRIND_TOGGLE_COLLECT;
}

CountPause::~CountPause() {
    CALLGRIND_TOGGLE_COLLECT;
}

#else

void beginCount() {
    fail("built without valgrind's header");
}

void endCount(const char*, int) {}

CountPause::CountPause() = default;
CountPause::~CountPause() = default;

#endif

}  // namespace bench
