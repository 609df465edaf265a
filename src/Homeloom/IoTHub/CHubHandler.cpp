// Knows which devices the TV's own hub serves, and searches for new ones.
#include "Homeloom/IoTHub/CHubHandler.h"

#include <set>

#include "Common/CReporter.h"
#include "Common/HLLog.h"
#include "Homeloom/IoTHub/HubIPCProxy.h"
#include "Homeloom/Tessel/ITesselHandler.h"

namespace VMFramework::HomeLoom {

CHubHandler::CHubHandler(ITesselHandler& agent) : _agent(agent) {
    HubIPCProxy::GetInstance().Start();
}

CHubHandler::~CHubHandler() {
    Stop();
}

void CHubHandler::Stop() {
    HubIPCProxy::GetInstance().Stop();
}

void CHubHandler::CreateLocalHubDevicesSet() {
    std::set<std::string> ids;
    if (_agent.GetLocalHubDeviceIDList(ids) != 0) {
        HL_LOGE("get local hub device id list failed");
        return;
    }
    for (const auto& id : ids) {
        HL_LOGI("local hub device : %s", id.c_str());
    }
    std::unordered_set<std::string> fresh(ids.begin(), ids.end());
    const MutexLock lock(_mutex);
    _localHubDevices.swap(fresh);
}

bool CHubHandler::IsLocalHubConnectedDevice(const std::string& deviceId) const {
    const MutexLock lock(_mutex);
    return _localHubDevices.find(deviceId) != _localHubDevices.end();
}

std::string CHubHandler::GetLoginIDHubOnboarded() const {
    return HubIPCProxy::GetInstance().GetLoginIDHubOnboarded();
}

std::string CHubHandler::GetHubDeviceID() const {
    return HubIPCProxy::GetInstance().GetHubDeviceID();
}

void CHubHandler::StartHubOnboarding(const std::shared_ptr<CTransaction>& transaction, const std::string& accessToken,
                                     const std::string& locationId, const std::string& roomId) {
    HubIPCProxy::GetInstance().StartOnboarding(transaction, accessToken, locationId, roomId);
}

void CHubHandler::StopHubOnboarding(const std::shared_ptr<CTransaction>& transaction) {
    HubIPCProxy::GetInstance().StopOnboarding(transaction);
}

void CHubHandler::ResetHub(const std::shared_ptr<CTransaction>& transaction) {
    HubIPCProxy::GetInstance().ResetHub(transaction);
}

void CHubHandler::ResetDongle(const std::shared_ptr<CTransaction>& transaction) {
    HubIPCProxy::GetInstance().ResetDongle(transaction);
}

void CHubHandler::GetHubInfo(const std::shared_ptr<CTransaction>& transaction) {
    HubIPCProxy::GetInstance().GetHubInfo(transaction);
}

void CHubHandler::StartHubDeviceDiscovery(const std::shared_ptr<CTransaction>& transaction, const std::string&,
                                          const std::string& hubId, int timeout) {
    if (hubId.empty()) {
        HL_LOGE("hub_di is empty");
        return;
    }
    if (timeout < 0) {
        HL_LOGE("discovery_timeout < 0 !! error case!");
        return;
    }
    const int result = _agent.StartHubDeviceDiscover(hubId, timeout, false, false, 1);
    HL_LOGI("StartHubDeviceDiscover ret : %d", result);
    StartHubDeviceDiscoveryParam param(transaction);
    param.result = result == 0;
    param.hlHubDi = hubId;
    Reporter::Report(param);
}

void CHubHandler::StopHubDeviceDiscovery(const std::shared_ptr<CTransaction>& transaction, const std::string&,
                                         const std::string& hubId) {
    if (hubId.empty()) {
        HL_LOGE("hub_di is empty");
        return;
    }
    const int result = _agent.StopHubDeviceDiscover(hubId);
    HL_LOGI("StopHubDeviceDiscover ret : %d", result);
    StopHubDeviceDiscoveryParam param(transaction);
    param.result = result == 0;
    param.hlHubDi = hubId;
    Reporter::Report(param);
}

}  // namespace VMFramework::HomeLoom
