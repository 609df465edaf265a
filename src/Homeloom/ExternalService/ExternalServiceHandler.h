#ifndef HOMELOOM_HOMELOOM_EXTERNALSERVICE_EXTERNALSERVICEHANDLER_H
#define HOMELOOM_HOMELOOM_EXTERNALSERVICE_EXTERNALSERVICEHANDLER_H

#include <memory>
#include <string>
#include <vector>

namespace VMFramework::HomeLoom {

class CTransaction;
class ITesselHandler;

/// Lets an outside application of the TV take part in the platform's push notifications: registers its push profile,
/// and keeps the list of devices whose notifications are blocked.
///
/// Without state of its own. The agent's callbacks queue; every report goes out from the scheduler or from the
/// request's thread.
class ExternalServiceHandler : public std::enable_shared_from_this<ExternalServiceHandler> {
public:
    explicit ExternalServiceHandler(ITesselHandler& agent) : _agent(agent) {}
    virtual ~ExternalServiceHandler() = default;

    /// These two block until the agent has answered.
    void SetNotificationProfile(const std::shared_ptr<CTransaction>& transaction, const std::string& provider,
                                const std::string& regId, const std::string& appId, const std::string& locale);
    void GetNotificationProfile(const std::shared_ptr<CTransaction>& transaction);

    /// Registers with the agent itself, and watches the block list. No request leads here: the profile operations
    /// serve them.
    void SetThirdPartyNotification(const std::shared_ptr<CTransaction>& transaction, const std::string& provider,
                                   const std::string& regId, const std::string& appId, const std::string& locale);
    /// 'blockListJson' is the text of a JSON array of device ids, which are texts. Anything else is answered false and
    /// the agent is not asked: a broken text must not clear the user's blocks.
    void SetThirdPartyNotificationStatus(const std::shared_ptr<CTransaction>& transaction,
                                         const std::string& blockListJson);
    void GetThirdPartyNotificationStatus(const std::shared_ptr<CTransaction>& transaction);
    void UnsetThirdPartyNotificationUpdateCb();

private:
    static void _HomeLoomClientThirdPartyNotification(bool result, void* userData);
    static void _HomeLoomClientSetThirdPartyNotificationStatus(bool result, void* userData);
    static void _HomeLoomClientGetThirdPartyNotificationStatus(int error, bool enabled, char** deviceIds, int count,
                                                               void* userData);
    static void _HomeLoomClientThirdPartyNotificationStatusUpdated(void* userData);

    static std::string convertBlockDeviceIdsToJson(char** deviceIds, int count);
    static bool convertJsonToBlockDeviceIds(const std::string& json, std::vector<std::string>& deviceIds);
    ITesselHandler& _agent;
};

}  // namespace VMFramework::HomeLoom

#endif
