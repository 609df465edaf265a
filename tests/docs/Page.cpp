#include "Page.h"

#include <fstream>
#include <regex>
#include <stdexcept>

namespace {

const std::string kOvertaking = "## Requests that overtake the others";

bool startsWith(const std::string& line, const std::string& start) {
    return line.compare(0, start.size(), start) == 0;
}

/// "`key` text, `other` int"
DocumentedFields fieldsIn(const std::string& text) {
    static const std::regex field("`([^`]+)` (text|int|bool)");
    DocumentedFields fields;
    for (std::sregex_iterator found(text.begin(), text.end(), field), end; found != end; ++found) {
        fields.push_back((*found)[1].str() + " " + (*found)[2].str());
    }
    return fields;
}

std::vector<std::string> namesIn(const std::string& text) {
    static const std::regex name("`([^`]+)`");
    std::vector<std::string> names;
    for (std::sregex_iterator found(text.begin(), text.end(), name), end; found != end; ++found) {
        names.push_back((*found)[1]);
    }
    return names;
}

/// The cells of a row of a table; none for another line.
std::vector<std::string> cellsOf(const std::string& line) {
    std::vector<std::string> cells;
    if (startsWith(line, "| `")) {
        for (std::size_t begin = 1, end; (end = line.find('|', begin)) != std::string::npos; begin = end + 1) {
            cells.push_back(line.substr(begin, end - begin));
        }
    }
    return cells;
}

/// The section of docs/framework.md below that heading, up to the next one of the same or a higher level.
std::vector<std::string> section(const std::string& heading) {
    const std::string level = heading.substr(0, heading.find(' ') + 1);
    return linesBelow("docs/framework.md", heading,
                      [&](const std::string& line) { return startsWith(line, level) || startsWith(line, "## "); });
}

/// The fields of a section's table, "| `key`, `other` | text, int | ..." a row; one type may stand for all keys.
DocumentedFields fieldsOfTable(const std::string& heading) {
    static const std::regex word("text|int|bool");
    DocumentedFields fields;
    for (const auto& line : section(heading)) {
        const auto cells = cellsOf(line);
        if (cells.size() < 2) {
            continue;
        }
        std::sregex_iterator type(cells[1].begin(), cells[1].end(), word);
        std::string last;
        for (const auto& key : namesIn(cells[0])) {
            if (type != std::sregex_iterator()) {
                last = (*type++)[0];
            }
            fields.push_back(key + " " + last);
        }
    }
    return fields;
}

/// A list item with the lines that go on with it: "- Word: ..." gives what follows the word.
std::string item(const std::vector<std::string>& lines, std::size_t& at) {
    std::string text = lines[at].substr(lines[at].find(": ") + 2);
    while (at + 1 < lines.size() && startsWith(lines[at + 1], "  ")) {
        text += " " + lines[++at].substr(2);
    }
    return text;
}

}  // namespace

std::vector<std::string> linesBelow(const std::string& file, const std::string& line,
                                    const std::function<bool(const std::string&)>& isEnd) {
    std::ifstream stream(HOMELOOM_SOURCE_DIR "/" + file);
    std::string read;
    while (std::getline(stream, read) && read != line) {
    }
    std::vector<std::string> lines;
    while (std::getline(stream, read) && !isEnd(read)) {
        lines.push_back(read);
    }
    if (lines.empty()) {
        throw std::runtime_error("no " + line + " in " + file);
    }
    return lines;
}

std::vector<DocumentedRequest> documentedRequests() {
    std::vector<DocumentedRequest> requests;
    bool overtakes = false;
    const auto lines = linesBelow("docs/requests.md", "# Requests", [](const std::string&) { return false; });
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string& line = lines[i];
        if (startsWith(line, "## ")) {
            overtakes = line == kOvertaking;
        } else if (startsWith(line, "### ")) {
            requests.emplace_back();
            requests.back().name = namesIn(line).at(0);
            requests.back().overtakes = overtakes;
        } else if (startsWith(line, "    ") && !requests.empty()) {
            requests.back().example = line.substr(4);
        } else if (startsWith(line, "- Takes: ")) {
            requests.back().arguments = fieldsIn(item(lines, i));
        } else if (startsWith(line, "- Answer: ")) {
            const std::string text = item(lines, i);
            if (startsWith(text, "notify ") || startsWith(text, "result ")) {
                requests.back().answer = text.substr(0, 7) + namesIn(text).at(0);
                requests.back().answerFields = fieldsIn(text);
            }
        } else if (startsWith(line, "- Needs: ")) {
            requests.back().needsNothing = item(lines, i) == "nothing";
        }
    }
    return requests;
}

std::map<std::string, DocumentedFields> documentedNotifies() {
    std::map<std::string, DocumentedFields> notifies;
    for (const auto& line : section("## Notifies")) {
        const auto cells = cellsOf(line);
        if (startsWith(line, "###")) {
            break;
        }
        if (cells.size() == 3) {
            for (const auto& name : namesIn(cells[0])) {
                notifies[name] = fieldsIn(cells[2]);
            }
        }
    }
    notifies["hl_device_state_updated"] = fieldsOfTable("### `hl_device_state_updated`");
    return notifies;
}

DocumentedFields documentedEndpointFields() {
    return fieldsOfTable("## The device list");
}
