#ifndef HOMELOOM_DESKTOP_VMF_SPARES_H
#define HOMELOOM_DESKTOP_VMF_SPARES_H

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace homeloom::desktop {

/// Ended objects of one thread, to be used again with the memory that their texts and lists have. Who takes one sets
/// all of it but its handle: they keep their places in the table. Under the address sanitizer none is kept, so that it
/// sees who uses an ended one.
template <typename Table, typename Object, std::size_t MAX_SPARES>
class Spares {
public:
    explicit Spares(Table& table) : _table(table) {}
    ~Spares() {
        for (const auto& object : _objects) {
            _table.leave(*object);
        }
    }
    Spares(const Spares&) = delete;
    Spares& operator=(const Spares&) = delete;

    /// Null if there is none.
    std::unique_ptr<Object> take() {
        if (_objects.empty()) {
            return nullptr;
        }
        std::unique_ptr<Object> object = std::move(_objects.back());
        _objects.pop_back();
        return object;
    }

    /// Takes a resting object, or ends it if there are enough.
    void give(std::unique_ptr<Object> object) {
#ifndef __SANITIZE_ADDRESS__
        if (_objects.size() < MAX_SPARES) {
            _objects.push_back(std::move(object));
            return;
        }
#endif
        _table.leave(*object);
    }

private:
    Table& _table;
    std::vector<std::unique_ptr<Object>> _objects;
};

}  // namespace homeloom::desktop

#endif
