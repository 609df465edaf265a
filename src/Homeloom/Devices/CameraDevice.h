#ifndef HOMELOOM_HOMELOOM_DEVICES_CAMERADEVICE_H
#define HOMELOOM_HOMELOOM_DEVICES_CAMERADEVICE_H

#include <bitset>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <homeloom_client.h>

#include "Homeloom/Devices/Device.h"

namespace VMFramework::HomeLoom {

class CTransaction;
class TesselHandler;

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

    /// Switches one kind of notification on or off, by the first bit set of the mask above, and reports the outcome.
    /// Blocks for as long as the agent takes.
    void SetCameraNotification(const std::shared_ptr<CTransaction>& transaction, int type);
    void UnsetCameraNotification(const std::shared_ptr<CTransaction>& transaction, int type);

    /// Sends a capability command. A failure is reported at once, a success by the event that answers it; a second
    /// command before that takes the first one's answer. 'arguments' are separated by commas; without any it throws
    /// CException, and the transaction waits all the same.
    void RequestExecuteCommand(const std::shared_ptr<CTransaction>& transaction, const std::string& component,
                               const std::string& capability, const std::string& command, const std::string& arguments);
    /// The event that may answer a command.
    void HandleWebrtcDeviceEvent(const std::string& json);
    void RequestGetStatusOfCapability(const std::shared_ptr<CTransaction>& transaction, const std::string& component,
                                      const std::string& capability);

private:
    using ConditionAction = int (TesselHandler::*)(homeloom_client_app_launch_condition_h);

    bool changeCameraNotification(int type, ConditionAction action) const;
    static bool handleCameraNotification(const std::string& deviceId, const std::string& uri, ConditionAction action);

    static std::vector<std::string> getParsedCommandArguments(const std::string& arguments);
    void addTransaction(const std::shared_ptr<CTransaction>& transaction);
    std::shared_ptr<CTransaction> takeTransaction();

    static int getCameraNotiType(const std::string& uri);
    static void setCameraNotiParam(homeloom_client_app_launch_condition_h condition, const std::string& deviceId,
                                   const std::string& uri);
    static std::string makeCameraNotiBundle(const std::string& deviceId, const std::string& uri);
    static bool isAddedCameraNotification(const std::string& deviceId, const std::string& uri, bool& exist);

    std::mutex _commandMutex;                           // a leaf
    std::shared_ptr<CTransaction> _commandTransaction;  // the command that waits for its event
};

}  // namespace VMFramework::HomeLoom

#endif
