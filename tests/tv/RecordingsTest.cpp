// Sessions that were recorded and looked at: what the plug-in does in each of them is what it did then.

#include <glib.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

#include "Command.h"
#include "ReportTable.h"
#include "RequestTable.h"
#include "Tape.h"
#include "Words.h"

#include <VMFramework/JsonValue.h>

using namespace homeloom::tv;
using ::testing::IsEmpty;
using VMFramework::json::JsonValue;

namespace {

using Names = std::set<std::string>;

std::vector<std::string> recordings() {
    std::vector<std::string> files;
    for (const auto& file : std::filesystem::directory_iterator(HOMELOOM_RECORDINGS_DIR)) {
        files.push_back(file.path().string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string nameOfTest(const ::testing::TestParamInfo<std::string>& file) {
    std::string name = std::filesystem::path(file.param).stem();
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

class Recording : public ::testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(Recordings, Recording, ::testing::ValuesIn(recordings()), nameOfTest);

TEST_P(Recording, GivesTheSame) {
    std::string program = HOMELOOM_TV_PROGRAM, option = "--replay", file = GetParam();
    gchar* arguments[] = {program.data(), option.data(), file.data(), nullptr};
    gchar *output = nullptr, *errors = nullptr;
    gint status = -1;
    ASSERT_TRUE(g_spawn_sync(nullptr, arguments, nullptr, G_SPAWN_DEFAULT, nullptr, nullptr, &output, &errors, &status,
                             nullptr));
    EXPECT_STREQ(output, "") << "if this is right: homeloom-tv --replay " << file << " --update";
    EXPECT_STREQ(errors, "");
    EXPECT_EQ(status, 0);
    g_free(output);
    g_free(errors);
}

/// What all recordings have together.
struct Coverage {
    Names succeeded, failed, malformed;  // requests
    Names reports;
    Names events;
    std::map<std::string, Names> faults;  // functions by the kind of fault

    Coverage() {
        for (const std::string& file : recordings()) {
            for (const std::string& text : readTape(file).lines) {
                take(JsonValue::Create(text));
            }
        }
    }

private:
    void take(const JsonValue& line) {
        if (line["name"].isString()) {
            reports.insert(line["name"].asString());
        }
        if (!line["end"].isString()) {
            return;
        }
        const Words words = splitWords(line["end"].asString());
        if (words.size() >= 2 && words[0] == "request") {
            const bool isRaw = words[1] == "--raw" && words.size() > 2;
            Names& outcome = isRaw ? malformed : line["succeeded"].asBool() ? succeeded : failed;
            outcome.insert(words[isRaw ? 2 : 1]);
        } else if (words.size() >= 3 && words[0] == "sim") {
            words[1] == "sse" ? events.insert(words[2]) : faults[words[1]].insert(words[2]);
        }
    }
};

// A request, report, event or kind of fault that comes new needs a recording.
TEST(Recordings, LeaveNothingOut) {
    const Coverage all;
    Names reports = all.reports;
    // An application of the TV may have the first one sent; nothing sends the other.
    reports.insert({"third_party_notification_status_updated", "wifi_locker_user_setting_updated"});
    Names missing;
    const auto need = [&missing](const Names& names, const std::string& name, const char* what) {
        if (names.count(name) == 0) {
            missing.insert(name + " " + what);
        }
    };
    for (const RequestSpec& spec : requestTable()) {
        need(all.succeeded, spec.name, "that succeeds");
        if (spec.answer != RequestSpec::Answer::None && spec.name != "hl_get_hub_info") {  // empty is an answer, too
            need(all.failed, spec.name, "that fails");
        }
        need(all.malformed, spec.name, "with arguments of a wrong type");
        if (!spec.answerName.empty()) {
            need(reports, spec.answerName, "as an answer");
        }
    }
    for (const NotifySpec& spec : notifyTable()) {
        need(reports, spec.name, "");
    }
    const Words sse{"sim", "sse"};
    std::size_t at = 0;
    for (const std::string& kind : findCommand(sse, at).hints.front().choices) {
        need(all.events, kind, "as an event");
    }
    EXPECT_THAT(missing, IsEmpty());
    for (const char* kind : {"fail", "answer", "say", "delay", "drop", "twice", "null", "miscount"}) {
        EXPECT_GE(all.faults.at(kind).size(), 10u) << kind;
    }
}

}  // namespace
