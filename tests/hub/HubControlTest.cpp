#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "Homeloom/IoTHub/IPCProxyBase.h"
#include "clock/Clock.h"
#include "clock/Turner.h"
#include "desktop/Guard.h"
#include "desktop/Log.h"
#include "desktop/MainLoop.h"
#include "desktop/RpcPort.h"
#include "simulator/HubApp.h"

namespace {

using namespace rpc_port::IPCProxyBase::proxy;
using simulator::HubApp;
using std::string_literals::operator""s;
using testing::ElementsAre;
using testing::IsEmpty;
namespace rpc = homeloom::desktop::rpc;

// Far above what anything takes.
constexpr std::chrono::seconds kLimit(30);

/// What happened, to be waited for.
class Story {
public:
    void tell(const std::string& event) {
        const std::lock_guard<std::mutex> lock(_mutex);
        _events.push_back(event);
        _changed.notify_all();
    }
    bool waitFor(const std::string& event) {
        std::unique_lock<std::mutex> lock(_mutex);
        return _changed.wait_for(lock, kLimit, [&] { return std::count(_events.begin(), _events.end(), event) > 0; });
    }
    std::vector<std::string> take() {
        const std::lock_guard<std::mutex> lock(_mutex);
        return std::exchange(_events, {});
    }

private:
    std::mutex _mutex;
    std::condition_variable _changed;
    std::vector<std::string> _events;
};

class Listener final : public IEventListener {
public:
    explicit Listener(Story& story) : _story(story) {}
    void OnConnected() override { _story.tell("connected"); }
    void OnDisconnected() override { _story.tell("disconnected"); }
    void OnRejected() override { _story.tell("rejected"); }

private:
    Story& _story;
};

/// Tells its name with each event, and its own end.
class Delegate : public OnEvent {
public:
    using Function = std::function<void()>;
    Delegate(Story& story, std::string name, bool isOnce = false, Function function = {})
        : OnEvent(isOnce), _story(story), _name(std::move(name)), _function(std::move(function)) {}
    ~Delegate() override { _story.tell(_name + " is gone"); }

    void OnReceived(int event, std::string data) override {
        if (_function) {
            _function();
        }
        _story.tell(_name + " " + std::to_string(event) + " " + data);
    }

private:
    Story& _story;
    const std::string _name;
    const Function _function;
};

/// A parcel as the program would send it for its first delegate: 1, id, sequence, once, event, data.
std::string eventOf(int sequence) {
    const auto number = [](int value) { return "i\0\0\0"s + static_cast<char>(value); };
    const std::string values = number(1) + number(1) + number(sequence) + "b\0"s + number(4) + "s\0\0\0\0"s;
    return "\0\0\0"s + static_cast<char>(values.size()) + values;
}

/// The class of what a call throws.
std::string thrownBy(const std::function<void()>& call) {
    try {
        call();
    } catch (const NotConnectedSocketException&) {
        return "NotConnectedSocket";
    } catch (const InvalidProtocolException&) {
        return "InvalidProtocol";
    } catch (const InvalidIOException&) {
        return "InvalidIO";
    } catch (const PermissionDeniedException&) {
        return "PermissionDenied";
    } catch (const InvalidIDException&) {
        return "InvalidID";
    }
    return "";
}

class HubControl : public testing::Test {
protected:
    HubControl() { app.setOnboarding(HubApp::Course::Manual); }

    ~HubControl() override {
        control = nullptr;
        EXPECT_EQ(rpc::holdings().proxies, 0);
        EXPECT_EQ(rpc::holdings().connections, 0);
        EXPECT_EQ(rpc::holdings().parcels, 0);
        EXPECT_THAT(homeloom::desktop::pluginExceptions(), IsEmpty());
        app.stop();
    }

    void connect() {
        app.start();
        control->Connect(false);
        ASSERT_TRUE(story.waitFor("connected"));
    }

    std::unique_ptr<OnEvent> delegate(const std::string& name, bool isOnce = false, Delegate::Function function = {}) {
        return std::make_unique<Delegate>(story, name, isOnce, std::move(function));
    }

    /// Waits until what the program has sent was delivered.
    void settle() {
        app.waitIdle();
        app.sendEvent(77, "settled");
        ASSERT_TRUE(story.waitFor("events 77 settled"));
    }

    std::string info() {
        std::string text;
        EXPECT_TRUE(control->GetHubInfo(text));
        return text;
    }

    // Limits end as soon as nobody works any more, and no sooner.
    std::optional<homeloom::clock::Turner> turner{std::in_place};
    homeloom::desktop::MainLoop loop;
    homeloom::desktop::log::Capture log{DLOG_ERROR};
    HubApp& app = HubApp::instance();
    Story story;
    Listener listener{story};
    std::unique_ptr<IHubControl> control = std::make_unique<IHubControl>(&listener, HubApp::kAppId);
};

/// Each call with a delegate, and each without.
struct Calls {
    IHubControl& control;
    std::vector<std::pair<std::string, std::function<void(std::unique_ptr<OnEvent>)>>> withDelegate{
        {"StartOnboarding",
         [this](auto delegate) { control.StartOnboarding("token", "home", "", std::move(delegate)); }},
        {"StopOnboarding", [this](auto delegate) { control.StopOnboarding(std::move(delegate)); }},
        {"ResetHub", [this](auto delegate) { control.ResetHub(std::move(delegate)); }},
        {"ResetDongle", [this](auto delegate) { control.ResetDongle(std::move(delegate)); }},
        {"SetEventCallback", [this](auto delegate) { control.SetEventCallback(std::move(delegate)); }}};
    std::vector<std::pair<std::string, std::function<void()>>> plain{
        {"CheckHubPpAgreement", [this] { control.CheckHubPpAgreement(); }},
        {"SetHubPpAgreement", [this] { control.SetHubPpAgreement(); }},
        {"GetHubInfo", [this] {
             std::string text = "present";
             control.GetHubInfo(text);
         }}};
};

TEST_F(HubControl, CallsArriveAsTheyWereMade) {
    connect();
    app.setReset(HubApp::Course::Manual);
    const Calls calls{*control};
    std::vector<int> sequences;
    for (const auto& [name, call] : calls.withDelegate) {
        auto given = delegate(name);
        sequences.push_back(given->GetSeqId());
        EXPECT_EQ(given->GetTag(), "1::" + std::to_string(sequences.back()));
        call(std::move(given));
    }
    for (const auto& [name, call] : calls.plain) {
        call();
    }
    ASSERT_TRUE(app.waitForRequests(8));
    const auto requests = app.requests();
    for (std::size_t i = 0; i < sequences.size(); ++i) {
        EXPECT_EQ(requests[i].name, calls.withDelegate[i].first);
        EXPECT_EQ(requests[i].delegateId, 1);
        EXPECT_EQ(requests[i].delegateSequence, static_cast<int>(i));  // from 0, in the order of their making
        EXPECT_EQ(sequences[i], static_cast<int>(i));
        EXPECT_FALSE(requests[i].isOnce);
    }
    EXPECT_THAT(requests[0].fields, ElementsAre("token", "home", ""));
    for (std::size_t i = 0; i < calls.plain.size(); ++i) {
        EXPECT_EQ(requests[i + 5].name, calls.plain[i].first);
        EXPECT_FALSE(requests[i + 5].hasDelegate);
    }
    EXPECT_THAT(requests[7].fields, ElementsAre("present"));
}

TEST_F(HubControl, CallsWithoutConnectionThrow) {
    const Calls calls{*control};
    const auto expectRefusals = [&] {
        for (const auto& entry : calls.withDelegate) {
            EXPECT_EQ(thrownBy([&] { entry.second(delegate(entry.first)); }), "NotConnectedSocket") << entry.first;
        }
        for (const auto& entry : calls.plain) {
            EXPECT_EQ(thrownBy(entry.second), "NotConnectedSocket") << entry.first;
        }
    };
    expectRefusals();
    EXPECT_TRUE(log.contains(" > Not connected"));
    EXPECT_TRUE(log.contains("IPCProxyBase.cpp: GetHubInfo("));
    EXPECT_EQ(log.lines().front().tag, "IOT_IPC_PROXY");
    connect();
    app.kill();
    ASSERT_TRUE(story.waitFor("disconnected"));
    expectRefusals();
}

TEST_F(HubControl, EventsFindTheirDelegate) {
    connect();
    control->SetEventCallback(delegate("events"));
    control->StartOnboarding("token", "home", "living", delegate("first"));
    control->StartOnboarding("token", "home", "living", delegate("second"));
    control->StartOnboarding("token", "home", "living", delegate("once", true));
    ASSERT_TRUE(app.waitForRequests(4));
    story.take();
    app.sendEventTo(2, 0, "10");
    app.sendEventTo(1, 0, "20");
    app.sendEventTo(2, 1, "");
    app.sendEventTo(3, 9, "");
    app.sendEventTo(3, 9, "");
    settle();
    EXPECT_THAT(story.take(),
                ElementsAre("second 0 10", "first 0 20", "second 1 ", "once 9 ", "once is gone", "events 77 settled"));

    const auto sequence = app.requests()[1].delegateSequence;
    control->DisposeCallback("com.norvane.tv.velmora-app");
    control->DisposeCallback("1::" + std::to_string(sequence));
    app.sendEventTo(1, 0, "30");
    settle();
    EXPECT_THAT(story.take(), ElementsAre("first is gone", "events 77 settled"));
}

TEST_F(HubControl, DisconnectDropsTheDelegates) {
    connect();
    control->SetEventCallback(delegate("old"));
    ASSERT_TRUE(app.waitForRequests(1));
    const int old = app.requests()[0].delegateSequence;
    story.take();
    app.kill();
    EXPECT_TRUE(story.waitFor("disconnected"));
    EXPECT_THAT(story.take(), ElementsAre("old is gone", "disconnected"));
    connect();
    control->SetEventCallback(delegate("events"));
    ASSERT_TRUE(app.waitForRequests(1));
    app.sendBytes(eventOf(old));
    settle();
    EXPECT_THAT(story.take(), ElementsAre("connected", "events 77 settled"));
}

TEST_F(HubControl, DelegatesMayCallThePort) {
    connect();
    std::string tag;
    auto given = delegate("caller", false, [&] {
        EXPECT_NE(info(), "");  // on the main loop, which nobody needs for it
        control->SetEventCallback(delegate("events"));
        control->DisposeCallback(tag);
    });
    tag = given->GetTag();
    control->SetEventCallback(std::move(given));
    ASSERT_TRUE(app.waitForRequests(1));
    story.take();
    app.sendEvent(10, "in");
    ASSERT_TRUE(story.waitFor("caller is gone"));
    settle();
    EXPECT_THAT(story.take(), ElementsAre("caller 10 in", "caller is gone", "events 77 settled"));
}

TEST_F(HubControl, HubInfoIsTheAnswerToItsOwnQuestion) {
    connect();
    app.setHubInfo("first");
    EXPECT_EQ(info(), "first");
    app.setAnswers(HubApp::Answers::AfterEvent);
    EXPECT_EQ(info(), "first");

    std::string text = "as it was";
    app.setAnswers(HubApp::Answers::Malformed);
    EXPECT_EQ(thrownBy([&] { control->GetHubInfo(text); }), "InvalidProtocol");
    EXPECT_TRUE(log.contains(" > Invalid protocol"));

    const auto giveUp = [&] { EXPECT_EQ(thrownBy([&] { control->GetHubInfo(text); }), "InvalidProtocol"); };
    // Answers that come late are told from the one that is waited for.
    app.setHubInfo("late");
    app.setAnswers(HubApp::Answers::Held);
    giveUp();
    giveUp();
    app.setAnswers(HubApp::Answers::Normal);
    app.setHubInfo("in time");
    app.releaseAnswers();
    EXPECT_EQ(info(), "in time");
    // Half an answer, and the next one would begin in its middle: nothing is to be had of it.
    app.setAnswers(HubApp::Answers::Half);
    giveUp();
    app.setAnswers(HubApp::Answers::Normal);
    EXPECT_EQ(text, "as it was");

    // A new connection owes nothing.
    story.take();
    app.kill();
    ASSERT_TRUE(story.waitFor("disconnected"));
    connect();
    EXPECT_EQ(info(), "in time");
}

TEST_F(HubControl, EventsDoNotWaitForAnotherThreadsAnswer) {
    connect();
    control->SetEventCallback(delegate("events"));
    app.setAnswers(HubApp::Answers::Held);
    turner.reset();
    auto waiting = std::async(std::launch::async, [this] { return info(); });
    ASSERT_TRUE(app.waitForRequests(2));
    app.sendEvent(10, "meanwhile");
    EXPECT_TRUE(story.waitFor("events 10 meanwhile"));
    // Behind the limit, where a parcel that is no answer has led, it is the answer all the same.
    homeloom::clock::advance(std::chrono::seconds(2));
    app.sendBytes(eventOf(0), true);
    homeloom::clock::advance(std::chrono::seconds(2));
    app.releaseAnswers();
    EXPECT_EQ(waiting.get(), app.hubInfo());
    app.setAnswers(HubApp::Answers::Normal);
    EXPECT_EQ(info(), app.hubInfo());
}

TEST_F(HubControl, ConnectingEndsAsTheProgramWants) {
    control->Connect(false);
    EXPECT_TRUE(story.waitFor("rejected"));  // it isn't there
    story.take();
    app.rejectConnections(true);
    app.start();
    control->Connect(false);
    EXPECT_TRUE(story.waitFor("rejected"));
    EXPECT_EQ(thrownBy([this] { control->Connect(true); }), "PermissionDenied");
    app.rejectConnections(false);
    control->Connect(true);
    EXPECT_THAT(story.take(), ElementsAre("rejected", "connected"));
    EXPECT_EQ(info(), app.hubInfo());

    EXPECT_EQ(thrownBy([this] { control->Connect(false); }), "InvalidIO");
    rpc::failConnect(-99);
    control->Connect(false);
    rpc::failConnect(0);
    rpc::failCreate(-12);
    EXPECT_EQ(thrownBy([this] { IHubControl(&listener, HubApp::kAppId); }), "InvalidIO");
    EXPECT_TRUE(log.contains(" > Failed to create proxy"));
    rpc::failCreate(0);
}

TEST_F(HubControl, DelegateStaysWhenItsCallCanNotBeSent) {
    connect();
    control->SetEventCallback(delegate("events"));
    rpc::failSend(-5);
    auto given = delegate("unsent");
    const std::string tag = given->GetTag();
    EXPECT_EQ(thrownBy([&] { control->ResetHub(std::move(given)); }), "InvalidIO");
    EXPECT_TRUE(log.contains(" > Failed to send parcel. result(-5)"));
    rpc::failSend(0);
    EXPECT_EQ(thrownBy([&] {
                  control->StartOnboarding(std::string(RPC_PORT_PARCEL_MAX, 'x'), "", "", delegate("too long"));
              }),
              "InvalidIO");
    ASSERT_TRUE(app.waitForRequests(1));
    settle();
    EXPECT_THAT(story.take(), ElementsAre("connected", "events 77 settled"));
    control->DisposeCallback(tag);
    EXPECT_THAT(story.take(), ElementsAre("unsent is gone"));
}

TEST_F(HubControl, HostileEventsAreDropped) {
    connect();
    control->SetEventCallback(delegate("events"));
    ASSERT_TRUE(app.waitForRequests(1));
    const int sequence = app.requests()[0].delegateSequence;
    story.take();
    const auto number = [](int value) { return "i\0\0\0"s + static_cast<char>(value); };
    const std::string address = number(1) + number(1) + number(sequence) + "b\0"s;
    for (const std::string& values : {
             ""s,
             "x"s,
             number(1),
             number(1) + number(1) + number(sequence),
             number(0) + "s\0\0\0\0b\1"s,
             number(9) + address,
             address,
             address + number(4),
             address + "s\0\0\0\0"s + number(4),
             address + number(4) + "s\0\0\0\x50short"s,
         }) {
        app.sendBytes("\0\0\0"s + static_cast<char>(values.size()) + values);
    }
    settle();
    EXPECT_THAT(story.take(), ElementsAre("events 77 settled"));
}

// For the thread sanitizer, mostly.
TEST_F(HubControl, EverythingAtOnceLeavesNothing) {
    turner.reset();  // somebody works all the time
    connect();
    std::atomic<bool> isOver = false;
    std::vector<std::thread> threads;
    const std::array<std::function<void()>, 3> work{[this] { control->SetEventCallback(delegate("events")); },
                                                    [this] {
                                                        std::string text;
                                                        control->GetHubInfo(text);
                                                    },
                                                    [this] {
                                                        control->CheckHubPpAgreement();
                                                        control->DisposeCallback("1::3");
                                                    }};
    for (const auto& function : work) {
        threads.emplace_back([&] {
            while (!isOver) {
                thrownBy(function);
            }
        });
    }
    for (int round = 0; round < 5; ++round) {
        ASSERT_TRUE(app.waitForRequests(20));
        story.take();
        app.kill();
        ASSERT_TRUE(story.waitFor("disconnected"));
        connect();
    }
    isOver = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    control = nullptr;
    EXPECT_TRUE(app.waitForConnections(0));
}

}  // namespace
