// Asks the cloud about this TV's hub.
#include "Homeloom/Network/CHubRequester.h"

#include "Common/Guarded.h"
#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

namespace {

// The cloud's word for a hub that is no longer on the account. Of all answers only this one takes the hub away.
constexpr long kForbidden = 403;

}  // namespace

bool CHubRequester::RequestIsHubExist(const std::string& accessToken, const std::string& hubDeviceId) {
    return GuardedOr(true, [&] {
        _SetHeaderList({"Authorization: Bearer " + accessToken});
        _SetMethod(HttpMethod::Get);
        _SetUrl(_GetServerUrl() + "devices/" + hubDeviceId);
        _SetBody("");
        _SetDataBody("");
        std::string response;
        const long code = _Request(response);
        HL_LOGI("HttpError: %ld, responseBody: %s", code, response.c_str());
        return code != kForbidden;
    });
}

}  // namespace VMFramework::HomeLoom
