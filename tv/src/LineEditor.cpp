#include "LineEditor.h"

#include <histedit.h>
#include <poll.h>
#include <unistd.h>
#include <wchar.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "Completion.h"
#include "Text.h"

namespace homeloom::tv {

namespace {

constexpr int kHistoryLines = 1000;
// What mbrtowc says of a byte that doesn't end a character, or belongs to none.
constexpr auto kIncomplete = static_cast<std::size_t>(-2);
constexpr auto kNoCharacter = static_cast<std::size_t>(-1);
constexpr char kClearLine[] = "\r\033[K";

std::string commonStart(const std::vector<std::string>& words) {
    std::string start = words.front();
    for (const std::string& word : words) {
        const auto differs = std::mismatch(start.begin(), start.end(), word.begin(), word.end());
        start.erase(differs.first, start.end());
    }
    return start;
}

}  // namespace

class LineEditor::Impl {
public:
    Impl(std::string prompt, std::string historyPath, int wakeupFile, Callbacks callbacks)
        : _prompt(std::move(prompt)),
          _historyPath(std::move(historyPath)),
          _wakeupFile(wakeupFile),
          _callbacks(std::move(callbacks)),
          _history(history_init()),
          _editor(el_init("homeloom-tv", stdin, stdout, stderr)) {
        HistEvent event;
        history(_history, &event, H_SETSIZE, kHistoryLines);
        history(_history, &event, H_SETUNIQUE, 1);
        if (!_historyPath.empty()) {
            history(_history, &event, H_LOAD, _historyPath.c_str());
        }
        el_set(_editor, EL_CLIENTDATA, this);
        el_set(_editor, EL_PROMPT, promptOf);
        el_set(_editor, EL_EDITOR, "emacs");
        el_set(_editor, EL_HIST, history, _history);
        el_set(_editor, EL_GETCFN, readCharacter);
        el_source(_editor, nullptr);
    }

    ~Impl() {
        if (!_historyPath.empty()) {
            HistEvent event;
            history(_history, &event, H_SAVE, _historyPath.c_str());
        }
        el_end(_editor);
        history_end(_history);
    }

    std::optional<std::string> read() {
        _interrupted = false;
        int count = 0;
        const char* const text = el_gets(_editor, &count);
        if (_interrupted) {
            std::puts("^C");
            el_reset(_editor);
            return "";
        }
        if (text == nullptr || count <= 0) {
            std::puts("");
            return std::nullopt;
        }
        std::string line(text, static_cast<std::size_t>(count));
        line.erase(line.find_last_not_of("\r\n") + 1);
        if (line.find_first_not_of(" \t") != std::string::npos) {
            HistEvent event;
            history(_history, &event, H_ENTER, line.c_str());
        }
        return line;
    }

private:
    static Impl& of(EditLine* editor) {
        void* data = nullptr;
        el_get(editor, EL_CLIENTDATA, &data);
        return *static_cast<Impl*>(data);
    }

    static char* promptOf(EditLine* editor) { return of(editor)._prompt.data(); }

    // Waits for the keyboard and for what comes from elsewhere. 1 for a character, 0 for the end.
    static int readCharacter(EditLine* editor, wchar_t* character) {
        Impl& self = of(editor);
        std::mbstate_t state{};
        while (true) {
            pollfd files[] = {{STDIN_FILENO, POLLIN, 0}, {self._wakeupFile, POLLIN, 0}};
            if (poll(files, 2, -1) < 0 && errno != EINTR) {
                return 0;
            }
            if ((files[1].revents & POLLIN) != 0) {
                self.wakeUp();
            }
            if (self._callbacks.isInterrupted()) {
                self._interrupted = true;
                return 0;
            }
            if (files[0].revents == 0) {
                continue;
            }
            char byte = 0;
            if (::read(STDIN_FILENO, &byte, 1) != 1) {
                return 0;
            }
            const std::size_t taken = std::mbrtowc(character, &byte, 1, &state);
            if (taken == kIncomplete) {
                continue;
            }
            if (taken == kNoCharacter) {
                state = {};
            } else if (*character == L'\t') {
                self.completeWord();
            } else {
                return 1;
            }
        }
    }

    void wakeUp() {
        std::fputs(kClearLine, stdout);
        _callbacks.wokenUp();
        std::fflush(stdout);
        el_resize(_editor);
        el_set(_editor, EL_REFRESH);
    }

    // Called from here and not bound to the key: the library never frees the names of functions that are added to it.
    void completeWord() {
        const LineInfo* const info = el_line(_editor);
        const std::string line(info->buffer, info->cursor);
        const std::vector<std::string> words = _callbacks.complete(line);
        if (words.empty()) {
            el_beep(_editor);
            return;
        }
        const std::string begun = lastWord(line);
        std::string more = commonStart(words).substr(begun.size());
        if (words.size() == 1 && words.front().back() != '=') {
            more += ' ';
        }
        if (more.empty()) {
            list(words);
        } else {
            std::fputs(kClearLine, stdout);
            el_insertstr(_editor, more.c_str());
        }
        std::fflush(stdout);
        el_set(_editor, EL_REFRESH);
    }

    static void list(const std::vector<std::string>& words) {
        std::size_t longest = 0;
        for (const std::string& word : words) {
            longest = std::max(longest, word.size());
        }
        const auto width = static_cast<std::size_t>(std::max(1, Style::ofStandardOutput().width()));
        const std::size_t columns = std::max<std::size_t>(1, width / (longest + 2));
        for (std::size_t i = 0; i < words.size(); ++i) {
            std::printf("%s%-*s", i % columns == 0 ? "\n" : "  ", static_cast<int>(longest), words[i].c_str());
        }
        std::puts("");
    }

    std::string _prompt;
    const std::string _historyPath;
    const int _wakeupFile;
    const Callbacks _callbacks;
    History* const _history;
    EditLine* const _editor;
    bool _interrupted = false;
};

LineEditor::LineEditor(std::string prompt, std::string historyFile, int wakeupFile, Callbacks callbacks)
    : _impl(std::make_unique<Impl>(std::move(prompt), std::move(historyFile), wakeupFile, std::move(callbacks))) {}

LineEditor::~LineEditor() = default;

std::optional<std::string> LineEditor::read() {
    return _impl->read();
}

std::string historyFile() {
    const char* const state = std::getenv("XDG_STATE_HOME");
    const char* const home = std::getenv("HOME");
    if (state == nullptr && home == nullptr) {
        return "";
    }
    const std::filesystem::path folder =
        state != nullptr ? std::filesystem::path(state) : std::filesystem::path(home) / ".local" / "state";
    std::error_code error;
    std::filesystem::create_directories(folder / "homeloom", error);
    return error ? "" : (folder / "homeloom" / "history").string();
}

}  // namespace homeloom::tv
