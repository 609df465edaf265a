#ifndef HOMELOOM_TV_ARGUMENTS_H
#define HOMELOOM_TV_ARGUMENTS_H

#include <chrono>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <dlog.h>

#include "door/Gate.h"

namespace CLI {
class App;
}

namespace homeloom::tv {

inline constexpr int kExitSuccess = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;

struct Arguments {
    std::string home;    // file; empty: the apartment
    int generate = 0;    // devices of a made-up home; 0: none
    std::string script;  // file; empty: none
    std::vector<std::string> commands;
    bool json = false;
    bool settled = false;
    std::optional<bool> disclaimer;  // none: as it is kept, or accepted
    std::string settings;            // file; empty: none are kept
    enum class Hub { On, Uninstalled, Off };
    Hub hub = Hub::On;
    std::optional<log_priority> log;
    std::string plugin;  // file; empty: the one beside the program
    // What to print instead of running: empty for nothing
    bool catalogue = false;
    std::string schema;
    std::string completion;  // for which shell
    std::string manPage;     // of which name
    std::chrono::milliseconds limit{5000};
    bool isTimeAuto = false;  // whenever the desk rests while a command waits, time goes on to the next deadline
    std::optional<DoorAddress> serve;  // none: no door
    std::string token;                 // empty: none
    std::string record;                // file; empty: nothing is recorded
    std::string replay;                // file; empty: nothing is replayed
    std::string agentTape;             // file that plays the agent; empty: the simulated one
    bool update = false;               // a replay writes the new truth
    bool brief = false;                // a recording leaves out the home with which it begins
};

/// An option of the program: "--hub", "on|uninstalled|off", "Whether ...".
struct OptionSpec {
    std::string name;
    std::string value;  // what follows: FILE, PATH or COMMAND, the words themselves with | between, or another name for
                        // it; empty for none
    std::string description;
};

/// All options but the hidden ones, in the order of --help: of this program, or of any other.
std::vector<OptionSpec> optionsOf(const CLI::App& app);
std::vector<OptionSpec> optionTable();

/// The command line's arguments; or the exit status with which it is all done, its text having been printed.
std::variant<Arguments, int> parseArguments(int argc, char** argv);

}  // namespace homeloom::tv

#endif
