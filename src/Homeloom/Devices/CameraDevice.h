#ifndef HOMELOOM_HOMELOOM_DEVICES_CAMERADEVICE_H
#define HOMELOOM_HOMELOOM_DEVICES_CAMERADEVICE_H

#include <atomic>
#include <bitset>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <homeloom_client.h>

#include "Homeloom/Devices/Device.h"
#include "Homeloom/Network/CAVPCameraStreamRequester.h"
#include "Homeloom/Network/CNoneAVPCameraStreamRequester.h"

namespace VMFramework::HomeLoom {

class CTransaction;
class ITesselHandler;

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
///
/// Locks. The device mutex is held through the stream requests, a web request included, and takes the devices' own and
/// the facade's; nothing that holds either of these may take it. The commands' is a leaf.
class CameraDevice : public Device {
public:
    CameraDevice(const _deviceInfo& info, ITesselHandler& agent) : Device(info), _agent(agent) {}

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

    // The three ways to a stream. Each reports an address; an empty one says that there is none.

    /// Asks the platform's service, on the caller's thread. For cameras of the audio-video platform.
    void GetAvpUrl(const std::shared_ptr<CTransaction>& transaction, const std::shared_ptr<Device>& device,
                   const std::string& accessToken);
    /// These have the camera start its stream and report the address that it then tells; should it never tell one,
    /// there is no report. A second request before that takes the first one's answer.
    void GetNoneAvpUrl(const std::shared_ptr<CTransaction>& transaction, const std::shared_ptr<Device>& device);
    void GetRingDoorBellUrl(const std::shared_ptr<CTransaction>& transaction);

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
    using StartTime = std::atomic<std::chrono::system_clock::rep>;
    using FinishStream = void (CameraDevice::*)(const std::string& deviceId, const std::string& url);

    // What the agent calls back for a stream.
    static void _HomeLoomClientNoneAVPCameraSubscribeChanged(const char* deviceId, const char* uri,
                                                             const char* representation, const char* resDataType,
                                                             const char* ocfErrorCode, const char* reserved,
                                                             void* userData);
    static void _HomeLoomClientRingDoorbellSubscribeChanged(const char* deviceId, const char* uri,
                                                            const char* representation, const char* resDataType,
                                                            const char* ocfErrorCode, const char* reserved,
                                                            void* userData);
    static void _HomeLoomClientNoneAVPCameraRemoteRepresentationChanged(int result, const char* deviceId,
                                                                        const char* attributes, const char* uri,
                                                                        const char* resDataType, void* userData);
    static void onStreamEvent(const char* deviceId, const char* representation, void* userData, const char* jobName,
                              FinishStream finish);

    std::string getAvpUrl(const std::shared_ptr<Device>& device, const std::string& accessToken);
    std::string requestStreamUrlToAVP(const std::string& accessToken, const std::string& streamUri);
    bool requestNoneAvpUrl(const std::shared_ptr<CTransaction>& transaction, const std::shared_ptr<Device>& device);
    bool requestRingDoorbellUrl(const std::shared_ptr<CTransaction>& transaction);
    bool subscribeResourceUriWithNoneAVPCamera(const std::string& deviceId);
    void unsubscribeResourceUriWithNoneAVPCamera(const std::string& deviceId);
    std::string getJsonUrifromDevIDWithNoneAVPCamera(const std::string& deviceId, bool& found) const;
    bool startStream(const std::shared_ptr<CTransaction>& transaction, const std::string& deviceId,
                     const std::string& uri, const std::string& rcp);
    void finishNoneAvpStream(const std::string& deviceId, const std::string& url);
    void finishRingDoorbellStream(const std::string& deviceId, const std::string& url);
    void stopStream(const std::string& deviceId);
    std::shared_ptr<CTransaction> takeStreamTransaction(const std::string& deviceId, const std::string& url);
    void setStreamTransaction(const std::shared_ptr<CTransaction>& transaction);

    using ConditionAction = int (ITesselHandler::*)(homeloom_client_app_launch_condition_h);

    bool changeCameraNotification(int type, ConditionAction action) const;
    bool handleCameraNotification(const std::string& deviceId, const std::string& uri, ConditionAction action) const;

    static std::vector<std::string> getParsedCommandArguments(const std::string& arguments);
    void addTransaction(const std::shared_ptr<CTransaction>& transaction);
    std::shared_ptr<CTransaction> takeTransaction();

    static int getCameraNotiType(const std::string& uri);
    void setCameraNotiParam(homeloom_client_app_launch_condition_h condition, const std::string& deviceId,
                            const std::string& uri) const;
    static std::string makeCameraNotiBundle(const std::string& deviceId, const std::string& uri);
    bool isAddedCameraNotification(const std::string& deviceId, const std::string& uri, bool& exist) const;

    std::recursive_mutex _deviceMutex;                 // guards the AVP requester and the next one
    std::shared_ptr<CTransaction> _streamTransaction;  // the stream request that waits for its event
    StartTime _subscribeStartTime{0};
    StartTime _setAttributeStartTime{0};
    CAVPCameraStreamRequester _avpRequester;
    CNoneAVPCameraStreamRequester _noneAvpRequester;  // used by the scheduler's jobs alone

    std::mutex _commandMutex;                           // a leaf
    std::shared_ptr<CTransaction> _commandTransaction;  // the command that waits for its event
    ITesselHandler& _agent;
};

}  // namespace VMFramework::HomeLoom

#endif
