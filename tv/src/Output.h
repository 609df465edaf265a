#ifndef HOMELOOM_TV_OUTPUT_H
#define HOMELOOM_TV_OUTPUT_H

#include <memory>
#include <string>

#include "Report.h"
#include "Text.h"

namespace homeloom::tv {

class HomeView;

/// Where everything goes that the program tells. Used by the thread that runs the commands alone.
class Output {
public:
    explicit Output(Style style) : _style(style) {}
    virtual ~Output() = default;

    /// All that the start caused has come in.
    virtual void endStart(const HomeView& home) = 0;
    virtual void beginCommand(const std::string& line) = 0;
    /// `error` is why it failed, empty if it didn't.
    virtual void endCommand(const std::string& error, const HomeView& home) = 0;
    virtual void say(const std::string& line) = 0;
    /// `home` is as the report left it.
    virtual void report(const Report& report, const HomeView& home) = 0;

    void say(const Table& table);
    const Style& style() const { return _style; }
    /// Reports aren't shown for as long as it is muted, where people read.
    virtual void mute(bool muted) { _muted = muted; }
    /// Whether a command's step shall hold all that it caused, and not only what it waited for itself.
    virtual bool wantsWholeSteps() const { return false; }

protected:
    bool isMuted() const { return _muted; }
    void setStyle(Style style) { _style = style; }

private:
    Style _style;
    bool _muted = false;
};

/// For people. `echoes` puts each command before what it says, as transcripts need it.
std::unique_ptr<Output> makeTextOutput(Style style, bool echoes);
/// For programs: one JSON document a line for each report, as it comes, and for each command at its end. If `settled`,
/// what a run reports can be compared with that of another: of the start and of each command it tells what stands at
/// its end, in a fixed order, since the plug-in builds the home on several threads at once.
std::unique_ptr<Output> makeJsonOutput(bool settled);

}  // namespace homeloom::tv

#endif
