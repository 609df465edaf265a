#include "support/Input.h"

#include <cstdio>
#include <cstdlib>

namespace fuzz {

std::string text(const std::uint8_t* data, std::size_t size) {
    return std::string(reinterpret_cast<const char*>(data), size);
}

std::vector<std::string> texts(const std::uint8_t* data, std::size_t size, std::size_t count) {
    static constexpr char kBetween[] = "\n----\n";
    const std::string all = text(data, size);
    std::vector<std::string> parts;
    std::size_t begin = 0;
    while (parts.size() + 1 < count) {
        const std::size_t end = all.find(kBetween, begin);
        if (end == std::string::npos) {
            break;
        }
        parts.push_back(all.substr(begin, end - begin));
        begin = end + sizeof kBetween - 1;
    }
    parts.push_back(all.substr(begin));
    parts.resize(count);
    return parts;
}

void require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "not so: %s\n", what);
        std::abort();
    }
}

}  // namespace fuzz
