#include "HubControl.h"

#include <glib.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

#include <VMFramework/JsonValue.h>

namespace {

using VMFramework::json::JsonValue;

constexpr std::size_t kKeptRequests = 5000;

std::string hubInfo(const std::string& hubDeviceId, const std::string& userId) {
    JsonValue info = JsonValue::CreateObject();
    info.set("hub_di", hubDeviceId);
    info.set("user_id", userId);
    return info.toString();
}

// The calls whose delegates an event is for, the best first.
std::vector<Method> addresseesOf(int event) {
    switch (event) {
        case kEventProgress:
        case kEventOnboarded:
        case kEventOnboardingFailed:
        case kEventInstallStarted:
            return {Method::StartOnboarding, Method::SetEventCallback};
        case kEventReset:
        case kEventResetFailed:
            return {Method::ResetHub, Method::SetEventCallback};
        default:
            return {Method::SetEventCallback};
    }
}

std::string eventParcel(const Delegate& delegate, int event, const std::string& data) {
    OutgoingParcel parcel(Method::DelegateEvent);
    parcel << delegate << event << data;
    return parcel.bytes();
}

}  // namespace

HubControl::HubControl(const std::string& socketPath, std::string infoFile)
    : _infoFile(std::move(infoFile)),
      _info(hubInfo("", "")),
      _server(socketPath,
              {[this] { return !_settings.rejects; }, [this](ClientId client) { _clients.push_back(client); },
               [this](ClientId client, rpc_port_parcel_h parcel) {
                   try {
                       take(client, parcel);
                   } catch (const std::runtime_error& e) {
                       g_printerr("homeloom-hub-app: a call was not understood: %s\n", e.what());
                       _server.disconnect(client);
                   }
               },
               [this](ClientId client) {
                   _clients.erase(std::remove(_clients.begin(), _clients.end(), client), _clients.end());
               }}) {
    std::ifstream file(_infoFile);
    std::stringstream text;
    if (file && text << file.rdbuf()) {
        _info = text.str();
    }
}

HubControl::~HubControl() {
    cancelSteps();
}

void HubControl::setInfo(const std::string& info) {
    _info = info;
    std::ofstream(_infoFile, std::ios::trunc) << info;
}

// ---- Calls ----

void HubControl::take(ClientId client, rpc_port_parcel_h parcel) {
    Request request;
    request.client = client;
    request.method = static_cast<Method>(readInt(parcel));
    if (nameOf(request.method) == nullptr) {
        throw std::runtime_error("no such method");
    }
    const int texts = request.method == Method::StartOnboarding ? 3 : (request.method == Method::GetHubInfo ? 1 : 0);
    for (int i = 0; i < texts; ++i) {
        request.fields.push_back(readText(parcel));
    }
    if (request.method <= Method::ResetDongle || request.method == Method::SetEventCallback) {
        request.delegate = readDelegate(parcel);
    }
    ++_requestCount;
    if (_requests.size() < kKeptRequests) {
        _requests.push_back(request);
    }

    switch (request.method) {
        case Method::StartOnboarding:
            onboard(request);
            break;
        case Method::StopOnboarding:
            stopOnboarding();
            break;
        case Method::ResetHub:
            reset(request);
            break;
        case Method::ResetDongle:
            tell(request, kEventDongleChanged, "reset");
            break;
        case Method::GetHubInfo:
            answerInfo(client);
            break;
        default:
            break;
    }
}

void HubControl::onboard(const Request& request) {
    cancelSteps();
    _onboarding = request;
    if (_settings.onboarding == Course::Manual) {
        return;
    }
    _steps = {{kEventInstallStarted, ""}, {kEventProgress, "10"}};
    if (_settings.onboarding == Course::Succeed) {
        JsonValue hub = JsonValue::CreateObject();
        hub.set("hub_di", _settings.hubDeviceId);
        hub.set("location_id", request.fields[1]);
        hub.set("room_id", request.fields[2]);
        _steps.insert(_steps.end(),
                      {{kEventProgress, "50"}, {kEventProgress, "100"}, {kEventOnboarded, hub.toString()}});
    } else {
        _steps.push_back({kEventOnboardingFailed, ""});
    }
    if (_settings.paceMilliseconds == 0) {
        while (!_steps.empty()) {
            runNextStep();
        }
        return;
    }
    _timer = g_timeout_add(
        _settings.paceMilliseconds,
        [](gpointer data) -> gboolean {
            auto& self = *static_cast<HubControl*>(data);
            self.runNextStep();
            if (!self._steps.empty()) {
                return G_SOURCE_CONTINUE;
            }
            self._timer = 0;
            return G_SOURCE_REMOVE;
        },
        this);
}

void HubControl::runNextStep() {
    const Step step = _steps.front();
    _steps.pop_front();
    if (step.event == kEventOnboarded) {
        // Whoever hears of it asks for the info at once.
        setInfo(hubInfo(_settings.hubDeviceId, _settings.userId));
    }
    tell(*_onboarding, step.event, step.data);
}

void HubControl::cancelSteps() {
    _steps.clear();
    if (_timer != 0) {
        g_source_remove(std::exchange(_timer, 0));
    }
}

void HubControl::stopOnboarding() {
    if (!_steps.empty()) {
        cancelSteps();
        tell(*_onboarding, kEventOnboardingFailed, "");
    }
}

void HubControl::reset(const Request& request) {
    if (_settings.reset == Course::Succeed) {
        setInfo(hubInfo("", ""));
        tell(request, kEventReset, "");
    } else if (_settings.reset == Course::Fail) {
        tell(request, kEventResetFailed, "");
    }
}

void HubControl::answerInfo(ClientId client) {
    OutgoingParcel good(Method::Result);
    good << _info << true;
    const std::string answer = good.bytes();
    std::string now = answer;
    switch (_settings.answers) {
        case Answers::Normal:
            break;
        case Answers::Held:
            now.clear();
            break;
        case Answers::Half:
            now = answer.substr(0, answer.size() / 2);
            break;
        case Answers::AfterEvent:
            now = eventParcel({}, kEventDongleChanged, "on the wrong port") + answer;
            break;
        case Answers::Malformed:
            now = (OutgoingParcel(Method::Result) << true << 1).bytes();
            break;
    }
    _server.sendBytes(client, RPC_PORT_PORT_MAIN, now);
    if (_settings.answers == Answers::Held || _settings.answers == Answers::Half) {
        _heldAnswers.emplace_back(client, answer.substr(now.size()));
    }
}

void HubControl::releaseAnswers() {
    for (const auto& [client, bytes] : std::exchange(_heldAnswers, {})) {
        _server.sendBytes(client, RPC_PORT_PORT_MAIN, bytes);
    }
}

bool HubControl::owes() const {
    return !_steps.empty() || std::any_of(_heldAnswers.begin(), _heldAnswers.end(), [this](const auto& held) {
        return std::count(_clients.begin(), _clients.end(), held.first) > 0;
    });
}

// ---- Events ----

bool HubControl::tell(const Request& request, int event, const std::string& data) {
    return _server.sendBytes(request.client, RPC_PORT_PORT_CALLBACK, eventParcel(*request.delegate, event, data));
}

const HubControl::Request* HubControl::giverFor(int event) const {
    for (const Method method : addresseesOf(event)) {
        const auto found = std::find_if(_requests.rbegin(), _requests.rend(), [&](const Request& request) {
            const bool isThere = std::count(_clients.begin(), _clients.end(), request.client) > 0;
            return request.method == method && isThere;
        });
        if (found != _requests.rend()) {
            return &*found;
        }
    }
    return nullptr;
}

void HubControl::fire(int event, const std::string& data, std::optional<std::size_t> request) {
    const bool isKnown = request && *request < _requests.size();
    const Request* const giver = request ? (isKnown ? &_requests[*request] : nullptr) : giverFor(event);
    if (giver == nullptr || !giver->delegate) {
        throw std::runtime_error("nobody has given a delegate for such an event");
    }
    if (!tell(*giver, event, data)) {
        throw std::runtime_error("nobody takes the event");
    }
}

void HubControl::sendBytes(const std::string& bytes, rpc_port_port_type_e port) {
    if (_clients.empty() || !_server.sendBytes(_clients.back(), port, bytes)) {
        throw std::runtime_error("nobody is connected");
    }
}
