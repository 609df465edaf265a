#ifndef HOMELOOM_TV_DOOR_DOOROUTPUT_H
#define HOMELOOM_TV_DOOR_DOOROUTPUT_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "Output.h"
#include "door/CommandBody.h"

namespace homeloom::tv {

class Desk;
class EventStream;

/// Stands between the commands and the console's output: what a client's command says goes into its answer, and the end
/// of every command, the console's included, becomes an event.
class DoorOutput : public Output {
public:
    /// A console that `followsClients` gets what clients' commands say as well; any other one only what they cause.
    DoorOutput(Output& console, EventStream& events, bool followsClients);

    /// Runs a client's command, and returns the document that answers it.
    std::string run(Desk& desk, const CommandBody& body);
    /// The same on any thread, for a command that can't wait for its turn; none for all others.
    std::optional<std::string> runAtOnce(const CommandBody& body);

    void endStart(const HomeView& home) override;
    void beginCommand(const std::string& line) override;
    void endCommand(const std::string& error, const HomeView& home) override;
    void say(const std::string& line) override;
    void report(const Report& report, const HomeView& home) override;
    void mute(bool muted) override;
    bool wantsWholeSteps() const override { return _console.wantsWholeSteps(); }

private:
    bool reachesConsole() const { return _client == nullptr || _followsClients; }

    Output& _console;
    EventStream& _events;
    const bool _followsClients;
    const CommandBody* _client = nullptr;  // whose command runs; null: the console's, or none
    std::string _line;
    std::vector<std::string> _said;
    std::string _reports;  // documents, with commas between them
    std::size_t _leftOut = 0;
    std::string _answer;
};

}  // namespace homeloom::tv

#endif
