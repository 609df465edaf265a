// Asks the audio-video service for a stream and reads its address out of the answer.
#include "Homeloom/Network/CAVPCameraStreamRequester.h"

#include <utility>

#include <KRCurl/KRCurlUtility.h>
#include <VMFramework/JsonValue.h>

#include "Common/CException.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Homeloom/Network/ServerSetting.h"
#include "Homeloom/Network/ServiceHosts.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr char kStreamPath[] = "/v1/stream";

}  // namespace

bool CAVPCameraStreamRequester::RequestStreamUrl(const std::string& accessToken, const std::string& deviceId,
                                                 std::string& streamUrlJson) {
    HL_LOGI("device id[%s]", deviceId.c_str());
    if (accessToken.empty() || deviceId.empty()) {
        HL_LOGE("access_token or device_id is empty");
        return false;
    }
    return GuardedOr(false, [&] {
        const std::list<std::string> headers = _GetHeaderList(accessToken);
        HL_LOGI("set option for request, authorization[%s]", headers.front().c_str());
        _SetHeaderList(headers);
        _SetMethod(HttpMethod::Post);
        const std::string uri = _GetRequestUri(deviceId);
        HL_LOGI("Request Url for camera stream[%s]", uri.c_str());
        _SetUrl(uri);
        _SetBody("");
        _SetDataBody("");
        std::string response;
        const long code = _RequestHttp(response);
        HL_LOGI("HttpError: %ld, responseBody: %s", code, response.c_str());
        // Whatever the code: a body without a stream is what fails.
        streamUrlJson = _GetStreamUrlJson(response);
        return true;
    });
}

std::list<std::string> CAVPCameraStreamRequester::_GetHeaderList(const std::string& accessToken) {
    return {"Authorization:Bearer " + accessToken};
}

// Staging and development share the staging host here; other services have other tables.
std::string CAVPCameraStreamRequester::_GetAvpServerUrl() {
    const char* host = ServiceHosts::kAvProduction;
    switch (ServerSetting().GetIoTCloudServerEnv()) {
        case SERVER_ENV_PROD:
            break;
        case SERVER_ENV_ACC:
            host = ServiceHosts::kAvAcceptance;
            break;
        case SERVER_ENV_STG:
        case SERVER_ENV_DEV:
            host = ServiceHosts::kAvStaging;
            break;
    }
    return std::string(host) + kStreamPath;
}

std::string CAVPCameraStreamRequester::_GetRequestUri(const std::string& deviceId) {
    std::string query;
    KRCurl::KRCurlUtility::makeQueryString(query, "source_id", deviceId);
    return _GetAvpServerUrl() + query;
}

std::string CAVPCameraStreamRequester::_GetStreamUrlJson(const std::string& response) {
    std::string sourceId;
    std::string gatewayUrl;
    if (!_GetStreamUrl(response, sourceId, gatewayUrl)) {
        HL_LOGE("Fail to get stream url from response");
        return "";
    }
    std::string text;
    if (!_MakeJsonStreamUrl(gatewayUrl, text)) {
        HL_LOGE("Fail to make json stream url");
        return "";
    }
    return text;
}

// An empty stream object gives empty texts, which count as an address.
bool CAVPCameraStreamRequester::_GetStreamUrl(const std::string& response, std::string& sourceId,
                                              std::string& gatewayUrl) {
    return LogThrown([&] {
        HL_LOGI("response[%s]", response.c_str());
        const auto document = json::JsonValue::Create(response);
        const auto stream = document["stream"];
        if (stream.isNull()) {
            throw CException("no stream obj!", kErrorFailed);
        }
        gatewayUrl = stream["gateway_url"].asString();
        sourceId = stream["source_id"].asString();
        HL_LOGI("Device Id is %s, Stream URL is %s", sourceId.c_str(), gatewayUrl.c_str());
        return true;
    });
}

// The form in which other cameras publish their addresses themselves.
bool CAVPCameraStreamRequester::_MakeJsonStreamUrl(const std::string& url, std::string& text) {
    auto object = json::JsonValue::CreateObject();
    object.set("InHomeURL", url);
    object.set("OutHomeURL", url);
    text = object.toString();
    HL_LOGI("json_url : %s", text.c_str());
    return !text.empty();
}

}  // namespace VMFramework::HomeLoom
