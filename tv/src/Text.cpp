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
#include <numeric>

#include <fmt/color.h>
#include <fmt/format.h>

namespace homeloom::tv {

namespace {

constexpr int kColumnGap = 2;
// Where nothing is cut, columns are padded to no more than this, and cells longer than that are no names any more.
constexpr int kWidestPadding = 60;
constexpr int kLongestCell = 200;
constexpr int kShortened = 40;
constexpr int kLeastColumn = 8;

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

int terminalWidth() {
    winsize size{};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

bool movesCursor(gunichar character) {
    // Line and paragraph ends, and marks that turn the direction of writing.
    return g_unichar_iscntrl(character) || (character >= 0x2028 && character <= 0x202e) ||
           (character >= 0x2066 && character <= 0x2069);
}

std::string escaped(gunichar character) {
    switch (character) {
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        case '\t':
            return "\\t";
        default:
            return character < 0x80 ? fmt::format("\\x{:02x}", character) : fmt::format("\\u{:04x}", character);
    }
}

// The length of a colour at the start of a text; 0 if there is none.
std::size_t colourLength(const std::string& text, std::size_t at) {
    if (text.compare(at, 2, "\033[") != 0) {
        return 0;
    }
    const std::size_t end = text.find_first_not_of("0123456789;", at + 2);
    return end != std::string::npos && text[end] == 'm' ? end + 1 - at : 0;
}

std::string printable(const std::string& text, const char* kept, bool keepsColours) {
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        if (const std::size_t length = keepsColours ? colourLength(text, at) : 0) {
            result.append(text, at, length);
            at += length;
            continue;
        }
        const char* const start = text.data() + at;
        const gunichar character = g_utf8_get_char_validated(start, static_cast<gssize>(text.size() - at));
        const bool isValid = character < 0x110000;
        const auto length = isValid ? static_cast<std::size_t>(g_utf8_next_char(start) - start) : 1;
        if (!isValid) {
            result += fmt::format("\\x{:02x}", static_cast<unsigned char>(*start));
        } else if (movesCursor(character) && (*start == '\0' || std::strchr(kept, *start) == nullptr)) {
            result += escaped(character);
        } else {
            result.append(start, length);
        }
        at += length;
    }
    return result;
}

// The text in lines of that width, broken between words where that is possible.
std::vector<std::string> wrapped(const std::string& text, int width) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < text.size()) {
        int used = 0;
        std::size_t at = start;
        std::size_t blank = start;
        while (at < text.size()) {
            const auto [bytes, columns] = firstCharacter(text.data() + at, text.size() - at);
            if (used + columns > width && at > start) {
                break;
            }
            blank = text[at] == ' ' ? at : blank;
            used += columns;
            at += bytes;
        }
        const bool breaksWord = at < text.size() && text[at] != ' ';
        const std::size_t end = breaksWord && blank > start ? blank : at;
        lines.push_back(text.substr(start, end - start));
        start = end < text.size() && text[end] == ' ' ? end + 1 : end;
    }
    return lines.empty() ? std::vector<std::string>{""} : lines;
}

}  // namespace

Style Style::ofStandardOutput() {
    const char* const kind = std::getenv("TERM");
    if (!isatty(STDOUT_FILENO) || kind == nullptr || std::strcmp(kind, "dumb") == 0) {
        return {};
    }
    return {std::getenv("NO_COLOR") == nullptr, kOfTerminal};
}

int Style::width() const {
    return _width == kOfTerminal ? terminalWidth() : _width;
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

std::string printable(const std::string& text) {
    return printable(text, "", false);
}

std::string printableLines(const std::string& text, bool keepsColours) {
    return printable(text, "\n\t", keepsColours);
}

std::string shortened(const std::string& text) {
    if (displayWidth(text) <= kLongestCell) {
        return text;
    }
    return fmt::format("{} ({} bytes)", clipped(text, kShortened), text.size());
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

void Table::add(std::vector<Cell> row) {
    for (Cell& cell : row) {
        cell.text = printable(cell.text);
    }
    for (std::size_t i = 0; i + 1 < row.size(); ++i) {
        row[i].text = shortened(row[i].text);
    }
    _rows.push_back(std::move(row));
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

std::vector<int> Table::widthsWithin(int width) const {
    std::vector<int> widths = this->widths();
    if (widths.empty()) {
        return widths;
    }
    if (width == 0) {
        for (int& column : widths) {
            column = std::min(column, kWidestPadding);
        }
        return widths;
    }
    const int room = std::max(0, width - _indent - kColumnGap * (static_cast<int>(widths.size()) - 1));
    if (_fit == Fit::WrapLast) {
        widths.front() = std::min(widths.front(), width / 3);
        const int others = std::accumulate(widths.begin(), widths.end() - 1, 0);
        widths.back() = std::max(kLeastColumn, room - others);
        return widths;
    }
    const auto sumUpTo = [&widths](int cap) {
        return std::accumulate(widths.begin(), widths.end(), 0,
                               [cap](int sum, int column) { return sum + std::min(column, cap); });
    };
    int cap = width;
    while (cap > kLeastColumn && sumUpTo(cap) > room) {
        --cap;
    }
    for (int& column : widths) {
        column = std::min(column, cap);
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
    const int screen = style.width();
    const std::vector<int> widths = widthsWithin(screen);
    std::vector<std::string> lines;
    for (const auto& row : _rows) {
        std::string line(static_cast<std::size_t>(_indent), ' ');
        int column = _indent;
        int gap = 0;  // blanks that are due before the next text
        std::vector<std::string> below;
        for (std::size_t i = 0; i < row.size(); ++i) {
            std::string text = row[i].text;
            if (screen > 0 && i + 1 == row.size() && _fit == Fit::WrapLast) {
                below = wrapped(text, widths[i]);
                text = below.front();
            } else if (screen > 0) {
                // The last cell of a short row has the room of those that it lacks.
                text = clipped(text, i + 1 == row.size() ? std::max(1, screen - column - gap) : widths[i]);
            }
            const int width = displayWidth(text);
            if (width > 0) {
                line += std::string(static_cast<std::size_t>(gap), ' ') + style.paint(row[i].tone, text);
                column += gap + width;
                gap = 0;
            }
            gap += std::max(0, widths[i] - width) + kColumnGap;
        }
        lines.push_back(line);
        const int start = _indent + std::accumulate(widths.begin(), widths.end() - 1, 0) +
                          kColumnGap * (static_cast<int>(widths.size()) - 1);
        for (std::size_t i = 1; i < below.size(); ++i) {
            lines.push_back(std::string(static_cast<std::size_t>(start), ' ') + style.paint(row.back().tone, below[i]));
        }
    }
    return lines;
}

std::optional<std::chrono::milliseconds> parseDuration(const std::string& text, std::chrono::milliseconds longest) {
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    const std::string unit(end);
    const double factor = unit.empty() || unit == "s" ? 1000
                          : unit == "ms"              ? 1
                          : unit == "m"               ? 60000
                          : unit == "h"               ? 3600000
                          : unit == "d"               ? 24 * 3600000
                                                      : 0;
    if (end == text.c_str() || factor == 0 || !(number >= 0) ||
        number * factor > static_cast<double>(longest.count())) {
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
