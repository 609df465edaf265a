#ifndef HOMELOOM_HOMELOOM_DEVICES_CAMERADEVICE_H
#define HOMELOOM_HOMELOOM_DEVICES_CAMERADEVICE_H

#include <bitset>
#include <string>

#include <homeloom_client.h>

#include "Homeloom/Devices/Device.h"

namespace VMFramework::HomeLoom {

/// The notification resources of a camera. Each kind has two: a camera has one or the other.
enum CameraNotificationList : int {
    CAMERA_NOTIFICATION_MOTION = 0,
    CAMERA_NOTIFICATION_SOUND = 1,
    CAMERA_NOTIFICATION_PERSON = 2,
    CAMERA_NOTIFICATION_RING = 3,
    CAMERA_NOTIFICATION_MOTION_MAIN = 4,
    CAMERA_NOTIFICATION_SOUND_MAIN = 5,
    CAMERA_NOTIFICATION_PERSON_MAIN = 6,
    CAMERA_NOTIFICATION_RING_MAIN = 7
};

/// A camera or a doorbell.
class CameraDevice : public Device {
public:
    using Device::Device;

    /// One bit for each notification resource, by CameraNotificationList.
    using NotificationSet = std::bitset<8>;

    /// What the camera can notify of: 1 motion, 2 sound, 4 person, 8 ring.
    int IsSupportCameraNotificationType() const;
    /// Which of these are switched on, in the same bits. Asks the agent, up to eight times.
    int IsSupportCameraNotificationValue() const;
    /// The two halves of IsSupportCameraNotificationValue, for a caller that may not hold the devices' lock across an
    /// agent call: the first reads the device's resources, the second asks the agent and reads the id alone.
    NotificationSet GetSupportedNotifications() const;
    int QueryCameraNotificationValue(const NotificationSet& supported) const;

    bool IsSupport2WayTalk() const;

private:
    static int getCameraNotiType(const std::string& uri);
    static void setCameraNotiParam(homeloom_client_app_launch_condition_h condition, const std::string& deviceId,
                                   const std::string& uri);
    static std::string makeCameraNotiBundle(const std::string& deviceId, const std::string& uri);
    static bool isAddedCameraNotification(const std::string& deviceId, const std::string& uri, bool& exist);
};

}  // namespace VMFramework::HomeLoom

#endif
