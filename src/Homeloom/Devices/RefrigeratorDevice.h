#ifndef HOMELOOM_HOMELOOM_DEVICES_REFRIGERATORDEVICE_H
#define HOMELOOM_HOMELOOM_DEVICES_REFRIGERATORDEVICE_H

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "Homeloom/Devices/Device.h"
#include "Homeloom/Network/RefrigeratorInsideView.h"

namespace VMFramework::HomeLoom {

class CTransaction;
class ITesselHandler;

/// A refrigerator, maybe with cameras inside.
class RefrigeratorDevice : public Device {
public:
    RefrigeratorDevice(const _deviceInfo& info, ITesselHandler& agent) : Device(info), _agent(agent) {}

    /// Has the refrigerator take pictures, and reports their addresses when it has told of them. A failure before that
    /// is reported at once; later there is either the whole answer or none.
    void GetInnerviewUrl(const std::shared_ptr<CTransaction>& transaction, const std::string& deviceId,
                         const std::string& accessToken);

private:
    // What an event came by. Whoever asks anew subscribes anew.
    struct Subscription {
        Subscription(std::weak_ptr<Device> refrigerator, unsigned number);
        ~Subscription();
        Subscription(const Subscription&) = delete;
        Subscription& operator=(const Subscription&) = delete;

        const std::weak_ptr<Device> device;
        const unsigned generation;
        std::atomic<int> retryCount{1};
        void* token = nullptr;
    };
    struct Request {
        std::shared_ptr<CTransaction> transaction;
        unsigned generation;
    };

    static void _RefrigeratorInnerViewSubscribeChanged(const char* deviceId, const char* uri,
                                                       const char* representation, const char* resDataType,
                                                       const char* ocfErrorCode, const char* reserved, void* userData);
    static void onSetRemoteRepresentation(int result, const char* deviceId, const char* attributes, const char* uri,
                                          const char* resDataType, void* userData);

    bool requestRefrigeratorInnerviewUrl(const std::shared_ptr<CTransaction>& transaction, const std::string& deviceId);
    bool subscribeResourceUriWithRefrigeratorInsideView(const std::shared_ptr<CTransaction>& transaction,
                                                        const std::string& deviceId);
    void unsubscribeResourceUriWithRefrigeratorInsideView(const std::string& deviceId);
    static bool isAnswer(Subscription& subscription, const std::string& representation);
    void answer(unsigned generation, const std::string& deviceId, const std::string& representation);
    static void onGetInsideViewUrlEvent(const std::shared_ptr<CTransaction>& transaction, bool isSuccess,
                                        const std::string& urls, const std::string& dateTime);
    bool forget(const std::shared_ptr<CTransaction>& transaction);

    RefrigeratorInsideView _insideView;  // used by the scheduler's jobs, but for the text that asks for pictures

    // Held across the agent's calls that subscribe and end a subscription, so that none ends a later one than its own.
    std::mutex _subscriptionMutex;
    std::shared_ptr<Subscription> _subscription;  // the last one, until its first answer
    unsigned _lastGeneration = 0;

    std::mutex _requestMutex;  // a leaf: guards the next ones
    std::string _accessToken;
    std::vector<Request> _pending;
    ITesselHandler& _agent;
};

}  // namespace VMFramework::HomeLoom

#endif
