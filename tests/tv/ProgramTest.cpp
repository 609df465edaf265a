#include <glib.h>
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <regex>
#include <sstream>

#include <VMFramework/JsonValue.h>

#include "RequestTable.h"

using namespace homeloom::tv;
using ::testing::_;
using ::testing::AllOf;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;
using VMFramework::json::JsonValue;

namespace {

struct Finished {
    int status = -1;
    std::string output;  // standard output and error
};

class Folder {
public:
    Folder() : _path(g_dir_make_tmp("homeloom-tv-XXXXXX", nullptr), g_free) {}
    ~Folder() { std::filesystem::remove_all(_path.get()); }
    std::string write(const std::string& name, const std::string& text) const {
        const auto file = std::filesystem::path(_path.get()) / name;
        std::ofstream(file) << text;
        return file.string();
    }

private:
    std::unique_ptr<char, decltype(&g_free)> _path;
};

std::string read(const std::string& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

std::string quoted(const std::string& text) {
    const std::unique_ptr<char, decltype(&g_free)> result(g_shell_quote(text.c_str()), g_free);
    return result.get();
}

// Runs the program with arguments and standard input.
Finished run(const std::vector<std::string>& arguments, const std::string& input = "") {
    const Folder folder;
    std::string command = quoted(HOMELOOM_TV_PROGRAM);
    for (const std::string& argument : arguments) {
        command += " " + quoted(argument);
    }
    command += " 2>&1 <" + quoted(folder.write("input", input));
    FILE* const pipe = popen(command.c_str(), "r");
    Finished result;
    char bytes[4096];
    for (std::size_t count = 0; (count = std::fread(bytes, 1, sizeof bytes, pipe)) > 0;) {
        result.output.append(bytes, count);
    }
    const int status = pclose(pipe);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

Finished runCommands(std::vector<std::string> commands, std::vector<std::string> arguments = {}) {
    for (std::string& command : commands) {
        arguments.insert(arguments.end(), {"--exec", std::move(command)});
    }
    return run(arguments);
}

// The part of a transcript that belongs to one command, its own line left out.
std::string saidBy(const Finished& run, const std::string& command) {
    const std::size_t start = run.output.find("> " + command + "\n");
    if (start == std::string::npos) {
        return "(no such command)";
    }
    const std::size_t text = run.output.find('\n', start) + 1;
    return run.output.substr(text, run.output.find("\n> ", text - 1) - text);
}

// Commands for one run of the program, each with what it says.
using Steps = std::vector<std::pair<std::string, ::testing::Matcher<std::string>>>;

Finished runSteps(const Steps& steps, const std::vector<std::string>& arguments = {}) {
    std::vector<std::string> commands;
    for (const auto& [command, outcome] : steps) {
        commands.push_back(command);
    }
    const Finished result = runCommands(commands, arguments);
    for (const auto& [command, outcome] : steps) {
        EXPECT_THAT(saidBy(result, command), outcome) << command;
    }
    return result;
}

TEST(Program, ShowsTheHomeAndTakesCommandsFromAPipe) {
    const Finished result = run({}, "# a comment\n\ndevice washer\n  scenes\nquit\nrooms\n");
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_THAT(result.output, HasSubstr("The plug-in is available.\n"));
    EXPECT_THAT(result.output, HasSubstr("Home  (yours, OWNER)\n"));
    EXPECT_THAT(result.output, HasSubstr("Parents' House  (Jun's, MEMBER)\n"));
    EXPECT_THAT(result.output, HasSubstr("  Laundry Room\n"));
    EXPECT_THAT(result.output, ContainsRegex("    Washer +Ready +off +PlayPauseButton +washer.svg\n"));
    EXPECT_THAT(result.output, ContainsRegex("    Air Conditioner +Cooling · 24°C +on, running +ToggleSwitch"));
    EXPECT_THAT(saidBy(result, "device washer"), ContainsRegex("state_text +Ready\n"));
    EXPECT_THAT(saidBy(result, "scenes"), ContainsRegex("good-night +Good Night +Home\n"));
    EXPECT_THAT(result.output, Not(HasSubstr("> rooms"))) << "nothing runs after quit";
    EXPECT_THAT(result.output, Not(HasSubstr("\033"))) << "no colours in a pipe";
}

TEST(Program, RunsMainActionsAndShowsWhatTheyCause) {
    const Finished result =
        runSteps({{"do washer",
                   "result   hl_do_main_action  result=true device_id=washer\n"
                   "state    Washer: Washing · 42 min left (on, running; PlayPauseButton play)"},
                  {"do Reading Lamp", HasSubstr("Reading Lamp: On (on")},
                  {"sim set washer state=Ready", "state    Washer: Ready (off; PlayPauseButton)"},
                  {"sim set bedside-button button=pushed", HasSubstr("Bedside Button: Pressed (on)")},
                  {"watch 2", HasSubstr("Bedside Button: Ready (off)")},
                  {"sim sign-out", "account  signed out"},
                  {"devices", "failed: the plug-in has reported no home"},
                  {"sim sign-in", HasSubstr("home     33 devices, 2 locations, 3 scenes, 3 routines")}});
    EXPECT_EQ(result.status, 1) << "one command failed";
}

TEST(Program, KeepsTheSettingsOfTheRunBefore) {
    const Folder folder;
    const std::vector<std::string> kept = {"--settings", folder.write("settings", "{}")};
    EXPECT_EQ(runCommands({"sim disclaimer off"}, kept).status, 0);
    EXPECT_THAT(runCommands({"watch 0"}, kept).output, HasSubstr("The disclaimer is not accepted"));
    // What is asked for on the command line comes before what was kept.
    EXPECT_THAT(runCommands({"watch 0"}, {kept[0], kept[1], "--disclaimer", "on"}).output, HasSubstr("Laundry Room"));
    EXPECT_THAT(runCommands({"watch 0"}, kept).output, HasSubstr("Laundry Room"));
}

TEST(Program, KeepsStillUntilTheDisclaimerIsAccepted) {
    const Finished result = runSteps({{"rooms", "failed: the plug-in has reported no home"},
                                      {"sim calls", Not(HasSubstr("homeloom_client_connect"))},
                                      {"sim disclaimer on", HasSubstr("plug-in  available")},
                                      {"do washer", HasSubstr("Washing")}},
                                     {"--disclaimer", "off"});
    EXPECT_THAT(result.output, HasSubstr("The disclaimer is not accepted"));
}

TEST(Program, WorksTheHubControlApplication) {
    runSteps({
        {"sim hub info", HasSubstr(R"({"hub_di":"","user_id":""})")},
        {"sim hub info {\"hub_di\":\"h\"}", _},
        {"sim hub event x", HasSubstr("failed: usage: sim hub event NUMBER [DATA]")},
        {"sim hub dance", HasSubstr("there is no command \"sim hub dance\"; near: sim hub ")},
        {"sim hub", HasSubstr("\"help sim hub\" lists them")},
        {"sim hub onboarding sometimes", HasSubstr("failed: usage: sim hub onboarding succeeds|fails|waits")},
        {"sim hub pace 5 6", HasSubstr("failed: usage: sim hub pace TIME")},
        {"sim hub kill", _},
        {"sim hub event 0 42", HasSubstr("failed: the hub control application doesn't run")},
        {"sim hub reject", _},
        {"sim hub start", _},
        {"sim hub  info", HasSubstr(R"({"hub_di":"h"})")},
        {"sim hub event 0 43", HasSubstr("failed: nobody has given a delegate for such an event")},
        {"sim hub pause", _},
        {"sim hub requests", HasSubstr("failed: the hub control application is paused")},
        {"sim hub resume", _},
    });
    runSteps({{"sim hub info", HasSubstr("doesn't run")}}, {"--hub", "off"});
}

TEST(Program, TellsWhatAPluginLeavesBehind) {
    const Finished result = run({"--plugin", HOMELOOM_LEAKY_PLUGIN, "--exec", "stats", "--exec", "scan"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, HasSubstr("The plug-in has reported no load status.\n"));
    EXPECT_THAT(result.output, HasSubstr("left behind: 1 × watch of a setting\n"));
    EXPECT_THAT(result.output, HasSubstr("left behind: 1 × property\n"));
    EXPECT_THAT(result.output, HasSubstr("left behind: an exception that nobody caught: CreatePlugin: too early\n"));
}

TEST(Program, TellsWhyACommandFails) {
    const Finished result = runSteps({
        {"do wahser", HasSubstr("failed: there is no device \"wahser\"; near: washer")},
        {"do", HasSubstr("failed: which device?")},
        {"dance", HasSubstr("failed: there is no command \"dance\"")},
        {"sim dance", HasSubstr("failed: there is no command \"sim dance\"")},
        {"sim sign-uot", HasSubstr("near: sim sign-out")},
        {"sim agent broken",
         HasSubstr("failed: usage: sim agent connected|disconnected|rejected|io-error|updating|NUMBER")},
        {"sim set washer colour=red", HasSubstr("failed: washer has no property \"colour\"; it has:")},
        {"sim set washer remainingMinutes=soon",
         HasSubstr("takes no \"soon\" for x.com.norvane.da.remainingMinutes; it is of type Integer: a whole number")},
        {"sim fail homeloom_client_conect -1", HasSubstr("near: homeloom_client_connect")},
        {"request hl_get_property device_id=washer", HasSubstr("failed: there is no request hl_get_property")},
        {"request hl_execute_scene location_id=home scene_id=none", HasSubstr("failed: the plug-in could not do it")},
        {"request --raw hl_get_property device_id=washer", HasSubstr("failed: no answer came")},
        {"do dryer x y", HasSubstr("failed: usage: do DEVICE [ACTION_URL]")},
    });
    EXPECT_EQ(result.status, 1);
    const Finished held = runSteps({{"sim delay set_remote_attributes 31s", _},
                                    {"do washer", "failed: no answer came within 100 ms"},
                                    {"sim time +31s", HasSubstr("Washer: Washing")},
                                    {"sim hub answers held", _},
                                    {"request hl_get_hub_info", "failed: no answer came within 100 ms"},
                                    {"sim hub release", HasSubstr("hl_get_hub_info")},
                                    {"request --raw hl_get_property", HasSubstr("nothing is under way")}},
                                   {"--limit", "100ms"});
    EXPECT_EQ(held.status, 1);
}

TEST(Program, RefusesWhatItCannotBeginWith) {
    const Folder folder;
    const std::string script = folder.write("script", "sim set washer state=Run\nsim faults\n");
    EXPECT_EQ(run({"--script", script}).status, 0);
    const std::string noJson = folder.write("no.json", "{\n  \"account\": ,\n");
    const std::string wrongType = folder.write("wrong.json", R"({"account": 3})");
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"--home", noJson}, "homeloom-tv: " + noJson + ": line 2, column "},
        {{"--home", wrongType}, "homeloom-tv: " + wrongType + ": account: expected an object, found a number\n"},
        {{"--home", "/nowhere.json"}, "homeloom-tv: /nowhere.json: file: can't be read: No such file"},
        {{"--home", folder.write("empty", "")}, "file: is empty\n"},
        {{"--script", "/nowhere"}, "homeloom-tv: there is no script /nowhere\n"},
        {{"--settings", HOMELOOM_TV_PROGRAM}, "homeloom-tv: " HOMELOOM_TV_PROGRAM " holds no settings: "},
        {{"--settings", "/nowhere/x"}, "/nowhere/x can't be written, so it can't keep the settings\n"},
        {{"--plugin", wrongType}, "homeloom-tv: the plug-in can't be loaded: "},
        {{"--generate", "0"}, "--generate"},
        {{"--settled"}, "--json"},
        {{"--log", "loud"}, "--log"},
        {{"--dance"}, "--dance"}};
    for (const auto& [arguments, message] : cases) {
        const Finished result = run(arguments);
        EXPECT_EQ(result.status, 2) << arguments[0];
        EXPECT_THAT(result.output, HasSubstr(message));
        EXPECT_THAT(result.output, Not(HasSubstr("The plug-in is")));
    }
}

TEST(Program, WritesEachCallAsJson) {
    const Finished result = runCommands({"do washer", "do nothing"}, {"--json"});
    EXPECT_EQ(result.status, 1);
    std::map<std::string, int> calls;
    std::istringstream lines(result.output);
    for (std::string line; std::getline(lines, line);) {
        const JsonValue document = JsonValue::Create(line);
        EXPECT_TRUE(document.isObject()) << line;
        ++calls[document["call"].asString()];
    }
    EXPECT_EQ(calls["load_result"], 1);
    EXPECT_EQ(calls["device_list"], 2) << "one early, one complete; nobody asked for more";
    EXPECT_EQ(calls["result"], 1);
    EXPECT_GE(calls["notify"], 30);
    for (
        const char* const line :
        {R"({"call":"load_result","plugin":"homeloom","status":0})",
         R"({"call":"result","name":"hl_do_main_action","request":1,"properties":{"result":true,"device_id":"washer"}})",
         R"({"command":"do washer","succeeded":true,"output":[]})"}) {
        EXPECT_THAT("\n" + result.output, HasSubstr("\n" + std::string(line) + "\n"));
    }
    EXPECT_THAT(result.output, HasSubstr(R"({"command":"do nothing","succeeded":false)"));
}

TEST(Program, ComparesSettledRuns) {
    const auto transcript = [] {
        const Finished result = runCommands({"do washer", "do hub-plug", "sim set dryer state=Ready", "sim sign-out"},
                                            {"--json", "--settled"});
        EXPECT_EQ(result.status, 0) << result.output;
        // The home as it stood after the start has its own tests.
        return result.output.substr(result.output.find("\n{\"home\":"));
    };
    const auto withoutHome = [](const std::string& text) { return text.substr(text.find('\n', 1)); };
    const std::string first = transcript();
    EXPECT_EQ(withoutHome(first), withoutHome(transcript()));
    EXPECT_THAT(first, HasSubstr(R"("id":"washer","name":"Washer","nick":"Washer","type":"oic.d.washer",)"));
}

TEST(Program, SendsEveryRequestByItsName) {
    std::vector<std::string> commands;
    for (const RequestSpec& spec : requestTable()) {
        commands.push_back("request " + spec.name + " " + spec.example);
    }
    commands.push_back("sim time +31s");
    const Finished result = runCommands(commands, {"--limit", "50ms", "--log", "info"});
    for (const RequestSpec& spec : requestTable()) {
        const std::string road = spec.overtakes ? "prior request : " : "normal request : ";
        EXPECT_THAT(result.output, HasSubstr(road + spec.name + "\n"));
    }
    EXPECT_THAT(result.output, Not(HasSubstr("bad_function_call"))) << "a name that the plug-in doesn't know";
    EXPECT_THAT(result.output, Not(HasSubstr("left behind")));
}

TEST(Program, ReplaysWhatItRecorded) {
    const Folder folder;
    const std::string home = folder.write("home.json", "");
    const std::string tape = folder.write("session.tape", "");
    const auto isReplayed = [&tape](std::vector<std::string> options) {
        options.insert(options.begin(), {"--replay", tape});
        return run(options);
    };
    runCommands({"sim add room parents Attic", "sim save " + home}, {"--hub", "off"});
    ASSERT_EQ(runCommands({"do washer", "device nothing", "stats", "sim sign-out"},
                          {"--home", home, "--hub", "off", "--record", tape})
                  .status,
              1)
        << "a command failed";
    EXPECT_EQ(isReplayed({}).output, "") << "the tape brings home and options with it";
    EXPECT_EQ(isReplayed({}).status, 0);

    std::string text = read(tape);
    EXPECT_THAT(text, HasSubstr(R"({"at":"devices/washer/state_text","is":"Washing · 42 min left"})"));
    EXPECT_THAT(text, HasSubstr(R"({"at":"devices/washer","gone":true})"));
    EXPECT_THAT(text, Not(HasSubstr(" kB"))) << "memory differs from run to run";
    folder.write("session.tape", std::regex_replace(text, std::regex("is\":\"Washing"), "is\":\"Dancing"));
    const Finished differing = isReplayed({});
    EXPECT_EQ(differing.status, 1);
    EXPECT_THAT(differing.output, HasSubstr("do washer: devices/washer/state_text, is\n"
                                            "    before: \"Dancing · 42 min left\"\n"
                                            "    now:    \"Washing · 42 min left\"\n"));
    EXPECT_EQ(isReplayed({"--update"}).status, 0);
    EXPECT_EQ(read(tape), text);

    folder.write("session.tape", R"({"tape":1,"home":"castle","hub":"on","limit_ms":5000,"settings":{}})");
    EXPECT_THAT(isReplayed({}).output, HasSubstr("the tape's head tells no home"));
    folder.write("session.tape", "{\"tape\":1}\n[]");
    EXPECT_THAT(isReplayed({}).output, HasSubstr("session.tape: line 2 is no JSON object"));
    EXPECT_EQ(isReplayed({}).status, 2);
}

TEST(Program, BeginsWithAMadeUpHome) {
    const Steps steps{{"stats", HasSubstr("500 devices, 1 location")}};
    EXPECT_EQ(runSteps(steps, {"--generate", "500"}).status, 0);
}

TEST(Program, SaysThatAHomeIsEmpty) {
    const Folder folder;
    const std::string account = R"({"account": {"login_id": "a", "user_id": "u", "access_token": "t"})";
    const std::string home = folder.write("home", account + R"(, "locations": [{"id": "l", "name": "L"}]})");
    const Finished result =
        runSteps({{"devices", "The home has no devices."},
                  {"scenes", "The home has no scenes."},
                  {"routines", "The home has no routines."},
                  {"models", "The home has no models."},
                  {"scan", "home     0 devices, 1 location, 0 scenes, 0 routines\nNothing has changed."},
                  {"setting memory/velmora/hl_dev_exist", HasSubstr("hl_dev_exist_false")}},
                 {"--home", home});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, HasSubstr("L  (yours)\nThe home has no devices.\nScenes\nThe home has no scenes.\n"));
    EXPECT_THAT(run({"--home", folder.write("nowhere", account + "}"), "--exec", "stats"}).output,
                HasSubstr("homeloom-tv: warning: " + home.substr(0, home.rfind('/'))));
}

}  // namespace
