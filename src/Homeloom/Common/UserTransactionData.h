#ifndef HOMELOOM_HOMELOOM_COMMON_USERTRANSACTIONDATA_H
#define HOMELOOM_HOMELOOM_COMMON_USERTRANSACTIONDATA_H

#include <memory>
#include <string>
#include <utility>

#include "Homeloom/Common/CallbackTokens.h"

namespace VMFramework::HomeLoom {

class CTransaction;

/// What an asynchronous call of the agent has to carry from the request to its callback. Goes to the agent as a
/// token: the callback takes it, and so does the caller when the call fails at once.
struct UserTransactionData {
    UserTransactionData(std::weak_ptr<void> requestHandler, std::shared_ptr<CTransaction> request)
        : handler(std::move(requestHandler)), transaction(std::move(request)) {}
    virtual ~UserTransactionData() = default;

    static void* Keep(std::weak_ptr<void> handler, std::shared_ptr<CTransaction> request) {
        return CallbackTokens::Keep(std::make_shared<UserTransactionData>(std::move(handler), std::move(request)));
    }
    /// Null when it was taken before: a callback that comes twice.
    static std::shared_ptr<UserTransactionData> Take(void* token) {
        return CallbackTokens::Take<UserTransactionData>(token);
    }

    std::weak_ptr<void> handler;  // whose request it is; no callback goes back into it so far
    std::shared_ptr<CTransaction> transaction;
};

struct UserTransactionDataWithExtra : UserTransactionData {
    UserTransactionDataWithExtra(std::weak_ptr<void> requestHandler, std::shared_ptr<CTransaction> request,
                                 std::string extraText)
        : UserTransactionData(std::move(requestHandler), std::move(request)), extra(std::move(extraText)) {}

    std::string extra;
};

}  // namespace VMFramework::HomeLoom

#endif
