// Turns calls of the hub control port into parcels, and parcels into events.
#include "Homeloom/IoTHub/IPCProxyBase.h"

#include <dlog.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <optional>
#include <utility>

#include "Common/CText.h"

// The generated code of all proxies logs in this form, under a tag of its own and without the trace sink.
#define IPC_LOGE(message, ...) IPC_LOGE_AT(__func__, __LINE__, message, ##__VA_ARGS__)
#define IPC_LOGE_AT(function, line, message, ...)                                                               \
    do {                                                                                                        \
        if (dlog_is_enabled(DLOG_ERROR, kLogTag)) {                                                             \
            dlog_print(DLOG_ERROR, kLogTag, "%s: %s(%d) > " message, kFileName, function, line, ##__VA_ARGS__); \
        }                                                                                                       \
    } while (false)

namespace rpc_port::IPCProxyBase::proxy {

namespace {

constexpr char kLogTag[] = "IOT_IPC_PROXY";
constexpr char kFileName[] = "IPCProxyBase.cpp";
constexpr char kPortName[] = "IHubControl";

// What stands first in each parcel. The hub control application knows these numbers.
constexpr int kResult = 0;
constexpr int kDelegateEvent = 1;
constexpr int kStartOnboarding = 2;
constexpr int kStopOnboarding = 3;
constexpr int kResetHub = 4;
constexpr int kResetDongle = 5;
constexpr int kGetHubInfo = 6;
constexpr int kSetEventCallback = 7;
constexpr int kCheckHubPpAgreement = 8;
constexpr int kSetHubPpAgreement = 9;

std::optional<int> ReadInt32(rpc_port_parcel_h parcel) {
    std::int32_t value = 0;
    return rpc_port_parcel_read_int32(parcel, &value) == RPC_PORT_ERROR_NONE ? std::optional<int>(value) : std::nullopt;
}

std::optional<bool> ReadBool(rpc_port_parcel_h parcel) {
    bool value = false;
    return rpc_port_parcel_read_bool(parcel, &value) == RPC_PORT_ERROR_NONE ? std::optional<bool>(value) : std::nullopt;
}

std::optional<std::string> ReadText(rpc_port_parcel_h parcel) {
    char* value = nullptr;
    if (rpc_port_parcel_read_string(parcel, &value) != RPC_PORT_ERROR_NONE) {
        return std::nullopt;
    }
    const VMFramework::HomeLoom::OwnedText owner(value);
    return std::string(value);
}

/// A delegate as it travels.
struct DelegateFields {
    int id = 0;
    int sequence = 0;
    bool once = false;
};

rpc_port_parcel_h operator<<(rpc_port_parcel_h parcel, const CallbackBase& delegate) {
    rpc_port_parcel_write_int32(parcel, delegate.GetId());
    rpc_port_parcel_write_int32(parcel, delegate.GetSeqId());
    rpc_port_parcel_write_bool(parcel, delegate.IsOnce());
    return parcel;
}

/// False if they don't stand there.
bool operator>>(rpc_port_parcel_h parcel, DelegateFields& fields) {
    const auto id = ReadInt32(parcel);
    const auto sequence = ReadInt32(parcel);
    const auto once = ReadBool(parcel);
    if (!id || !sequence || !once) {
        return false;
    }
    fields = {*id, *sequence, *once};
    return true;
}

}  // namespace

/// Owns a parcel, or is none.
class IHubControl::Parcel {
public:
    /// A call of that method. What can't be written makes the send fail.
    explicit Parcel(int method) {
        rpc_port_parcel_create(&_handle);
        rpc_port_parcel_write_int32(_handle, method);
    }
    /// What comes from the port.
    explicit Parcel(rpc_port_h port) { rpc_port_parcel_create_from_port(&_handle, port); }
    Parcel(Parcel&& other) noexcept : _handle(std::exchange(other._handle, nullptr)) {}
    ~Parcel() {
        if (_handle != nullptr) {
            rpc_port_parcel_destroy(_handle);
        }
    }
    Parcel(const Parcel&) = delete;
    Parcel& operator=(const Parcel&) = delete;

    explicit operator bool() const { return _handle != nullptr; }
    rpc_port_parcel_h Handle() const { return _handle; }

    Parcel& Write(const std::string& value) {
        rpc_port_parcel_write_string(_handle, value.c_str());
        return *this;
    }

private:
    rpc_port_parcel_h _handle = nullptr;
};

// ---- Delegates ----

std::atomic<int> CallbackBase::seq_num_{0};

CallbackBase::CallbackBase(int delegateId, bool isOnce) : id(delegateId), seq_id(seq_num_.fetch_add(1)), once(isOnce) {}

std::string CallbackBase::GetTag() const {
    return std::to_string(id) + "::" + std::to_string(seq_id);
}

void OnEvent::OnReceivedEvent(void* parcel) {
    const auto handle = static_cast<rpc_port_parcel_h>(parcel);
    const auto event = ReadInt32(handle);
    auto data = ReadText(handle);
    if (!event || !data) {
        IPC_LOGE("Invalid protocol");
        return;
    }
    OnReceived(*event, std::move(*data));
}

void OnEvent::OnReceived(int, std::string) {}

// ---- Connection ----

IHubControl::IHubControl(IEventListener* listener, const std::string& targetAppId)
    : _listener(listener), _targetAppId(targetAppId) {
    if (rpc_port_proxy_create(&_proxy) != RPC_PORT_ERROR_NONE) {
        IPC_LOGE("Failed to create proxy");
        throw InvalidIOException();
    }
    rpc_port_proxy_add_connected_event_cb(_proxy, OnConnectedCB, this);
    rpc_port_proxy_add_disconnected_event_cb(_proxy, OnDisconnectedCB, this);
    rpc_port_proxy_add_rejected_event_cb(_proxy, OnRejectedCB, this);
    rpc_port_proxy_add_received_event_cb(_proxy, OnReceivedCB, this);
}

IHubControl::~IHubControl() {
    // The listener may be on its way out, too.
    _listener = nullptr;
    rpc_port_proxy_destroy(_proxy);
}

void IHubControl::Connect(bool sync) {
    const auto connect = sync ? rpc_port_proxy_connect_sync : rpc_port_proxy_connect;
    switch (connect(_proxy, _targetAppId.c_str(), kPortName)) {
        case RPC_PORT_ERROR_IO_ERROR:
            throw InvalidIOException();
        case RPC_PORT_ERROR_PERMISSION_DENIED:
            throw PermissionDeniedException();
        case RPC_PORT_ERROR_INVALID_PARAMETER:
            throw InvalidIDException();
        default:
            break;
    }
}

void IHubControl::OnConnectedCB(const char*, const char*, rpc_port_h port, void* userData) {
    auto& self = *static_cast<IHubControl*>(userData);
    {
        const std::lock_guard<std::recursive_mutex> lock(self._mutex);
        rpc_port_h callbackPort = nullptr;
        rpc_port_proxy_get_port(self._proxy, RPC_PORT_PORT_CALLBACK, &callbackPort);
        self._port = port;
        self._callbackPort = callbackPort;
    }
    if (IEventListener* const listener = self._listener) {
        listener->OnConnected();
    }
}

// The ports are valid until this returns, so it waits until nobody sends or receives.
void IHubControl::OnDisconnectedCB(const char*, const char*, void* userData) {
    auto& self = *static_cast<IHubControl*>(userData);
    std::list<std::shared_ptr<CallbackBase>> dropped;
    {
        const std::lock_guard<std::recursive_mutex> lock(self._mutex);
        self._port = nullptr;
        self._callbackPort = nullptr;
        self._abandonedAnswers = 0;
        const VMFramework::HomeLoom::MutexLock delegatesLock(self._delegatesMutex);
        dropped.swap(self._delegates);
    }
    dropped.clear();  // without a lock
    if (IEventListener* const listener = self._listener) {
        listener->OnDisconnected();
    }
}

void IHubControl::OnRejectedCB(const char*, const char*, void* userData) {
    if (IEventListener* const listener = static_cast<IHubControl*>(userData)->_listener) {
        listener->OnRejected();
    }
}

// ---- Calls ----

void IHubControl::CheckConnection(const char* operation, int line) const {
    if (_port == nullptr) {
        IPC_LOGE_AT(operation, line, "Not connected");
        throw NotConnectedSocketException();
    }
}

void IHubControl::Send(const Parcel& call, const char* operation, int line) {
    const int result = rpc_port_parcel_send(call.Handle(), _port);
    if (result != RPC_PORT_ERROR_NONE) {
        IPC_LOGE_AT(operation, line, "Failed to send parcel. result(%d)", result);
        throw InvalidIOException();
    }
}

void IHubControl::Call(const Parcel& call, const char* operation, int line) {
    const std::lock_guard<std::recursive_mutex> lock(_mutex);
    CheckConnection(operation, line);
    Send(call, operation, line);
}

void IHubControl::CallWithDelegate(const Parcel& call, std::unique_ptr<OnEvent> callback, const char* operation,
                                   int line) {
    call.Handle() << *callback;
    const std::lock_guard<std::recursive_mutex> lock(_mutex);
    CheckConnection(operation, line);
    {
        // Before the send: the first event may come before it returns.
        const VMFramework::HomeLoom::MutexLock delegatesLock(_delegatesMutex);
        _delegates.push_back(std::move(callback));
    }
    Send(call, operation, line);
}

void IHubControl::StartOnboarding(std::string accessToken, std::string locationId, std::string roomId,
                                  std::unique_ptr<OnEvent> callback) {
    CheckConnection();
    Parcel call(kStartOnboarding);
    CallWithDelegate(call.Write(accessToken).Write(locationId).Write(roomId), std::move(callback));
}

void IHubControl::StopOnboarding(std::unique_ptr<OnEvent> callback) {
    CheckConnection();
    CallWithDelegate(Parcel(kStopOnboarding), std::move(callback));
}

void IHubControl::ResetHub(std::unique_ptr<OnEvent> callback) {
    CheckConnection();
    CallWithDelegate(Parcel(kResetHub), std::move(callback));
}

void IHubControl::ResetDongle(std::unique_ptr<OnEvent> callback) {
    CheckConnection();
    CallWithDelegate(Parcel(kResetDongle), std::move(callback));
}

void IHubControl::SetEventCallback(std::unique_ptr<OnEvent> callback) {
    CheckConnection();
    CallWithDelegate(Parcel(kSetEventCallback), std::move(callback));
}

void IHubControl::CheckHubPpAgreement() {
    CheckConnection();
    Call(Parcel(kCheckHubPpAgreement));
}

void IHubControl::SetHubPpAgreement() {
    CheckConnection();
    Call(Parcel(kSetHubPpAgreement));
}

bool IHubControl::GetHubInfo(std::string& info) {
    CheckConnection();
    Parcel call(kGetHubInfo);
    call.Write(info);
    std::unique_lock<std::recursive_mutex> lock(_mutex);
    CheckConnection();
    Send(call);
    const Parcel answer = ConsumeCommand();
    lock.unlock();

    auto text = answer ? ReadText(answer.Handle()) : std::nullopt;
    const auto result = answer ? ReadBool(answer.Handle()) : std::nullopt;
    if (!text || !result) {
        IPC_LOGE("Invalid protocol");
        throw InvalidProtocolException();
    }
    info = std::move(*text);
    return *result;
}

IHubControl::Parcel IHubControl::ConsumeCommand() {
    // Parcels that are no answer must not keep the caller for ever.
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(RPC_PORT_TIME_LIMIT_MS);
    while (true) {
        Parcel parcel(_port.load());
        if (parcel && ReadInt32(parcel.Handle()) == kResult) {
            if (_abandonedAnswers == 0) {
                return parcel;
            }
            --_abandonedAnswers;
        }
        if (!parcel || std::chrono::steady_clock::now() > end) {
            ++_abandonedAnswers;
            return Parcel(rpc_port_h{});
        }
    }
}

// ---- Events ----

void IHubControl::OnReceivedCB(const char*, const char*, void* userData) {
    auto& self = *static_cast<IHubControl*>(userData);
    const Parcel parcel(self._callbackPort.load());
    if (!parcel) {
        IPC_LOGE("Failed to create parcel from port");
        return;
    }
    if (ReadInt32(parcel.Handle()) == kDelegateEvent) {
        self.ProcessReceivedEvent(parcel);
    }
}

// The delegate is called without a lock: what it reports takes the session's mutex, under which others call the hub.
void IHubControl::ProcessReceivedEvent(const Parcel& parcel) {
    DelegateFields fields;
    if (!(parcel.Handle() >> fields)) {
        IPC_LOGE("Invalid protocol");
        return;
    }
    std::shared_ptr<CallbackBase> delegate;
    {
        const VMFramework::HomeLoom::MutexLock lock(_delegatesMutex);
        const auto found = std::find_if(_delegates.begin(), _delegates.end(), [&](const auto& kept) {
            return kept->GetId() == fields.id && kept->GetSeqId() == fields.sequence;
        });
        if (found == _delegates.end()) {
            return;
        }
        delegate = *found;
    }
    delegate->OnReceivedEvent(parcel.Handle());
    if (delegate->IsOnce()) {
        const VMFramework::HomeLoom::MutexLock lock(_delegatesMutex);
        _delegates.remove(delegate);
    }
}

void IHubControl::DisposeCallback(const std::string& tag) {
    std::list<std::shared_ptr<CallbackBase>> disposed;
    const VMFramework::HomeLoom::MutexLock lock(_delegatesMutex);
    const auto found = std::find_if(_delegates.begin(), _delegates.end(),
                                    [&](const auto& delegate) { return delegate->GetTag() == tag; });
    if (found != _delegates.end()) {
        disposed.splice(disposed.end(), _delegates, found);
    }
}

}  // namespace rpc_port::IPCProxyBase::proxy
