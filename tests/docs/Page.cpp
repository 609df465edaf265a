#include "Page.h"

#include <algorithm>
#include <fstream>
#include <regex>
#include <stdexcept>

namespace {

const std::string kOvertaking = "## Requests that overtake the others";

bool startsWith(const std::string& line, const std::string& start) {
    return line.compare(0, start.size(), start) == 0;
}

std::string trimmed(const std::string& text) {
    const auto begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

std::string withoutTicks(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), '`'), text.end());
    return trimmed(text);
}

/// "`key` text, `other` int (what it means)"
DocumentedFields fieldsIn(const std::string& text) {
    static const std::regex field("`([^`]+)` (text|int|bool)( \\(([^)]*)\\))?");
    DocumentedFields fields;
    for (std::sregex_iterator found(text.begin(), text.end(), field), end; found != end; ++found) {
        const std::string meaning = withoutTicks((*found)[4]);
        fields.push_back((*found)[1].str() + " " + (*found)[2].str() + (meaning.empty() ? "" : ": " + meaning));
    }
    return fields;
}

std::vector<std::string> allOf(const std::string& text, const std::regex& name) {
    std::vector<std::string> names;
    for (std::sregex_iterator found(text.begin(), text.end(), name), end; found != end; ++found) {
        names.push_back((*found)[1]);
    }
    return names;
}

std::vector<std::string> namesIn(const std::string& text) {
    static const std::regex name("`([^`]+)`");
    return allOf(text, name);
}

std::vector<std::string> boldNamesIn(const std::string& text) {
    static const std::regex name("\\*\\*`([^`]+)`\\*\\*");
    return allOf(text, name);
}

/// The cells of a row of a table; none for another line.
std::vector<std::string> anyCellsOf(const std::string& line) {
    std::vector<std::string> cells;
    if (startsWith(line, "| ")) {
        for (std::size_t begin = 1, end; (end = line.find('|', begin)) != std::string::npos; begin = end + 1) {
            cells.push_back(trimmed(line.substr(begin, end - begin)));
        }
    }
    return cells;
}

/// None for a table's head either.
std::vector<std::string> cellsOf(const std::string& line) {
    return line.find('`') == std::string::npos ? std::vector<std::string>() : anyCellsOf(line);
}

/// The section of docs/framework.md below that heading, up to the next one of the same or a higher level.
std::vector<std::string> section(const std::string& heading) {
    const std::string level = heading.substr(0, heading.find(' ') + 1);
    return linesBelow("docs/framework.md", heading,
                      [&](const std::string& line) { return startsWith(line, level) || startsWith(line, "## "); });
}

/// The fields of a row, "| `key`, `other` | text, int | what they mean |"; one type may stand for all keys.
DocumentedFields fieldsOfRow(const std::vector<std::string>& cells) {
    static const std::regex word("text|int|bool");
    DocumentedFields fields;
    const std::string meaning = withoutTicks(cells.at(2));
    std::sregex_iterator type(cells[1].begin(), cells[1].end(), word);
    std::string last;
    for (const auto& key : namesIn(cells[0])) {
        if (type != std::sregex_iterator()) {
            last = (*type++)[0];
        }
        fields.push_back(key + " " + last + (meaning.empty() ? "" : ": " + meaning));
    }
    return fields;
}

void append(DocumentedFields& fields, const DocumentedFields& more) {
    fields.insert(fields.end(), more.begin(), more.end());
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
            requests.back().needs = item(lines, i);
        } else if (startsWith(line, "- No answer: ")) {
            requests.back().refusals = withoutTicks(item(lines, i));
        }
    }
    return requests;
}

std::map<std::string, DocumentedNotify> documentedNotifies() {
    std::map<std::string, DocumentedNotify> notifies;
    for (const auto& line : section("## Notifies")) {
        const auto cells = cellsOf(line);
        if (startsWith(line, "###")) {
            break;
        }
        if (cells.size() == 3) {
            for (const auto& name : namesIn(cells[0])) {
                notifies[name] = {withoutTicks(cells[1]), fieldsIn(cells[2])};
            }
        }
    }
    for (const auto& line : section("### `hl_device_state_updated`")) {
        if (const auto cells = cellsOf(line); !cells.empty()) {
            append(notifies["hl_device_state_updated"].fields, fieldsOfRow(cells));
        }
    }
    return notifies;
}

std::map<std::string, DocumentedEndpoint> documentedEndpoints() {
    std::map<std::string, DocumentedEndpoint> endpoints;
    std::string entry;
    for (const auto& line : section("## The device list")) {
        const auto cells = cellsOf(line);
        if (startsWith(line, "A **")) {
            entry = line.substr(4, line.find("**", 4) - 4);
        } else if (cells.size() == 5) {
            endpoints[withoutTicks(cells[0])].names = {withoutTicks(cells[1]), withoutTicks(cells[2]),
                                                       withoutTicks(cells[3])};
        } else if (cells.size() == 3) {
            append(endpoints[entry].fields, fieldsOfRow(cells));
        }
    }
    return endpoints;
}

std::vector<DocumentedExample> documentedExamples(const std::string& file) {
    std::vector<DocumentedExample> examples;
    std::vector<std::string> titles;
    bool isCode = false;
    for (const auto& line : linesBelow(file, "", [](const std::string&) { return false; })) {
        if (startsWith(line, "```")) {
            isCode = line == "```json";
            if (isCode) {
                examples.emplace_back();
                titles.clear();
            }
        } else if (isCode) {
            examples.back().json += line + "\n";
        } else if (const auto cells = anyCellsOf(line); titles.empty()) {
            titles = cells;
        } else if (cells.empty() && !startsWith(line, "|---")) {
            titles = {"the table has ended"};
        } else if (cells.size() == titles.size()) {
            auto& row = examples.back().rows.emplace_back();
            for (std::size_t i = 0; i < cells.size(); ++i) {
                row[titles[i]] = cells[i];
            }
        }
    }
    return examples;
}

std::vector<DocumentedMember> documentedMembers() {
    std::vector<DocumentedMember> members;
    for (const auto& line :
         linesBelow("homes/README.md", "| Member | Holds |", [](const std::string& read) { return read.empty(); })) {
        if (const auto cells = cellsOf(line); cells.size() == 2) {
            members.push_back({namesIn(cells[0]), namesIn(cells[1]), boldNamesIn(line)});
        }
    }
    return members;
}
