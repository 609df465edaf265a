#include "Outcome.h"

#include <glib.h>

#include <algorithm>
#include <map>

#include <fmt/format.h>

namespace homeloom::sweep {

namespace {

constexpr int kCellWidth = 11;
constexpr std::size_t kMostPlaces = 5;

struct Cell {
    int runs = 0;
    int failures = 0;
    int exceptions = 0;

    std::string text() const {
        if (runs == 0) {
            return "";
        }
        return failures > 0 ? fmt::format("{} of {} !", failures, runs)
                            : fmt::format("{}{}", runs, exceptions > 0 ? "*" : "");
    }
};

std::string escaped(const std::string& text) {
    gchar* const xml = g_markup_escape_text(text.c_str(), -1);
    std::string result = xml;
    g_free(xml);
    return result;
}

std::string textOf(const Problem& problem) {
    return fmt::format("{}: {}", nameOf(problem.judge), problem.text);
}

}  // namespace

Outcome outcomeOf(const Place& place, const Verdict& verdict) {
    Outcome outcome;
    outcome.place = place;
    for (const Problem& problem : verdict.problems) {
        const auto& known = knownExceptions();
        const auto found = std::find_if(known.begin(), known.end(), [&](const KnownException& exception) {
            return explains(exception, place, problem);
        });
        if (found == known.end()) {
            outcome.failures.push_back(problem);
        } else {
            outcome.exceptions.push_back(&*found);
        }
    }
    return outcome;
}

std::string tableOf(const std::vector<Outcome>& outcomes) {
    std::map<std::string, std::map<FaultKind, Cell>> rows;
    for (const Outcome& outcome : outcomes) {
        for (const std::string& row : {outcome.place.function, std::string("~all")}) {
            Cell& cell = rows[row][outcome.place.kind];
            ++cell.runs;
            cell.failures += outcome.failures.empty() ? 0 : 1;
            cell.exceptions += outcome.exceptions.empty() ? 0 : 1;
        }
    }
    std::size_t width = 0;
    for (const auto& [function, cells] : rows) {
        width = std::max(width, function.size());
    }
    std::string table = fmt::format("{:{}}", "", width);
    for (const FaultKind kind : allFaultKinds()) {
        table += fmt::format("{:>{}}", nameOf(kind), kCellWidth);
    }
    for (auto& [function, cells] : rows) {
        std::string row = fmt::format("{:{}}", function == "~all" ? "all" : function, width);
        for (const FaultKind kind : allFaultKinds()) {
            row += fmt::format("{:>{}}", cells[kind].text(), kCellWidth);
        }
        table += "\n" + row.substr(0, row.find_last_not_of(' ') + 1);
    }
    return table + "\n";
}

std::string failuresOf(const std::vector<Outcome>& outcomes) {
    std::string text;
    for (const Outcome& outcome : outcomes) {
        if (outcome.failures.empty()) {
            continue;
        }
        text += outcome.place.text() + "\n";
        for (const Problem& problem : outcome.failures) {
            text += "    " + textOf(problem) + "\n";
        }
        text += "    again: " + outcome.command + "\n";
    }
    return text;
}

std::string exceptionsOf(const std::vector<Outcome>& outcomes) {
    std::string text;
    for (const KnownException& exception : knownExceptions()) {
        int met = 0;
        std::vector<std::string> well;
        for (const Outcome& outcome : outcomes) {
            const auto& found = outcome.exceptions;
            if (std::find(found.begin(), found.end(), &exception) != found.end()) {
                ++met;
            } else if (concerns(exception, outcome.place)) {
                well.push_back(outcome.place.text());
            }
        }
        if (met == 0 && well.empty()) {
            continue;
        }
        text += fmt::format("{}#{}, {}: {}\n    met {} times", exception.function, exception.fault,
                            nameOf(exception.judge), exception.reason, met);
        if (!well.empty()) {
            text += fmt::format("; {} came out well all the same:", well.size());
            for (std::size_t i = 0; i < std::min(well.size(), kMostPlaces); ++i) {
                text += " " + well[i];
            }
            text += well.size() > kMostPlaces ? " ..." : "";
        }
        text += "\n";
    }
    return text;
}

std::string junitOf(const std::vector<Outcome>& outcomes) {
    const auto failed = std::count_if(outcomes.begin(), outcomes.end(),
                                      [](const Outcome& outcome) { return !outcome.failures.empty(); });
    std::string xml = fmt::format(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n"
        "<testsuite name=\"homeloom-sweep\" tests=\"{}\" failures=\"{}\">\n",
        outcomes.size(), failed);
    for (const Outcome& outcome : outcomes) {
        const std::string place = outcome.place.text();
        xml += fmt::format("<testcase classname=\"{}\" name=\"{}\" time=\"{:.3f}\">", escaped(outcome.place.function),
                           escaped(place.substr(place.find('#') + 1)),
                           static_cast<double>(outcome.duration.count()) / 1000);
        if (!outcome.failures.empty()) {
            std::string text;
            for (const Problem& problem : outcome.failures) {
                text += textOf(problem) + "\n";
            }
            xml += fmt::format("<failure message=\"{}\">{}again: {}</failure>",
                               escaped(textOf(outcome.failures.front())), escaped(text), escaped(outcome.command));
        }
        xml += "</testcase>\n";
    }
    return xml + "</testsuite>\n</testsuites>\n";
}

}  // namespace homeloom::sweep
