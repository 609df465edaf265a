#ifndef HOMELOOM_HOMELOOM_COREDEVICES_COREDEVICEHANDLER_H
#define HOMELOOM_HOMELOOM_COREDEVICES_COREDEVICEHANDLER_H

#include <functional>
#include <string>
#include <unordered_map>

#include <homeloom_core.h>

#include "Common/HLLog.h"
#include "Common/Mutex.h"
#include "Common/SharedText.h"
#include "Homeloom/Common/Handler.h"

namespace VMFramework::HomeLoom {

class ITesselHandler;

struct core_device_info {
    std::string device_id;
    std::string device_name;
    std::string device_type;
    std::string location_id;
    std::string room_id;
    std::string presentation_id;
    std::string manufacturer_name;
    std::string network_type;
};

struct core_device_icon_info {
    std::string animation_icon;
    std::string activated_icon;
    std::string inactivated_icon;
    std::string disconnected_icon;
    std::string icon_key;
    std::string last_update_date;
};

struct core_device_type_info {
    std::string device_type;
    std::string network_type;
    std::string parent_device_id;
};

/// The agent's core device list, which knows more of a device than the client list does: its network type, its icons,
/// its presentation.
///
/// Every operation may be called from any thread. Those that read the list block for as long as the agent takes.
class CoreDeviceHandler : public Handler {
public:
    explicit CoreDeviceHandler(ITesselHandler& agent);

    /// How the parent of an infrared device is found in its detail JSON.
    void SetParentDeviceIdGetter(std::function<std::string(const std::string&)> getter);

    /// Reads the list and adds its devices to what is held. A list that can't be read changes nothing; devices
    /// that have gone stay.
    void BuildCoreDeviceList();

    /// What is held, by device id.
    std::unordered_map<std::string, core_device_info> GetCoreDeviceInfo() const;
    /// Both throw CException for an empty id and answer empty for an unknown one.
    std::string GetCoreDeviceNetworkType(const std::string& id) const;
    std::string GetCoreDeviceType(const std::string& id) const;

    /// Both read the list anew and answer by device id. A record that can't be read is left out.
    std::unordered_map<std::string, core_device_icon_info> GetCoreDeviceIconList();
    std::unordered_map<std::string, core_device_type_info> GetCoreDeviceTypeList();

private:
    /// What is held as core_device_info. Texts that others are likely to have too are kept once.
    struct Held {
        std::string device_name;
        SharedText device_type;
        SharedText location_id;
        SharedText room_id;
        SharedText presentation_id;
        SharedText manufacturer_name;
        SharedText network_type;
    };

    bool readField(homeloom_core_device_h device, int field, std::string& value, const char* failure,
                   const Log::Place& caller = HL_CALLER);
    void walk(const std::function<bool(int ret, int size)>& check,
              const std::function<bool(int i, homeloom_core_device_h device)>& read);
    std::string getParentDeviceId(const std::string& details) const;

    mutable Mutex _mutex;  // a leaf
    std::function<std::string(const std::string&)> _getParentDeviceId GUARDED_BY(_mutex);
    std::unordered_map<std::string, Held> _coreDeviceMap GUARDED_BY(_mutex);
    ITesselHandler& _agent;
};

}  // namespace VMFramework::HomeLoom

#endif
