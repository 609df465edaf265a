// Reads the agent's core device list and answers by device id what the client list doesn't know.
#include "Homeloom/CoreDevices/CoreDeviceHandler.h"

#include <utility>

#include <VMFramework/JsonValue.h>
#include <homeloom_core.h>

#include "Common/CException.h"
#include "Common/CHLUtil.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Homeloom/Tessel/AgentList.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr char kIrDeviceType[] = "IR_OCF";

bool isListRead(int ret, int) {
    if (ret != 0) {
        HL_LOGE("get core device list error : %d", ret);
    }
    return ret == 0;
}

// A record whose JSON is no good costs its own fields, not the list.
std::string getDeviceNetworkType(const std::string& type, const std::string& details) {
    return GuardedOr(std::string(), [&]() -> std::string { return CHLUtil::GetDeviceNetworkType(type, details); });
}

core_device_icon_info parsingIconInfo(const std::string& text) {
    return GuardedOr(core_device_icon_info(), [&]() -> core_device_icon_info {
        const auto root = json::JsonValue::Create(text);
        if (root.isNull()) {
            HL_LOGE("icon root is null");
            return {};
        }
        return {root["animationIcon"].asString(),   root["activatedIcon"].asString(),
                root["inactivatedIcon"].asString(), root["disconnectedIcon"].asString(),
                root["iconKey"].asString(),         root["lastUpdateDate"].asString()};
    });
}

}  // namespace

CoreDeviceHandler::CoreDeviceHandler(ITesselHandler& agent) : Handler("CoreDeviceHandler"), _agent(agent) {}

void CoreDeviceHandler::SetParentDeviceIdGetter(std::function<std::string(const std::string&)> getter) {
    const MutexLock lock(_mutex);
    _getParentDeviceId.swap(getter);
}

bool CoreDeviceHandler::readField(homeloom_core_device_h device, int field, std::string& value, const char* failure,
                                  const Log::Place& caller) {
    if (_agent.GetCoreDeviceString(device, field, value) != 0) {
        HL_LOG_AT(DLOG_ERROR, caller, "%s", failure);
        return false;
    }
    return true;
}

// Reads the list and passes 'read' each record with its number, until it returns false or the handler is to quit.
// 'check' gets the agent's code and the size, and says whether to go on.
void CoreDeviceHandler::walk(const std::function<bool(int ret, int size)>& check,
                             const std::function<bool(int i, homeloom_core_device_h device)>& read) {
    AgentList<homeloom_core_device_h> devices(_agent, &ITesselHandler::CoreDeviceListDestroy);
    const int ret = _agent.GetCoreDeviceList(devices.list, devices.count);
    if (!check(ret, devices.count)) {
        return;
    }
    int i = 0;
    for (const homeloom_core_device_h device : devices) {
        if (IsQuit()) {
            HL_LOGI("already quit");
            return;
        }
        if (!read(i++, device)) {
            return;
        }
    }
}

void CoreDeviceHandler::BuildCoreDeviceList() {
    const auto check = [](int ret, int size) {
        HL_LOGI("ret of get core device list: %d, device_size: %d", ret, size);
        if (ret != 0) {
            HL_LOGE("core error : %d", ret);
            return false;
        }
        if (size < 1) {
            HL_LOGE("device size is under zero, do not proceed");
            return false;
        }
        return true;
    };
    walk(check, [this](int i, homeloom_core_device_h device) {
        core_device_info info;
        std::string details;
        if (!readField(device, HOMELOOM_CORE_DEVICE_ID, info.device_id, "get device id failed") ||
            !readField(device, HOMELOOM_CORE_DEVICE_NAME, info.device_name, "get device name failed") ||
            !readField(device, HOMELOOM_CORE_DEVICE_TYPE, info.device_type, "get device type failed") ||
            !readField(device, HOMELOOM_CORE_DEVICE_LOCATION_ID, info.location_id, "get location id failed") ||
            !readField(device, HOMELOOM_CORE_DEVICE_ROOM_ID, info.room_id, "get room id failed") ||
            !readField(device, HOMELOOM_CORE_DEVICE_PRESENTATION_ID, info.presentation_id,
                       "get presentation id failed") ||
            !readField(device, HOMELOOM_CORE_DEVICE_MANUFACTURER_NAME, info.manufacturer_name,
                       "get manufacturer name failed") ||
            !readField(device, HOMELOOM_CORE_DEVICE_DETAILS, details, "get device details failed")) {
            return false;
        }
        info.network_type = getDeviceNetworkType(info.device_type, details);
        HL_LOGI(
            "[%d] core device id : %s, device name : %s, presentation id : %s, manufacturer name : %s, type : %s, "
            "location id : %s, room id : %s, deviceNetworkType: %s",
            i, info.device_id.c_str(), info.device_name.c_str(), info.presentation_id.c_str(),
            info.manufacturer_name.c_str(), info.device_type.c_str(), info.location_id.c_str(), info.room_id.c_str(),
            info.network_type.c_str());
        const MutexLock lock(_mutex);
        _coreDeviceMap[info.device_id] = {std::move(info.device_name),      SharedText(info.device_type),
                                          SharedText(info.location_id),     SharedText(info.room_id),
                                          SharedText(info.presentation_id), SharedText(info.manufacturer_name),
                                          SharedText(info.network_type)};
        return true;
    });
}

std::unordered_map<std::string, core_device_info> CoreDeviceHandler::GetCoreDeviceInfo() const {
    std::unordered_map<std::string, core_device_info> devices;
    const MutexLock lock(_mutex);
    devices.reserve(_coreDeviceMap.size());
    for (const auto& [id, held] : _coreDeviceMap) {
        devices.emplace(id, core_device_info{id, held.device_name, held.device_type.get(), held.location_id.get(),
                                             held.room_id.get(), held.presentation_id.get(),
                                             held.manufacturer_name.get(), held.network_type.get()});
    }
    return devices;
}

std::string CoreDeviceHandler::GetCoreDeviceNetworkType(const std::string& id) const {
    if (id.empty()) {
        throw CException("device id empty!", kErrorEmptyArgument);
    }
    const MutexLock lock(_mutex);
    const auto found = _coreDeviceMap.find(id);
    return found != _coreDeviceMap.end() ? found->second.network_type.get() : "";
}

std::string CoreDeviceHandler::GetCoreDeviceType(const std::string& id) const {
    if (id.empty()) {
        throw CException("device id empty!", kErrorEmptyArgument);
    }
    const MutexLock lock(_mutex);
    const auto found = _coreDeviceMap.find(id);
    return found != _coreDeviceMap.end() ? found->second.device_type.get() : "";
}

std::unordered_map<std::string, core_device_icon_info> CoreDeviceHandler::GetCoreDeviceIconList() {
    std::unordered_map<std::string, core_device_icon_info> icons;
    walk(isListRead, [&](int i, homeloom_core_device_h device) {
        std::string id;
        std::string text;
        if (!readField(device, HOMELOOM_CORE_DEVICE_ID, id, "get device id failed") ||
            !readField(device, HOMELOOM_CORE_DEVICE_ICONS, text, "get device icons failed")) {
            return true;
        }
        auto info = parsingIconInfo(text);
        HL_LOGI(
            "[%d] core device id : %s, animation : %s, activated : %s, inactivated : %s, disconnected : %s, key : %s, "
            "last update date : %s",
            i, id.c_str(), info.animation_icon.c_str(), info.activated_icon.c_str(), info.inactivated_icon.c_str(),
            info.disconnected_icon.c_str(), info.icon_key.c_str(), info.last_update_date.c_str());
        icons[id] = std::move(info);
        return true;
    });
    return icons;
}

std::unordered_map<std::string, core_device_type_info> CoreDeviceHandler::GetCoreDeviceTypeList() {
    std::unordered_map<std::string, core_device_type_info> types;
    walk(isListRead, [&](int, homeloom_core_device_h device) {
        std::string id;
        std::string details;
        core_device_type_info info;
        if (!readField(device, HOMELOOM_CORE_DEVICE_ID, id, "get device id failed") ||
            !readField(device, HOMELOOM_CORE_DEVICE_TYPE, info.device_type, "get device type failed") ||
            !readField(device, HOMELOOM_CORE_DEVICE_DETAILS, details, "get device detail str failed")) {
            return true;
        }
        info.network_type = getDeviceNetworkType(info.device_type, details);
        if (info.device_type == kIrDeviceType) {
            info.parent_device_id = getParentDeviceId(details);
            HL_LOGI("IR_OCF Device. id: %s, parent_id: %s", id.c_str(), info.parent_device_id.c_str());
        }
        if (info.network_type.empty()) {
            info.network_type = info.device_type;
        }
        types[id] = std::move(info);
        return true;
    });
    return types;
}

std::string CoreDeviceHandler::getParentDeviceId(const std::string& details) const {
    std::function<std::string(const std::string&)> getter;
    {
        const MutexLock lock(_mutex);
        getter = _getParentDeviceId;
    }
    return GuardedOr(std::string(), [&]() -> std::string { return getter(details); });
}

}  // namespace VMFramework::HomeLoom
