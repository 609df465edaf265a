// Facade: the Wi-Fi locker setting and the key-value store.
#include "Homeloom/Tessel/TesselHandler.h"

namespace VMFramework::HomeLoom {

int TesselHandler::GetWifiLockerUserSetting(homeloom_core_json_cb cb, void* userData) {
    return _Call({{cb != nullptr, "cbFunc is null"}}, homeloom_core_get_wifilocker_user_setting, cb, userData);
}

int TesselHandler::SetWifiLockerUserSetting(const std::string& settingJson, homeloom_core_json_cb cb, void* userData) {
    return _Call({{settingJson, "setting_json is empty"}, {cb != nullptr, "cbFunc is null"}},
                 homeloom_core_set_wifilocker_user_setting, settingJson, cb, userData);
}

int TesselHandler::CreateLocksmithKeyValue(const std::string& key, const std::string& value, std::string& resultJson) {
    return _CallForText({{key, "key is empty"}}, resultJson, homeloom_core_locksmith_create_keyvalue, key, value);
}

int TesselHandler::GetLocksmithKeyValue(const std::string& key, std::string& resultJson) {
    return _CallForText({{key, "key is empty"}}, resultJson, homeloom_core_locksmith_get_keyvalue, key);
}

int TesselHandler::UpdateLocksmithKeyValue(const std::string& key, const std::string& value, std::string& resultJson) {
    return _CallForText({{key, "key is empty"}}, resultJson, homeloom_core_locksmith_update_keyvalue, key, value);
}

int TesselHandler::DeleteLocksmithKeyValue(const std::string& key, std::string& resultJson) {
    return _CallForText({{key, "key is empty"}}, resultJson, homeloom_core_locksmith_delete_keyvalue, key);
}

}  // namespace VMFramework::HomeLoom
