#ifndef HOMELOOM_COMMON_CEXCEPTION_H
#define HOMELOOM_COMMON_CEXCEPTION_H

#include <stdexcept>
#include <string>

namespace VMFramework::HomeLoom {

/// Codes of CException.
enum ErrorCode : int {
    kErrorFailed = 2,          ///< a framework or platform call failed, or an internal precondition
    kErrorInvalidHandle = 3,   ///< a framework handle could not be made
    kErrorEmptyArgument = 4,   ///< a required argument is empty
    kErrorNoData = 6,          ///< data could not be read from the agent
    kErrorNoPlatformData = 8,  ///< a platform query returned nothing
    kErrorQuit = 10            ///< the handler is already quitting
};

/// A failure with a code. what() is the message followed by "(error:", the code and ")".
class CodedException : public std::domain_error {
public:
    CodedException(const std::string& message, int code)
        : std::domain_error(message + "(error:" + std::to_string(code) + ")"), _code(code) {}

    int GetErrorCode() const noexcept { return _code; }

private:
    int _code;
};

/// A failure of the plug-in's own.
class CException : public CodedException {
    using CodedException::CodedException;
};

/// A failed agent call; the code is the agent's.
class CException_HLClient : public CodedException {
    using CodedException::CodedException;
};

}  // namespace VMFramework::HomeLoom

#endif
