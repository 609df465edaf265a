#ifndef HOMELOOM_HOMELOOM_NETWORK_CNONEAVPCAMERASTREAMREQUESTER_H
#define HOMELOOM_HOMELOOM_NETWORK_CNONEAVPCAMERASTREAMREQUESTER_H

#include <list>
#include <string>

#include "Homeloom/Network/CRestHandler.h"

namespace VMFramework::HomeLoom {

/// Sends a camera commands for its stream by way of the platform's API.
class CNoneAVPCameraStreamRequester : public CRestHandler {
public:
    bool StartStream(const std::string& accessToken, const std::string& deviceId);
    bool StopStream(const std::string& accessToken, const std::string& deviceId);

    // Part of the interface; no caller in the plug-in.
    /// A body callback for answers that come in several pieces: it appends to the std::string at `userData`.
    static unsigned response_cb(char* data, unsigned size, unsigned nmemb, void* userData);

private:
    enum class Command { Start = 0, Stop = 1 };

    bool send(Command command, const std::string& accessToken, const std::string& deviceId);
    /// These throw when the command did not get through.
    void request(Command command, const std::string& accessToken, const std::string& deviceId);
    static void read_json_command_response(const std::string& response);

    const std::string& get_st_server_url();
    static std::list<std::string> get_header_list(const std::string& accessToken);
    std::string get_request_command_uri(const std::string& deviceId);
    static std::string get_post_fields_data(Command command);

    std::string _serverUrl;
};

}  // namespace VMFramework::HomeLoom

#endif
