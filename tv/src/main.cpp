#include <glib-unix.h>
#include <glib.h>
#include <langinfo.h>

#include <clocale>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <thread>
#include <variant>

#include <clock/Clock.h>
#include <clock/Turner.h>
#include <desktop/Log.h>
#include <fmt/format.h>
#include <simulator/Agent.h>
#include <simulator/HomeLoader.h>

#include "Arguments.h"
#include "Catalogue.h"
#include "CloudHost.h"
#include "Console.h"
#include "Desk.h"
#include "DeskSettings.h"
#include "HubHost.h"
#include "Inbox.h"
#include "ManPages.h"
#include "Output.h"
#include "PluginHost.h"
#include "Schemas.h"
#include "ShellCompletion.h"
#include "Taping.h"
#include "agent/AgentTape.h"
#include "door/Door.h"

namespace {

using namespace homeloom::tv;

// The texts of a home are UTF-8. Numbers stay as programs write them.
void useUtf8() {
    std::setlocale(LC_CTYPE, "");
    if (std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0) {
        std::setlocale(LC_CTYPE, "C.UTF-8");
    }
}

std::filesystem::path programPath() {
    return std::filesystem::read_symlink("/proc/self/exe");
}

// Installed, or in the sources around a build tree; empty if it's in neither.
std::filesystem::path findShared(const std::filesystem::path& program, const std::filesystem::path& name) {
    for (auto folder = program.parent_path(); folder != folder.parent_path(); folder = folder.parent_path()) {
        for (const auto& place : {folder / name, folder / "share" / "homeloom" / name}) {
            if (std::filesystem::exists(place)) {
                return place;
            }
        }
    }
    return {};
}

std::filesystem::path findApartment() {
    const auto file = findShared(programPath(), std::filesystem::path("homes") / "apartment.json");
    if (file.empty()) {
        throw std::runtime_error("the apartment's document can't be found; --home names a home");
    }
    return file;
}

struct ChosenHome {
    simulator::Home home;
    std::string title;
};

ChosenHome chooseHome(const Arguments& arguments, const std::string& document) {
    if (!document.empty()) {
        return {simulator::parseHome(document, arguments.replay), arguments.replay};
    }
    if (arguments.generate > 0) {
        return {simulator::generateHome(arguments.generate), fmt::format("A home of {} devices", arguments.generate)};
    }
    const std::string file = arguments.home.empty() ? findApartment().string() : arguments.home;
    std::vector<simulator::HomeMistake> warnings;
    ChosenHome chosen{simulator::loadHome(file, &warnings), std::filesystem::path(file).filename().string()};
    for (const auto& warning : warnings) {
        fmt::print(stderr, "homeloom-tv: warning: {}: {}: {}\n", warning.file, warning.place, warning.reason);
    }
    return chosen;
}

gboolean onInterrupt(gpointer inbox) {
    static_cast<Inbox*>(inbox)->interrupt();
    return G_SOURCE_CONTINUE;
}

gboolean onTerminate(gpointer inbox) {
    static_cast<Inbox*>(inbox)->stop();
    return G_SOURCE_CONTINUE;
}

gboolean onConsoleEnd(gpointer loop) {
    g_main_loop_quit(static_cast<GMainLoop*>(loop));
    return G_SOURCE_REMOVE;
}

// The console has a thread of its own, so that timers and settings go on while a command waits.
bool runConsole(Console& console, Inbox& inbox) {
    GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
    const guint sources[] = {g_unix_signal_add(SIGINT, onInterrupt, &inbox),
                             g_unix_signal_add(SIGTERM, onTerminate, &inbox),
                             g_unix_signal_add(SIGHUP, onTerminate, &inbox)};
    bool succeeded = false;
    std::thread thread([&] {
        succeeded = console.run();
        g_idle_add(onConsoleEnd, loop);
    });
    g_main_loop_run(loop);
    thread.join();
    for (const guint source : sources) {
        g_source_remove(source);
    }
    g_main_loop_unref(loop);
    return succeeded;
}

std::unique_ptr<Door> makeDoor(const Arguments& arguments, Inbox& inbox, Output& out) {
    if (!arguments.serve) {
        return nullptr;
    }
    const auto page = findShared(programPath(), std::filesystem::path("web") / "index.html");
    auto client = findShared(programPath(), std::filesystem::path("clients") / "js" / "homeloom.js");
    if (client.empty()) {
        client = findShared(programPath(), std::filesystem::path("js") / "homeloom.js");  // installed
    }
    return std::make_unique<Door>(
        Door::Options{*arguments.serve, arguments.token, page.parent_path(), client.parent_path(), arguments.json},
        inbox, out);
}

// The clock that nobody but the desk turns. While commands run, each has it turned itself; between them only what waits
// for a person goes on.
class DeskClock {
public:
    explicit DeskClock(bool isAuto) {
        if (isAuto) {
            homeloom::clock::stand();
        }
    }
    // What the program ends with goes by the machine's time.
    ~DeskClock() { homeloom::clock::run(); }
    DeskClock(const DeskClock&) = delete;
    DeskClock& operator=(const DeskClock&) = delete;

    void turn() {
        if (homeloom::clock::isStanding()) {
            _turner.emplace();
        }
    }
    void leaveToCommands() { _turner.reset(); }

private:
    std::optional<homeloom::clock::Turner> _turner;
};

// The simulated cloud is to know the token that the tape's agent gives out.
bool playAgent(const std::string& file, simulator::Account& account) {
    AgentTape tape;
    try {
        tape = readAgentTape(file);
    } catch (const std::exception& e) {
        fmt::print(stderr, "homeloom-tv: {}\n", e.what());
        return false;
    }
    if (const std::string token = accessTokenOf(tape); !token.empty()) {
        account.accessToken = token;
    }
    playAgentTape(tape);
    return true;
}

void tellOfAgentTape() {
    const AgentTapeState state = agentTapeState();
    for (const std::string& call : state.missing) {
        fmt::print(stderr, "homeloom-tv: the tape has no {}\n", call);
    }
    if (state.openEvents > 0) {
        fmt::print(stderr,
                   "homeloom-tv: {} of {} calls that change something were made, and {} events of the tape are left\n",
                   state.madeCalls, state.calls, state.openEvents);
    }
    if (!state.waitsFor.empty()) {
        fmt::print(stderr, "homeloom-tv: the next one waits for {}\n", state.waitsFor);
    }
}

int run(Arguments arguments) {
    Taping taping(arguments);
    DeskClock deskClock(arguments.isTimeAuto);
    deskClock.turn();
    std::optional<HubHost> hub;
    if (arguments.hub != Arguments::Hub::Off) {
        hub.emplace(arguments.hub == Arguments::Hub::On);
    }
    ChosenHome chosen = chooseHome(arguments, taping.homeDocument());
    if (!arguments.script.empty() && !std::filesystem::is_regular_file(arguments.script)) {
        throw std::runtime_error(fmt::format("there is no script {}", arguments.script));
    }
    if (arguments.log) {
        homeloom::desktop::log::toStderr(*arguments.log);
    }
    if (!arguments.agentTape.empty() && !playAgent(arguments.agentTape, chosen.home.account)) {
        return kExitFailure;
    }
    PluginHost plugin(arguments.plugin.empty() ? findPlugin(programPath()) : std::filesystem::path(arguments.plugin));
    applyDeskSettings(chosen.home.account, arguments.settings, arguments.disclaimer);
    taping.applySettings();
    if (hub) {
        hub->identify(chosen.home);
    }
    const auto out =
        taping.tap(arguments.json ? makeJsonOutput(arguments.settled)
                                  : makeTextOutput(Style::ofStandardOutput(), !Console::isInteractive(arguments)),
                   chosen.home);
    simulator::Agent::instance().load(std::move(chosen.home));
    const CloudHost cloud;

    Inbox inbox;
    auto door = makeDoor(arguments, inbox, *out);
    Desk desk(inbox, door ? door->output() : *out, arguments.limit);
    Console console(arguments, desk, inbox, door.get(), fmt::format("HomeLoom {}, {}", HOMELOOM_VERSION, chosen.title));
    if (hub) {
        hub->start();
    }
    plugin.start();
    deskClock.leaveToCommands();
    const bool succeeded = taping.end(runConsole(console, inbox));
    deskClock.turn();
    door.reset();
    // Nobody tells a driver's verdict any more, and the plug-in may wait for one.
    simulator::Agent::instance().removeDrivers();

    tellOfAgentTape();
    const std::vector<std::string> left = plugin.unload();
    for (const std::string& thing : left) {
        fmt::print(stderr, "homeloom-tv: the plug-in left behind: {}\n", thing);
    }
    return succeeded && left.empty() ? kExitSuccess : kExitFailure;
}

}  // namespace

int main(int argc, char** argv) {
    useUtf8();
    const auto parsed = parseArguments(argc, argv);
    if (const int* const status = std::get_if<int>(&parsed)) {
        return *status;
    }
    try {
        const auto& arguments = std::get<Arguments>(parsed);
        if (arguments.catalogue) {
            fmt::print("{}\n", catalogueJson());
            return kExitSuccess;
        }
        if (!arguments.completion.empty()) {
            fmt::print("{}", shellCompletion(arguments.completion));
            return kExitSuccess;
        }
        if (!arguments.manPage.empty()) {
            fmt::print("{}", manPage(arguments.manPage));
            return kExitSuccess;
        }
        if (!arguments.schema.empty()) {
            fmt::print("{}\n", schemaJson(arguments.schema));
            return kExitSuccess;
        }
        return run(arguments);
    } catch (const std::exception& e) {
        fmt::print(stderr, "homeloom-tv: {}\n", e.what());
        return kExitUsage;
    }
}
