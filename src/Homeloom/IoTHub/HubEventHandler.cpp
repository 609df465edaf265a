// Passes an event of the hub control application on to the proxy.
#include "Homeloom/IoTHub/HubEventHandler.h"

#include "Common/HLLog.h"
#include "Homeloom/IoTHub/HubIPCProxy.h"

namespace VMFramework::HomeLoom {

void HubEventHandler::OnReceived(int event, std::string data) {
    HL_LOGI("Event received...[%d][%s]", event, data.c_str());
    HubIPCProxy::GetInstance().SendEvent(event, data);
}

}  // namespace VMFramework::HomeLoom
