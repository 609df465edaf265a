#ifndef HOMELOOM_TV_COMMANDERROR_H
#define HOMELOOM_TV_COMMANDERROR_H

#include <stdexcept>

namespace homeloom::tv {

/// Why a command failed, in words for the person who gave it.
class CommandError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The command doesn't take such arguments: its usage is the message.
class UsageError : public CommandError {
public:
    UsageError() : CommandError("wrong arguments") {}
};

}  // namespace homeloom::tv

#endif
