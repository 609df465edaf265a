#include "Parcel.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

namespace {

constexpr char kInt32 = 'i';
constexpr char kBool = 'b';
constexpr char kText = 's';

std::atomic<int> parcels{0};

void toBytes(std::uint32_t number, char* bytes) {
    for (int i = 3; i >= 0; --i) {
        bytes[i] = static_cast<char>(number & 0xff);
        number >>= 8;
    }
}

std::uint32_t fromBytes(const char* bytes) {
    std::uint32_t number = 0;
    for (int i = 0; i < 4; ++i) {
        number = number << 8 | static_cast<unsigned char>(bytes[i]);
    }
    return number;
}

}  // namespace

rpc_port_parcel_s::rpc_port_parcel_s() : _bytes(kHeaderSize, '\0') {
    ++parcels;
}

rpc_port_parcel_s::rpc_port_parcel_s(std::string_view values) : rpc_port_parcel_s() {
    _bytes += values;
}

rpc_port_parcel_s::~rpc_port_parcel_s() {
    --parcels;
}

std::size_t rpc_port_parcel_s::lengthIn(const char* header) {
    return fromBytes(header);
}

int rpc_port_parcel_s::count() {
    return parcels;
}

const std::string& rpc_port_parcel_s::bytes() {
    toBytes(static_cast<std::uint32_t>(_bytes.size() - kHeaderSize), _bytes.data());
    return _bytes;
}

bool rpc_port_parcel_s::reserve(std::size_t size) {
    _isWhole = _isWhole && size <= RPC_PORT_PARCEL_MAX - (_bytes.size() - kHeaderSize);
    return _isWhole;
}

void rpc_port_parcel_s::putNumber(std::uint32_t number) {
    char bytes[4];
    toBytes(number, bytes);
    _bytes.append(bytes, sizeof bytes);
}

bool rpc_port_parcel_s::writeInt32(std::int32_t value) {
    if (!reserve(1 + 4)) {
        return false;
    }
    _bytes += kInt32;
    putNumber(static_cast<std::uint32_t>(value));
    return true;
}

bool rpc_port_parcel_s::writeBool(bool value) {
    if (!reserve(1 + 1)) {
        return false;
    }
    _bytes += kBool;
    _bytes += value ? '\1' : '\0';
    return true;
}

bool rpc_port_parcel_s::writeText(std::string_view value) {
    if (value.size() > RPC_PORT_PARCEL_MAX || !reserve(1 + 4 + value.size())) {
        _isWhole = false;
        return false;
    }
    _bytes += kText;
    putNumber(static_cast<std::uint32_t>(value.size()));
    _bytes += value;
    return true;
}

std::optional<std::string_view> rpc_port_parcel_s::take(std::size_t size) {
    if (size > _bytes.size() - _position) {
        _position = _bytes.size();
        return std::nullopt;
    }
    const std::string_view taken(_bytes.data() + _position, size);
    _position += size;
    return taken;
}

std::optional<std::string_view> rpc_port_parcel_s::takeValue(char type, std::size_t size) {
    const auto bytes = take(1 + size);
    if (!bytes || bytes->front() != type) {
        _position = _bytes.size();
        return std::nullopt;
    }
    return bytes->substr(1);
}

std::optional<std::int32_t> rpc_port_parcel_s::readInt32() {
    const auto bytes = takeValue(kInt32, 4);
    return bytes ? std::optional(static_cast<std::int32_t>(fromBytes(bytes->data()))) : std::nullopt;
}

std::optional<bool> rpc_port_parcel_s::readBool() {
    const auto bytes = takeValue(kBool, 1);
    if (!bytes || static_cast<unsigned char>(bytes->front()) > 1) {
        _position = _bytes.size();
        return std::nullopt;
    }
    return bytes->front() == '\1';
}

std::optional<std::string_view> rpc_port_parcel_s::readText() {
    const auto length = takeValue(kText, 4);
    const auto text = length ? take(fromBytes(length->data())) : std::nullopt;
    // A text of the C interface would end there.
    if (!text || text->find('\0') != std::string_view::npos) {
        _position = _bytes.size();
        return std::nullopt;
    }
    return text;
}

int rpc_port_parcel_create(rpc_port_parcel_h* parcel) {
    if (parcel == nullptr) {
        return RPC_PORT_ERROR_INVALID_PARAMETER;
    }
    *parcel = new rpc_port_parcel_s();
    return RPC_PORT_ERROR_NONE;
}

int rpc_port_parcel_destroy(rpc_port_parcel_h parcel) {
    if (parcel == nullptr) {
        return RPC_PORT_ERROR_INVALID_PARAMETER;
    }
    delete parcel;
    return RPC_PORT_ERROR_NONE;
}

int rpc_port_parcel_write_int32(rpc_port_parcel_h parcel, int32_t value) {
    return parcel != nullptr && parcel->writeInt32(value) ? RPC_PORT_ERROR_NONE : RPC_PORT_ERROR_INVALID_PARAMETER;
}

int rpc_port_parcel_write_bool(rpc_port_parcel_h parcel, bool value) {
    return parcel != nullptr && parcel->writeBool(value) ? RPC_PORT_ERROR_NONE : RPC_PORT_ERROR_INVALID_PARAMETER;
}

int rpc_port_parcel_write_string(rpc_port_parcel_h parcel, const char* value) {
    if (parcel == nullptr) {
        return RPC_PORT_ERROR_INVALID_PARAMETER;
    }
    if (value == nullptr) {
        parcel->spoil();
        return RPC_PORT_ERROR_INVALID_PARAMETER;
    }
    return parcel->writeText(value) ? RPC_PORT_ERROR_NONE : RPC_PORT_ERROR_INVALID_PARAMETER;
}

namespace {

template <typename Value, typename Read>
int handOut(rpc_port_parcel_h parcel, Value* value, Read read) {
    if (parcel == nullptr || value == nullptr) {
        return RPC_PORT_ERROR_INVALID_PARAMETER;
    }
    const auto found = read();
    if (!found) {
        return RPC_PORT_ERROR_IO_ERROR;
    }
    *value = *found;
    return RPC_PORT_ERROR_NONE;
}

}  // namespace

int rpc_port_parcel_read_int32(rpc_port_parcel_h parcel, int32_t* value) {
    return handOut(parcel, value, [parcel] { return parcel->readInt32(); });
}

int rpc_port_parcel_read_bool(rpc_port_parcel_h parcel, bool* value) {
    return handOut(parcel, value, [parcel] { return parcel->readBool(); });
}

int rpc_port_parcel_read_string(rpc_port_parcel_h parcel, char** value) {
    std::string_view text;
    const int result = handOut(parcel, value != nullptr ? &text : nullptr, [parcel] { return parcel->readText(); });
    if (result == RPC_PORT_ERROR_NONE) {
        *value = strndup(text.data(), text.size());
    }
    return result;
}
