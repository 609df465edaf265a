#ifndef HOMELOOM_TV_DOOR_GATE_H
#define HOMELOOM_TV_DOOR_GATE_H

#include <optional>
#include <string>

namespace httplib {
struct Request;
}

namespace homeloom::tv {

/// Where the door listens: "[ADDRESS:]PORT".
struct DoorAddress {
    std::string host = "127.0.0.1";  // without the brackets of an IPv6 address
    int port = 0;                    // 0: any that is free

    bool isLoopback() const;
    /// As a URL has it.
    std::string authority() const;
};
std::optional<DoorAddress> parseDoorAddress(const std::string& text);

/// Whether a text can be a token: it has to pass through URLs, headers and cookies as it is.
bool isDoorToken(const std::string& text);

/// Decides who may come in, before anything of a request but its head is read.
///
/// A page of another site that the user has open must not reach the door: neither straight, which `Origin` tells, nor
/// by a name of its own that it lets lead here, which `Host` tells.
class Gate {
public:
    /// `address` with the port that it really is; an empty token lets in everybody.
    Gate(DoorAddress address, std::string token);

    /// Throws Refusal.
    void check(const httplib::Request& request) const;
    /// The cookie to be set for somebody who showed the token in the URL, as a browser must: what the page loads then
    /// has it too. Empty for all others.
    std::string cookieFor(const httplib::Request& request) const;

private:
    void checkHost(const httplib::Request& request) const;
    void checkOrigin(const httplib::Request& request) const;
    void checkToken(const httplib::Request& request) const;
    bool isOurName(const std::string& host) const;
    std::string cookieName() const;

    const DoorAddress _address;
    const std::string _token;
};

}  // namespace homeloom::tv

#endif
