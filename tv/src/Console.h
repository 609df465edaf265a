#ifndef HOMELOOM_TV_CONSOLE_H
#define HOMELOOM_TV_CONSOLE_H

#include <string>

#include "Arguments.h"

namespace homeloom::tv {

class Desk;
class Door;
class Inbox;

/// Shows the home, then takes commands from where the arguments say: from them, from a script, from a pipe, or from a
/// person at the terminal; and from programs that come through the door.
class Console {
public:
    /// `door` is opened after the start; null: there is none. With one, and nobody at a terminal, it goes on until it
    /// is stopped.
    Console(const Arguments& arguments, Desk& desk, Inbox& inbox, Door* door, std::string title);

    /// Returns whether all commands succeeded; those of a person always do, who has seen what came of them. Runs on a
    /// thread of its own.
    bool run();

    /// Whether a person gives the commands.
    static bool isInteractive(const Arguments& arguments);

private:
    void showStart();
    void openDoor();
    void runArguments();
    void runScript(const std::string& path);
    void runPipe();
    void runTerminal();
    void runLine(const std::string& line);
    void serve();
    void takeInbox();

    const Arguments& _arguments;
    Desk& _desk;
    Inbox& _inbox;
    Door* const _door;
    const std::string _title;
    bool _allSucceeded = true;
};

}  // namespace homeloom::tv

#endif
