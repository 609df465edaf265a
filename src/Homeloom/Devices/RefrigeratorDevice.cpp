// Finds the pictures of a refrigerator's inside and tells the screens where they are.
#include "Homeloom/Devices/RefrigeratorDevice.h"

#include <algorithm>
#include <utility>

#include <VMFramework/JsonValue.h>

#include "Common/CReporter.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Homeloom/Common/CallbackTokens.h"
#include "Homeloom/Common/MsgDispatcher.h"
#include "Homeloom/Tessel/ITesselHandler.h"

namespace VMFramework::HomeLoom {

namespace {

std::string InsideViewUris() {
    HL_LOGI("need add refrigerator inner content resource uri : %s", Device::kInsideViewUri);
    auto uris = json::JsonValue::CreateArray();
    uris.append(Device::kInsideViewUri);
    return uris.toString();
}

}  // namespace

RefrigeratorDevice::Subscription::Subscription(std::weak_ptr<Device> refrigerator, unsigned number)
    : device(std::move(refrigerator)), generation(number) {}

RefrigeratorDevice::Subscription::~Subscription() {
    CallbackTokens::Unwatch(token);
}

void RefrigeratorDevice::GetInnerviewUrl(const std::shared_ptr<CTransaction>& transaction, const std::string& deviceId,
                                         const std::string& accessToken) {
    HL_LOGI("GetInnerviewUrl device id : %s", deviceId.c_str());
    {
        const std::lock_guard<std::mutex> lock(_requestMutex);
        _accessToken = accessToken;
    }
    if (!requestRefrigeratorInnerviewUrl(transaction, deviceId)) {
        onGetInsideViewUrlEvent(transaction, false, "", "");
    }
}

bool RefrigeratorDevice::requestRefrigeratorInnerviewUrl(const std::shared_ptr<CTransaction>& transaction,
                                                         const std::string& deviceId) {
    std::string rcp;
    if (!_insideView.RequestValueRefresh(kInsideViewUri, rcp)) {
        HL_LOGE("didn't get rcp string, do not proceed");
        return false;
    }
    if (rcp.empty()) {
        HL_LOGE("res_rep is empty!");
        return false;
    }
    HL_LOGI("Refrigerator innerview Device Id: %s resource uri: %s rcp str : %s", deviceId.c_str(), kInsideViewUri,
            rcp.c_str());
    if (!subscribeResourceUriWithRefrigeratorInsideView(transaction, deviceId)) {
        HL_LOGE("fail to subscribe resource uri");
        return false;
    }
    const int ret =
        _agent.SetRemoteRepresentation(deviceId, kInsideViewUri, rcp, onSetRemoteRepresentation, CallbackToken());
    if (ret != 0) {
        HL_LOGE("fail to set remote representation");
        // The subscription stays, and the next request replaces it. Nobody is answered twice.
        return !forget(transaction);
    }
    return true;
}

// Pending before it subscribes: the event may come before the call returns.
bool RefrigeratorDevice::subscribeResourceUriWithRefrigeratorInsideView(
    const std::shared_ptr<CTransaction>& transaction, const std::string& deviceId) {
    if (deviceId.empty()) {
        HL_LOGE("device id is empty!");
        return false;
    }
    const std::string uris = InsideViewUris();
    if (uris.empty()) {
        HL_LOGE("jsonResUri is empty!");
        return false;
    }
    const std::lock_guard<std::mutex> lock(_subscriptionMutex);
    const auto subscription = std::make_shared<Subscription>(weak_from_this(), ++_lastGeneration);
    subscription->token = CallbackTokens::Watch(subscription);
    {
        const std::lock_guard<std::mutex> requestLock(_requestMutex);
        _pending.push_back({transaction, subscription->generation});
    }
    const int ret = _agent.Subscribe(deviceId, uris, _RefrigeratorInnerViewSubscribeChanged, subscription->token);
    if (ret != 0) {
        HL_LOGE("ret: %d", ret);
        return !forget(transaction);
    }
    _subscription = subscription;
    return true;
}

void RefrigeratorDevice::unsubscribeResourceUriWithRefrigeratorInsideView(const std::string& deviceId) {
    const int ret = _agent.Unsubscribe(deviceId, InsideViewUris());
    if (ret != 0) {
        HL_LOGE("ret: %d", ret);
    }
}

void RefrigeratorDevice::onSetRemoteRepresentation(int result, const char*, const char*, const char*, const char*,
                                                   void*) {
    HL_LOGI("result : %d", result);
}

void RefrigeratorDevice::_RefrigeratorInnerViewSubscribeChanged(const char* deviceId, const char*,
                                                                const char* representation, const char*, const char*,
                                                                const char*, void* userData) {
    Guarded([&] {
        const auto subscription = CallbackTokens::Find<Subscription>(userData);
        const auto device = subscription ? subscription->device.lock() : nullptr;
        if (!device) {
            return;
        }
        std::string text = representation != nullptr ? representation : "";
        if (isAnswer(*subscription, text)) {
            EnqueueOnScheduler(
                [refrigerator = std::static_pointer_cast<RefrigeratorDevice>(device),
                 generation = subscription->generation, id = std::string(deviceId != nullptr ? deviceId : ""),
                 text = std::move(text)] { refrigerator->answer(generation, id, text); },
                "_RefrigeratorInnerViewSubscribeChanged");
        }
    });
}

// The first event may be the echo of the command, without contents. The next one counts, whatever it holds.
bool RefrigeratorDevice::isAnswer(Subscription& subscription, const std::string& representation) {
    const auto document = json::JsonValue::Create(representation);
    const bool hasContents = !document[RefrigeratorInsideView::kContents].isNull();
    HL_LOGI("_RefrigeratorInnerViewSubscribeChanged() retry : %d", subscription.retryCount.load());
    if (!hasContents && subscription.retryCount <= 1) {
        HL_LOGI("contents value is not in resource data, do not proceed");
        ++subscription.retryCount;
        return false;
    }
    return true;
}

// Answers all requests that waited when the event's subscription was made: they share it, and it ends here. A request
// that has come since waits for an event of its own. Without all pictures this ends by an exception, in the dispatcher,
// and nobody is answered.
void RefrigeratorDevice::answer(unsigned generation, const std::string& deviceId, const std::string& representation) {
    {
        const std::lock_guard<std::mutex> lock(_subscriptionMutex);
        if (_subscription && _subscription->generation == generation) {
            unsubscribeResourceUriWithRefrigeratorInsideView(deviceId);
            _subscription.reset();
        }
    }
    HL_LOGI("_RefrigeratorInnerViewSubscribeChanged(): Device id: %s, Rcs_rep: %s", deviceId.c_str(),
            representation.c_str());
    std::vector<Request> answered;
    std::string accessToken;
    {
        const std::lock_guard<std::mutex> lock(_requestMutex);
        const auto later = std::stable_partition(_pending.begin(), _pending.end(), [generation](const auto& request) {
            return request.generation <= generation;
        });
        answered.assign(_pending.begin(), later);
        _pending.erase(_pending.begin(), later);
        accessToken = _accessToken;
    }
    if (answered.empty()) {
        return;
    }
    const InsideViewUrls view = _insideView.RequestImageUrls(deviceId, representation, accessToken);
    for (const auto& request : answered) {
        onGetInsideViewUrlEvent(request.transaction, true, view.urls, view.dateTime);
    }
}

void RefrigeratorDevice::onGetInsideViewUrlEvent(const std::shared_ptr<CTransaction>& transaction, bool isSuccess,
                                                 const std::string& urls, const std::string& dateTime) {
    GetRefrigeratorInnerViewUrlParam param(transaction);
    param.isSuccess = isSuccess;
    param.innerViewUrl = urls;
    param.datetime = dateTime;
    Reporter::Report(param);
}

// False for a request that an event has answered meanwhile.
bool RefrigeratorDevice::forget(const std::shared_ptr<CTransaction>& transaction) {
    const std::lock_guard<std::mutex> lock(_requestMutex);
    const auto found = std::find_if(_pending.begin(), _pending.end(),
                                    [&](const auto& request) { return request.transaction == transaction; });
    if (found == _pending.end()) {
        return false;
    }
    _pending.erase(found);
    return true;
}

}  // namespace VMFramework::HomeLoom
