#ifndef HOMELOOM_HOMELOOM_WIFILOCKER_WIFILOCKERHANDLER_H
#define HOMELOOM_HOMELOOM_WIFILOCKER_WIFILOCKERHANDLER_H

#include <memory>
#include <string>

namespace VMFramework::HomeLoom {

class CTransaction;

/// The user's Wi-Fi locker setting, which the platform holds. Both operations are answered when the agent has answered;
/// the reports go out from the scheduler.
class WifiLockerHandler : public std::enable_shared_from_this<WifiLockerHandler> {
public:
    virtual ~WifiLockerHandler() = default;

    void GetWifiLockerUserSetting(const std::shared_ptr<CTransaction>& transaction);
    void SetWifiLockerUserSetting(const std::shared_ptr<CTransaction>& transaction, const std::string& settingJson);

private:
    static void _HomeLoomCoreGetWifiLockerUserSetting(int error, const char* errorMessage, const char* response,
                                                      void* userData);
    static void _HomeLoomCoreSetWifiLockerUserSetting(int error, const char* errorMessage, const char* response,
                                                      void* userData);

    static int getEnabledValue(const std::string& response);
    void* requestToken(const std::shared_ptr<CTransaction>& transaction);
};

}  // namespace VMFramework::HomeLoom

#endif
