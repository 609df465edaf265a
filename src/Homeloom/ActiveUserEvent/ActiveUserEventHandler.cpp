// Passes a usage event on to the agent and reports whether it took it.
#include "Homeloom/ActiveUserEvent/ActiveUserEventHandler.h"

#include "Common/CReporter.h"
#include "Common/HLLog.h"
#include "Homeloom/Tessel/ITesselHandler.h"

namespace VMFramework::HomeLoom {

void ActiveUserEventHandler::SendActiveUserEvent(const std::shared_ptr<CTransaction>& transaction, int category,
                                                 int action, const std::string& label, const std::string& metadata) {
    const int result = _agent.SendActiveUserEvent(category, action, label, metadata);
    HL_LOGI("active user launch event ret : %d", result);
    SendActiveUserEventParam param(transaction);
    param.result = result == 0;
    Reporter::Report(param);
}

}  // namespace VMFramework::HomeLoom
