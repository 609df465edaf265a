#ifndef HOMELOOM_DESKTOP_RPC_PORT_DESCRIPTOR_H
#define HOMELOOM_DESKTOP_RPC_PORT_DESCRIPTOR_H

#include <unistd.h>

#include <utility>

namespace homeloom::desktop::rpc {

/// Owns a file descriptor, or none.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int number) : _number(number) {}
    Descriptor(Descriptor&& other) noexcept : _number(std::exchange(other._number, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(_number, other._number);
        return *this;
    }
    ~Descriptor() {
        if (_number >= 0) {
            close(_number);
        }
    }

    explicit operator bool() const { return _number >= 0; }
    int number() const { return _number; }

private:
    int _number = -1;
};

}  // namespace homeloom::desktop::rpc

#endif
