// The ways to a camera's stream. The platform's service answers at once; any other camera is subscribed to, told to
// start its stream by writing an attribute, and answers by an event some moments later.

#include <utility>

#include <VMFramework/JsonValue.h>

#include "Common/CHLUtil.h"
#include "Common/CReporter.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Homeloom/Common/MsgDispatcher.h"
#include "Homeloom/Devices/CameraDevice.h"
#include "Homeloom/Tessel/ITesselHandler.h"
#include "Homeloom/UIMeta/Metadata.h"

namespace VMFramework::HomeLoom {

namespace {

using Clock = std::chrono::system_clock;

constexpr char kDoorbellStreamUri[] = "/capability/videoStream/main/0";
// An event that comes sooner after the subscription tells the address of an earlier stream.
constexpr long long kFirstValidMs = 100;

long long ElapsedMs(Clock::rep start) {
    const Clock::duration elapsed(Clock::now().time_since_epoch().count() - start);
    return std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count();
}

Clock::rep Now() {
    return Clock::now().time_since_epoch().count();
}

std::string GetRingDoorbellJsonUri() {
    auto uris = json::JsonValue::CreateArray();
    uris.append(kDoorbellStreamUri);
    return uris.toString();
}

// The address out of what the camera tells; empty if it tells none.
std::string InHomeUrl(const std::string& representation) {
    const auto document = json::JsonValue::Create(representation);
    const auto stream = document["stream"];
    if (!stream.isString()) {
        HL_LOGI("stream_value is not string data type, do not proceed");
        return "";
    }
    const auto addresses = json::JsonValue::Create(stream.asString());
    std::string url = addresses["InHomeURL"].asString();
    if (url.empty()) {
        HL_LOGI("in_home_url is empty, do not proceed");
    }
    return url;
}

template <typename Param>
void ReportUrl(const std::shared_ptr<CTransaction>& transaction, const std::string& deviceId, const std::string& url) {
    Param param(transaction);
    param.deviceId = deviceId;
    param.cameraStreamUrl = url;
    Reporter::Report(param);
}

}  // namespace

// ---- The platform's service ----

void CameraDevice::GetAvpUrl(const std::shared_ptr<CTransaction>& transaction, const std::shared_ptr<Device>& device,
                             const std::string& accessToken) {
    GetAvpCameraUrlParam param(transaction);
    param.deviceId = GetId();
    param.cameraStreamUrl = getAvpUrl(device, accessToken);
    param.accessToken = accessToken;
    Reporter::Report(param);
}

std::string CameraDevice::getAvpUrl(const std::shared_ptr<Device>& device, const std::string& accessToken) {
    const std::lock_guard<std::recursive_mutex> requests(_deviceMutex);
    std::string streamUri;
    {
        const auto values = Lock();
        if (!IsAVPSupportedCamera()) {
            HL_LOGE("this is not avp supported camera, do not proceed");
            return "";
        }
        streamUri = Metadata::GetInstance().GetStreamURI(device);
    }
    return requestStreamUrlToAVP(accessToken, streamUri);
}

std::string CameraDevice::requestStreamUrlToAVP(const std::string& accessToken, const std::string& streamUri) {
    if (accessToken.empty() || streamUri.empty()) {
        return "";
    }
    const std::string id = GetId();
    std::string url;
    if (!_avpRequester.RequestStreamUrl(accessToken, id, url)) {
        HL_LOGE("fail to get avp stream url");
        return "";
    }
    HL_LOGI("device_id[%s], stream_url[%s], stream_uri[%s]", id.c_str(), url.c_str(), streamUri.c_str());
    return url;
}

// ---- A camera that tells its address itself ----

void CameraDevice::GetNoneAvpUrl(const std::shared_ptr<CTransaction>& transaction,
                                 const std::shared_ptr<Device>& device) {
    if (!requestNoneAvpUrl(transaction, device)) {
        ReportUrl<GetNoneAvpCameraUrlParam>(transaction, GetId(), "");
    }
}

bool CameraDevice::requestNoneAvpUrl(const std::shared_ptr<CTransaction>& transaction,
                                     const std::shared_ptr<Device>& device) {
    const std::lock_guard<std::recursive_mutex> requests(_deviceMutex);
    std::string streamUri;
    {
        const auto values = Lock();
        if (IsAVPSupportedCamera()) {
            HL_LOGE("this is avp supported camera, do not proceed.");
            return false;
        }
        streamUri = Metadata::GetInstance().GetStreamURI(device);
    }
    std::string rcp;
    if (!GetRcpValueByStreamURL(streamUri, rcp)) {
        HL_LOGE("failed to get rcp value");
        return false;
    }
    const std::string id = GetId();
    _subscribeStartTime = Now();
    if (!subscribeResourceUriWithNoneAVPCamera(id)) {
        HL_LOGE("failed to subscribe");
        return false;
    }
    return startStream(transaction, id, streamUri, rcp);
}

bool CameraDevice::subscribeResourceUriWithNoneAVPCamera(const std::string& deviceId) {
    if (deviceId.empty()) {
        HL_LOGE("device id is empty!");
        return false;
    }
    bool found = false;
    const std::string uris = getJsonUrifromDevIDWithNoneAVPCamera(deviceId, found);
    if (uris.empty()) {
        HL_LOGE("jsonResUri is empty!");
        return false;
    }
    if (!found) {
        HL_LOGE("No subscribe uri found");
        return false;
    }
    const int ret = _agent.Subscribe(deviceId, uris, _HomeLoomClientNoneAVPCameraSubscribeChanged, CallbackToken());
    if (ret != 0) {
        HL_LOGE("failed to subscribe ret: %d", ret);
    }
    return ret == 0;
}

void CameraDevice::unsubscribeResourceUriWithNoneAVPCamera(const std::string& deviceId) {
    bool found = false;
    const std::string uris = getJsonUrifromDevIDWithNoneAVPCamera(deviceId, found);
    if (uris.empty()) {
        HL_LOGE("No subscribe uri found");
        return;
    }
    const int ret = _agent.Unsubscribe(deviceId, uris);
    if (ret != 0) {
        HL_LOGE("failed to unsubscribe ret: %d", ret);
    }
}

std::string CameraDevice::getJsonUrifromDevIDWithNoneAVPCamera(const std::string& deviceId, bool& found) const {
    found = false;
    const auto& metadata = Metadata::GetInstance();
    if (metadata.IsEmptyMetadataMap()) {
        HL_LOGE("ui meta is empty!");
        return "";
    }
    std::string vid;
    {
        const auto values = Lock();
        vid = GetVid();
    }
    std::vector<std::string> taken;
    auto array = json::JsonValue::CreateArray();
    for (const auto& resource : metadata.GetDPResourceList(vid)) {
        const bool isStream = resource.property == "liveStream" || resource.property == "stream";
        if (!isStream || CHLUtil::IsDuplicateWithSubscribeUrl(taken, resource.href)) {
            continue;
        }
        HL_LOGI("device id : %s, stream resource : %s", deviceId.c_str(), resource.href.c_str());
        taken.push_back(resource.href);
        array.append(resource.href);
        found = true;
    }
    return array.toString();
}

// The transaction is stored before the camera is told: its event may come before the call returns.
bool CameraDevice::startStream(const std::shared_ptr<CTransaction>& transaction, const std::string& deviceId,
                               const std::string& uri, const std::string& rcp) {
    setStreamTransaction(transaction);
    _setAttributeStartTime = Now();
    const int ret = _agent.SetRemoteAttributes(
        deviceId, uri, rcp, _HomeLoomClientNoneAVPCameraRemoteRepresentationChanged, CallbackToken());
    if (ret != 0) {
        HL_LOGE("failed to set remote attributes");
        // The subscription stays: the next request replaces it.
        setStreamTransaction(nullptr);
    }
    return ret == 0;
}

// ---- A doorbell ----

void CameraDevice::GetRingDoorBellUrl(const std::shared_ptr<CTransaction>& transaction) {
    if (!requestRingDoorbellUrl(transaction)) {
        ReportUrl<GetRingDoorbellUrlParam>(transaction, GetId(), "");
    }
}

bool CameraDevice::requestRingDoorbellUrl(const std::shared_ptr<CTransaction>& transaction) {
    const std::lock_guard<std::recursive_mutex> requests(_deviceMutex);
    const std::string id = GetId();
    if (id.empty()) {
        HL_LOGE("device id is empty!");
        return false;
    }
    auto document = json::JsonValue::CreateObject();
    document.set("liveStream", true);
    const std::string rcp = document.toString();
    HL_LOGI("rcp_str : %s", rcp.c_str());
    _subscribeStartTime = Now();
    const int ret =
        _agent.Subscribe(id, GetRingDoorbellJsonUri(), _HomeLoomClientRingDoorbellSubscribeChanged, CallbackToken());
    if (ret != 0) {
        HL_LOGE("failed to subscribe ret: %d", ret);
        return false;
    }
    return startStream(transaction, id, kDoorbellStreamUri, rcp);
}

// ---- What the agent calls back ----

// Nothing depends on the outcome: a write that failed shows by the event that does not come.
void CameraDevice::_HomeLoomClientNoneAVPCameraRemoteRepresentationChanged(int result, const char*, const char*,
                                                                           const char*, const char*, void* userData) {
    HL_LOGI("result : %d", result);
    if (const auto camera = FindByToken<CameraDevice>(userData)) {
        HL_LOGI("=== set attribute performance check ===");
        HL_LOGI("elapsed time : %lld ms", ElapsedMs(camera->_setAttributeStartTime));
    }
}

void CameraDevice::_HomeLoomClientNoneAVPCameraSubscribeChanged(const char* deviceId, const char*,
                                                                const char* representation, const char*, const char*,
                                                                const char*, void* userData) {
    onStreamEvent(deviceId, representation, userData, "_HomeLoomClientNoneAVPCameraSubscribeChanged",
                  &CameraDevice::finishNoneAvpStream);
}

void CameraDevice::_HomeLoomClientRingDoorbellSubscribeChanged(const char* deviceId, const char*,
                                                               const char* representation, const char*, const char*,
                                                               const char*, void* userData) {
    onStreamEvent(deviceId, representation, userData, "_HomeLoomClientRingDoorbellSubscribeChanged",
                  &CameraDevice::finishRingDoorbellStream);
}

// An event that is dropped leaves everything as it is, so that a later one can still answer the request.
void CameraDevice::onStreamEvent(const char* deviceId, const char* representation, void* userData, const char* jobName,
                                 FinishStream finish) {
    Guarded([&] {
        const auto camera = FindByToken<CameraDevice>(userData);
        if (!camera) {
            return;
        }
        const long long elapsed = ElapsedMs(camera->_subscribeStartTime);
        HL_LOGI("=== subscribe performance check ===");
        HL_LOGI("elapsed time : %lld ms", elapsed);
        if (elapsed < kFirstValidMs) {
            HL_LOGI("clock count is under 100msec, do not proceed");
            return;
        }
        std::string url = InHomeUrl(representation != nullptr ? representation : "");
        if (!url.empty()) {
            EnqueueOnScheduler([camera, finish, id = std::string(deviceId != nullptr ? deviceId : ""),
                                url = std::move(url)] { ((*camera).*finish)(id, url); },
                               jobName);
        }
    });
}

// ---- The jobs that answer ----

void CameraDevice::finishNoneAvpStream(const std::string& deviceId, const std::string& url) {
    unsubscribeResourceUriWithNoneAVPCamera(deviceId);
    stopStream(deviceId);
    if (const auto transaction = takeStreamTransaction(deviceId, url)) {
        ReportUrl<GetNoneAvpCameraUrlParam>(transaction, deviceId, url);
    }
}

void CameraDevice::finishRingDoorbellStream(const std::string& deviceId, const std::string& url) {
    const int ret = _agent.Unsubscribe(deviceId, GetRingDoorbellJsonUri());
    if (ret != 0) {
        HL_LOGE("failed to unsubscribe ret: %d", ret);
    }
    stopStream(deviceId);
    if (const auto transaction = takeStreamTransaction(deviceId, url)) {
        ReportUrl<GetRingDoorbellUrlParam>(transaction, deviceId, url);
    }
}

// Before the address goes to the screens, which open a stream of their own. Whether it worked changes nothing.
void CameraDevice::stopStream(const std::string& deviceId) {
    std::string accessToken;
    _agent.GetAccessToken(accessToken);
    _noneAvpRequester.StopStream(accessToken, deviceId);
}

void CameraDevice::setStreamTransaction(const std::shared_ptr<CTransaction>& transaction) {
    auto replaced = transaction;
    const std::lock_guard<std::recursive_mutex> lock(_deviceMutex);
    _streamTransaction.swap(replaced);
}

std::shared_ptr<CTransaction> CameraDevice::takeStreamTransaction(const std::string& deviceId, const std::string& url) {
    const std::lock_guard<std::recursive_mutex> lock(_deviceMutex);
    if (!_streamTransaction || deviceId != GetId()) {
        HL_LOGI("transaction is null, do not report, device_id : %s, in_home_url : %s", deviceId.c_str(), url.c_str());
        return nullptr;
    }
    return std::exchange(_streamTransaction, nullptr);
}

}  // namespace VMFramework::HomeLoom
