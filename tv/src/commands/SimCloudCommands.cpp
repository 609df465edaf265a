#include <algorithm>
#include <map>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <simulator/Cloud.h>

#include "CloudHost.h"
#include "Command.h"
#include "CommandError.h"
#include "Desk.h"
#include "Output.h"
#include "Text.h"

namespace homeloom::tv {

namespace {

using simulator::Cloud;
using simulator::CloudFault;

Cloud& cloud() {
    return Cloud::instance();
}

std::string endpointNamed(const std::string& name) {
    const auto& names = Cloud::endpointNames();
    if (!std::binary_search(names.begin(), names.end(), name)) {
        throw CommandError(fmt::format("the cloud has no endpoint {}; there are {}", name, fmt::join(names, ", ")));
    }
    return name;
}

std::optional<int> numberAt(const Words& words, std::size_t at) {
    return words.size() > at ? parseInt(words[at]) : std::nullopt;
}

// Faults that take something besides the endpoint: the code, the text or the time is the word behind it.
CloudFault faultWithWord(const Words& words) {
    if (words.size() < 3) {
        throw UsageError();
    }
    if (words[0] == "answer") {
        return CloudFault::body(words[2]);
    }
    if (words[0] == "fail") {
        const auto code = parseInt(words[2]);
        if (!code || *code < 400 || *code > 599) {
            throw CommandError(fmt::format("\"{}\" is no code of a failure; 400 to 599 are", words[2]));
        }
        return CloudFault::status(*code);
    }
    const auto time = parseDuration(words[2]);
    if (!time) {
        throw UsageError();
    }
    return CloudFault::late(*time);
}

const std::map<std::string, CloudFault>& plainFaults() {
    static const std::map<std::string, CloudFault> faults{
        {"drop", CloudFault::never()},      {"cut", CloudFault::cut()},           {"huge", CloudFault::huge()},
        {"endless", CloudFault::endless()}, {"loop", CloudFault::redirectLoop()}, {"chunks", CloudFault::chunks()}};
    return faults;
}

// "file_links:shelf-3" is an endpoint and what its target contains.
void setFault(const Words& words) {
    const auto plain = plainFaults().find(words[0]);
    const std::size_t countAt = plain != plainFaults().end() ? 2 : 3;
    if (words.size() < 2 || words.size() > countAt + 1) {
        throw UsageError();
    }
    CloudFault fault = plain != plainFaults().end() ? plain->second : faultWithWord(words);
    if (words.size() > countAt) {
        const auto times = numberAt(words, countAt);
        if (!times || *times < 1) {
            throw UsageError();
        }
        fault = fault.times(*times);
    }
    const std::size_t colon = std::min(words[1].find(':'), words[1].size());
    const std::string part = words[1].substr(std::min(colon + 1, words[1].size()));
    cloud().fault(endpointNamed(words[1].substr(0, colon)), fault.only(part));
}

std::string faultText(const CloudFault& fault) {
    switch (fault.kind) {
        case CloudFault::Kind::Status:
            return fmt::format("fails with {}", fault.code);
        case CloudFault::Kind::Body:
            return fmt::format("answers {}", fault.text);
        case CloudFault::Kind::Header:
            return fmt::format("answers {}", fault.text);
        case CloudFault::Kind::Late:
            return fmt::format("answers {} late", durationText(fault.delay));
        case CloudFault::Kind::Never:
            return "never answers";
        case CloudFault::Kind::Cut:
            return "cuts its answers";
        case CloudFault::Kind::Huge:
            return "answers far too much";
        case CloudFault::Kind::Endless:
            return "answers without an end";
        case CloudFault::Kind::RedirectLoop:
            return "redirects to itself";
        case CloudFault::Kind::Chunks:
            return "answers in chunks";
    }
    return "";
}

void listFaults(Desk& desk) {
    Table table;
    for (const auto& [name, fault] : cloud().faults()) {
        table.add({fault.filter.empty() ? name : name + ":" + fault.filter,
                   faultText(fault),
                   {fault.remaining < 0 ? "" : "for " + counted(static_cast<std::size_t>(fault.remaining), "request"),
                    Tone::Dim}});
    }
    desk.out().say(table);
}

void listRequests(Desk& desk) {
    Table table;
    for (const auto& request : cloud().requests()) {
        table.add({request.method, request.host + request.target, {request.body, Tone::Dim}});
    }
    desk.out().say(table);
}

// One word, or two.
void control(Desk& desk, const Words& words) {
    if (words == Words{"faults"}) {
        listFaults(desk);
    } else if (words == Words{"requests"}) {
        listRequests(desk);
    } else if (words == Words{"requests", "reset"}) {
        cloud().resetRequests();
    } else if (words == Words{"clear"}) {
        cloud().clearFaults();
    } else if (words[0] == "clear" && words.size() == 2) {
        cloud().clearFault(endpointNamed(words[1]));
    } else if (words == Words{"forged"} || words == Words{"genuine"}) {
        cloud().setForeignCertificates(words[0] == "forged");
    } else if (words == Words{"down"}) {
        CloudHost::down();
    } else if (words == Words{"up"}) {
        CloudHost::up();
    } else {
        throw UsageError();
    }
}

void simCloud(Desk& desk, const Words& words) {
    if (words.empty()) {
        throw UsageError();
    }
    const bool isFault =
        words[0] == "fail" || words[0] == "answer" || words[0] == "delay" || plainFaults().count(words[0]) > 0;
    isFault ? setFault(words) : control(desk, words);
}

}  // namespace

std::vector<Command> simCloudCommands() {
    const Words verbs{"answer", "chunks", "clear",  "cut",     "delay", "down", "drop",     "endless",
                      "fail",   "faults", "forged", "genuine", "huge",  "loop", "requests", "up"};
    return {
        {"sim cloud",
         "fail ENDPOINT[:PART] CODE [REQUESTS] | answer ... TEXT | delay ... TIME | drop|cut|huge|endless|loop|chunks "
         "... "
         "| faults | clear [ENDPOINT] | requests [reset] | forged | genuine | down | up",
         fmt::format(
             "has an endpoint of the cloud misbehave ({}), for all requests or those with PART in their address; or "
             "lists that, takes it back, lists what was asked, shows certificates that nobody knows, goes away",
             fmt::join(Cloud::endpointNames(), ", ")),
         {"sim cloud fail stream 500", "sim cloud delay file_links:shelf-3 2s 1", "sim cloud requests"},
         simCloud,
         {verbs, Cloud::endpointNames()}}};
}

}  // namespace homeloom::tv
