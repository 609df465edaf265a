#ifndef HOMELOOM_SIMULATOR_WORLD_H
#define HOMELOOM_SIMULATOR_WORLD_H

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include <homeloom_client.h>
#include <homeloom_core.h>

#include "CallbackThread.h"
#include "Handover.h"
#include "Records.h"
#include "simulator/Agent.h"
#include "simulator/Driver.h"
#include "simulator/Home.h"

namespace simulator {

/// A callback of the plug-in, kept.
template <class Callback>
struct Registration {
    Callback function = nullptr;
    void* userData = nullptr;

    explicit operator bool() const { return function != nullptr; }
};

struct Subscription {
    std::string text;  // the JSON array as it was given: it identifies the subscription
    std::vector<std::string> uris;
    Registration<homeloom_client_subscribe_cb> callback;
};

/// One connection of a process to the agent.
struct Client {
    enum class State { Idle, Connecting, Connected };

    int id = 0;  // never used again, as a handle's address may be
    State state = State::Idle;
    Registration<homeloom_client_connection_state_changed_cb> connection;
    Registration<homeloom_client_sign_in_state_changed_cb> signIn;
    Registration<homeloom_client_device_list_updated_cb> deviceList;
    Registration<homeloom_client_device_detail_list_updated_cb> detailList;
    Registration<homeloom_client_group_list_updated_cb> groupList;
    Registration<homeloom_client_third_party_notification_status_updated_cb> thirdParty;
    Registration<homeloom_core_sse_cb> events;
    int eventMask = 0;
    std::unordered_map<std::string, std::vector<Subscription>> subscriptions;  // by device
    int pendingCalls = 0;

    int registrations() const;
};

/// How a connection turns out, as the state callback tells it.
struct Outcome {
    homeloom_client_error_e result;
    homeloom_client_connection_state_e state;
    Client::State after;
};
Outcome outcomeOf(Agent::Connection connection);

/// The agent's side of everything: the home, the clients, and what goes on between them.
///
/// All members and operations need the mutex, which is never held while a callback runs. Operations named "post" queue
/// callbacks, which look again, when their turn comes, whether somebody still wants them.
class World {
public:
    static World& instance();

    std::mutex mutex;
    CallbackThread thread;  // has a lock of its own

    Home home;
    bool isSignedIn = true;
    int state = 1;
    std::optional<std::chrono::steady_clock::time_point> lastDropped;     // when an answer was left out
    std::optional<std::chrono::steady_clock::time_point> lastHandedOver;  // when a driver was asked
    Agent::Connection connectOutcome = Agent::Connection::Connected;
    std::map<homeloom_client_h, Client> clients;
    std::vector<Agent::LaunchCondition> conditions;
    std::vector<Agent::UserEvent> userEvents;
    std::vector<std::string> escapedExceptions;
    std::function<void()> changeObserver;  // null: nobody

    /// Tells the observer that the home or the session is another than before.
    void changed() const;

    // ---- The home ----

    void load(Home newHome);
    /// By id; faster than Home::device() in a large home.
    Device* device(const std::string& id);
    /// The devices were added, removed or reordered.
    void devicesMoved() { _index.clear(); }
    std::string newId(const std::string& kind);

    /// Sets properties of a device, lets it react, and tells the subscribers. Properties that it has not only trigger
    /// reactions. False, with nothing changed, when a value doesn't fit its type.
    bool change(Device& device, const std::vector<Change>& changes);
    void setStatus(Device& device, int status);
    bool addDevices(std::vector<Device> newDevices);
    bool removeDevice(const std::string& deviceId);
    /// The devices of a room that is gone stay in the location.
    void leaveRoom(const std::string& roomId);
    /// Tells nobody.
    bool moveDevice(const std::string& deviceId, const std::string& locationId, const std::string& roomId);

    // ---- What the plug-in wants of devices ----

    struct OpenCommand {
        DeviceCommand command;
        HandoverPtr handover;
    };
    std::map<std::string, Driver> drivers;                      // by device
    std::map<long long, OpenCommand> openCommands;              // by number
    std::condition_variable verdicts;                           // for those who wait: a command was ended
    std::function<void(const DeviceCommand&)> commandObserver;  // null: nobody

    /// Has a device carry out what the plug-in wants: its driver, if it has one, and then `handover` is open; or else
    /// its model. The agent's codes.
    int command(Device& device, const std::vector<Change>& changes, const HandoverPtr& handover);
    /// False for a number that isn't open, or for values that don't fit.
    bool endCommand(long long number, bool isRefused, const std::vector<Change>& values);
    /// What its driver has still open is refused.
    void removeDriver(const std::string& deviceId);
    void removeDrivers();
    /// Waits, with the mutex given back, for the verdicts. The agent's codes.
    int await(std::unique_lock<std::mutex>& lock, const HandoverPtr& handover);

    // ---- Callbacks ----

    using Delivery = std::function<void()>;
    /// Queues what `prepare` gives for that client; it runs with the mutex, what it gives without.
    void post(const Client& client, const char* name, std::function<Delivery(Client&)> prepare,
              std::chrono::milliseconds delay = {}, int deliveries = 1);
    Client* client(int id);
    Client& addClient(homeloom_client_h& handle);
    /// Drops a client and all that is queued for it, waits for its callback that is running, and frees the handle.
    /// Takes the mutex itself.
    static void removeClient(homeloom_client_h handle);

    void postConnection(const Client& client, const Outcome& outcome, std::chrono::milliseconds delay = {},
                        int deliveries = 1);
    void postSignIn();
    void postDeviceList(const Client& client, const std::vector<std::string>& ids);
    void postDetailList(const Client& client, Records details);
    void postDeviceListToAll();
    void postDetails(const std::vector<const Device*>& devices);
    void postGroups(int notiType, int groupType, const std::string& id);
    void postUpdate(const std::string& deviceId, const std::string& uri, const std::string& representation,
                    const std::string& dataTypes, const std::string& errorCode);
    void postEvent(int kind, const std::string& text);
    void postThirdPartyStatus();

    std::vector<std::string> deviceIds() const;
    Records allDetails() const;
    Records groups(int groupType) const;

    /// Runs a callback of the plug-in; an exception is logged, kept and swallowed.
    void guarded(const char* name, const Delivery& delivery);

private:
    World();

    using Touched = std::vector<std::pair<std::string, std::vector<std::string>>>;  // URIs with their properties
    static bool convert(const Device& device, const std::vector<Change>& changes, std::vector<Change>& converted);
    void apply(Device& device, const std::vector<Change>& changes, Touched& touched);
    void applyReaction(Device& device, const Reaction& reaction, Touched& touched);
    void react(Device& device, const std::vector<Change>& causes, Touched& touched);
    void tell(const Device& device, const Touched& touched);
    void postLater(const Device& device, int milliseconds, std::function<void(Device&)> work);
    int carryOut(Device& device, const std::vector<Change>& changes);
    void handOver(const std::string& deviceId, const std::vector<Change>& changes, const HandoverPtr& handover);
    void askDriver(long long number);
    void postCapabilityEvent(const Device& device, const Resource& resource, const Property& property);
    template <class Callback>
    void postToAll(const char* name, Registration<Callback> Client::*member,
                   std::function<void(const Registration<Callback>&)> call);

    std::unordered_map<std::string, std::size_t> _index;  // of home.devices; empty when not known
    int _homes = 0;
    int _clients = 0;
    long long _ids = 0;
    long long _events = 0;
    long long _commands = 0;
};

/// The texts of a resource as the agent tells them.
std::string representationOf(const Resource& resource);
std::string dataTypesOf(const Resource& resource);

/// Component and capability that a resource stands for; false for other resources.
bool capabilityOf(const std::string& uri, std::string& component, std::string& capability);

/// Reads `text`, JSON or plain, as a value of that type; empty when it isn't one.
std::string valueOfType(const std::string& type, const std::string& text);

/// A text inside a callback: gone, and overwritten first, when the callback has returned.
class CallbackText {
public:
    explicit CallbackText(const std::string& text);
    ~CallbackText();
    CallbackText(const CallbackText&) = delete;
    CallbackText& operator=(const CallbackText&) = delete;
    operator const char*() const { return _text; }
    char* data() { return _text; }

private:
    char* _text;
    std::size_t _size;
};

}  // namespace simulator

/// What a client handle points to.
struct homeloom_client_s {
    int reserved = 0;
};

#endif
