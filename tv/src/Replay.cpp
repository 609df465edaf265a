#include "Replay.h"

#include <map>
#include <utility>

#include <VMFramework/JsonValue.h>
#include <fmt/format.h>

#include "Differences.h"

namespace homeloom::tv {

namespace {

using VMFramework::json::JsonValue;

/// What stands between two ends: of the start, or of one command.
struct Block {
    std::string title;
    std::vector<std::string> lines;
};

std::vector<Block> blocksOf(const Tape& tape) {
    std::vector<Block> blocks{{"the start", {}}};
    for (std::size_t i = 1; i < tape.lines.size(); ++i) {
        const JsonValue line = JsonValue::Create(tape.lines[i]);
        if (line["command"].isString()) {
            blocks.push_back({line["command"].asString(), {}});
        }
        blocks.back().lines.push_back(tape.lines[i]);
    }
    return blocks;
}

/// What a line is about, to find its like on the other tape.
std::string subjectOf(const JsonValue& line) {
    const auto text = [&line](const char* name) { return line[name].isString() ? line[name].asString() : ""; };
    if (line["at"].isString()) {
        return text("at");
    }
    if (line["call"].isString()) {
        const JsonValue device = line["properties"]["device_id"];
        return fmt::format("{}{}{}", line["name"].isString() ? text("name") : text("call"),
                           device.isString() ? " of " : "", device.isString() ? device.asString() : "");
    }
    for (const char* name : {"said", "failed", "end", "command", "start"}) {
        if (line[name].isString()) {
            return name;
        }
    }
    return "a line";
}

/// The block's lines by their subjects, which a count tells apart.
std::map<std::string, JsonValue> bySubject(const Block& block) {
    std::map<std::string, JsonValue> lines;
    std::map<std::string, int> counts;
    for (const std::string& text : block.lines) {
        const JsonValue line = JsonValue::Create(text);
        const std::string subject = subjectOf(line);
        const int count = ++counts[subject];
        lines.emplace(count == 1 ? subject : fmt::format("{} ({})", subject, count), line);
    }
    return lines;
}

// The one member that a reader wants to see of a line that is only on one side.
std::string contentOf(const JsonValue& line) {
    for (const char* name : {"is", "said", "failed", "properties"}) {
        if (!line[name].isNull()) {
            return line[name].toString();
        }
    }
    return line["gone"].isNull() ? line.toString() : "gone";
}

void compareBlocks(const Block& recorded, const Block& replayed, std::vector<std::string>& found) {
    const auto before = bySubject(recorded);
    const auto after = bySubject(replayed);
    const auto tell = [&](const std::string& subject, const std::string& was, const std::string& is) {
        found.push_back(fmt::format("{}: {}\n    before: {}\n    now:    {}", recorded.title, subject, was, is));
    };
    for (const auto& [subject, line] : before) {
        const auto other = after.find(subject);
        if (other == after.end()) {
            tell(subject, contentOf(line), "nothing");
            continue;
        }
        for (const Difference& difference : differences(line, other->second)) {
            tell(difference.place.empty() ? subject : fmt::format("{}, {}", subject, difference.place),
                 difference.before.value_or("nothing"), difference.after.value_or("nothing"));
        }
    }
    for (const auto& [subject, line] : after) {
        if (before.count(subject) == 0) {
            tell(subject, "nothing", contentOf(line));
        }
    }
    if (found.empty()) {
        found.push_back(fmt::format("{}: the same lines stand in another order", recorded.title));
    }
}

}  // namespace

std::vector<std::string> tapeDifferences(const Tape& recorded, const Tape& replayed) {
    std::vector<std::string> found;
    if (recorded.lines.front() != replayed.lines.front()) {
        for (const Difference& difference :
             differences(JsonValue::Create(recorded.lines.front()), JsonValue::Create(replayed.lines.front()))) {
            found.push_back(fmt::format("the head: {}\n    before: {}\n    now:    {}", difference.place,
                                        difference.before.value_or("nothing"), difference.after.value_or("nothing")));
        }
    }
    const std::vector<Block> before = blocksOf(recorded);
    const std::vector<Block> after = blocksOf(replayed);
    for (std::size_t i = 0; i < before.size() && i < after.size(); ++i) {
        if (before[i].lines != after[i].lines) {
            std::vector<std::string> differing;
            compareBlocks(before[i], after[i], differing);
            found.insert(found.end(), differing.begin(), differing.end());
        }
    }
    if (before.size() != after.size()) {
        found.push_back(fmt::format("{} commands were recorded, {} ran", before.size() - 1, after.size() - 1));
    }
    return found;
}

}  // namespace homeloom::tv
