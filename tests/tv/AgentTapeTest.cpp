// What the recorder writes of the desk's own agent, homeloom-tv plays in that agent's place.
#include <gmock/gmock.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

class AgentTape : public ::testing::Test {
protected:
    AgentTape() {
        std::string name = (std::filesystem::temp_directory_path() / "agent-tape-XXXXXX").string();
        _folder = mkdtemp(name.data());
    }
    ~AgentTape() override { std::filesystem::remove_all(_folder); }

    std::string file(const std::string& name) const { return (_folder / name).string(); }
    std::string write(const std::string& name, const std::string& text) const {
        std::ofstream(file(name)) << text;
        return file(name);
    }
    std::string read(const std::string& name) const {
        std::ostringstream text;
        text << std::ifstream(file(name)).rdbuf();
        return text.str();
    }

    /// The lines that tell of calls of the plug-in and of the home, and not of the commands between them. "# " stands
    /// before what a person or the cloud did, which on a tape comes by itself.
    std::string reportsOf(const std::string& script, bool isPlayed, const std::string& environment) {
        std::istringstream lines(script);
        std::ofstream commands(file("script"));
        for (std::string line; std::getline(lines, line);) {
            if (line.rfind("# ", 0) != 0) {
                commands << line << '\n';
            } else if (!isPlayed) {
                commands << line.substr(2) << '\n';
            }
        }
        commands.close();
        // The address sanitizer wants to be the first library.
        const int status = std::system(("env ASAN_OPTIONS=verify_asan_link_order=0 " + environment + " " +
                                        HOMELOOM_TV_PROGRAM + " --json --settled --script " + file("script") +
                                        (isPlayed ? " --agent-tape " + file("tape") : "") + " >" + file("output") +
                                        " 2>" + file("errors"))
                                           .c_str());
        EXPECT_EQ(WEXITSTATUS(status), 0) << read("errors");
        std::string reports;
        std::istringstream output(read("output"));
        for (std::string line; std::getline(output, line);) {
            reports += line.rfind("{\"command\"", 0) == 0 ? "" : line + '\n';
        }
        return reports;
    }
    std::string recordReports(const std::string& script, const char* withNames) {
        return reportsOf(script, false,
                         std::string("LD_PRELOAD=" HOMELOOM_RECORDER " HOMELOOM_AGENT_TAPE_NAMES=") + withNames +
                             " HOMELOOM_AGENT_TAPE=" + file("tape"));
    }

private:
    std::filesystem::path _folder;
};

// What a person or the cloud did follows a second in which nothing happens.
const char* const day =
    "do washer\ndo blind\nrequest hl_execute_scene location_id=home scene_id=good-night\n"
    "request hl_get_avp_camera_url device_id=living-camera\n"
    "request hl_change_room_name location_id=home room_id=laundry room_name=Washhouse\nwatch 2\nwatch 1\n"
    "# sim set washer state=Ready\nwatch 1\n# sim sign-out\nwatch 1\n# sim sign-in\nwatch 3\ndo robot\n";

TEST_F(AgentTape, PlayedBackMakesThePluginReportTheSame) {
    const std::string recorded = recordReports(day, "1");
    EXPECT_EQ(reportsOf(day, true, ""), recorded);
    EXPECT_THAT(recorded, HasSubstr("Washhouse"));
    EXPECT_THAT(recorded, HasSubstr(R"("is_sign_in":false)"));
    EXPECT_THAT(read("tape"), HasSubstr("token-of-mina"));
}

TEST_F(AgentTape, TellsNoNamesAndNoTokensAndPlaysAllTheSame) {
    recordReports(day, "0");
    for (const char* const secret : {"mina", "Mina", "Kitchen", "Washhouse", "Parents", "Good Night"}) {
        EXPECT_THAT(read("tape"), Not(HasSubstr(secret)));
    }
    const std::string played = reportsOf(day, true, "");
    EXPECT_THAT(played, HasSubstr("<name 1>"));
    EXPECT_THAT(played, HasSubstr("hl_change_room_name"));
}

TEST_F(AgentTape, AMistakeIsToldWithItsLine) {
    const std::string head = "{\"agent_tape\":1,\"names\":true}\n";
    const std::string call = "{\"at\":0.0,\"call\":1,\"function\":\"homeloom_client_get_state\",\"in\":[\"client\"]}\n";
    const std::pair<std::string, const char*> mistakes[] = {
        {"", "tape:1: the tape is empty"},
        {"{\"agent_tape\":2}\n", "tape:1: this program plays agent_tape 1"},
        {head + "{\n", "tape:2: "},
        {head + "{\"at\":0.0,\"call\":1,\"function\":\"homeloom_client_fly\",\"in\":[]}\n", "tape:2: function is none"},
        {head + call + "{\"at\":0.0,\"answer\":2,\"code\":0}\n", "tape:3: there is no such call before"},
        {head + call + "{\"at\":0.0,\"answer\":1,\"code\":0,\"out\":[\"2\"]}\n", "tape:3: value 1 of out"},
        {head + call + "{\"at\":0.0,\"callback\":1,\"in\":[]}\n", "tape:3: homeloom_client_get_state has no callback"},
    };
    for (const auto& [text, reason] : mistakes) {
        write("tape", text);
        const int status = std::system(
            (std::string(HOMELOOM_TV_PROGRAM) + " --exec stats --agent-tape " + file("tape") + " 2>" + file("errors"))
                .c_str());
        EXPECT_EQ(WEXITSTATUS(status), 1);
        EXPECT_THAT(read("errors"), HasSubstr(reason));
    }
}

}  // namespace
