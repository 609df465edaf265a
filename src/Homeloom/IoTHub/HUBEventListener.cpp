// Passes the port's connection callbacks on to the proxy.
#include "Homeloom/IoTHub/HUBEventListener.h"

#include "Common/HLLog.h"
#include "Homeloom/IoTHub/HubIPCProxy.h"

namespace VMFramework::HomeLoom {

void HUBEventListener::OnConnected() {
    HL_LOGI("Hub TIDL OnConnected");
    auto& proxy = HubIPCProxy::GetInstance();
    proxy.SetHubControlEnable(true);
    proxy.SetEventCallback();
    proxy.GetAndSaveHubInfo();
}

void HUBEventListener::OnDisconnected() {
    HL_LOGI("Hub TIDL OnDisconnected");
    HubIPCProxy::GetInstance().HandleDisconnectedHub();
}

void HUBEventListener::OnRejected() {
    HL_LOGI("Hub TIDL OnRejected");
    HubIPCProxy::GetInstance().HandleHubConnection();
}

}  // namespace VMFramework::HomeLoom
