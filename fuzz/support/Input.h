#ifndef HOMELOOM_FUZZ_SUPPORT_INPUT_H
#define HOMELOOM_FUZZ_SUPPORT_INPUT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// Each entry defines this. It returns 0, and whatever else it does but return is a find.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

std::string text(const std::uint8_t* data, std::size_t size);
/// An input that is several texts, with a line "----" between them: always that many, the missing ones empty.
std::vector<std::string> texts(const std::uint8_t* data, std::size_t size, std::size_t count);

/// Ends the program with a message unless the condition holds.
void require(bool condition, const char* what);

}  // namespace fuzz

#endif
