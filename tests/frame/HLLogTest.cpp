#include "Common/HLLog.h"

#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "Common/CException.h"
#include "Common/Guarded.h"
#include "desktop/Log.h"

using namespace VMFramework::HomeLoom;
using namespace homeloom::desktop;
using testing::ElementsAre;
using testing::MatchesRegex;

template <typename Argument>
void LogInALambda(Argument) {
    [] { HL_LOGI("in a lambda"); }();
}

TEST(HLLog, WritesToTheLogWholeAndToTheTraceSinkShortened) {
    const log::Capture capture(DLOG_DEBUG);
    std::string trace;
    log::setTraceSink([&trace](const char* line) { trace = line; });
    const std::string text(2000, 'x');
    HL_LOGE("%s", text.c_str());
    log::setTraceSink(nullptr);
    EXPECT_EQ(trace, ("[HLPLUGIN] " + text).substr(0, 1023));
    ASSERT_EQ(capture.lines().size(), 1u);
    EXPECT_EQ(capture.lines()[0].priority, DLOG_ERROR);
    EXPECT_EQ(capture.lines()[0].tag, "VM_HOMELOOM_PLUGIN");
    EXPECT_THAT(capture.lines()[0].message, MatchesRegex("HLLogTest.cpp : TestBody\\([0-9]+\\)  x+"));
    EXPECT_GT(capture.lines()[0].message.size(), text.size());
}

TEST(HLLog, TracesACallAndTellsByItsKindWhatAShellCatches) {
    const log::Capture capture(DLOG_DEBUG);
    {
        HL_TRACE(nullptr);
        Guarded([] { throw CException("own", kErrorQuit); });
        EXPECT_EQ(GuardedOr(7, []() -> int { throw CException_HLClient("agent's", -22); }), 7);
        EXPECT_THROW(LogThrown([] { throw std::runtime_error("other"); }), std::runtime_error);
        LogInALambda(static_cast<void (*)(int)>(nullptr));
    }
    std::vector<std::string> messages;
    for (const auto& line : capture.lines()) {
        messages.push_back(line.message);
    }
    const std::string line = "HLLogTest.cpp : TestBody\\([0-9]+\\)  Exception !! - ";
    const std::string call = "HLLogTest.cpp :\\[\\(nil\\)\\] TestBody\\([0-9]+\\) > ";
    EXPECT_THAT(
        messages,
        ElementsAre(MatchesRegex(call + "Entered"), MatchesRegex(line + "own\\(error:10\\)\\(error_code:10\\)"),
                    MatchesRegex(line + "agent's\\(error:-22\\)\\(error_code:-22\\)"), MatchesRegex(line + "other"),
                    MatchesRegex("HLLogTest.cpp : LogInALambda\\([0-9]+\\)  in a lambda"),
                    MatchesRegex(call + "Left")));
}
