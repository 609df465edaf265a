#include <cstdio>

#include <fmt/format.h>

#include "Output.h"
#include "ReportText.h"

namespace homeloom::tv {

namespace {

class TextOutput : public Output {
public:
    TextOutput(Style style, bool echoes) : Output(style), _echoes(echoes) {}

    void beginCommand(const std::string& line) override {
        if (_echoes) {
            say(style().paint(Tone::Strong, "> " + line));
        }
    }

    void endStart(const HomeView&) override {}

    void endCommand(const std::string& error, const HomeView&) override {
        if (!error.empty()) {
            say(style().paint(Tone::Bad, "failed: " + error));
        }
    }

    void say(const std::string& line) override {
        fmt::print("{}\n", printableLines(line, style().hasColours()));
        std::fflush(stdout);
    }

    void report(const Report& report, const HomeView& home) override {
        if (!isMuted()) {
            say(reportText(report, home, style()));
        }
    }

private:
    const bool _echoes;
};

}  // namespace

void Output::say(const Table& table) {
    for (const std::string& line : table.lines(_style)) {
        say(line);
    }
}

std::unique_ptr<Output> makeTextOutput(Style style, bool echoes) {
    return std::make_unique<TextOutput>(style, echoes);
}

}  // namespace homeloom::tv
