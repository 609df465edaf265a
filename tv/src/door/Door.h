#ifndef HOMELOOM_TV_DOOR_DOOR_H
#define HOMELOOM_TV_DOOR_DOOR_H

#include <filesystem>
#include <memory>
#include <string>

#include "door/Gate.h"

namespace homeloom::tv {

class Inbox;
class Output;

/// The way in for programs: HTTP, with the events as they come, commands, the home as it stands, and the screen's page.
///
/// Clients' commands go through the inbox to the thread that runs the commands, and are run one after the other.
class Door {
public:
    struct Options {
        DoorAddress address;
        std::string token;             // empty: none is asked for
        std::filesystem::path web;     // the page's folder; empty: there is none
        std::filesystem::path client;  // the folder of the JavaScript client, which the page uses
        bool consoleFollows = false;   // the console also gets what clients' commands say
    };

    /// Takes the port, and hears what happens from now on; who knocks has to wait for open(). Throws std::runtime_error
    /// when it can't have the port.
    Door(const Options& options, Inbox& inbox, Output& console);
    /// Sends everybody away.
    ~Door();
    Door(const Door&) = delete;
    Door& operator=(const Door&) = delete;

    /// Lets everybody in. Returns the door's URL.
    std::string open();

    /// What commands have to write to: the console's output, overheard.
    Output& output();

private:
    class Impl;
    const std::unique_ptr<Impl> _impl;
};

}  // namespace homeloom::tv

#endif
