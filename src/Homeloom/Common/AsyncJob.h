#ifndef HOMELOOM_HOMELOOM_COMMON_ASYNCJOB_H
#define HOMELOOM_HOMELOOM_COMMON_ASYNCJOB_H

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <typeinfo>
#include <utility>

#include "Common/HLLog.h"
#include "Homeloom/Common/CallbackTokens.h"

namespace VMFramework::HomeLoom {

/// The code of a blocking call that ended without a reply.
inline constexpr int kAsyncJobTimeout = -999999;
/// How often a waiting call looks whether it may go on waiting, and how long it waits at most.
inline constexpr int kAsyncJobStepMs = 100;
inline constexpr int kAsyncJobLimitMs = 30000;
inline constexpr int kAsyncJobLogMs = 1000;

/// The type's name without its namespaces.
std::string AsyncJobName(const std::type_info& param);

/// Turns an asynchronous call of the agent into a blocking one.
///
/// Param holds one reply. It begins with an int `ret`, the agent's code, and owns what it holds: a reply that nobody
/// takes destroys its records itself. It can be made empty, and of the arguments that Deliver passes on.
template <typename Param>
class AsyncJob {
public:
    AsyncJob() : _name(AsyncJobName(typeid(Param))) {}
    virtual ~AsyncJob() = default;

    /// Calls 'function' with 'args', which end with the callback, and with the user data that the callback hands to
    /// Deliver. Returns the reply; after the time limit, or soon after 'contextRunning' became false, an empty one
    /// with kAsyncJobTimeout.
    template <typename... Parameters, typename... Args>
    Param Await(const std::atomic<bool>& contextRunning, int (*function)(Parameters...), Args... args) {
        HL_LOGI("[%s] async job requested", _name.c_str());
        const auto promise = std::make_shared<std::promise<Param>>();
        std::future<Param> reply = promise->get_future();
        void* const token = CallbackTokens::Keep(promise);
        // What the call itself returns is not looked at: one that failed never calls back and runs into the limit.
        function(args..., token);

        long long duration = 0;
        if (waitFor(reply, contextRunning, duration)) {
            HL_LOGI("[%s] async job done with Promise[%p]", _name.c_str(), token);
            return reply.get();
        }
        giveUp(token, contextRunning, duration);
        Param none;
        none.ret = kAsyncJobTimeout;
        return none;
    }

    /// What a callback does with its reply. The first one for a call that still waits is taken; one that comes late
    /// or a second time is logged and destroyed. Never throws.
    template <typename... Reply>
    static void Deliver(void* userData, Reply... reply) noexcept {
        try {
            Param param(reply...);
            if (userData == nullptr) {
                HL_LOGE("user_data null!");
                return;
            }
            param.LogResult();
            HL_LOGI("try to set_value of promise[%p]", userData);
            const auto promise = CallbackTokens::Take<std::promise<Param>>(userData);
            if (!promise) {
                throw std::future_error(std::future_errc::promise_already_satisfied);
            }
            promise->set_value(std::move(param));
            HL_LOGI("set_value done. promise[%p]", userData);
        } catch (const std::future_error& e) {
            HL_LOGE("future exception: promise:[%p]. %s", userData, e.what());
        } catch (...) {
            HL_LOGE("unknown exception: promise:[%p]", userData);
        }
    }

private:
    bool waitFor(const std::future<Param>& reply, const std::atomic<bool>& contextRunning, long long& duration) const {
        while (true) {
            const bool ready = reply.wait_for(std::chrono::milliseconds(kAsyncJobStepMs)) == std::future_status::ready;
            if (!ready) {
                duration += kAsyncJobStepMs;
                if (duration % kAsyncJobLogMs == 0) {
                    HL_LOGI("[%s] duration: %lld", _name.c_str(), duration);
                }
            } else {
                HL_LOGI("[%s] ready, duration(ms): %lld", _name.c_str(), duration);
            }
            // Both escapes are logged even when the reply came at this very step; it is returned all the same.
            if (duration > kAsyncJobLimitMs) {
                HL_LOGE("[%s] ESCAPE!. TimeOut. duration(ms): %lld > %d", _name.c_str(), duration, kAsyncJobLimitMs);
                return ready;
            }
            if (!contextRunning) {
                HL_LOGE("[%s] ESCAPE!. Context Not Running. duration(ms): %lld", _name.c_str(), duration);
                return ready;
            }
            if (ready) {
                return true;
            }
        }
    }

    void giveUp(void* token, const std::atomic<bool>& contextRunning, long long duration) const {
        HL_LOGE("[%s][TIMEOUT] try to set value for promise[%p]", _name.c_str(), token);
        // Taking the token settles the call. Taken here, a late callback finds the promise satisfied; if the
        // callback was quicker by a hair, its reply is destroyed with the promise.
        if (!CallbackTokens::Take<std::promise<Param>>(token)) {
            HL_LOGE("future exception: %s", std::future_error(std::future_errc::promise_already_satisfied).what());
        }
        HL_LOGE("[%s][TIMEOUT] async job done by Timeout!. ContextState:%d, duration(ms):%lld", _name.c_str(),
                contextRunning.load() ? 1 : 0, duration);
    }

    const std::string _name;
};

}  // namespace VMFramework::HomeLoom

#endif
