#ifndef HOMELOOM_TV_LINEEDITOR_H
#define HOMELOOM_TV_LINEEDITOR_H

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace homeloom::tv {

/// Reads lines from the terminal, with editing, history and completion.
class LineEditor {
public:
    struct Callbacks {
        /// Whole words in place of the last one of the line.
        std::function<std::vector<std::string>(const std::string& line)> complete;
        /// `wakeupFile` is readable: prints what came. The line that is being edited is out of the way meanwhile.
        std::function<void()> wokenUp;
        /// True when the line shall be given up.
        std::function<bool()> isInterrupted;
    };

    /// The history is kept in that file; empty: only as long as the editor lives.
    LineEditor(std::string prompt, std::string historyFile, int wakeupFile, Callbacks callbacks);
    ~LineEditor();
    LineEditor(const LineEditor&) = delete;
    LineEditor& operator=(const LineEditor&) = delete;

    /// The next line; an empty one when it was given up; none at the end of the input.
    std::optional<std::string> read();

private:
    class Impl;
    const std::unique_ptr<Impl> _impl;
};

/// Where a person's history of commands is kept; empty without a home folder. Makes the folder.
std::string historyFile();

}  // namespace homeloom::tv

#endif
