#ifndef HOMELOOM_SIMULATOR_HUBAPP_H
#define HOMELOOM_SIMULATOR_HUBAPP_H

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace simulator {

/// The handle on the hub control application, a program of its own that plays the other end of the port "IHubControl".
/// All operations are thread-safe. Those that ask the program throw std::runtime_error when it doesn't run, and return
/// when it has done what it was told.
class HubApp {
public:
    static constexpr char kAppId[] = "com.norvane.tv.iot-hub-control";
    static constexpr char kPortName[] = "IHubControl";

    static HubApp& instance();

    /// What the TV does when a user installs the application: it is started, listed, and announced. And the other way
    /// round.
    void install();
    void uninstall();

    /// Begins to start the program, for start() to find it under way. Nothing else is to be asked before that one has
    /// returned. Throws std::runtime_error if it can't be started.
    void launch();
    /// Starts the program and returns when it takes connections. Does nothing if it runs. Throws std::runtime_error if
    /// it can't be started.
    void start();
    /// Ends it as an application ends itself. Throws std::runtime_error if it came to another end.
    void stop();
    /// Ends it without a warning.
    void kill();
    bool isRunning() const;
    /// 0 when it doesn't run.
    int processId() const;

    /// Stops and continues the whole process: connections stand, and nothing is answered.
    void pause();
    void resume();

    // What stands below until the next headline may be set at any time, and holds for later starts, too.

    // ---- What it does ----

    void rejectConnections(bool rejects);

    /// Back to the beginning.
    void resetSettings();
    /// Whom a successful onboarding makes the hub's owner, and the hub's device id; both stand in the hub info then.
    void setIdentity(const std::string& userId, const std::string& hubDeviceId);
    /// How a call is taken. Manual: nothing happens but what sendEvent() makes happen.
    enum class Course { Succeed, Fail, Manual };
    void setOnboarding(Course course);
    void setReset(Course course);
    /// How long each step of an onboarding takes; 0 at the start.
    void setPace(std::chrono::milliseconds step);

    enum class Answers {
        Normal,      // GetHubInfo is answered at once
        Held,        // not before releaseAnswers()
        Half,        // the first half of the answer's bytes; the rest comes with releaseAnswers()
        AfterEvent,  // behind a parcel of an event on the same port
        Malformed    // the values are of other types
    };
    void setAnswers(Answers answers);

    // ---- What it is told to do now ----

    /// The hub info as it stands; onboarding and reset change it, and it outlives the program.
    void setHubInfo(const std::string& info);
    std::string hubInfo();

    /// Fires the delegate that an event of this number belongs to: onboarding's, the reset's, or that of the event
    /// callback. Throws std::runtime_error if it was given none.
    void sendEvent(int event, const std::string& data);
    /// Fires the delegate that came with the request number `index`, counted from 0 since the program's start.
    void sendEventTo(std::size_t index, int event, const std::string& data);

    /// Sends what was held back.
    void releaseAnswers();
    /// Writes bytes as they are to the plug-in's callback port (or its main port), for parcels that no one should send.
    void sendBytes(const std::string& bytes, bool toMainPort = false);

    // ---- What the plug-in did ----

    struct Request {
        std::string name;  // "StartOnboarding"
        std::vector<std::string> fields;
        bool hasDelegate = false;
        int delegateId = 0;
        int delegateSequence = 0;
        bool isOnce = false;
    };
    /// Since the program's start; not more than the first 5000.
    std::vector<Request> requests() const;
    /// Waits until there are so many; false if they don't come.
    bool waitForRequests(int count) const;
    /// Connections that stand.
    int connections() const;
    bool waitForConnections(int count) const;
    /// Whether something of the program is still to come: an answer that it holds back, a step of an onboarding,
    /// whatever it would say if it weren't paused.
    bool isOwing() const;
    /// Waits until the program has taken all that was sent to it, and has answered. Steps that are still to come don't
    /// count.
    void waitIdle() const;

    HubApp(const HubApp&) = delete;
    HubApp& operator=(const HubApp&) = delete;

private:
    HubApp() = default;
};

}  // namespace simulator

#endif
