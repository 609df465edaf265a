#ifndef HOMELOOM_HOMELOOM_IOTHUB_IPCPROXYBASE_H
#define HOMELOOM_HOMELOOM_IOTHUB_IPCPROXYBASE_H

#include <rpc_port.h>

#include <atomic>
#include <list>
#include <memory>
#include <mutex>
#include <string>

#include "Common/Mutex.h"

/// The client end of "IHubControl", the port of the hub control application.
namespace rpc_port::IPCProxyBase::proxy {

// Not derived from std::exception: a caller of the hub catches each of them.
class NotConnectedSocketException {};
class InvalidProtocolException {};
class InvalidIOException {};
class PermissionDeniedException {};
class InvalidIDException {};

/// A delegate: what the hub control application is given to answer to.
class CallbackBase {
public:
    CallbackBase(int id, bool once);
    virtual ~CallbackBase() = default;
    CallbackBase(const CallbackBase&) = delete;
    CallbackBase& operator=(const CallbackBase&) = delete;

    /// On the main loop. The parcel stands behind the delegate's own three fields and stays with the caller.
    virtual void OnReceivedEvent(void* parcel) = 0;

    int GetId() const { return id; }
    int GetSeqId() const { return seq_id; }
    bool IsOnce() const { return once; }
    /// "ID::SEQUENCE".
    std::string GetTag() const;

private:
    static std::atomic<int> seq_num_;

    const int id;
    const int seq_id;  // unique within the process: all delegates of one kind have the same id
    const bool once;
};

/// The delegate of all calls of this port.
class OnEvent : public CallbackBase {
public:
    static constexpr int kDelegateId = 1;

    explicit OnEvent(bool isOnce = false) : CallbackBase(kDelegateId, isOnce) {}

    void OnReceivedEvent(void* parcel) override;
    /// On the main loop, without a lock: may call the port again.
    virtual void OnReceived(int event, std::string data);
};

/// Told on the main loop, without a lock. The listener may call the port again.
class IEventListener {
public:
    virtual void OnConnected() = 0;
    virtual void OnDisconnected() = 0;
    virtual void OnRejected() = 0;

protected:
    ~IEventListener() = default;
};

/// Calls throw NotConnectedSocketException without a connection and InvalidIOException when the parcel can't be sent.
/// They may be made on any thread, and none of them needs the main loop.
class IHubControl {
public:
    /// The listener stays with the caller and must live longer. Throws InvalidIOException if there is no IPC.
    IHubControl(IEventListener* listener, const std::string& targetAppId);
    /// After it neither listener nor delegate is called, unless one of them is the caller.
    virtual ~IHubControl();
    IHubControl(const IHubControl&) = delete;
    IHubControl& operator=(const IHubControl&) = delete;

    /// The listener is told the outcome. Throws InvalidIOException, PermissionDeniedException or InvalidIDException.
    void Connect(bool sync);

    // A delegate is kept until it is disposed of, the connection ends or, if it is for one event, until that came.
    // It is kept when the call fails, too.
    void StartOnboarding(std::string accessToken, std::string locationId, std::string roomId,
                         std::unique_ptr<OnEvent> callback);
    void StopOnboarding(std::unique_ptr<OnEvent> callback);
    void ResetHub(std::unique_ptr<OnEvent> callback);
    void ResetDongle(std::unique_ptr<OnEvent> callback);
    void SetEventCallback(std::unique_ptr<OnEvent> callback);
    // Part of the interface; no caller in the plug-in.
    void CheckHubPpAgreement();
    // Part of the interface; no caller in the plug-in.
    void SetHubPpAgreement();

    /// Waits for the answer on the calling thread, for RPC_PORT_TIME_LIMIT_MS at most. Throws InvalidProtocolException,
    /// too, when none comes.
    bool GetHubInfo(std::string& info);

    void DisposeCallback(const std::string& tag);

private:
    class Parcel;

    static void OnConnectedCB(const char* endpoint, const char* portName, rpc_port_h port, void* userData);
    static void OnDisconnectedCB(const char* endpoint, const char* portName, void* userData);
    static void OnRejectedCB(const char* endpoint, const char* portName, void* userData);
    static void OnReceivedCB(const char* endpoint, const char* portName, void* userData);

    /// Logs in the name of the operation that asks.
    void CheckConnection(const char* operation = __builtin_FUNCTION(), int line = __builtin_LINE()) const;
    void Call(const Parcel& call, const char* operation = __builtin_FUNCTION(), int line = __builtin_LINE());
    void CallWithDelegate(const Parcel& call, std::unique_ptr<OnEvent> callback,
                          const char* operation = __builtin_FUNCTION(), int line = __builtin_LINE());
    /// With the mutex held.
    void Send(const Parcel& call, const char* operation = __builtin_FUNCTION(), int line = __builtin_LINE());
    Parcel ConsumeCommand();
    void ProcessReceivedEvent(const Parcel& parcel);

    std::atomic<rpc_port_h> _port{nullptr};  // not null: connected
    std::atomic<rpc_port_h> _callbackPort{nullptr};
    rpc_port_proxy_h _proxy = nullptr;
    std::atomic<IEventListener*> _listener;
    // Over a change of the ports, a send, and a send with its answer; never over a call of delegate or listener.
    std::recursive_mutex _mutex;
    // A leaf of its own, so that no event waits on the main loop for the answer that another thread waits for.
    VMFramework::HomeLoom::Mutex _delegatesMutex;
    std::list<std::shared_ptr<CallbackBase>> _delegates GUARDED_BY(_delegatesMutex);
    // Answers carry no number. Those for which nobody waits any more come before the next one.
    int _abandonedAnswers = 0;
    const std::string _targetAppId;
};

}  // namespace rpc_port::IPCProxyBase::proxy

#endif
