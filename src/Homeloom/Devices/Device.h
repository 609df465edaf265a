#ifndef HOMELOOM_HOMELOOM_DEVICES_DEVICE_H
#define HOMELOOM_HOMELOOM_DEVICES_DEVICE_H

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "Common/DeviceInfoStructs.h"
#include "Common/SharedText.h"
#include "Homeloom/Common/MainLoopTimer.h"

namespace VMFramework::HomeLoom {

class Resource;

/// The record of one device of the user's home: identity and placement as the cloud gives them, the values of its
/// resources, and what the plug-in has worked out about it.
///
/// A device has no lock of its own but for its timer: everything but the id is read and written under the mutex of the
/// DeviceHandler that holds it (DeviceHandler::Lock, or the device's own Lock). What a getter answers by reference is
/// read under the same lock; who needs it longer copies it. Devices are made by DeviceFactory and held by shared
/// ownership.
class Device : public std::enable_shared_from_this<Device> {
public:
    /// The resource by which a refrigerator shows its inside.
    static constexpr char kInsideViewUri[] = "/udo/contents/provider/vs/0";
    /// In the vid of a camera whose stream the platform's own service gives.
    static constexpr char kAvPlatform[] = "AVPlatform";

    /// What a device is built from.
    struct _deviceInfo {
        std::string device_id;
        std::string device_name;
        std::string vid;
        std::string device_type;
        std::string location_name;
        std::string room_name;
        DeviceStatus status = DEVICE_STATUS_CONNECTED;
        std::string nick_name;
        std::string location_id;
        std::string room_id;
        std::string prefix;
        std::string core_device_type;
        std::string core_device_network_type;
        std::string core_device_parent_device_id;
        std::string core_device_animation_icon_url;
        std::string core_device_activated_icon_url;
        std::string core_device_inactivated_icon_url;
        std::string core_device_disconnected_icon_url;
        std::string core_device_icon_key;
        std::string core_device_icon_date;
    };

    Device();
    explicit Device(const _deviceInfo& info);
    virtual ~Device();
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    using ValuesLock = std::unique_lock<std::recursive_mutex>;
    /// Holds the handler's mutex, for a device that reads its own values outside the handler's operations.
    ValuesLock Lock() const { return _valuesMutex ? ValuesLock(*_valuesMutex) : ValuesLock(); }
    /// Set by the handler before anybody else knows of the device.
    void SetValuesMutex(std::shared_ptr<std::recursive_mutex> mutex) { _valuesMutex = std::move(mutex); }

    /// Never changes once others know of the device.
    const std::string& GetId() const { return _id; }
    void SetId(const std::string& id) { _id = id; }
    const std::string& GetName() const { return _told.device_name; }
    const std::string& GetNickName() const { return _told.nick_name; }
    const std::string& GetVid() const { return _told.vid.get(); }
    const std::string& GetDeviceType() const { return _told.device_type.get(); }
    DeviceStatus GetStatus() const { return _told.status; }
    void SetStatus(DeviceStatus status) { _told.status = status; }
    const std::string& GetRoom() const { return _told.room_name.get(); }
    void SetRoom(const std::string& room) { _told.room_name = room; }
    const std::string& GetRoomID() const { return _told.room_id.get(); }
    const std::string& GetLocation() const { return _told.location_name.get(); }
    void SetLocation(const std::string& location) { _told.location_name = location; }
    const std::string& GetLocationID() const { return _told.location_id.get(); }
    const std::string& GetPrefix() const { return _told.prefix.get(); }

    const std::string& GetCoreDeviceType() const { return _told.core_device_type.get(); }
    const std::string& GetCoreDeviceNetworkType() const { return _told.core_device_network_type.get(); }
    const std::string& GetCoreDeviceParentDeviceId() const { return _told.core_device_parent_device_id.get(); }
    const std::string& GetCoreDeviceAnimationIconUrl() const { return _told.core_device_animation_icon_url.get(); }
    const std::string& GetCoreDeviceActivatedIconUrl() const { return _told.core_device_activated_icon_url.get(); }
    const std::string& GetCoreDeviceInactivatedIconUrl() const { return _told.core_device_inactivated_icon_url.get(); }
    const std::string& GetCoreDeviceDisconnectedIconUrl() const {
        return _told.core_device_disconnected_icon_url.get();
    }
    const std::string& GetCoreDeviceIconKey() const { return _told.core_device_icon_key.get(); }
    const std::string& GetCoreDeviceIconDate() const { return _told.core_device_icon_date.get(); }

    const std::string& GetStateText() const { return _stateText; }
    void SetStateText(const std::string& text) { _stateText = text; }
    const std::string& GetIconUrl() const { return _iconUrl.get(); }
    void SetIconUrl(const std::string& url) { _iconUrl = url; }
    bool IsInactive() const { return _isInactive; }
    void SetIsInactive(bool isInactive) { _isInactive = isInactive; }
    bool IsControllableDevice() const { return _isControllable; }
    void SetControllableDevice(bool isControllable) { _isControllable = isControllable; }
    bool GetRunningState() const { return _runningState; }
    void SetRunningState(bool isRunning) { _runningState = isRunning; }
    const std::string& GetSubDeviceCardJsonInfo() const { return _subDeviceCardJsonInfo; }
    void SetSubDeviceCardJsonInfo(const std::string& json) { _subDeviceCardJsonInfo = json; }
    /// JSON text of the last argument that the state text was made of.
    const std::string& GetDeviceOperationalContext() const;
    void SetDeviceOperationalContext(const std::string& uri, const std::string& property, const std::string& value);
    void SetDeviceOperationalContext(const device_context_struct& context);
    /// What GetDeviceOperationalContext() tells, once it was set.
    struct Context {
        bool isSet = false;
        SharedText uri;
        SharedText property;
        std::string value;
        mutable SharedText text;  // made when it is first asked for
    };
    /// Puts back at its end what the device told as its context: for evaluations that are not about the state text.
    class ContextKeeper {
    public:
        explicit ContextKeeper(Device& device);
        ~ContextKeeper();
        ContextKeeper(const ContextKeeper&) = delete;
        ContextKeeper& operator=(const ContextKeeper&) = delete;

    private:
        Device& _device;
        Context _context;
    };

    bool IsCameraDevice() const;
    bool IsFilteredDevice() const;
    bool IsAVPSupportedCamera() const;
    bool IsSupportInnerView() const;

    /// Adds the resource unless one of that URI is held.
    void AddResource(const std::shared_ptr<Resource>& resource);
    /// The resource of that URI. A miss gives a new one that the device doesn't hold: of that URI if
    /// 'createNamed', an invalid one if not.
    std::shared_ptr<Resource> FindResource(const std::string& uri, bool createNamed) const;
    bool HasResource(const std::string& uri) const;
    bool HasDeviceUri(const std::string& uri) const;
    void DeleteResources();

    /// The property's last known value; empty for whatever the device doesn't hold.
    std::string GetValue(const std::string& uri, const std::string& property) const;
    /// The same without a copy.
    const std::string& ValueOf(const std::string& uri, const std::string& property) const;
    /// Takes over an update of a resource that the device holds; any other is lost.
    void UpdateValue(const device_resource_info_struct& info);
    /// The text that sets a property through the agent. False, and the text untouched, if it can't be made.
    bool GetRcpValue(const std::string& uri, const std::string& property, const std::string& value,
                     std::string& rcpString) const;
    /// The text that asks a camera to start its stream.
    bool GetRcpValueByStreamURL(const std::string& uri, std::string& rcpString) const;
    /// Merges a freshly built record of the same device. What the plug-in worked out stays.
    void ApplyChanges(const std::shared_ptr<Device>& other);

    /// Runs 'callback' once on the main loop, 'interval' milliseconds from now, in place of one that still waits.
    /// It must own neither this device nor its handler.
    void SetTimer(unsigned interval, std::function<void()> callback);
    /// Takes back what SetTimer set and waits for a callback that is running. Not to be called with a lock held that
    /// such a callback takes.
    void CancelTimer();

protected:
    /// What the agent gets as user data in place of this device.
    void* CallbackToken();
    /// The device of that token; null when it has gone. Kind is its class.
    template <typename Kind>
    static std::shared_ptr<Kind> FindByToken(void* token) {
        return std::static_pointer_cast<Kind>(findByToken(token));
    }

private:
    /// What the cloud tells of a device, as in _deviceInfo. Texts that others are likely to have too are kept once.
    struct Told {
        Told() = default;
        explicit Told(const _deviceInfo& info);

        std::string device_name;
        std::string nick_name;
        SharedText vid;
        SharedText device_type;
        SharedText location_name;
        SharedText room_name;
        SharedText location_id;
        SharedText room_id;
        SharedText prefix;
        SharedText core_device_type;
        SharedText core_device_network_type;
        SharedText core_device_parent_device_id;
        SharedText core_device_animation_icon_url;
        SharedText core_device_activated_icon_url;
        SharedText core_device_inactivated_icon_url;
        SharedText core_device_disconnected_icon_url;
        SharedText core_device_icon_key;
        SharedText core_device_icon_date;
        DeviceStatus status = DEVICE_STATUS_CONNECTED;
    };

    static std::shared_ptr<Device> findByToken(void* token);
    /// Null for a resource that the device doesn't hold.
    Resource* lookUp(const std::string& uri) const;

    std::string _id;
    std::shared_ptr<std::recursive_mutex> _valuesMutex;
    Told _told;
    std::string _stateText;
    std::string _subDeviceCardJsonInfo;
    SharedText _iconUrl;
    std::vector<std::shared_ptr<Resource>> _resources;
    Context _operationalContext;
    bool _isInactive = true;  // until evaluated
    bool _runningState = false;
    bool _isControllable = false;

    std::once_flag _tokenOnce;
    void* _token = nullptr;

    MainLoopTimer _timer;
};

}  // namespace VMFramework::HomeLoom

#endif
