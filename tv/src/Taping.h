#ifndef HOMELOOM_TV_TAPING_H
#define HOMELOOM_TV_TAPING_H

#include <fstream>
#include <memory>
#include <optional>

#include "Arguments.h"
#include "Tape.h"

namespace simulator {
struct Home;
}

namespace homeloom::tv {

class Output;
class Recorder;

/// What --record and --replay make of a session. Does nothing without them.
class Taping {
public:
    /// Reads the tape to replay, and sets the options and commands that it tells. Throws std::runtime_error.
    explicit Taping(Arguments& arguments);
    ~Taping();
    Taping(const Taping&) = delete;
    Taping& operator=(const Taping&) = delete;

    bool isReplay() const { return _recorded.has_value(); }
    /// The home's document that the tape to replay holds; empty if none does.
    std::string homeDocument() const;
    /// Sets the settings that the tape to replay began with. To be called after the desk's own.
    void applySettings() const;

    /// Puts itself before `behind`, if somebody records or replays. To be called with the settings and the home as the
    /// session begins with them. Throws std::runtime_error.
    std::unique_ptr<Output> tap(std::unique_ptr<Output> behind, const simulator::Home& home);
    /// The session has ended, and the desk is still there. Returns whether it was as it should be: of a replay, as the
    /// tape has it, and what differs is printed; of others, `succeeded`.
    bool end(bool succeeded);

private:
    bool judge() const;

    const Arguments& _arguments;
    std::optional<Tape> _recorded;  // to be replayed
    Tape _replayed;
    std::ofstream _file;  // that is being recorded to
    Recorder* _recorder = nullptr;
};

}  // namespace homeloom::tv

#endif
