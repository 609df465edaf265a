#ifndef HOMELOOM_TV_RECORDER_H
#define HOMELOOM_TV_RECORDER_H

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <VMFramework/JsonValue.h>

#include "Output.h"
#include "Settled.h"

namespace homeloom::tv {

/// Writes down a session as the lines of a tape, and passes everything on to the output behind it.
///
/// What is reported while no command runs was waited for by somebody: the tape gets a "watch" of that time, so that a
/// replay waits as well.
class Recorder : public Output {
public:
    using Write = std::function<void(const std::string& line)>;

    /// `write` is told each line as soon as it is known. If `brief`, the home with which the session begins is not
    /// written, only what changes from there on. `behind` may be null.
    Recorder(Write write, bool brief, std::unique_ptr<Output> behind);

    void endStart(const HomeView& home) override;
    void beginCommand(const std::string& line) override;
    void endCommand(const std::string& error, const HomeView& home) override;
    void say(const std::string& line) override;
    void report(const Report& report, const HomeView& home) override;
    void mute(bool muted) override;
    bool wantsWholeSteps() const override { return true; }

    /// The session ends: what was still reported is written. The desk is still there.
    void end();

private:
    using Clock = std::chrono::steady_clock;

    void line(const std::string& text);
    void writeStep(const HomeView& home);
    void writeWaiting();
    void writeEnd(const std::string& command, const std::string& error, const HomeView& home);

    const Write _write;
    const bool _brief;
    const std::unique_ptr<Output> _behind;
    std::string _command;             // that runs; empty: none
    const HomeView* _view = nullptr;  // the desk's; null until the start has ended
    Clock::time_point _quietSince;
    SettledStep _step;
    VMFramework::json::JsonValue _home;  // as it was written last
};

}  // namespace homeloom::tv

#endif
