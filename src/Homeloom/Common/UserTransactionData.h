#ifndef HOMELOOM_HOMELOOM_COMMON_USERTRANSACTIONDATA_H
#define HOMELOOM_HOMELOOM_COMMON_USERTRANSACTIONDATA_H

#include <memory>
#include <string>
#include <utility>

namespace VMFramework::HomeLoom {

class CTransaction;

/// What an asynchronous call of the agent has to carry from the request to its callback. Goes to the agent as a
/// token (CallbackTokens::Keep): the callback takes it, and so does the caller when the call fails at once.
struct UserTransactionData {
    UserTransactionData(std::weak_ptr<void> requestHandler, std::shared_ptr<CTransaction> request)
        : handler(std::move(requestHandler)), transaction(std::move(request)) {}
    virtual ~UserTransactionData() = default;

    /// Null when the handler has gone. T is the type that the record was made with.
    template <typename T>
    std::shared_ptr<T> GetHandler() const {
        return std::static_pointer_cast<T>(handler.lock());
    }

    std::weak_ptr<void> handler;
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
