// Sends a camera the capability commands that open and close its stream.
#include "Homeloom/Network/CNoneAVPCameraStreamRequester.h"

#include <cstddef>
#include <stdexcept>

#include <VMFramework/JsonValue.h>

#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Homeloom/Network/ServerSetting.h"
#include "Homeloom/Network/ServiceHosts.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr long kOk = 200;
constexpr char kDevicesPath[] = "/v1/devices/";

}  // namespace

bool CNoneAVPCameraStreamRequester::StartStream(const std::string& accessToken, const std::string& deviceId) {
    return send(Command::Start, accessToken, deviceId);
}

bool CNoneAVPCameraStreamRequester::StopStream(const std::string& accessToken, const std::string& deviceId) {
    return send(Command::Stop, accessToken, deviceId);
}

bool CNoneAVPCameraStreamRequester::send(Command command, const std::string& accessToken, const std::string& deviceId) {
    HL_LOGI("device id[%s]", deviceId.c_str());
    return GuardedOr(false, [&] {
        request(command, accessToken, deviceId);
        return true;
    });
}

void CNoneAVPCameraStreamRequester::request(Command command, const std::string& accessToken,
                                            const std::string& deviceId) {
    _SetHeaderList(get_header_list(accessToken));
    _SetMethod(HttpMethod::Post);
    _SetUrl(get_request_command_uri(deviceId));
    _SetDataBody(get_post_fields_data(command));
    std::string response;
    const long code = _RequestHttp(response);
    HL_LOGI("HttpError: %ld, responseData: %s", code, response.c_str());
    if (code != kOk) {
        throw std::runtime_error("request failed");
    }
    read_json_command_response(response);
}

void CNoneAVPCameraStreamRequester::read_json_command_response(const std::string& response) {
    const auto document = json::JsonValue::Create(response);
    const std::string status = document["results"][0]["status"].asString();
    if (status != "ACCEPTED") {
        throw std::runtime_error("status = " + status);
    }
}

// Production in every environment, which is read for the log alone: the cameras take these commands from nowhere else.
const std::string& CNoneAVPCameraStreamRequester::get_st_server_url() {
    ServerSetting().GetIoTCloudServerEnv();
    _serverUrl = std::string(ServiceHosts::kApiProduction) + kDevicesPath;
    HL_LOGI("server url : %s", _serverUrl.c_str());
    return _serverUrl;
}

std::list<std::string> CNoneAVPCameraStreamRequester::get_header_list(const std::string& accessToken) {
    return {"Authorization:Bearer " + accessToken};
}

std::string CNoneAVPCameraStreamRequester::get_request_command_uri(const std::string& deviceId) {
    return get_st_server_url() + deviceId + "/commands";
}

std::string CNoneAVPCameraStreamRequester::get_post_fields_data(Command command) {
    const std::string name = command == Command::Start ? "startStream" : "stopStream";
    return R"({"commands":[{"component":"main","capability":"videoStream","command":")" + name +
           R"(","arguments":[]}]})";
}

unsigned CNoneAVPCameraStreamRequester::response_cb(char* data, unsigned size, unsigned nmemb, void* userData) {
    if (data == nullptr || userData == nullptr) {
        HL_LOGE("buffer or user_data is NULL");
        return 0;
    }
    static_cast<std::string*>(userData)->append(data, static_cast<std::size_t>(size) * nmemb);
    return size * nmemb;
}

}  // namespace VMFramework::HomeLoom
