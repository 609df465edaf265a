// Picks the platform's API host by the environment.
#include "Homeloom/Network/CGeneralRequester.h"

#include "Common/HLLog.h"
#include "Homeloom/Network/ServerSetting.h"
#include "Homeloom/Network/ServiceHosts.h"

namespace VMFramework::HomeLoom {

// Development counts as production here, staging is served by the development host.
std::string CGeneralRequester::_GetServerUrl() {
    const char* host = ServiceHosts::kApiProduction;
    switch (ServerSetting().GetIoTCloudServerEnv()) {
        case SERVER_ENV_PROD:
            break;
        case SERVER_ENV_ACC:
            host = ServiceHosts::kApiAcceptance;
            break;
        case SERVER_ENV_STG:
            host = ServiceHosts::kApiDevelopment;
            break;
        default:
            HL_LOGE("invalid server type!, it will be set to PROD server url by default");
            break;
    }
    return std::string(host) + "/v1/";
}

long CGeneralRequester::_Request(std::string& responseBody) {
    const long code = _RequestHttp(responseBody);
    HL_LOGI("httpError: %ld, responseBody: %s", code, responseBody.c_str());
    return code;
}

}  // namespace VMFramework::HomeLoom
