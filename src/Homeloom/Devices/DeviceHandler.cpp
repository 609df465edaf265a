// Holds the devices of the signed-in user, and starts and ends the work on them.
#include "Homeloom/Devices/DeviceHandler.h"

#include <VMFramework/JsonValue.h>
#include <vconf.h>

#include "Common/CHLUtil.h"
#include "Common/CText.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Homeloom/Common/CallbackTokens.h"
#include "Homeloom/Devices/DeviceFactory.h"
#include "Homeloom/Devices/Resource.h"
#include "Homeloom/Tessel/ITesselHandler.h"
#include "Homeloom/UIMeta/Metadata.h"

namespace VMFramework::HomeLoom {

DeviceHandler::DeviceHandler(ITesselHandler& agent)
    : Handler("DeviceHandler"),
      _metadataDispatcher("DeviceHandler"),
      _statusDispatcher("DeviceHandlerStatus"),
      _agent(agent) {
    _vidDevicesMap.max_load_factor(1.0f);
    initDeviceTypeMap();
}

DeviceHandler::~DeviceHandler() {
    CallbackTokens::Unwatch(_subscriptionToken);
}

void DeviceHandler::SetAccessTokenGetter(std::function<std::string()> getter) {
    std::lock_guard<std::mutex> lock(_leafMutex);
    _accessTokenGetter.swap(getter);
}

void DeviceHandler::SetIsHubConnectedDevice(std::function<bool(const std::string&)> test) {
    std::lock_guard<std::mutex> lock(_leafMutex);
    _isHubConnectedDevice.swap(test);
}

void DeviceHandler::Init() {
    HL_LOGI("DeviceHandler Init");
}

void DeviceHandler::Deinit() {
    HL_LOGI("DeviceHandler Deinit");
    // The flag first: a job in a long loop sees it and lets the joins return.
    Quit();
    _metadataDispatcher.Quit();
    _statusDispatcher.Quit();
}

void DeviceHandler::ClearTimers() {
    for (const auto& [id, device] : GetAllDevice()) {
        device->CancelTimer();
    }
}

void DeviceHandler::HandleDeviceInfo(const Device::_deviceInfo& info, const std::vector<std::string>& uris,
                                     const std::vector<std::string>& osvUris) {
    const auto newDevice = DeviceFactory::Create(info, _agent);
    for (const auto* list : {&uris, &osvUris}) {
        for (const auto& uri : *list) {
            newDevice->AddResource(std::make_shared<Resource>(uri));
        }
    }
    if (const auto stored = FindDevice(info.device_id)) {
        mergeDevice(stored, newDevice);
    } else {
        addNewDevice(newDevice);
    }
}

void DeviceHandler::addNewDevice(const std::shared_ptr<Device>& device) {
    const std::string id = device->GetId();
    const std::string vid = device->GetVid();
    {
        const auto lock = Lock();
        addVidDeviceMap(vid, id);
        AddDevice(device);
    }
    if (!Metadata::GetInstance().IsParsedMetadata(vid)) {
        HL_LOGI("metadata didn't parse yet, device_id : %s, vid : %s", id.c_str(), vid.c_str());
        return;
    }
    if (!IsMyTV(id) && !isHubConnectedDevice(id)) {
        HL_LOGI("subscribe uri device_id : %s, vid : %s", id.c_str(), vid.c_str());
        SubscribeResourceUri(device);
    }
}

void DeviceHandler::mergeDevice(const std::shared_ptr<Device>& stored, const std::shared_ptr<Device>& newDevice) {
    const DeviceStatus newStatus = newDevice->GetStatus();
    bool isWokenTV = false;
    {
        const auto lock = Lock();
        isWokenTV = CHLUtil::IsDeviceTypeTVForActionState(stored->GetDeviceType()) &&
                    stored->GetStatus() != DEVICE_STATUS_CONNECTED && newStatus == DEVICE_STATUS_CONNECTED;
    }
    if (isWokenTV) {
        HL_LOGI("TV device changed to CONNECTED, device id : %s, device type : %s, status : %d ",
                newDevice->GetId().c_str(), newDevice->GetDeviceType().c_str(), newStatus);
        GetProperty(newDevice);
        SubscribeResourceUri(newDevice);
    }

    const auto lock = Lock();
    const bool isStatusChanged = stored->GetStatus() != newStatus;
    if (isStatusChanged) {
        HL_LOGI(
            "Device Already Present in DeviceMap and cloud status is changed, need to get statetext and iconurl, "
            "device status : %d",
            newStatus);
        stored->SetStatus(newStatus);
        Metadata::GetInstance().SetDeviceStateText(stored);
        Metadata::GetInstance().UpdateDeviceIconUrl(stored);
    }
    const std::string id = newDevice->GetId();
    const std::string oldVid = stored->GetVid();
    const std::string newVid = newDevice->GetVid();
    if (oldVid != newVid) {
        DeleteVidDeviceMap(oldVid, id);
        addVidDeviceMap(newVid, id);
    }
    stored->ApplyChanges(newDevice);
    if (isStatusChanged) {
        UpdateControllable(stored);
    }
}

std::string DeviceHandler::GetDeviceNameFromDeviceDetail(homeloom_client_device_detail_h detail) const {
    std::string name;
    _agent.DeviceDetailGetString(detail, HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_NICK_NAME, name);
    if (name.empty()) {
        _agent.DeviceDetailGetString(detail, HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_PREFIX, name);
    }
    return name;
}

std::vector<std::string> DeviceHandler::UpdateDeviceList(const std::vector<std::string>& ids) const {
    const std::unordered_set<std::string> present(ids.begin(), ids.end());
    std::vector<std::string> gone;
    const auto lock = Lock();
    for (const auto& [id, device] : _deviceMap) {
        if (IsQuit()) {
            HL_LOGI("already quit");
            return {};
        }
        if (present.count(id) == 0) {
            HL_LOGI("not present  DeviceId: %s, going to delete the device", id.c_str());
            gone.push_back(id);
        }
    }
    return gone;
}

void DeviceHandler::AddDevice(const std::shared_ptr<Device>& device) {
    if (!device) {
        return;
    }
    const std::string id = device->GetId();
    const auto lock = Lock();
    device->SetValuesMutex(_mutex);
    if (_deviceMap.emplace(id, device).second) {
        HL_LOGI("added device id : %s to device map", id.c_str());
    }
}

std::shared_ptr<Device> DeviceHandler::FindDevice(const std::string& id) const {
    const auto lock = Lock();
    const auto found = _deviceMap.find(id);
    return found != _deviceMap.end() ? found->second : nullptr;
}

void DeviceHandler::DeleteDevice(const std::string& id) {
    const auto lock = Lock();
    _deviceMap.erase(id);
}

void DeviceHandler::DeleteDeviceMap() {
    DeviceMap devices;  // destroyed after the lock is released
    const auto lock = Lock();
    _deviceMap.swap(devices);
    _vidDevicesMap.clear();
}

DeviceHandler::DeviceMap DeviceHandler::GetAllDevice() const {
    const auto lock = Lock();
    return _deviceMap;
}

std::size_t DeviceHandler::GetDeviceMapSize() const {
    const auto lock = Lock();
    return _deviceMap.size();
}

bool DeviceHandler::IsEmpty() const {
    return GetDeviceMapSize() == 0;
}

void DeviceHandler::addVidDeviceMap(const std::string& vid, const std::string& id) {
    const auto lock = Lock();
    _vidDevicesMap[vid].insert(id);
    HL_LOGI("added device : %s to map, vid : %s", id.c_str(), vid.c_str());
}

void DeviceHandler::DeleteVidDeviceMap(const std::string& vid, const std::string& id) {
    const auto lock = Lock();
    const auto found = _vidDevicesMap.find(vid);
    if (found == _vidDevicesMap.end()) {
        HL_LOGE("didn't get devices from vid_devicesMap");
        return;
    }
    found->second.erase(id);
    if (found->second.empty()) {
        _vidDevicesMap.erase(found);
    }
}

std::string DeviceHandler::GetVid(const std::string& id) const {
    const auto lock = Lock();
    const auto device = FindDevice(id);
    if (!device) {
        HL_LOGE("device[%s] NOT found in map", id.c_str());
        return "";
    }
    return device->GetVid();
}

int DeviceHandler::SubDeviceType(const std::string& type) const {
    const auto found = _deviceTypeMap.find(type);
    return found != _deviceTypeMap.end() ? found->second : 0;
}

int DeviceHandler::GetDeviceStatus(const std::shared_ptr<Device>& device) const {
    const DeviceStatus status = device->GetStatus();
    if (status == DEVICE_STATUS_INACTIVE && CHLUtil::IsDeviceTypeTVOrRefForActiveState(device->GetDeviceType())) {
        return DEVICE_STATUS_CONNECTED;
    }
    return status;
}

int DeviceHandler::GetVisibleDeviceCount() const {
    int count = 0;
    const auto lock = Lock();
    for (const auto& [id, device] : _deviceMap) {
        if (IsQuit()) {
            HL_LOGI("already quit");
            return 0;
        }
        const std::string type = device->GetDeviceType();
        if (isInvisibleDevice(type, id)) {
            HL_LOGI("NOT count. device type[%s], device_id[%s]", type.c_str(), id.c_str());
        } else {
            ++count;
        }
    }
    return count;
}

bool DeviceHandler::IsMyTV(const std::string& id) const {
    const std::string myTvId = getMyTvId();
    if (myTvId.empty() || id != myTvId) {
        return false;
    }
    HL_LOGI("this is self TV, di: %s", id.c_str());
    return true;
}

// Other than for Device::IsFilteredDevice, the hub counts as well.
bool DeviceHandler::isInvisibleDevice(const std::string& type, const std::string& id) const {
    if (type == "x.com.hl.d.hub" || type == "x.com.hl.d.bridge" || type == "oic.d.wirelessrouter" ||
        type == "x.com.hl.d.mobile.presence") {
        HL_LOGI("[%s] device type is Invisible", type.c_str());
        return true;
    }
    if (IsMyTV(id)) {
        HL_LOGI("self TV[%s]. Invisible", id.c_str());
        return true;
    }
    return false;
}

std::string DeviceHandler::getMyTvId() const {
    {
        std::lock_guard<std::mutex> lock(_leafMutex);
        if (!_myTvId.empty()) {
            return _myTvId;
        }
    }
    const OwnedText text(vconf_get_str(Names::VCONF_SIGNUP_INFO));
    if (!text || *text == '\0') {
        HL_LOGE("signup info empty!");
        return "";
    }
    return GuardedOr(std::string(), [&]() -> std::string {
        const auto document = json::JsonValue::Create(text.get());
        const std::string id = document[Names::DI].asString();
        if (id.empty()) {
            HL_LOGE("di member is empty!");
            return "";
        }
        HL_LOGI("my tv device id : %s", id.c_str());
        std::lock_guard<std::mutex> lock(_leafMutex);
        _myTvId = id;
        return id;
    });
}

bool DeviceHandler::isHubConnectedDevice(const std::string& id) const {
    std::function<bool(const std::string&)> test;
    {
        std::lock_guard<std::mutex> lock(_leafMutex);
        test = _isHubConnectedDevice;
    }
    return test(id);
}

std::string DeviceHandler::getAccessToken() const {
    std::function<std::string()> getter;
    {
        std::lock_guard<std::mutex> lock(_leafMutex);
        getter = _accessTokenGetter;
    }
    return getter();
}

void DeviceHandler::AddJobToScheduler(ThreadJob job, const std::string& name) {
    Guarded([&] { SGTMsgDispatcher::GetInstance().EnqueueData(std::move(job), name); });
}

void DeviceHandler::AddJobToStatusScheduler(ThreadJob job, const std::string& name) {
    Guarded([&] { _statusDispatcher.EnqueueData(std::move(job), name); });
}

void DeviceHandler::addMetadataParsingJobToScheduler(ThreadJob job, const std::string& name) {
    Guarded([&] { _metadataDispatcher.EnqueueData(std::move(job), name); });
}

void DeviceHandler::initDeviceTypeMap() {
    _deviceTypeMap = {
        {"oic.d.airconditioner", 12},
        {"oic.d.airpurifier", 15},
        {"oic.d.camera", 26},
        {"oic.d.sensor.contact", 51},
        {"oic.d.dishwasher", 29},
        {"x.com.hl.d.doorbell", 59},
        {"oic.d.dryer", 11},
        {"x.com.hl.d.elevator", 60},
        {"x.com.hl.d.gasvalve", 77},
        // No device has this type; the screens know the number all the same.
        {"device-type", 48},
        {"oic.d.light", 40},
        {"oic.d.microoven", 30},
        {"x.com.hl.d.mobile.presence", 55},
        {"oic.d.networkaudio", 49},
        {"oic.d.oven", 16},
        {"oic.d.range", 17},
        {"oic.d.refrigerator", 9},
        {"oic.d.robotcleaner", 18},
        {"x.com.norvane.d.tracker", 73},
        {"x.com.hl.d.sensor.presence", 56},
        {"x.com.hl.d.siren", 76},
        {"oic.d.smartlock", 46},
        {"oic.d.smartplug", 50},
        {"x.com.hl.d.hub", 45},
        {"x.com.hl.d.steamcloset", 74},
        {"oic.d.blind", 78},
        {"x.com.hl.d.sensor.contact", 52},
        {"oic.d.garagedoor", 62},
        {"x.com.hl.d.healthtracker", 63},
        {"x.com.hl.d.irrigation", 64},
        {"x.com.hl.d.airqualitysensor", 80},
        {"x.com.hl.d.irblaster", 79},
        {"oic.d.fan", 81},
        {"x.com.hl.d.settop", 82},
        {"x.com.hl.d.sensor.moisture", 54},
        {"x.com.hl.d.sensor.motion", 53},
        {"x.com.hl.d.sensor.multifunction", 58},
        {"x.com.hl.d.networkaudio", 67},
        {"x.com.hl.d.remotecontroller", 65},
        {"x.com.hl.d.sensor.smoke", 66},
        {"oic.d.switch", 68},
        {"oic.d.thermostat", 69},
        {"x.com.hl.d.vent", 71},
        {"x.com.hl.d.voiceassistance", 72},
        {"oic.d.watervalve", 70},
        {"oic.d.tv", 6},
        {"oic.d.washer", 10},
        {"x.com.hl.d.winecellar", 75},
        {"oic.d.wirelessrouter", 61},
        {"x.com.hl.d.projector", 6},
        {"x.com.hl.d.monitor", 6},
        {"x.com.hl.d.tag", 73},
        {"x.com.hl.d.humidifier", 83},
    };
}

}  // namespace VMFramework::HomeLoom
