// Facade: the agent's connection, sign-in, account and server environment.
#include <VMFramework/JsonValue.h>
#include <vconf.h>

#include "Homeloom/Tessel/TesselHandler.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr char kSignupInfoKey[] = "memory/iot/client/signup_info";
constexpr int kServerTypeIotCloud = 0;
constexpr int kServerTypeUiMeta = 1;

}  // namespace

int TesselHandler::GetClientDeviceID(std::string& deviceId) {
    const Locked<FairMutex> lock(_mutex);
    return _MayCall({}) ? _GetClientDeviceID(deviceId) : HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
}

int TesselHandler::Connect(homeloom_client_connection_state_changed_cb cb, void* userData) {
    const Locked<FairMutex> lock(_mutex);
    if (cb == nullptr) {
        HL_LOGE("cbFunc is null");
        return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
    }
    homeloom_client_h handle = _clientHandle;
    const int ret = homeloom_client_connect(&handle, cb, userData);
    _clientHandle = handle;
    return ret;
}

int TesselHandler::Disconnect() {
    const Locked<FairMutex> lock(_mutex);
    if (_clientHandle == nullptr) {
        HL_LOGE("client handle is null");
        return HOMELOOM_CLIENT_ERROR_NOT_CONNECTED;
    }
    const int ret = homeloom_client_disconnect(_clientHandle);
    _clientHandle = nullptr;  // whatever the agent said
    return ret;
}

int TesselHandler::GetState() {
    int state = 0;
    return _Call({}, homeloom_client_get_state, &state) == HOMELOOM_CLIENT_ERROR_NONE ? state : 0;
}

int TesselHandler::GetAccessToken(std::string& accessToken) {
    const Locked<FairMutex> lock(_mutex);
    return _MayCall({}) ? _GetAccessToken(accessToken) : HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
}

int TesselHandler::GetServerEnv(int type, int& env) {
    const Locked<FairMutex> lock(_mutex);
    return _MayCall({}) ? _GetServerEnv(type, env) : HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
}

std::string TesselHandler::GetUserId() {
    const Locked<FairMutex> lock(_mutex);
    if (!_MayCall({})) {
        HL_LOGE("Fail to get user id");
        return {};
    }
    return _GetUserId();
}

// The members and their order are read by other processes; the access token stands there in clear.
void TesselHandler::StoreSigninInfo() {
    try {
        bool isSignedIn = false;
        IsSignedIn(isSignedIn);
        const Locked<FairMutex> lock(_mutex);
        if (!_MayCall({})) {
            return;
        }
        if (!isSignedIn) {
            HL_LOGI("Not signed in no need to store signin-info");
            return;
        }
        _accessToken.clear();
        _GetAccessToken(_accessToken);
        std::string deviceId;
        _GetClientDeviceID(deviceId);
        const std::string iotCloud = _GetServerEnvName(kServerTypeIotCloud);
        const std::string uiMeta = _GetServerEnvName(kServerTypeUiMeta);

        auto info = json::JsonValue::CreateObject();
        info.set("uid", _GetUserId());
        info.set("accessToken", _accessToken);
        info.set("di", deviceId);
        info.set("IoTCloud", iotCloud);
        info.set("UiMeta", uiMeta);
        if (vconf_set_str(kSignupInfoKey, info.toString().c_str()) != 0) {
            HL_LOGE("Fail to write signin info!!!!");
        }
        HL_LOGI("IoT Cloud Server : %s, Metadata Server : %s", iotCloud.c_str(), uiMeta.c_str());
    } catch (const std::exception& e) {
        HL_LOGE("exception caught = %s", e.what());
    }
}

int TesselHandler::_GetAccessToken(std::string& accessToken) const {
    char* text = nullptr;
    const int ret = homeloom_client_get_access_token(_clientHandle, &text);
    TakeText(text, accessToken);
    return ret;
}

int TesselHandler::_GetClientDeviceID(std::string& deviceId) const {
    char* text = nullptr;
    const int ret = homeloom_client_get_device_id(_clientHandle, &text);
    TakeText(text, deviceId);
    return ret;
}

int TesselHandler::_GetServerEnv(int type, int& env) const {
    return homeloom_client_internal_get_server_env(_clientHandle, type, &env);
}

std::string TesselHandler::_GetUserId() const {
    char* text = nullptr;
    std::string userId;
    const int ret = homeloom_client_get_connected_user_id(_clientHandle, &text);
    TakeText(text, userId);
    if (ret != HOMELOOM_CLIENT_ERROR_NONE) {
        HL_LOGE("Fail to get user id");
        userId.clear();
    }
    return userId;
}

// In the agent's numbering. What cannot be read or is unknown counts as production.
std::string TesselHandler::_GetServerEnvName(int type) const {
    int env = -1;
    _GetServerEnv(type, env);
    switch (env) {
        case 0:
            return "STG";
        case 2:
            return "ACC";
        default:
            return "PROD";
    }
}

}  // namespace VMFramework::HomeLoom
