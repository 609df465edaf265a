#ifndef HOMELOOM_SIMULATOR_HUBAPP_PARCELS_H
#define HOMELOOM_SIMULATOR_HUBAPP_PARCELS_H

#include <rpc_port.h>

#include <optional>
#include <string>

#include "Method.h"

/// A parcel to be sent, value by value.
class OutgoingParcel {
public:
    explicit OutgoingParcel(Method method);
    ~OutgoingParcel();
    OutgoingParcel(const OutgoingParcel&) = delete;
    OutgoingParcel& operator=(const OutgoingParcel&) = delete;

    OutgoingParcel& operator<<(int value);
    OutgoingParcel& operator<<(bool value);
    OutgoingParcel& operator<<(const std::string& value);
    OutgoingParcel& operator<<(const Delegate& value);
    std::string bytes() const;

private:
    rpc_port_parcel_h _parcel = nullptr;
};

// The next value of a parcel that came. Throw std::runtime_error if there is no such.
int readInt(rpc_port_parcel_h parcel);
std::string readText(rpc_port_parcel_h parcel);
Delegate readDelegate(rpc_port_parcel_h parcel);

#endif
