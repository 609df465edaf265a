#ifndef HOMELOOM_TV_TAPE_H
#define HOMELOOM_TV_TAPE_H

#include <string>
#include <vector>

#include "Arguments.h"

namespace simulator {
struct Home;
}

namespace homeloom::tv {

/// A recorded session: one JSON document a line.
///
///     {"tape":1,"home":"apartment","settings":{...},...}     what it began with
///     {"call":"notify",...}                                  what the plug-in reported, as --json --settled tells it
///     {"at":"devices/washer","is":{...}}                     where the home on the screen changed; "gone" in place of
///     "is"
///     {"start":"ends"}
///     {"command":"do washer"}                                what was typed
///     {"said":"..."}, {"call":...}, {"at":...}
///     {"end":"do washer","succeeded":true}                   of each command
struct Tape {
    /// All lines, the first one being the head.
    std::vector<std::string> lines;

    std::vector<std::string> commands() const;
};

/// Reads a tape. Throws std::runtime_error with file, line and reason for what is none.
Tape readTape(const std::string& file);
void writeTape(const std::string& file, const Tape& tape);

/// The head of a session: its home, the settings as they are now, and the options that decide what happens in it.
std::string tapeHead(const Arguments& arguments, const simulator::Home& home);

/// Sets the options that the head tells, with the tape's commands. Throws std::runtime_error for a head that can't be
/// understood.
void applyTapeOptions(const Tape& tape, Arguments& arguments);
/// The home's document if the tape holds one; empty if it began with the apartment or a made-up home.
std::string homeOfTape(const Tape& tape);
/// Replaces the settings by those that the head tells.
void applyTapeSettings(const Tape& tape);

}  // namespace homeloom::tv

#endif
