// Ties an answer to the request that it answers.
#include "Common/CTransaction.h"

#include <utility>

#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

std::shared_ptr<CTransaction> CTransaction::Create(const std::shared_ptr<IPropertyListHelper>& request,
                                                   NotifyHandler notifyHandler, ResultHandler resultHandler) {
    HL_LOGI("hl Create check");
    return std::shared_ptr<CTransaction>(new CTransaction(request, std::move(notifyHandler), std::move(resultHandler)));
}

CTransaction::CTransaction(const std::shared_ptr<IPropertyListHelper>& request, NotifyHandler notifyHandler,
                           ResultHandler resultHandler)
    : _request(request), _notifyHandler(std::move(notifyHandler)), _resultHandler(std::move(resultHandler)) {
    HL_LOGI("Constructor check");
}

CTransaction::~CTransaction() = default;

void CTransaction::SendResult(const std::shared_ptr<IPropertyListHelper>& list) {
    HL_LOGI("SendResult check");
    _resultHandler(list);
}

void CTransaction::SendNotify(const std::shared_ptr<IPropertyListHelper>& list) {
    HL_LOGI("SendNotify check");
    _notifyHandler(list);
}

}  // namespace VMFramework::HomeLoom
