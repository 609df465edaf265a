#ifndef HOMELOOM_DESKTOP_RPC_PORT_PARCEL_H
#define HOMELOOM_DESKTOP_RPC_PORT_PARCEL_H

#include <rpc_port.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// A parcel, as it travels: its length in four bytes, then the values. Each value is one byte that tells its type, and
/// its own bytes, the highest first; a text has its length in front.
struct rpc_port_parcel_s {
public:
    static constexpr std::size_t kHeaderSize = 4;

    rpc_port_parcel_s();
    /// Of what came behind the length.
    explicit rpc_port_parcel_s(std::string_view values);
    ~rpc_port_parcel_s();
    rpc_port_parcel_s(const rpc_port_parcel_s&) = delete;
    rpc_port_parcel_s& operator=(const rpc_port_parcel_s&) = delete;

    /// The length that stands in a header.
    static std::size_t lengthIn(const char* header);
    static int count();

    bool writeInt32(std::int32_t value);
    bool writeBool(bool value);
    bool writeText(std::string_view value);
    /// Something could not be written: nobody shall take the parcel for whole.
    void spoil() { _isWhole = false; }
    bool isWhole() const { return _isWhole; }
    /// Header and values, ready to be sent.
    const std::string& bytes();

    std::optional<std::int32_t> readInt32();
    std::optional<bool> readBool();
    /// Valid as long as the parcel isn't written to. Without a zero byte.
    std::optional<std::string_view> readText();

private:
    bool reserve(std::size_t size);
    void putNumber(std::uint32_t number);
    /// The next bytes; none, and none ever after, if there aren't so many.
    std::optional<std::string_view> take(std::size_t size);
    std::optional<std::string_view> takeValue(char type, std::size_t size);

    std::string _bytes;
    std::size_t _position = kHeaderSize;
    bool _isWhole = true;
};

#endif
