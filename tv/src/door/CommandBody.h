#ifndef HOMELOOM_TV_DOOR_COMMANDBODY_H
#define HOMELOOM_TV_DOOR_COMMANDBODY_H

#include <stdexcept>
#include <string>
#include <string_view>

namespace homeloom::tv {

/// A command as a client asks for it.
struct CommandBody {
    std::string id;    // JSON, a text or a number, for the answer; empty: none
    std::string line;  // one line for the console
};

/// Why a request gets no answer but this one.
class Refusal : public std::runtime_error {
public:
    Refusal(int httpStatus, const std::string& reason) : std::runtime_error(reason), status(httpStatus) {}
    const int status;
};

/// Reads the body of a request: JSON, or a line of text. Throws Refusal.
CommandBody readCommandBody(std::string_view contentType, std::string_view body);

}  // namespace homeloom::tv

#endif
