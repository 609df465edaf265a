#ifndef HOMELOOM_SIMULATOR_HUBAPP_HUBCONTROL_H
#define HOMELOOM_SIMULATOR_HUBAPP_HUBCONTROL_H

#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <desktop/RpcServer.h>

#include "Method.h"
#include "Parcels.h"

/// The hub control application: onboards this TV as a hub, resets it, tells what it is.
class HubControl {
public:
    /// How a call is taken. Manual: nothing happens by itself.
    enum class Course { Succeed, Fail, Manual };
    enum class Answers { Normal, Held, Half, AfterEvent, Malformed };
    struct Settings {
        bool rejects = false;
        Course onboarding = Course::Succeed;
        Course reset = Course::Succeed;
        unsigned paceMilliseconds = 0;
        Answers answers = Answers::Normal;
        // Who owns a hub that was onboarded, and the hub's device id.
        std::string userId;
        std::string hubDeviceId;
    };

    /// The hub info is kept in a file, since it outlives the program.
    HubControl(const std::string& socketPath, std::string infoFile);
    ~HubControl();
    HubControl(const HubControl&) = delete;
    HubControl& operator=(const HubControl&) = delete;

    void set(Settings settings) { _settings = std::move(settings); }
    const std::string& info() const { return _info; }
    void setInfo(const std::string& info);

    /// Fires the delegate that events of this number belong to, or that of a certain request. Throws std::runtime_error
    /// if there is none or nobody takes it.
    void fire(int event, const std::string& data, std::optional<std::size_t> request = std::nullopt);
    void releaseAnswers();
    void sendBytes(const std::string& bytes, rpc_port_port_type_e port);

    /// Whether an answer is held back, or steps are still to come.
    bool owes() const;
    int connections() const { return _server.connections(); }
    struct Request {
        Method method;
        std::vector<std::string> fields;
        std::optional<Delegate> delegate;
        homeloom::desktop::rpc::RpcServer::ClientId client = 0;
    };
    /// The first few thousand; the count is of all.
    const std::vector<Request>& requests() const { return _requests; }
    std::size_t requestCount() const { return _requestCount; }

private:
    using ClientId = homeloom::desktop::rpc::RpcServer::ClientId;
    struct Step {
        int event;
        std::string data;
    };

    void take(ClientId client, rpc_port_parcel_h parcel);
    void onboard(const Request& request);
    void stopOnboarding();
    void reset(const Request& request);
    void answerInfo(ClientId client);
    void runNextStep();
    void cancelSteps();
    /// False if the one who made the request is gone.
    bool tell(const Request& request, int event, const std::string& data);
    const Request* giverFor(int event) const;

    Settings _settings;
    const std::string _infoFile;
    std::string _info;
    std::vector<Request> _requests;
    std::size_t _requestCount = 0;
    std::deque<Step> _steps;  // of the onboarding that runs
    std::optional<Request> _onboarding;
    unsigned _timer = 0;
    std::deque<std::pair<ClientId, std::string>> _heldAnswers;
    std::vector<ClientId> _clients;
    homeloom::desktop::rpc::RpcServer _server;
};

#endif
