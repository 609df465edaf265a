#ifndef HOMELOOM_TESTS_HANDLERS_HANDLERSTEST_H
#define HOMELOOM_TESTS_HANDLERS_HANDLERSTEST_H

#include <functional>
#include <future>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "Helpers/CEndpointListHelper.h"
#include "Homeloom/Common/MsgDispatcher.h"
#include "support/AgentStub.h"
#include "support/FrameStub.h"

/// A handler between two stubs: an agent that answers from a table, and a frame that takes what is reported.
class HandlersTest : public testing::Test {
protected:
    using EndpointList = std::shared_ptr<VMFramework::HomeLoom::IEndpointListHelper>;
    using List = homeloom::desktop::framework::ReportPtr;

    HandlersTest() = default;
    ~HandlersTest() override {
        Settle();
        EXPECT_EQ(agent.Held(), 0) << "records that were not given back";
    }

    /// What a handler puts on an endpoint list.
    List Endpoints(const std::function<void(const EndpointList&)>& fill) {
        const auto list = VMFramework::HomeLoom::IEndpointListHelper::Create();
        fill(list);
        frame.Take();
        frame.ReportDeviceList(list);
        return frame.Take().at(0);
    }
    /// What was reported since the last call, once the jobs that it takes have run.
    std::vector<std::string> Reported() {
        Settle();
        return frame.Lines();
    }

    /// Waits for the jobs that are queued.
    static void Settle() {
        std::promise<void> done;
        VMFramework::HomeLoom::EnqueueOnScheduler([&] { done.set_value(); }, "settle");
        done.get_future().wait();
    }

    AgentStub agent;
    FrameStub frame;
};

#endif
