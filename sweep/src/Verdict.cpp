#include "Verdict.h"

#include <stdexcept>

namespace homeloom::sweep {

namespace {

using VMFramework::json::JsonValue;

Judge judgeNamed(const std::string& name) {
    for (const Judge judge : {Judge::Crash, Judge::Time, Judge::Exception, Judge::Leftovers, Judge::Answers,
                              Judge::Healing, Judge::Recovery, Judge::Commands}) {
        if (nameOf(judge) == name) {
            return judge;
        }
    }
    throw std::runtime_error("no judge: " + name);
}

}  // namespace

const char* nameOf(Judge judge) {
    switch (judge) {
        case Judge::Crash:
            return "crash";
        case Judge::Time:
            return "time";
        case Judge::Exception:
            return "exception";
        case Judge::Leftovers:
            return "leftovers";
        case Judge::Answers:
            return "answers";
        case Judge::Healing:
            return "healing";
        case Judge::Recovery:
            return "recovery";
        case Judge::Commands:
            return "commands";
    }
    return "";
}

std::string Verdict::toJson() const {
    JsonValue list = JsonValue::CreateArray();
    for (const Problem& problem : problems) {
        JsonValue entry = JsonValue::CreateObject();
        entry.set("judge", nameOf(problem.judge));
        entry.set("text", problem.text);
        list.append(entry);
    }
    JsonValue json = JsonValue::CreateObject();
    json.set("problems", list);
    json.set("census", sweep::toJson(census));
    json.set("calls", calls);
    json.set("requests", requests);
    json.set("home", home);
    return json.toString();
}

Verdict Verdict::fromJson(const std::string& line) {
    const JsonValue json = JsonValue::Create(line);
    if (!json.isObject()) {
        throw std::runtime_error("no verdict: " + line);
    }
    Verdict verdict;
    const JsonValue list = json["problems"];
    for (std::size_t i = 0; i < list.size(); ++i) {
        verdict.problems.push_back({judgeNamed(list[i]["judge"].asString()), list[i]["text"].asString()});
    }
    verdict.census = censusFromJson(json["census"]);
    verdict.calls = json["calls"].asInt();
    verdict.requests = json["requests"].asInt();
    verdict.home = json["home"].asString();
    return verdict;
}

}  // namespace homeloom::sweep
