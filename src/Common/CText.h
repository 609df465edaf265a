#ifndef HOMELOOM_COMMON_CTEXT_H
#define HOMELOOM_COMMON_CTEXT_H

#include <cstdlib>
#include <memory>
#include <string>

namespace VMFramework::HomeLoom {

/// A text that a C function handed out for us to free.
struct TextFreer {
    void operator()(char* text) const noexcept { std::free(text); }
};
using OwnedText = std::unique_ptr<char, TextFreer>;

/// A copy; empty for null.
inline std::string TextOf(const char* text) {
    return text != nullptr ? text : "";
}
inline std::string TextOf(const OwnedText& text) {
    return TextOf(text.get());
}

}  // namespace VMFramework::HomeLoom

#endif
