#ifndef HOMELOOM_HOMELOOM_DEVICES_DEVICEHANDLER_H
#define HOMELOOM_HOMELOOM_DEVICES_DEVICEHANDLER_H

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include <VMFramework/JsonValue.h>
#include <homeloom_client.h>

#include "Homeloom/Common/Handler.h"
#include "Homeloom/Common/MsgDispatcher.h"
#include "Homeloom/Devices/Device.h"

namespace VMFramework::HomeLoom {

class CTransaction;
class IEndpointHelper;
class IEndpointListHelper;
class ITesselHandler;
struct device_ui_metadata_struct;

/// Owns every device of the signed-in user: merges what the session read of them, subscribes to their resources,
/// applies updates, and turns devices into endpoints and notifications.
///
/// Locks. One recursive mutex guards the maps and the values of all devices in them; Metadata's comes after it. It
/// is held across evaluation and notification of an update, and never across a call to the agent: an operation that
/// calls the agent (GetProperty, HandleDeviceInfo, SubscribeResourceUri, UnsubscribeResourceUri,
/// SubscribeForAllDevices, GetUiMeta, GetDeviceData, GetDeviceIcons) is not to be called with it held. Nothing that
/// holds it may take the session's.
///
/// Lifetime. Held by shared ownership. Deinit comes before the last reference goes.
class DeviceHandler : public Handler, public std::enable_shared_from_this<DeviceHandler> {
public:
    using DeviceMap = std::map<std::string, std::shared_ptr<Device>>;
    using DeviceLock = std::unique_lock<std::recursive_mutex>;

    explicit DeviceHandler(ITesselHandler& agent);
    ~DeviceHandler() override;

    /// Both are called under leaf locks only, or with none: the second also on the agent's threads.
    void SetAccessTokenGetter(std::function<std::string()> getter);
    /// True for a device of the local hub: its updates and subscriptions are not this handler's.
    void SetIsHubConnectedDevice(std::function<bool(const std::string&)> test);

    void Init();
    /// Ends the job threads, waiting for the jobs that run.
    void Deinit();
    /// Takes back every device's timer. When it returns none runs. Not to be called with a lock held.
    void ClearTimers();

    /// Holds the mutex, for whoever reads or writes the values of a device.
    DeviceLock Lock() const { return DeviceLock(*_mutex); }

    // The device map

    /// Takes one device detail: a new device, or news of a known one.
    void HandleDeviceInfo(const Device::_deviceInfo& info, const std::vector<std::string>& uris,
                          const std::vector<std::string>& osvUris);
    /// The nick name, or if that is empty the prefix.
    std::string GetDeviceNameFromDeviceDetail(homeloom_client_device_detail_h detail) const;
    /// The ids in the map that are not in 'ids', in map order. Deletes nothing.
    std::vector<std::string> UpdateDeviceList(const std::vector<std::string>& ids) const;
    void AddDevice(const std::shared_ptr<Device>& device);
    /// Null for an unknown id.
    std::shared_ptr<Device> FindDevice(const std::string& id) const;
    void DeleteDevice(const std::string& id);
    /// Empties the vid map as well.
    void DeleteDeviceMap();
    DeviceMap GetAllDevice() const;
    std::size_t GetDeviceMapSize() const;
    bool IsEmpty() const;
    void addVidDeviceMap(const std::string& vid, const std::string& id);
    void DeleteVidDeviceMap(const std::string& vid, const std::string& id);
    /// Empty for an unknown id.
    std::string GetVid(const std::string& id) const;

    // What devices are

    int SubDeviceType(const std::string& type) const;
    /// The status that is reported.
    int GetDeviceStatus(const std::shared_ptr<Device>& device) const;
    /// 0 after Quit.
    int GetVisibleDeviceCount() const;
    bool IsMyTV(const std::string& id) const;
    bool isInvisibleDevice(const std::string& type, const std::string& id) const;

    // Values

    /// Asks the agent for the values of a connected device; they come as updates. Works out state text and icon of any
    /// other, and answers false.
    bool GetProperty(const std::shared_ptr<Device>& device);
    bool GetProperty(const std::string& id);
    /// Reads the properties that something will show out of an update. False if there are none to read. Throws if
    /// 'rep' or 'dataType' is no JSON object, or a value can't be read as its type.
    bool BuildResourceData(const std::string& deviceId, const std::string& uri, const std::string& rep,
                           const std::string& dataType, std::vector<device_property_info_struct>& properties);
    /// Applies an update and notifies. Nothing for an unknown device.
    void OnResourceUpdateEvent(const device_resource_info_struct& info);
    /// The stream URL of a camera, as the camera last told it.
    std::string GetCameraUrl(const std::shared_ptr<Device>& device) const;

    // Subscriptions

    void SubscribeResourceUri(const std::shared_ptr<Device>& device);
    void UnsubscribeResourceUri(const std::shared_ptr<Device>& device);
    void SubscribeForAllDevices();

    // Metadata

    /// Queues one job for each vid: parse its metadata, then read and subscribe its devices.
    void ParseMetadata();
    std::string GetUiMeta(const std::string& vid) const;
    void UpdateStateText();
    void UpdateAllDevicesByMetadata();
    /// Makes a device controllable that shows pictures, be it a camera's stream or a refrigerator's inside. To be asked
    /// with the lock held whenever that may have become true: when its metadata is there, and when it is connected.
    static void UpdateControllable(const std::shared_ptr<Device>& device);

    // Reports

    /// Appends one endpoint for each device. Answers the mutex, still held: whoever sends the list keeps it
    /// until the report is queued, so that an older list can't arrive after a newer state.
    DeviceLock GetDeviceData(const std::shared_ptr<IEndpointListHelper>& list) const;
    /// Reports the icons of one device, or of all for an empty id. Blocks for as long as the agent takes.
    void GetDeviceIcons(const std::shared_ptr<CTransaction>& transaction, const std::string& deviceId) const;

    // Jobs. None throws; a job that can't be queued is dropped.

    void AddJobToScheduler(ThreadJob job, const std::string& name);
    void AddJobToStatusScheduler(ThreadJob job, const std::string& name);
    void addMetadataParsingJobToScheduler(ThreadJob job, const std::string& name);

private:
    static void _HomeLoomClientSubscribeChanged(const char* deviceId, const char* uri, const char* rcsRep,
                                                const char* resDataType, const char* ocfErrorCode, const char* reserved,
                                                void* userData);
    static void _HomeLoomClientGetDeviceRemoteAttributes(int result, const char* deviceId, const char* attributes,
                                                         const char* uri, const char* resDataType, void* userData);

    void initDeviceTypeMap();
    std::string getMyTvId() const;
    bool isHubConnectedDevice(const std::string& id) const;
    std::string getAccessToken() const;
    void* subscriptionToken();

    void addNewDevice(const std::shared_ptr<Device>& device);
    void mergeDevice(const std::shared_ptr<Device>& stored, const std::shared_ptr<Device>& newDevice);
    void updateDeviceProperty(const std::shared_ptr<Device>& device);
    void applyUpdate(std::string deviceId, std::string uri, const std::string& rep, const std::string& dataType);
    /// The types that an update tells of a resource's properties.
    struct ResourceTypes {
        std::string text;
        std::vector<std::string> members;
        std::vector<std::optional<std::string>> types;  // nothing where the document has no text

        /// Of one of the members. Throws CException if the document has no text there.
        const std::string& typeOf(const std::string* member) const;
    };

    // With the mutex held. Null, and logged, for an unknown id.
    std::shared_ptr<Device> findDeviceOfUpdate(const std::string& id) const;
    bool readResource(const std::shared_ptr<Device>& device, const device_ui_metadata_struct* metadata,
                      const std::string& uri, const std::string& rep, const std::string& dataType,
                      std::vector<device_property_info_struct>& properties);
    std::shared_ptr<const ResourceTypes> findTypes(const std::string& text);
    void showUpdate(const std::shared_ptr<Device>& device, const device_ui_metadata_struct* metadata,
                    const device_resource_info_struct& info);
    void handleRunningState(const std::shared_ptr<Device>& device, const device_operation_info_struct& info) const;
    void handleButton(const std::shared_ptr<Device>& device, const device_resource_info_struct& info);
    void setButtonStandbyTimer(const std::shared_ptr<Device>& device, const device_resource_info_struct& info);
    void notifyDeviceState(const std::shared_ptr<Device>& device, const device_ui_metadata_struct* metadata,
                           const std::string& oldStateText) const;
    // The device's id, and the text that identifies its subscription. False, and logged, if there is none.
    bool findSubscription(const std::shared_ptr<Device>& device, std::string& id, std::string& uris) const;
    std::string getJsonUrifromDevID(const std::shared_ptr<Device>& device, bool& found) const;
    void parseMetadataOfVid(const std::string& vid);
    void readAndSubscribe(const std::string& id);

    std::unordered_map<std::string, int> readCameraNotificationValues() const;
    void fillEndpoint(IEndpointHelper& endpoint, const std::shared_ptr<Device>& device,
                      int cameraNotificationValue) const;
    std::string getDeviceIconsWithJson(const std::string& id) const;
    std::string getDevicesIconsWithJson() const;

    mutable std::mutex _leafMutex;  // guards the next four; after it only that of the callback tokens
    std::function<std::string()> _accessTokenGetter;
    std::function<bool(const std::string&)> _isHubConnectedDevice;
    mutable std::string _myTvId;
    void* _subscriptionToken = nullptr;

    // Guards all that follows but the dispatchers. Shared with the devices, some of which outlive their handler for the
    // length of a job.
    const std::shared_ptr<std::recursive_mutex> _mutex = std::make_shared<std::recursive_mutex>();
    std::unordered_map<std::string, int> _deviceTypeMap;
    DeviceMap _deviceMap;
    std::unordered_map<std::string, std::unordered_set<std::string>> _vidDevicesMap;
    std::unordered_map<std::string, std::shared_ptr<const ResourceTypes>> _resourceTypes;  // by the text
    std::shared_ptr<const ResourceTypes> _lastTypes;
    // Last, so that both threads have ended before anything else goes: their jobs name the handler by its address.
    MsgDispatcher _metadataDispatcher;
    MsgDispatcher _statusDispatcher;
    ITesselHandler& _agent;
};

}  // namespace VMFramework::HomeLoom

#endif
