#ifndef HOMELOOM_HOMELOOM_NETWORK_CAVPCAMERASTREAMREQUESTER_H
#define HOMELOOM_HOMELOOM_NETWORK_CAVPCAMERASTREAMREQUESTER_H

#include <list>
#include <string>

#include "Homeloom/Network/CRestHandler.h"

namespace VMFramework::HomeLoom {

/// Asks the platform's audio-video service for a stream session of a camera.
class CAVPCameraStreamRequester : public CRestHandler {
public:
    /// `streamUrlJson` is what the screens take for the camera's address: {"InHomeURL":...,"OutHomeURL":...}.
    bool RequestStreamUrl(const std::string& accessToken, const std::string& deviceId, std::string& streamUrlJson);

private:
    static std::list<std::string> _GetHeaderList(const std::string& accessToken);
    static std::string _GetAvpServerUrl();
    static std::string _GetRequestUri(const std::string& deviceId);
    static std::string _GetStreamUrlJson(const std::string& response);
    static bool _GetStreamUrl(const std::string& response, std::string& sourceId, std::string& gatewayUrl);
    static bool _MakeJsonStreamUrl(const std::string& url, std::string& text);
};

}  // namespace VMFramework::HomeLoom

#endif
