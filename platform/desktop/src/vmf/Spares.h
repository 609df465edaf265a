#ifndef HOMELOOM_DESKTOP_VMF_SPARES_H
#define HOMELOOM_DESKTOP_VMF_SPARES_H

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace homeloom::desktop {

/// Ended objects of one thread, to be used again with the memory that their texts and lists have. Who takes one sets
/// all of it. Under the address sanitizer none is kept, so that it sees who uses an ended one.
template <typename Object, std::size_t MAX_SPARES>
class Spares {
public:
    std::unique_ptr<Object> take() {
        if (_objects.empty()) {
            return std::make_unique<Object>();
        }
        std::unique_ptr<Object> object = std::move(_objects.back());
        _objects.pop_back();
        return object;
    }

    void give([[maybe_unused]] std::unique_ptr<Object> object) {
#ifndef __SANITIZE_ADDRESS__
        if (_objects.size() < MAX_SPARES) {
            _objects.push_back(std::move(object));
        }
#endif
    }

private:
    std::vector<std::unique_ptr<Object>> _objects;
};

}  // namespace homeloom::desktop

#endif
