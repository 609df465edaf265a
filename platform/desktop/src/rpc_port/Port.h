#ifndef HOMELOOM_DESKTOP_RPC_PORT_PORT_H
#define HOMELOOM_DESKTOP_RPC_PORT_PORT_H

#include <rpc_port.h>

#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "Descriptor.h"

/// One end of a stream socket over which parcels go in both directions.
///
/// A port is read in one of two ways: by whoever waits in receive(), or by a main loop that calls fill() and next() and
/// offers each parcel to a callback, which takes it.
struct rpc_port_s {
public:
    using ParcelPtr = std::unique_ptr<rpc_port_parcel_s>;

    using Descriptor = homeloom::desktop::rpc::Descriptor;

    explicit rpc_port_s(Descriptor socket);
    ~rpc_port_s();
    rpc_port_s(const rpc_port_s&) = delete;
    rpc_port_s& operator=(const rpc_port_s&) = delete;

    int descriptor() const { return _socket.number(); }

    /// False when that didn't succeed within the limit, which ends the connection.
    bool send(std::string_view bytes);
    /// Waits, but not for longer than the limit. Null when nothing came.
    ParcelPtr receive();

    enum class Came { Something, Nothing, End };
    /// Reads what is there.
    Came fill();
    /// The next parcel that is there as a whole. A length that no parcel has ends the connection.
    ParcelPtr next();
    void offer(ParcelPtr parcel);
    bool isOffering() const { return _isOffering; }
    ParcelPtr takeOffered();
    /// Makes it a port whose parcels are offered.
    void beginOffering() { _isOffering = true; }

    /// Ends the connection for both sides, and with it every wait. The socket remains until the port goes.
    void shutDown();

private:
    Came read();
    ParcelPtr cutParcel();

    const Descriptor _socket;
    bool _isOffering = false;
    std::mutex _sendMutex;
    std::mutex _readMutex;
    std::string _in;       // what came
    std::size_t _cut = 0;  // how much of it was cut into parcels
    std::mutex _offerMutex;
    ParcelPtr _offered;
};

#endif
