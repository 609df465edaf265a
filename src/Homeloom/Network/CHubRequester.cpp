#include "Homeloom/Network/CHubRequester.h"

#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

bool CHubRequester::RequestIsHubExist(const std::string&, const std::string& hubDeviceId) {
    HL_LOGE("the cloud can't be asked, hub counts as existing : %s", hubDeviceId.c_str());
    return true;
}

}  // namespace VMFramework::HomeLoom
