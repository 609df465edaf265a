#ifndef HOMELOOM_COMMON_CTRANSACTION_H
#define HOMELOOM_COMMON_CTRANSACTION_H

#include <functional>
#include <memory>

#include <VMFramework/CNoncopyable.h>

namespace VMFramework::HomeLoom {

class IPropertyListHelper;

/// One framework request on its way through the system: what was asked, and how to answer it.
///
/// Held by its queued job and by what has still to answer. A null pointer is legal everywhere and means that there
/// is no request to answer: an update that arose by itself. A transaction that is dropped without an answer leaves the
/// framework without a reply.
///
/// Answers may be sent from any thread, late and more than once.
class CTransaction : private VMFramework::CNoncopyable {
public:
    using NotifyHandler = std::function<void(const std::shared_ptr<IPropertyListHelper>&)>;
    using ResultHandler = std::function<void(const std::shared_ptr<IPropertyListHelper>&)>;

    static std::shared_ptr<CTransaction> Create(const std::shared_ptr<IPropertyListHelper>& request,
                                                NotifyHandler notifyHandler, ResultHandler resultHandler);
    virtual ~CTransaction();

    std::shared_ptr<IPropertyListHelper> GetRequestPropertyList() const { return _request; }
    /// An empty handler raises std::bad_function_call.
    void SendResult(const std::shared_ptr<IPropertyListHelper>& list);
    void SendNotify(const std::shared_ptr<IPropertyListHelper>& list);

private:
    CTransaction(const std::shared_ptr<IPropertyListHelper>& request, NotifyHandler notifyHandler,
                 ResultHandler resultHandler);

    const std::shared_ptr<IPropertyListHelper> _request;
    const NotifyHandler _notifyHandler;
    const ResultHandler _resultHandler;
};

}  // namespace VMFramework::HomeLoom

#endif
