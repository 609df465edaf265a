#ifndef HOMELOOM_COMMON_SHAREDTEXT_H
#define HOMELOOM_COMMON_SHAREDTEXT_H

#include <atomic>
#include <string>
#include <utility>

namespace VMFramework::HomeLoom {

/// A text that is kept once, however many hold it: the names of models, types, rooms and resources repeat through a
/// home. It is as large as a pointer and never changes; an assignment holds another one. To be had in place of a
/// std::string only where a text is seldom new, since a new one is looked up among all.
///
/// What is thread-safe with a std::shared_ptr is so here.
class SharedText {
public:
    SharedText() = default;
    explicit SharedText(const std::string& text);
    SharedText(const SharedText& other) noexcept : _kept(other._kept) {
        if (_kept != nullptr) {
            _kept->second.fetch_add(1, std::memory_order_relaxed);
        }
    }
    SharedText(SharedText&& other) noexcept : _kept(std::exchange(other._kept, nullptr)) {}
    SharedText& operator=(SharedText other) noexcept {
        std::swap(_kept, other._kept);
        return *this;
    }
    /// Looks nothing up if it is the same text.
    SharedText& operator=(const std::string& text) { return get() == text ? *this : *this = SharedText(text); }
    ~SharedText() {
        if (_kept != nullptr) {
            release();
        }
    }

    const std::string& get() const { return _kept != nullptr ? _kept->first : kEmpty; }

private:
    /// The text and the number of its holders.
    using Kept = std::pair<const std::string, std::atomic<unsigned>>;
    struct Texts;
    static Texts texts;
    static const std::string kEmpty;

    void release() noexcept;

    Kept* _kept = nullptr;  // null for the empty text
};

}  // namespace VMFramework::HomeLoom

#endif
