#include "Port.h"

#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <utility>

#include "Controls.h"
#include "Parcel.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kTimeLimit(RPC_PORT_TIME_LIMIT_MS);
constexpr std::size_t kReadSize = 16 * 1024;

}  // namespace

rpc_port_s::rpc_port_s(Descriptor socket) : _socket(std::move(socket)) {}

rpc_port_s::~rpc_port_s() = default;

bool rpc_port_s::send(std::string_view bytes) {
    const std::lock_guard<std::mutex> lock(_sendMutex);
    const auto end = Clock::now() + kTimeLimit;
    while (true) {
        const ssize_t sent = ::send(descriptor(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        bytes.remove_prefix(sent > 0 ? static_cast<std::size_t>(sent) : 0);
        if (bytes.empty()) {
            return true;
        }
        const auto left = std::chrono::duration_cast<milliseconds>(end - Clock::now());
        if ((sent < 0 && errno != EAGAIN && errno != EINTR) || left.count() <= 0) {
            shutDown();  // the rest of a parcel can't be told from the beginning of another
            return false;
        }
        pollfd writable{descriptor(), POLLOUT, 0};
        poll(&writable, 1, static_cast<int>(left.count()));
    }
}

rpc_port_s::ParcelPtr rpc_port_s::receive() {
    const std::lock_guard<std::mutex> lock(_readMutex);
    const auto end = Clock::now() + kTimeLimit;
    ParcelPtr parcel = cutParcel();
    for (milliseconds left = kTimeLimit; !parcel && left.count() > 0;
         left = std::chrono::ceil<milliseconds>(end - Clock::now())) {
        pollfd readable{descriptor(), POLLIN, 0};
        poll(&readable, 1, static_cast<int>(left.count()));
        if (read() == Came::End) {
            return nullptr;
        }
        parcel = cutParcel();
    }
    return parcel;
}

// Called with the mutex held.
rpc_port_s::Came rpc_port_s::read() {
    _in.erase(0, _cut);
    _cut = 0;
    char bytes[kReadSize];
    const ssize_t size = recv(descriptor(), bytes, sizeof bytes, MSG_DONTWAIT);
    if (size > 0) {
        _in.append(bytes, static_cast<std::size_t>(size));
        return Came::Something;
    }
    if (size < 0 && (errno == EAGAIN || errno == EINTR)) {
        return Came::Nothing;
    }
    shutDown();
    return Came::End;
}

// Called with the mutex held.
rpc_port_s::ParcelPtr rpc_port_s::cutParcel() {
    const std::string_view rest = std::string_view(_in).substr(_cut);
    constexpr std::size_t kHeaderSize = rpc_port_parcel_s::kHeaderSize;
    if (rest.size() < kHeaderSize) {
        return nullptr;
    }
    const std::size_t length = rpc_port_parcel_s::lengthIn(rest.data());
    if (length > RPC_PORT_PARCEL_MAX) {
        shutDown();
        return nullptr;
    }
    if (rest.size() - kHeaderSize < length) {
        return nullptr;
    }
    auto parcel = std::make_unique<rpc_port_parcel_s>(rest.substr(kHeaderSize, length));
    _cut += kHeaderSize + length;
    return parcel;
}

rpc_port_s::Came rpc_port_s::fill() {
    const std::lock_guard<std::mutex> lock(_readMutex);
    return read();
}

rpc_port_s::ParcelPtr rpc_port_s::next() {
    const std::lock_guard<std::mutex> lock(_readMutex);
    return cutParcel();
}

void rpc_port_s::offer(ParcelPtr parcel) {
    const std::lock_guard<std::mutex> lock(_offerMutex);
    _offered = std::move(parcel);
}

rpc_port_s::ParcelPtr rpc_port_s::takeOffered() {
    const std::lock_guard<std::mutex> lock(_offerMutex);
    return std::move(_offered);
}

void rpc_port_s::shutDown() {
    shutdown(descriptor(), SHUT_RDWR);
}
