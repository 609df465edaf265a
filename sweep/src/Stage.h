#ifndef HOMELOOM_SWEEP_STAGE_H
#define HOMELOOM_SWEEP_STAGE_H

#include <atomic>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <clock/Turner.h>
#include <simulator/Home.h>

#include "CloudHost.h"
#include "HubHost.h"

typedef struct _GMainLoop GMainLoop;

namespace homeloom::tv {
class Desk;
class Inbox;
}  // namespace homeloom::tv

namespace homeloom::sweep {

struct StageOptions {
    std::string home;    // file; empty: the apartment
    int generate = 0;    // devices of a made-up home; 0: none
    std::string plugin;  // file; empty: the one beside the program
};

/// A desk TV without a console: agent, cloud and hub control application, for plug-ins that are loaded one after the
/// other. On the main thread.
class Stage {
public:
    /// Throws what loading a home throws.
    explicit Stage(const StageOptions& options);
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    /// Loads the plug-in, has `play` work it on a thread of its own while the main loop runs here, and unloads it.
    /// Returns what is left of it, in words.
    std::vector<std::string> perform(const std::function<void(tv::Desk&)>& play);
    /// Has perform() unload the plug-in now, whatever `play` does: its waits end with a tv::CommandError. From any
    /// thread.
    void interrupt();

    /// The agent's home and all settings as at the beginning, for the next one; nobody may be loaded.
    void restore();

private:
    void startHub();
    void prepare();

    // Nobody here waits for a person: time goes on as soon as everything rests.
    const clock::Turner _turner;
    const StageOptions _options;
    const simulator::Home _home;
    std::optional<tv::HubHost> _hub;
    tv::CloudHost _cloud;
    std::atomic<tv::Inbox*> _inbox{nullptr};
    std::atomic<bool> _interrupted{false};
    GMainLoop* _loop = nullptr;
};

/// The home that a stage begins with. Throws what loading a home throws.
simulator::Home homeOf(const StageOptions& options);
/// Waits until the plug-in that was just loaded shows its home, as the home screen does when it opens.
void settleStart(tv::Desk& desk);
/// Runs a command. One with & at its end is sent off, and nobody waits for what it causes. Throws tv::CommandError.
void runScriptLine(tv::Desk& desk, const std::string& line);
/// Threads of this process.
int threadCount();

/// Finds a file of the product, installed or in the sources around a build tree: "homes/apartment.json". Throws
/// std::runtime_error if there is none.
std::string findShared(const std::string& name);

}  // namespace homeloom::sweep

#endif
