#ifndef HOMELOOM_HOMELOOM_DEVICES_REFRIGERATORDEVICE_H
#define HOMELOOM_HOMELOOM_DEVICES_REFRIGERATORDEVICE_H

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "Homeloom/Devices/Device.h"
#include "Homeloom/Network/RefrigeratorInsideView.h"

namespace VMFramework::HomeLoom {

class CTransaction;

/// A refrigerator, maybe with cameras inside.
class RefrigeratorDevice : public Device {
public:
    using Device::Device;

    /// Has the refrigerator take pictures, and reports their addresses when it has told of them. A failure before that
    /// is reported at once; later there is either the whole answer or none.
    void GetInnerviewUrl(const std::shared_ptr<CTransaction>& transaction, const std::string& deviceId,
                         const std::string& accessToken);

private:
    using Transactions = std::vector<std::shared_ptr<CTransaction>>;

    static void _RefrigeratorInnerViewSubscribeChanged(const char* deviceId, const char* uri,
                                                       const char* representation, const char* resDataType,
                                                       const char* ocfErrorCode, const char* reserved, void* userData);
    static void onSetRemoteRepresentation(int result, const char* deviceId, const char* attributes, const char* uri,
                                          const char* resDataType, void* userData);

    bool requestRefrigeratorInnerviewUrl(const std::shared_ptr<CTransaction>& transaction, const std::string& deviceId);
    bool subscribeResourceUriWithRefrigeratorInsideView(const std::shared_ptr<CTransaction>& transaction,
                                                        const std::string& deviceId);
    static void unsubscribeResourceUriWithRefrigeratorInsideView(const std::string& deviceId);
    bool isAnswer(const std::string& representation);
    void answer(const std::string& deviceId, const std::string& representation);
    static void onGetInsideViewUrlEvent(const std::shared_ptr<CTransaction>& transaction, bool isSuccess,
                                        const std::string& urls, const std::string& dateTime);
    bool forget(const std::shared_ptr<CTransaction>& transaction);

    RefrigeratorInsideView _insideView;  // used by the scheduler's jobs, but for the text that asks for pictures

    std::mutex _requestMutex;  // a leaf: guards the next ones
    std::string _accessToken;
    int _retryCount = 0;
    Transactions _pending;
};

}  // namespace VMFramework::HomeLoom

#endif
