#include "Text.h"

#include <glib.h>
#include <sys/ioctl.h>
#include <unistd.h>
#include <wchar.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <fmt/color.h>
#include <fmt/format.h>

namespace homeloom::tv {

namespace {

constexpr int kColumnGap = 2;

fmt::text_style styleOf(Tone tone) {
    switch (tone) {
        case Tone::Strong:
            return fmt::emphasis::bold;
        case Tone::Dim:
            return fmt::emphasis::faint;
        case Tone::Good:
            return fmt::fg(fmt::terminal_color::green);
        case Tone::Bad:
            return fmt::fg(fmt::terminal_color::red);
        case Tone::Note:
            return fmt::fg(fmt::terminal_color::yellow);
        case Tone::Plain:
            break;
    }
    return {};
}

// The bytes and columns of the character at the start of a text; bytes that are no character count as one column.
std::pair<std::size_t, int> firstCharacter(const char* text, std::size_t size) {
    wchar_t character = 0;
    std::mbstate_t state{};
    const std::size_t bytes = std::mbrtowc(&character, text, size, &state);
    if (bytes == 0 || bytes > size) {
        return {1, 1};
    }
    return {bytes, std::max(0, wcwidth(character))};
}

}  // namespace

Style Style::ofStandardOutput() {
    const char* const kind = std::getenv("TERM");
    if (!isatty(STDOUT_FILENO) || kind == nullptr || std::strcmp(kind, "dumb") == 0) {
        return {};
    }
    winsize size{};
    const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0;
    return {std::getenv("NO_COLOR") == nullptr, known ? size.ws_col : 0};
}

std::string Style::paint(Tone tone, const std::string& text) const {
    if (!_colours || tone == Tone::Plain || text.empty()) {
        return text;
    }
    return fmt::format(styleOf(tone), "{}", text);
}

std::string validUtf8(const std::string& text) {
    const std::unique_ptr<char, decltype(&g_free)> valid(
        g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())), g_free);
    return valid.get();
}

int displayWidth(const std::string& text) {
    int width = 0;
    for (std::size_t at = 0; at < text.size();) {
        const auto [bytes, columns] = firstCharacter(text.data() + at, text.size() - at);
        at += bytes;
        width += columns;
    }
    return width;
}

std::string clipped(const std::string& text, int width) {
    if (displayWidth(text) <= width) {
        return text;
    }
    int used = 1;  // for the ellipsis
    std::size_t at = 0;
    while (at < text.size()) {
        const auto [bytes, columns] = firstCharacter(text.data() + at, text.size() - at);
        if (used + columns > width) {
            break;
        }
        used += columns;
        at += bytes;
    }
    return text.substr(0, at) + "…";
}

std::vector<int> Table::widths() const {
    std::vector<int> widths = _leastWidths;
    for (const auto& row : _rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], displayWidth(row[i].text));
        }
    }
    return widths;
}

void Table::alignWith(const Table& other) {
    const std::vector<int> theirs = other.widths();
    _leastWidths.resize(std::max(_leastWidths.size(), theirs.size()));
    for (std::size_t i = 0; i < theirs.size(); ++i) {
        _leastWidths[i] = std::max(_leastWidths[i], theirs[i]);
    }
}

std::vector<std::string> Table::lines(const Style& style) const {
    const std::vector<int> widths = this->widths();
    std::vector<std::string> lines;
    for (const auto& row : _rows) {
        std::string line(static_cast<std::size_t>(_indent), ' ');
        int column = _indent;
        int gap = 0;  // blanks that are due before the next text
        for (std::size_t i = 0; i < row.size(); ++i) {
            std::string text = row[i].text;
            const int room = style.width() > 0 ? std::max(1, style.width() - column - gap) : 0;
            if (room > 0 && i + 1 == row.size()) {
                text = clipped(text, room);
            }
            const int width = displayWidth(text);
            if (width > 0) {
                line += std::string(static_cast<std::size_t>(gap), ' ') + style.paint(row[i].tone, text);
                column += gap + width;
                gap = 0;
            }
            gap += widths[i] - width + kColumnGap;
        }
        lines.push_back(line);
    }
    return lines;
}

std::optional<std::chrono::milliseconds> parseDuration(const std::string& text) {
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    const std::string unit(end);
    const double factor = unit.empty() || unit == "s" ? 1000 : unit == "ms" ? 1 : unit == "m" ? 60000 : 0;
    constexpr double kLongest = 24.0 * 60 * 60 * 1000;
    if (end == text.c_str() || factor == 0 || !(number >= 0) || number * factor > kLongest) {
        return std::nullopt;
    }
    return std::chrono::milliseconds(static_cast<long long>(number * factor));
}

std::string durationText(std::chrono::milliseconds duration) {
    const long long milliseconds = duration.count();
    if (milliseconds % 1000 != 0 && milliseconds < 10000) {
        return fmt::format("{} ms", milliseconds);
    }
    return fmt::format("{:g} s", static_cast<double>(milliseconds) / 1000);
}

std::optional<int> parseInt(const std::string& text) {
    int value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end) {
        return std::nullopt;
    }
    return value;
}

std::string valueText(const desktop::Value& value) {
    if (const auto* const text = std::get_if<std::string>(&value)) {
        return *text;
    }
    if (const auto* const number = std::get_if<int>(&value)) {
        return std::to_string(*number);
    }
    return std::get<bool>(value) ? "true" : "false";
}

std::string counted(std::size_t count, const std::string& noun) {
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

}  // namespace homeloom::tv
