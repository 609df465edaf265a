// A camera's notifications: which kinds it supports, and the conditions under which the agent shows one.
#include "Homeloom/Devices/CameraDevice.h"

#include <algorithm>
#include <cstddef>

#include <VMFramework/JsonValue.h>

#include "Common/CException.h"
#include "Common/CReporter.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Homeloom/Tessel/ITesselHandler.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr int KIND_COUNT = 4;  // motion, sound, person, ring
// By CameraNotificationList: the second half are the twins of the first.
constexpr const char* NOTIFICATION_URIS[] = {"/capability/motionSensor/0",         "/capability/soundSensor/0",
                                             "/capability/objectDetection/0",      "/capability/button/0",
                                             "/capability/motionSensor/main/0",    "/capability/soundSensor/main/0",
                                             "/capability/objectDetection/main/0", "/capability/button/main/0"};

constexpr char NOTIFICATION_APP_ID[] = "com.norvane.tv.iot-service-notification-v2";

// Cameras with two-way talk. Only the first entry counts: the screens show the other two models without talk.
constexpr const char* TWO_WAY_TALK_MODELS[] = {"ring", "sercomm_rc8335", "imi_ipc019d"};

// What getCameraNotiType answers; another order than that of CameraNotificationList.
enum NotiKind : int { NOTI_UNKNOWN = -1, NOTI_MOTION = 0, NOTI_SOUND = 1, NOTI_BUTTON = 2, NOTI_OBJECT = 3 };

// The event that switches the notification on, by NotiKind.
struct NotiEvent {
    const char* propertyName;
    const char* propertyType;
    const char* propertyValue;
    const char* bundleType;
};
constexpr NotiEvent NOTI_EVENTS[] = {{"value", "Boolean", "true", "MOTION"},
                                     {"value", "Boolean", "true", "SOUND"},
                                     {"button", "String", "pushed", "BELL"},
                                     {"value", "String", "human", "HUMAN"}};

// An app launch condition of the agent's, destroyed with the scope.
class LaunchCondition {
public:
    explicit LaunchCondition(ITesselHandler& agent) : _agent(agent) {
        const int ret = _agent.AppLaunchConditionCreate(&_handle);
        if (ret != 0) {
            throw CException_HLClient("app_launch_condition_create is failed", ret);
        }
    }
    ~LaunchCondition() { _agent.AppLaunchConditionDestroy(&_handle); }
    LaunchCondition(const LaunchCondition&) = delete;
    LaunchCondition& operator=(const LaunchCondition&) = delete;

    homeloom_client_app_launch_condition_h Get() const { return _handle; }

private:
    ITesselHandler& _agent;
    homeloom_client_app_launch_condition_h _handle = nullptr;
};

void setConditionString(ITesselHandler& agent, homeloom_client_app_launch_condition_h condition, int property,
                        const std::string& value, const char* failure) {
    const int ret = agent.AppLaunchConditionSetString(condition, property, value);
    if (ret != 0) {
        throw CException_HLClient(failure, ret);
    }
}

}  // namespace

CameraDevice::NotificationSet CameraDevice::GetSupportedNotifications() const {
    NotificationSet supported;
    for (std::size_t i = 0; i < supported.size(); ++i) {
        supported[i] = HasResource(NOTIFICATION_URIS[i]);
    }
    return supported;
}

int CameraDevice::IsSupportCameraNotificationType() const {
    const NotificationSet supported = GetSupportedNotifications();
    int mask = 0;
    for (int kind = 0; kind < KIND_COUNT; ++kind) {
        const auto plain = static_cast<std::size_t>(kind);
        if (supported[plain] || supported[plain + KIND_COUNT]) {
            mask |= 1 << kind;
        }
    }
    return mask;
}

int CameraDevice::IsSupportCameraNotificationValue() const {
    return QueryCameraNotificationValue(GetSupportedNotifications());
}

int CameraDevice::QueryCameraNotificationValue(const NotificationSet& supported) const {
    const std::string id = GetId();
    int mask = 0;
    for (int kind = 0; kind < KIND_COUNT; ++kind) {
        for (const int twin : {kind, kind + KIND_COUNT}) {
            const auto i = static_cast<std::size_t>(twin);
            bool exist = false;
            if (supported[i] && isAddedCameraNotification(id, NOTIFICATION_URIS[i], exist) && exist) {
                mask |= 1 << kind;
            }
        }
    }
    return mask;
}

bool CameraDevice::IsSupport2WayTalk() const {
    std::string vid = GetVid();
    std::transform(vid.begin(), vid.end(), vid.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return vid.find(TWO_WAY_TALK_MODELS[0]) != std::string::npos;
}

void CameraDevice::SetCameraNotification(const std::shared_ptr<CTransaction>& transaction, int type) {
    SetCameraNotificationTypeParam param(transaction);
    param.result = changeCameraNotification(type, &ITesselHandler::AddAppLaunchCondition);
    param.deviceId = GetId();
    param.cameraNotificationType = type;
    Reporter::Report(param);
}

void CameraDevice::UnsetCameraNotification(const std::shared_ptr<CTransaction>& transaction, int type) {
    UnsetCameraNotificationTypeParam param(transaction);
    param.result = changeCameraNotification(type, &ITesselHandler::RemoveAppLaunchCondition);
    param.deviceId = GetId();
    param.cameraNotificationType = type;
    Reporter::Report(param);
}

// One kind at a time: further bits are ignored. The twin is not tried when the plain resource has failed.
bool CameraDevice::changeCameraNotification(int type, ConditionAction action) const {
    for (int kind = 0; kind < KIND_COUNT; ++kind) {
        if ((type & (1 << kind)) != 0) {
            const std::string id = GetId();
            return handleCameraNotification(id, NOTIFICATION_URIS[kind], action) &&
                   handleCameraNotification(id, NOTIFICATION_URIS[kind + KIND_COUNT], action);
        }
    }
    return false;
}

bool CameraDevice::handleCameraNotification(const std::string& deviceId, const std::string& uri,
                                            ConditionAction action) const {
    if (uri.empty()) {
        HL_LOGE("uri is empty!");
        return false;
    }
    return GuardedOr(false, [&] {
        const LaunchCondition condition(_agent);
        HL_LOGI("device_id : %s, uri : %s", deviceId.c_str(), uri.c_str());
        setCameraNotiParam(condition.Get(), deviceId, uri);
        const int ret = (_agent.*action)(condition.Get());
        if (ret != 0) {
            throw CException_HLClient("failed", ret);
        }
        return true;
    });
}

int CameraDevice::getCameraNotiType(const std::string& uri) {
    const auto contains = [&uri](const char* part) { return uri.find(part) != std::string::npos; };
    if (contains("/capability/motionSensor")) {
        return NOTI_MOTION;
    }
    if (contains("/capability/soundSensor")) {
        return NOTI_SOUND;
    }
    if (contains("/capability/button")) {
        return NOTI_BUTTON;
    }
    if (contains("/capability/objectDetection")) {
        return NOTI_OBJECT;
    }
    return NOTI_UNKNOWN;
}

void CameraDevice::setCameraNotiParam(homeloom_client_app_launch_condition_h condition, const std::string& deviceId,
                                      const std::string& uri) const {
    if (deviceId.empty() || uri.empty()) {
        HL_LOGE("device_id or uri is empty data!");
        return;
    }
    setConditionString(_agent, condition, HOMELOOM_CLIENT_APP_LAUNCH_CONDITION_APP_ID, NOTIFICATION_APP_ID,
                       "condition_app_id_str is failed");
    setConditionString(_agent, condition, HOMELOOM_CLIENT_APP_LAUNCH_CONDITION_DEVICE_ID, deviceId,
                       "condition_device_id is failed");
    setConditionString(_agent, condition, HOMELOOM_CLIENT_APP_LAUNCH_CONDITION_RESOURCE_URI, uri,
                       "condition_res_uri_str is failed");
    const int kind = getCameraNotiType(uri);
    if (kind == NOTI_UNKNOWN) {
        HL_LOGE("invalid uri : %s", uri.c_str());
        return;
    }
    const NotiEvent& event = NOTI_EVENTS[kind];
    setConditionString(_agent, condition, HOMELOOM_CLIENT_APP_LAUNCH_CONDITION_PROPERTY_NAME, event.propertyName,
                       "condition_property_name is failed");
    setConditionString(_agent, condition, HOMELOOM_CLIENT_APP_LAUNCH_CONDITION_PROPERTY_TYPE, event.propertyType,
                       "condition_property_type is failed");
    setConditionString(_agent, condition, HOMELOOM_CLIENT_APP_LAUNCH_CONDITION_PROPERTY_VALUE, event.propertyValue,
                       "condition_property_value is failed");
    // The words of the value's failure serve for the bundle's too.
    setConditionString(_agent, condition, HOMELOOM_CLIENT_APP_LAUNCH_CONDITION_BUNDLE,
                       makeCameraNotiBundle(deviceId, uri), "condition_property_value is failed");
}

std::string CameraDevice::makeCameraNotiBundle(const std::string& deviceId, const std::string& uri) {
    const int kind = getCameraNotiType(uri);
    if (kind == NOTI_UNKNOWN) {
        HL_LOGE("invalid uri : %s", uri.c_str());
        return "";
    }
    const auto entry = [](const char* key, const std::string& data) {
        auto object = json::JsonValue::CreateObject();
        object.set("key", key);
        object.set("data", data);
        return object;
    };
    auto bundle = json::JsonValue::CreateArray();
    bundle.append(entry("ServiceId", "VideoNotification"));
    bundle.append(entry("Type", NOTI_EVENTS[kind].bundleType));
    bundle.append(entry("Id", deviceId));
    return bundle.toString();
}

bool CameraDevice::isAddedCameraNotification(const std::string& deviceId, const std::string& uri, bool& exist) const {
    if (deviceId.empty()) {
        HL_LOGE("device id is empty!");
        return false;
    }
    if (uri.empty()) {
        HL_LOGE("uri is empty!");
        return false;
    }
    return GuardedOr(false, [&] {
        const LaunchCondition condition(_agent);
        setCameraNotiParam(condition.Get(), deviceId, uri);
        const int ret = _agent.IsAppLaunchConditionAdded(condition.Get(), exist);
        if (ret != 0) {
            throw CException_HLClient("app_launch_condition_added is failed", ret);
        }
        return true;
    });
}

}  // namespace VMFramework::HomeLoom
