// An update of the agent while the TV runs: let go of it first, take it up again afterwards.

#include <unistd.h>

#include <mutex>

#include <norvane_svcmgr.h>

#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Homeloom/Common/MsgDispatcher.h"
#include "Homeloom/CoreDevices/CoreDeviceHandler.h"
#include "Homeloom/Devices/DeviceHandler.h"
#include "Homeloom/HomeloomClient.h"
#include "Homeloom/Life/LifeHandler.h"
#include "Homeloom/Location/LocationHandler.h"
#include "Homeloom/Routine/RoutineHandler.h"
#include "Homeloom/Scene/SceneHandler.h"
#include "Homeloom/Tessel/ITesselHandler.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr char kAgentAppId[] = "com.norvane.solenne.homeloom-client";
constexpr norvane_svcmgr_boost_request_s kBoost = {7, 3, 2, 0, 60000};

}  // namespace

void HomeloomClient::setAgentStatusUpdateCallback() {
    _updateChecker.SubscribeCallback([this](_EReqType type) { agentChangedCb(type); });
}

void HomeloomClient::unsetAgentStatusUpdateCallback() {
    _updateChecker.UnsubscribeCallback();
}

void HomeloomClient::agentChangedCb(_EReqType type) {
    const MutexLock lifecycle(_lifecycleMutex);
    if (_isLifecycleOver) {
        return;
    }
    if (type == _EReqType::Disconnect) {
        HL_LOGI("Need to be disconnect");
        deinitClientByAgentUpdate();
    } else {
        HL_LOGI("Need to be connect");
        initClientByAgentUpdate();
    }
}

// Unlike deinitClient: the handlers are given up, to be made anew; the scheduler is paused and not ended; the watch for
// updates stays. A caller that is still in a handler keeps it alive.
void HomeloomClient::deinitClientByAgentUpdate() {
    LogThrown([&] {
        HL_LOGI("deinitClientByAgentUpdate Start");
        _isTerminating = true;
        _agent.Quit();
        quitHandlers();
        if (const auto location = _locationHandler.Get()) {
            location->CleanUpTimer();
        }
        auto& scheduler = SGTMsgDispatcher::GetInstance();
        scheduler.Pause();
        // A job that holds a handler must not wait for the resuming to be thrown away.
        scheduler.ClearData();
        if (const auto device = _deviceHandler.Get()) {
            device->ClearTimers();
        }
        // The group callback is the location handler's, which goes with the next line and no longer takes it back.
        _agent.UnsetGroupListUpdatedCb();
        forEachReplaceable([](auto& slot) { slot.Reset(); });
        _retryCounter.Reset();
        setIsAgentConnected(false);
        unsetDisclaimerAgreeChangedCallback();
        stopConnectionRetryTimer();
        deregisterCallbacks();
        disconnectClient();
        HL_LOGI("deinitClientByAgentUpdate End");
    });
}

void HomeloomClient::initClientByAgentUpdate() {
    LogThrown([&] {
        const std::lock_guard<std::recursive_mutex> lock(_sessionMutex);
        HL_LOGI("initClientByAgentUpdate Start");
        _isTerminating = false;
        _agent.Init();
        makeReplaceableHandlers();
        setDisclaimerAgreeChangedCallback();
        // Before the connection: a connected event that comes at once would be thrown away by a paused scheduler.
        SGTMsgDispatcher::GetInstance().Resume();
        connectClient();
        bindHandlers();
        HL_LOGI("initClientByAgentUpdate End");
    });
}

void HomeloomClient::boostTesselClient() {
    HL_LOGI("boost request start");
    const int result = norvane_svcmgr_request_boost(kAgentAppId, static_cast<int>(getpid()), &kBoost);
    HL_LOGI("boost request end, ret : %d", result);
}

}  // namespace VMFramework::HomeLoom
