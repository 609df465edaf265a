#ifndef HOMELOOM_SIMULATOR_SERVICEMANAGER_H
#define HOMELOOM_SIMULATOR_SERVICEMANAGER_H

#include <string>
#include <vector>

namespace simulator {

/// The handle on the service manager behind norvane_svcmgr.h. Its callbacks come on a thread of its own.
class ServiceManager {
public:
    static ServiceManager& instance();

    /// Announces an update of the agent; then the agent drops its connections and refuses new ones.
    void startUpdate();
    /// The agent is back; then its end is announced.
    void endUpdate();
    /// Announces any status, the agent being as it is.
    void announce(int status);

    bool isWatched() const;
    struct Boost {
        std::string appId;
        int callerPid;
        int type, level, scope, option, durationMilliseconds;
    };
    std::vector<Boost> boosts() const;

    /// Waits until every announcement was delivered. Not from a callback.
    void waitIdle();

    ServiceManager(const ServiceManager&) = delete;
    ServiceManager& operator=(const ServiceManager&) = delete;

private:
    ServiceManager() = default;
};

}  // namespace simulator

#endif
