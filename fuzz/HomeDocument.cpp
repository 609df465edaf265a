// A home as people write one: it is loaded, or what is wrong with it is told.

#include <simulator/HomeLoader.h>

#include "support/Input.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        simulator::parseHome(fuzz::text(data, size));
    } catch (const simulator::HomeError& e) {
        for (const auto& mistake : e.mistakes()) {
            fuzz::require(!mistake.reason.empty(), "a mistake has a reason");
        }
    }
    return 0;
}
