// Hears from the service manager when the agent goes away for an update and when it is back.
#include "Homeloom/Tessel/CTesselUpdateChecker.h"

#include <utility>

#include "Common/Guarded.h"
#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

void CTesselUpdateChecker::SubscribeCallback(std::function<void(_EReqType)> callback) {
    const std::lock_guard<std::recursive_mutex> lock(_mutex);
    const int result = norvane_svcmgr_set_update_status_cb(_AgentUpdateStatusCb, this);
    if (result != 0) {
        HL_LOGE("[ret:%d] norvane_svcmgr_set_update_status_cb", result);
        return;
    }
    _callback = std::move(callback);
}

void CTesselUpdateChecker::UnsubscribeCallback() {
    norvane_svcmgr_unset_update_status_cb();
}

void CTesselUpdateChecker::_AgentUpdateStatusCb(norvane_svcmgr_update_status_e status, void* userData) {
    if (userData == nullptr) {
        return;
    }
    Guarded([&] { static_cast<CTesselUpdateChecker*>(userData)->_HandleAgentUpdateStatusChanged(status); });
}

void CTesselUpdateChecker::_HandleAgentUpdateStatusChanged(norvane_svcmgr_update_status_e status) {
    HL_LOGI("status : %d", static_cast<int>(status));
    if (status == NORVANE_SVCMGR_UPDATE_STATUS_STARTED) {
        _NotifyAgentDeinit();
    } else if (status == NORVANE_SVCMGR_UPDATE_STATUS_ENDED) {
        _NotifyAgentInit();
    }
}

void CTesselUpdateChecker::_NotifyAgentDeinit() {
    HL_LOGI("Notify Agent Deinit");
    std::function<void(_EReqType)> callback;
    {
        const std::lock_guard<std::recursive_mutex> lock(_mutex);
        if (_isUpdating) {
            HL_LOGI("now on updating. skip");
            return;
        }
        callback = _callback;
        _isUpdating = true;
    }
    if (callback) {
        HL_LOGI("send to deinit!");
        callback(_EReqType::Disconnect);
    }
}

void CTesselUpdateChecker::_NotifyAgentInit() {
    HL_LOGI("Notify Agent Init");
    std::function<void(_EReqType)> callback;
    bool wasUpdating = false;
    {
        const std::lock_guard<std::recursive_mutex> lock(_mutex);
        callback = _callback;
        wasUpdating = std::exchange(_isUpdating, false);
    }
    if (wasUpdating && callback) {
        callback(_EReqType::Connect);
    }
}

}  // namespace VMFramework::HomeLoom
