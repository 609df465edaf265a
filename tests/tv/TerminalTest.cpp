#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <string>

namespace {

/// The program on a terminal, with somebody at the keyboard.
class Terminal {
public:
    Terminal() {
        winsize size{};
        size.ws_row = 60;
        size.ws_col = 200;
        _process = forkpty(&_file, nullptr, nullptr, &size);
        if (_process == 0) {
            setenv("TERM", "xterm", 1);
            unsetenv("HOME");  // nobody's history
            unsetenv("XDG_STATE_HOME");
            unsetenv("NO_COLOR");
            execl(HOMELOOM_TV_PROGRAM, "homeloom-tv", nullptr);
            _exit(127);
        }
    }
    ~Terminal() { close(_file); }

    void type(const std::string& keys) {
        EXPECT_EQ(write(_file, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
    }

    /// Reads until the text has come; what follows it is kept for the next call. False when it doesn't come.
    bool sees(const std::string& text) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (true) {
            const std::size_t at = _unread.find(text);
            if (at != std::string::npos) {
                _unread.erase(0, at + text.size());
                return true;
            }
            pollfd file{_file, POLLIN, 0};
            char bytes[4096];
            if (std::chrono::steady_clock::now() > end || poll(&file, 1, 1000) < 0) {
                ADD_FAILURE() << "\"" << text << "\" didn't come; there was: " << _unread;
                return false;
            }
            const ssize_t count = file.revents != 0 ? read(_file, bytes, sizeof bytes) : 0;
            _unread.append(bytes, count > 0 ? static_cast<std::size_t>(count) : 0);
        }
    }

    int exitStatus() {
        int status = -1;
        waitpid(_process, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    int _file = -1;
    pid_t _process = -1;
    std::string _unread;
};

TEST(Terminal, EditsCompletesAndShowsWhatComesAboveThePrompt) {
    Terminal terminal;
    ASSERT_TRUE(terminal.sees("\033[1mHome\033[0m")) << "colours";
    ASSERT_TRUE(terminal.sees("homeloom> "));
    terminal.type("sim se\tbedside-b\tbutton=pushed\n");
    ASSERT_TRUE(terminal.sees("Bedside Button: Pressed (on)"));
    ASSERT_TRUE(terminal.sees("homeloom> "));
    terminal.type("do wash");
    ASSERT_TRUE(terminal.sees("Bedside Button: Ready (off)")) << "while a line is being written";
    ASSERT_TRUE(terminal.sees("homeloom> do wash")) << "the line is back";
    terminal.type("er\n");
    ASSERT_TRUE(terminal.sees("Washer: Washing"));
    ASSERT_TRUE(terminal.sees("homeloom> "));
    terminal.type("request hl_cr\t\t");
    ASSERT_TRUE(terminal.sees("hl_create_favorite"));
    terminal.type("\003");
    ASSERT_TRUE(terminal.sees("^C\r\nhomeloom> "));
    terminal.type("\033[A\n");  // the line before
    ASSERT_TRUE(terminal.sees("Washer: Paused"));
    terminal.type("watch 60\n");
    ASSERT_TRUE(terminal.sees("watch 60\r\n"));
    terminal.type("\003");
    ASSERT_TRUE(terminal.sees("failed: interrupted"));
    terminal.type("quit\n");
    EXPECT_EQ(terminal.exitStatus(), 0);
}

}  // namespace
