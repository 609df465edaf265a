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
    /// What suits standard output.
    static Style ofStandardOutput();

    std::string paint(Tone tone, const std::string& text) const;
    /// Columns; 0 for no limit.
    int width() const { return _width; }

private:
    bool _colours = false;
    int _width = 0;
};

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

    explicit Table(int indent = 0) : _indent(indent) {}
    void add(std::vector<Cell> row) { _rows.push_back(std::move(row)); }
    bool empty() const { return _rows.empty(); }
    /// Takes the widths of another table's columns into account, so that both look like one.
    void alignWith(const Table& other);
    std::vector<std::string> lines(const Style& style) const;

private:
    std::vector<int> widths() const;

    int _indent;
    std::vector<int> _leastWidths;
    std::vector<std::vector<Cell>> _rows;
};

/// "5", "1.5s", "500ms", "2m": a bare number means seconds. None for anything else.
std::optional<std::chrono::milliseconds> parseDuration(const std::string& text);
std::string durationText(std::chrono::milliseconds duration);

/// A whole number that fits an int.
std::optional<int> parseInt(const std::string& text);

/// A value as people read it.
std::string valueText(const desktop::Value& value);

/// "1 room", "2 rooms".
std::string counted(std::size_t count, const std::string& noun);

}  // namespace homeloom::tv

#endif
