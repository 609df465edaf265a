#ifndef HOMELOOM_COMMON_DEVICEINFOSTRUCTS_H
#define HOMELOOM_COMMON_DEVICEINFOSTRUCTS_H

#include <string>
#include <vector>

namespace VMFramework::HomeLoom {

/// What a button at rest says, and how long a press shows before that.
inline constexpr char kButtonReady[] = "Ready";
inline constexpr unsigned kButtonStandbyMs = 1000;

/// The cloud's own numbering; the number goes out as "cloud_device_status". The underlying type is fixed
/// because the agent may tell a number that has no name here.
enum DeviceStatus : int {
    DEVICE_STATUS_CONNECTED = 0,
    DEVICE_STATUS_DISCONNECTED = 1,
    DEVICE_STATUS_INACTIVE = 2,
    DEVICE_STATUS_HIDDEN = 3
};

enum RunningState : int {
    RUNNING_STATE_UNKNOWN = 0,  ///< the update says nothing about running
    RUNNING_STATE_STOPPED = 1,
    RUNNING_STATE_RUNNING = 2
};

/// One property of a resource update. Values travel as text whatever their type.
struct device_property_info_struct {
    std::string property_name;
    std::string property_value;
    std::string property_type;  ///< a type name of the cloud's schema, as Property::StringToPropertyType reads it
};

/// A resource update: the full picture of one resource of one device.
struct device_resource_info_struct {
    std::string device_id;
    std::string uri;
    std::vector<device_property_info_struct> properties;
};

/// The argument that a device's state text was last made of.
struct device_context_struct {
    std::string uri;
    std::string property;
    std::string value;
};

/// What the running state of a device is judged by.
struct device_operation_info_struct {
    std::string device_type;
    std::string uri;
    std::string property_name;
    std::string property_value;
};

}  // namespace VMFramework::HomeLoom

#endif
