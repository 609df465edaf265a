#ifndef HOMELOOM_TV_TEXT_H
#define HOMELOOM_TV_TEXT_H

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <desktop/Records.h>

namespace homeloom::tv {

enum class Tone { Plain, Strong, Dim, Good, Bad, Note };

/// How texts look: with colours, and cut to a width, on a terminal; plain and whole anywhere else.
class Style {
public:
    Style() = default;
    Style(bool colours, int width) : _colours(colours), _width(width) {}
    /// What suits standard output. The width follows a terminal's.
    static Style ofStandardOutput();

    bool hasColours() const { return _colours; }
    std::string paint(Tone tone, const std::string& text) const;
    /// Columns; 0 for no limit.
    int width() const;

private:
    static constexpr int kOfTerminal = -1;

    bool _colours = false;
    int _width = 0;
};

/// The text with all that would move a terminal's cursor, or is no UTF-8, written as "\n", "\x1b", "\u202e".
std::string printable(const std::string& text);
/// The same for text of several lines; `keepsColours` lets what paint() makes stand.
std::string printableLines(const std::string& text, bool keepsColours);
/// The text, or its beginning and how long it is if nobody can want to read it.
std::string shortened(const std::string& text);

/// The text with U+FFFD in place of all that is no UTF-8.
std::string validUtf8(const std::string& text);

/// Columns that a text takes on a terminal.
int displayWidth(const std::string& text);
/// The text, cut so that it takes no more columns than that.
std::string clipped(const std::string& text, int width);

/// Rows of cells under each other.
class Table {
public:
    struct Cell {
        Cell(std::string cellText, Tone cellTone = Tone::Plain) : text(std::move(cellText)), tone(cellTone) {}
        Cell(const char* cellText) : text(cellText) {}
        std::string text;
        Tone tone = Tone::Plain;
    };

    /// What becomes of rows that are wider than the terminal. Cut: cells lose their ends, those of the widest columns
    /// first. WrapLast: the last cells go on below, and the first column takes a third of the width at most.
    enum class Fit { Cut, WrapLast };

    explicit Table(int indent = 0, Fit fit = Fit::Cut) : _indent(indent), _fit(fit) {}
    void add(std::vector<Cell> row);
    bool empty() const { return _rows.empty(); }
    /// Takes the widths of another table's columns into account, so that both look like one.
    void alignWith(const Table& other);
    std::vector<std::string> lines(const Style& style) const;

private:
    std::vector<int> widths() const;
    std::vector<int> widthsWithin(int width) const;

    int _indent;
    Fit _fit;
    std::vector<int> _leastWidths;
    std::vector<std::vector<Cell>> _rows;
};

/// "5", "1.5s", "500ms", "2m", "3h", "7d": a bare number means seconds. None for anything else, and for what is longer.
std::optional<std::chrono::milliseconds> parseDuration(const std::string& text,
                                                       std::chrono::milliseconds longest = std::chrono::hours(24));
std::string durationText(std::chrono::milliseconds duration);

/// A whole number that fits an int.
std::optional<int> parseInt(const std::string& text);

/// A value as people read it.
std::string valueText(const desktop::Value& value);

/// "1 room", "2 rooms".
std::string counted(std::size_t count, const std::string& noun);

}  // namespace homeloom::tv

#endif
