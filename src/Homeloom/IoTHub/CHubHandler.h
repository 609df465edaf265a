#ifndef HOMELOOM_HOMELOOM_IOTHUB_CHUBHANDLER_H
#define HOMELOOM_HOMELOOM_IOTHUB_CHUBHANDLER_H

#include <memory>
#include <string>
#include <unordered_set>

#include "Common/Mutex.h"

namespace VMFramework::HomeLoom {

class CTransaction;
class ITesselHandler;

/// The TV as a hub: which devices its own hub serves, the search for new ones, and the hub control application.
class CHubHandler {
public:
    /// Starts the connection to the hub control application.
    explicit CHubHandler(ITesselHandler& agent);
    ~CHubHandler();
    CHubHandler(const CHubHandler&) = delete;
    CHubHandler& operator=(const CHubHandler&) = delete;

    /// Nothing of the hub control application comes any more, and nothing reaches it. Any number of times.
    void Stop();

    /// Reads the set anew. It is filled aside and swapped in; a failed read keeps what there was.
    void CreateLocalHubDevicesSet();
    /// Takes a leaf lock only: it is asked on the agent's threads.
    bool IsLocalHubConnectedDevice(const std::string& deviceId) const;

    /// Who onboarded this TV as a hub, and the hub's device id; empty when nobody did.
    std::string GetLoginIDHubOnboarded() const;
    std::string GetHubDeviceID() const;

    /// Requests to the hub control application. Without a connection to it they are acknowledged as they stand; what
    /// comes of them comes as notifications.
    void StartHubOnboarding(const std::shared_ptr<CTransaction>& transaction, const std::string& accessToken,
                            const std::string& locationId, const std::string& roomId);
    void StopHubOnboarding(const std::shared_ptr<CTransaction>& transaction);
    void ResetHub(const std::shared_ptr<CTransaction>& transaction);
    void ResetDongle(const std::shared_ptr<CTransaction>& transaction);
    void GetHubInfo(const std::shared_ptr<CTransaction>& transaction);

    /// An empty hub id or a negative timeout gets no answer. 'timeout' in seconds; the agent keeps the time.
    /// Nobody reads the location.
    void StartHubDeviceDiscovery(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                                 const std::string& hubId, int timeout);
    void StopHubDeviceDiscovery(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                                const std::string& hubId);

private:
    mutable Mutex _mutex;  // a leaf
    std::unordered_set<std::string> _localHubDevices GUARDED_BY(_mutex);
    ITesselHandler& _agent;
};

}  // namespace VMFramework::HomeLoom

#endif
