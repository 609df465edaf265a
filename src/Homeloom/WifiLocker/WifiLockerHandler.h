#ifndef HOMELOOM_HOMELOOM_WIFILOCKER_WIFILOCKERHANDLER_H
#define HOMELOOM_HOMELOOM_WIFILOCKER_WIFILOCKERHANDLER_H

#include <memory>
#include <string>

namespace VMFramework::HomeLoom {

class CTransaction;
class ITesselHandler;

/// The user's Wi-Fi locker setting, which the platform holds. Both operations are answered when the agent has answered;
/// the reports go out from the scheduler.
class WifiLockerHandler : public std::enable_shared_from_this<WifiLockerHandler> {
public:
    explicit WifiLockerHandler(ITesselHandler& agent) : _agent(agent) {}
    virtual ~WifiLockerHandler() = default;

    void GetWifiLockerUserSetting(const std::shared_ptr<CTransaction>& transaction);
    void SetWifiLockerUserSetting(const std::shared_ptr<CTransaction>& transaction, const std::string& settingJson);

private:
    static void _HomeLoomCoreGetWifiLockerUserSetting(int error, const char* errorMessage, const char* response,
                                                      void* userData);
    static void _HomeLoomCoreSetWifiLockerUserSetting(int error, const char* errorMessage, const char* response,
                                                      void* userData);

    static int getEnabledValue(const std::string& response);
    ITesselHandler& _agent;
};

}  // namespace VMFramework::HomeLoom

#endif
