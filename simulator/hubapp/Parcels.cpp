#include "Parcels.h"

#include <cstdlib>
#include <stdexcept>

#include <desktop/RpcServer.h>

const char* nameOf(Method method) {
    static const char* const names[] = {
        nullptr,       nullptr,      "StartOnboarding",  "StopOnboarding",      "ResetHub",
        "ResetDongle", "GetHubInfo", "SetEventCallback", "CheckHubPpAgreement", "SetHubPpAgreement"};
    const auto number = static_cast<std::size_t>(method);
    return number < std::size(names) ? names[number] : nullptr;
}

OutgoingParcel::OutgoingParcel(Method method) {
    rpc_port_parcel_create(&_parcel);
    *this << static_cast<int>(method);
}

OutgoingParcel::~OutgoingParcel() {
    rpc_port_parcel_destroy(_parcel);
}

OutgoingParcel& OutgoingParcel::operator<<(int value) {
    rpc_port_parcel_write_int32(_parcel, value);
    return *this;
}

OutgoingParcel& OutgoingParcel::operator<<(bool value) {
    rpc_port_parcel_write_bool(_parcel, value);
    return *this;
}

OutgoingParcel& OutgoingParcel::operator<<(const std::string& value) {
    rpc_port_parcel_write_string(_parcel, value.c_str());
    return *this;
}

OutgoingParcel& OutgoingParcel::operator<<(const Delegate& value) {
    return *this << value.id << value.sequence << value.once;
}

std::string OutgoingParcel::bytes() const {
    return homeloom::desktop::rpc::RpcServer::bytesOf(_parcel);
}

int readInt(rpc_port_parcel_h parcel) {
    std::int32_t value = 0;
    if (rpc_port_parcel_read_int32(parcel, &value) != RPC_PORT_ERROR_NONE) {
        throw std::runtime_error("no number in the parcel");
    }
    return value;
}

std::string readText(rpc_port_parcel_h parcel) {
    char* value = nullptr;
    if (rpc_port_parcel_read_string(parcel, &value) != RPC_PORT_ERROR_NONE) {
        throw std::runtime_error("no text in the parcel");
    }
    std::string text = value;
    std::free(value);
    return text;
}

Delegate readDelegate(rpc_port_parcel_h parcel) {
    Delegate delegate;
    delegate.id = readInt(parcel);
    delegate.sequence = readInt(parcel);
    if (rpc_port_parcel_read_bool(parcel, &delegate.once) != RPC_PORT_ERROR_NONE) {
        throw std::runtime_error("no delegate in the parcel");
    }
    return delegate;
}
