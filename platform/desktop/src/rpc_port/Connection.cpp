#include "Connection.h"

#include <sys/socket.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "Controls.h"
#include "Parcel.h"

namespace homeloom::desktop::rpc {

namespace {

/// A message of one byte, with which a descriptor travels.
struct Envelope {
    Envelope() {
        message.msg_iov = &content;
        message.msg_iovlen = 1;
        message.msg_control = control;
        message.msg_controllen = CMSG_LEN(sizeof(int));  // without the padding, in which there is room for another
    }
    Envelope(const Envelope&) = delete;
    Envelope& operator=(const Envelope&) = delete;

    char byte = 0;
    iovec content{&byte, 1};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
    msghdr message{};
};

bool passDescriptor(const Descriptor& socket, const Descriptor& passed) {
    Envelope envelope;
    cmsghdr* const header = CMSG_FIRSTHDR(&envelope.message);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(sizeof(int));
    const int number = passed.number();
    std::memcpy(CMSG_DATA(header), &number, sizeof number);
    return sendmsg(socket.number(), &envelope.message, MSG_NOSIGNAL) == 1;
}

// The space is for one: the system closes what else would come.
Descriptor takeDescriptor(const Descriptor& socket) {
    Envelope envelope;
    if (recvmsg(socket.number(), &envelope.message, MSG_DONTWAIT | MSG_CMSG_CLOEXEC) != 1) {
        return Descriptor();
    }
    const cmsghdr* const header = CMSG_FIRSTHDR(&envelope.message);
    if (header == nullptr || header->cmsg_type != SCM_RIGHTS || header->cmsg_len != CMSG_LEN(sizeof(int))) {
        return Descriptor();
    }
    int number = -1;
    std::memcpy(&number, CMSG_DATA(header), sizeof number);
    return Descriptor(number);
}

}  // namespace

Connection::Connection(Descriptor mainSocket, Descriptor callbackSocket)
    : main(std::move(mainSocket)), callback(std::move(callbackSocket)) {
    countConnection(1);
}

Connection::~Connection() {
    countConnection(-1);
}

void Connection::shutDown() {
    main.shutDown();
    callback.shutDown();
}

std::optional<sockaddr_un> addressOf(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        return std::nullopt;
    }
    path.copy(address.sun_path, path.size());
    return address;
}

std::variant<std::shared_ptr<Connection>, int> connectTo(const std::string& path) {
    const auto address = addressOf(path);
    if (!address) {
        return RPC_PORT_ERROR_IO_ERROR;
    }
    // Nobody waits for an application that takes no connections.
    Descriptor mainSocket(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (connect(mainSocket.number(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address) != 0) {
        return errno == EACCES || errno == EPERM ? RPC_PORT_ERROR_PERMISSION_DENIED : RPC_PORT_ERROR_IO_ERROR;
    }
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        return RPC_PORT_ERROR_IO_ERROR;
    }
    Descriptor callbackSocket(ends[0]);
    if (!passDescriptor(mainSocket, Descriptor(ends[1]))) {
        return RPC_PORT_ERROR_IO_ERROR;
    }
    return std::make_shared<Connection>(std::move(mainSocket), std::move(callbackSocket));
}

std::shared_ptr<Connection> acceptFrom(Descriptor socket) {
    Descriptor callbackSocket = takeDescriptor(socket);
    return callbackSocket ? std::make_shared<Connection>(std::move(socket), std::move(callbackSocket)) : nullptr;
}

bool isWelcome(rpc_port_parcel_s& answer) {
    return answer.readInt32() == Connection::kWelcome;
}

}  // namespace homeloom::desktop::rpc
