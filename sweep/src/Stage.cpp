#include "Stage.h"

#include <dlog.h>
#include <glib.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include <desktop/Framework.h>
#include <desktop/Guard.h>
#include <desktop/Settings.h>
#include <simulator/Agent.h>
#include <simulator/HomeLoader.h>

#include "Command.h"
#include "Desk.h"
#include "DeskSettings.h"
#include "Inbox.h"
#include "Output.h"
#include "PluginHost.h"

namespace homeloom::sweep {

namespace {

namespace fs = std::filesystem;

constexpr std::chrono::seconds kStartLimit{120};
constexpr std::chrono::seconds kCommandLimit{5};

fs::path programPath() {
    return fs::read_symlink("/proc/self/exe");
}

/// Nobody reads along.
class Silence : public tv::Output {
public:
    Silence() : Output(tv::Style()) {}
    void endStart(const tv::HomeView&) override {}
    void beginCommand(const std::string&) override {}
    void endCommand(const std::string&, const tv::HomeView&) override {}
    void say(const std::string&) override {}
    void report(const tv::Report&, const tv::HomeView&) override {}
};

gboolean quitLoop(gpointer loop) {
    g_main_loop_quit(static_cast<GMainLoop*>(loop));
    return G_SOURCE_REMOVE;
}

}  // namespace

simulator::Home homeOf(const StageOptions& options) {
    if (options.generate > 0) {
        return simulator::generateHome(options.generate);
    }
    return simulator::loadHome(options.home.empty() ? findShared("homes/apartment.json") : options.home);
}

std::string findShared(const std::string& name) {
    const fs::path program = programPath();
    for (auto folder = program.parent_path(); folder != folder.parent_path(); folder = folder.parent_path()) {
        for (const auto& place : {folder / name, folder / "share" / "homeloom" / name}) {
            if (fs::exists(place)) {
                return place;
            }
        }
    }
    throw std::runtime_error(name + " can't be found");
}

Stage::Stage(const StageOptions& options) : _options(options), _home(homeOf(options)) {
    startHub();
    prepare();
}

void Stage::startHub() {
    _hub.emplace(true);
    _hub->identify(_home);
    _hub->start();
}

void Stage::prepare() {
    tv::applyDeskSettings(_home.account, "", std::nullopt);
    simulator::Agent::instance().load(_home);
}

void Stage::restore() {
    _hub.reset();
    simulator::Agent::instance().reset();
    desktop::settings::reset();
    desktop::forgetPluginExceptions();
    startHub();
    prepare();
}

std::vector<std::string> Stage::perform(const std::function<void(tv::Desk&)>& play) {
    tv::Inbox inbox;
    Silence silence;
    tv::Desk desk(inbox, silence, kCommandLimit);
    tv::PluginHost plugin(_options.plugin.empty() ? tv::findPlugin(programPath()) : fs::path(_options.plugin));
    _loop = g_main_loop_new(nullptr, FALSE);
    _interrupted = false;
    _inbox = &inbox;
    plugin.start();
    std::thread player([&] {
        play(desk);
        g_idle_add(quitLoop, _loop);
    });
    g_main_loop_run(_loop);
    std::vector<std::string> left = plugin.unload();
    player.join();
    _inbox = nullptr;
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
        // What was to end the loop may still be waiting there.
    }
    g_main_loop_unref(_loop);
    return left;
}

void Stage::interrupt() {
    tv::Inbox* const inbox = _inbox;
    if (inbox != nullptr && !_interrupted.exchange(true)) {
        inbox->stop();
        g_idle_add(quitLoop, _loop);
    }
}

void settleStart(tv::Desk& desk) {
    desk.settle(kStartLimit);
    if (desk.home().isKnown()) {
        desktop::framework::requestDeviceList();
        desk.settle(kStartLimit);
    }
}

void runScriptLine(tv::Desk& desk, const std::string& line) {
    dlog_print(DLOG_INFO, "HOMELOOM_SWEEP", "> %s", line.c_str());
    const bool waits = line.size() < 2 || line.compare(line.size() - 2, 2, " &") != 0;
    desk.setLimit(waits ? kCommandLimit : std::chrono::seconds(0));
    tv::runCommand(desk, waits ? line : line.substr(0, line.size() - 2));
}

int threadCount() {
    return static_cast<int>(std::distance(fs::directory_iterator("/proc/self/task"), fs::directory_iterator()));
}

}  // namespace homeloom::sweep
