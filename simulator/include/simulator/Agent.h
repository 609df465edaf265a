#ifndef HOMELOOM_SIMULATOR_AGENT_H
#define HOMELOOM_SIMULATOR_AGENT_H

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "simulator/Driver.h"
#include "simulator/Fault.h"
#include "simulator/Home.h"

namespace simulator {

/// The handle by which tests and the desk hold the agent that answers the functions of homeloom_client.h and
/// homeloom_core.h: what it has to tell, what happens in the home, and what goes wrong.
///
/// All operations are thread-safe and may be called from the agent's callbacks, except waitIdle(). What they cause in
/// the plug-in comes on the agent's callback thread, in the order of the calls; an operation returns without waiting
/// for it. While a client isn't connected it is told of its connection and of nothing else.
///
/// Operations that name a device, room or the like return false, and do nothing, when there is none.
class Agent {
public:
    static Agent& instance();

    // ---- The home ----

    /// Replaces the home; tells nobody. Usually called before the plug-in starts.
    void load(Home home);
    /// A copy of the home as it is now.
    Home home() const;
    std::optional<Device> device(const std::string& id) const;
    /// The value of a property as JSON text; empty when there is none.
    std::string value(const std::string& deviceId, const std::string& uri, const std::string& property) const;

    // ---- Session ----

    enum class Connection { Connected, Disconnected, Rejected, IoError, Updating };

    /// How connections that are asked for from now on turn out. Connected at start. While Updating, they are
    /// refused at once.
    void setConnectOutcome(Connection outcome);
    /// The connections that stand change now: every client is told.
    void changeConnection(Connection state);
    /// Tells every client of a connection state by its number, which may be one that has no name. Nothing else changes.
    void announceConnection(int state);
    Connection connectOutcome() const;
    /// Whether a client's connection stands.
    bool isConnected() const;
    /// The agent's own state number. 1 at start; 2 means that it waits for its connection to the cloud.
    void setState(int state);

    /// Tells the clients.
    void signOut();
    void signIn();
    /// Signs another account in. An empty token or device id keeps the old one.
    void signIn(const Account& account);
    bool isSignedIn() const;

    // ---- Devices ----

    /// Sets a property from outside, as a person at the device would. The device reacts as its model says, and the
    /// subscribers of each resource that changed are told; for capabilities a device event goes out (for devices of the
    /// local hub nothing else does). `value` is JSON text, or a plain text which is read by the property's
    /// type: Run, 21, true.
    bool set(const std::string& deviceId, const std::string& uri, const std::string& property,
             const std::string& value);
    /// Several at once: one event for each resource.
    bool set(const std::string& deviceId, const std::vector<Change>& changes);
    /// Tells the subscribers of a resource whatever the caller likes; the home stays as it is.
    void sendUpdate(const std::string& deviceId, const std::string& uri, const std::string& representation,
                    const std::string& dataTypes, const std::string& errorCode = "");
    /// Tells subscribers of the detail list; for devices of the local hub, a health event goes out in its place.
    bool setStatus(const std::string& deviceId, int status);

    bool addDevice(const Device& device);
    /// Several at once, with one list for all of them. False, with none added, when an id is missing or not new.
    bool addDevices(std::vector<Device> devices);
    bool removeDevice(const std::string& deviceId);
    /// Sets the nick name.
    bool renameDevice(const std::string& deviceId, const std::string& name);
    bool moveDevice(const std::string& deviceId, const std::string& locationId, const std::string& roomId);
    /// Replaces a device by its id.
    bool updateDevice(const Device& device);
    void setHub(const Hub& hub);
    /// Replaces a model: what devices of the vid show from the next reading on.
    void setModel(const Model& model);

    /// The list callbacks with lists of the caller's choice; the home stays as it is. Unknown ids get records with an
    /// id only.
    void sendDeviceList(const std::vector<std::string>& deviceIds);
    void sendDeviceDetailList(const std::vector<Device>& devices);

    // ---- Programs behind devices ----

    /// From now on what the plug-in wants of the device (a write, a command, a scene's action) is handed to the driver;
    /// set() tells its values. With null the device carries it out by itself again, and what the driver still had open
    /// is refused. Ends with the device.
    bool setDriver(const std::string& deviceId, Driver driver);
    void removeDrivers();
    /// The devices that have a driver, and the commands that are open, in the order in which they came.
    std::vector<std::string> driven() const;
    std::vector<DeviceCommand> openCommands() const;
    /// The verdicts of an open command: false when it isn't open. Confirming accepts it and sets what was wanted, or
    /// `values` in its place; false when those don't fit.
    bool accept(long long number);
    bool confirm(long long number, std::vector<Change> values = {});
    bool refuse(long long number);
    /// Told of each command that is handed to a driver, as the change observer is. Null takes it away.
    void setCommandObserver(std::function<void(const DeviceCommand&)> observer);

    // ---- Locations and rooms ----

    std::string addLocation(const std::string& name);
    bool removeLocation(const std::string& locationId);
    bool renameLocation(const std::string& locationId, const std::string& name);
    /// The new room's id; empty when there is no such location.
    std::string addRoom(const std::string& locationId, const std::string& name);
    bool removeRoom(const std::string& roomId);
    bool renameRoom(const std::string& roomId, const std::string& name);
    /// The group callback, the home being as it is.
    void sendGroupChange(int notiType, int groupType);

    // ---- Events ----

    /// One event of the stream; `kind` is a value of homeloom_core_sse_e, or any other number. Clients whose mask
    /// leaves it out aren't told.
    void sendEvent(int kind, const std::string& json);
    void sendThirdPartyNotificationStatusChange();

    // ---- Faults ----

    /// Throws std::invalid_argument for a name that is no function of the agent.
    void fault(const std::string& function, const Fault& fault);
    void clearFault(const std::string& function);
    void clearFaults();
    std::map<std::string, Fault> faults() const;

    // ---- What the plug-in did ----

    struct Calls {
        int count = 0;
        std::vector<std::string> arguments;  // texts and numbers of the last call, in the function's order
        // What a call has shown the function to be: which faults have an effect.
        bool hasCallback = false;
        bool answersText = false;
        bool answersList = false;
    };
    /// The functions called since start or resetCalls(), by name.
    std::map<std::string, Calls> calls() const;
    int callCount(const std::string& function) const;
    void resetCalls();
    using CallObserver = std::function<void(const std::string& function, const std::vector<std::string>& arguments)>;
    /// Told of each call, on the caller's thread, before anything else happens. Returns the observer's number. One that
    /// has been removed may still be told of calls that are under way.
    int addCallObserver(CallObserver observer);
    void removeCallObserver(int number);

    /// Told whenever the home or the session changed, on any thread and under the agent's mutex: may call nothing of
    /// the agent. Null takes it away.
    void setChangeObserver(std::function<void()> observer);

    /// App launch conditions, as they were added.
    struct LaunchCondition {
        std::string appId, deviceId, uri, property, type, value, bundle;
    };
    std::vector<LaunchCondition> conditions() const;

    struct Subscription {
        std::string deviceId;
        std::string uris;  // the text of the subscription
    };
    std::vector<Subscription> subscriptions() const;

    struct UserEvent {
        int category;
        int action;
        std::string label;
        std::string metadata;
    };
    std::vector<UserEvent> userEvents() const;

    /// Exceptions that callbacks let through, as "CALLBACK: WHAT". They were logged and swallowed.
    std::vector<std::string> escapedExceptions() const;

    /// What the plug-in holds of the agent. All zero after a clean end.
    struct Holdings {
        int clients = 0;
        int records = 0;  // list records and conditions not destroyed
        int registrations = 0;
        int subscriptions = 0;
        int pendingCalls = 0;  // answers that are still to come
        int total() const { return clients + records + registrations + subscriptions + pendingCalls; }
    };
    Holdings holdings() const;
    /// Whether something of the agent is still to come: an answer, what a device does later, the end of a call that a
    /// fault delays. Of an answer that a fault leaves out, as long as somebody may wait for it.
    bool isOwing() const;
    /// Whether a fault delays a call that its caller waits in.
    bool holdsUpCallers() const;
    /// Whether a fault keeps a call from returning until it is cleared. Nothing counts as still to come for that.
    bool keepsCallers() const;

    // ---- Time ----

    /// Waits until every callback that is due has returned. Late answers and delayed reactions aren't due. Not
    /// from a callback.
    void waitIdle();
    /// The same for a limited time; false when it wasn't enough.
    bool waitIdle(std::chrono::milliseconds limit);

    /// Back to the beginning, for tests in one process: empty home, no faults, no calls, and no client: handles and
    /// registrations that are left are dropped.
    void reset();

    /// The names of all functions of the agent, sorted.
    static const std::vector<std::string>& functionNames();

    Agent(const Agent&) = delete;
    Agent& operator=(const Agent&) = delete;

private:
    Agent() = default;
};

}  // namespace simulator

#endif
