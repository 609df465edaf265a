#include <algorithm>
#include <functional>

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

CloudFault statusFault(const std::string& word) {
    const auto code = parseInt(word);
    if (!code || *code < 400 || *code > 599) {
        throw CommandError(fmt::format("\"{}\" is no code of a failure; 400 to 599 are", word));
    }
    return CloudFault::status(*code);
}

CloudFault lateFault(const std::string& word) {
    const auto time = parseDuration(word);
    if (!time) {
        throw UsageError();
    }
    return CloudFault::late(*time);
}

// "file_links:shelf-3" is an endpoint and what its target contains. A number at `countAt` says for how many requests.
void setFault(const Words& words, std::size_t countAt, CloudFault fault) {
    if (words.size() > countAt + 1) {
        throw UsageError();
    }
    if (words.size() > countAt) {
        const auto times = parseInt(words[countAt]);
        if (!times || *times < 1) {
            throw UsageError();
        }
        fault = fault.times(*times);
    }
    const std::size_t colon = std::min(words[0].find(':'), words[0].size());
    const std::string part = words[0].substr(std::min(colon + 1, words[0].size()));
    cloud().fault(endpointNamed(words[0].substr(0, colon)), fault.only(part));
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

void listRequests(Desk& desk, const Words& words) {
    if (words == Words{"reset"}) {
        cloud().resetRequests();
        return;
    }
    if (!words.empty()) {
        throw UsageError();
    }
    Table table;
    for (const auto& request : cloud().requests()) {
        table.add({request.method, request.host + request.target, {request.body, Tone::Dim}});
    }
    desk.out().say(table);
}

void clear(Desk&, const Words& words) {
    if (words.size() > 1) {
        throw UsageError();
    }
    words.empty() ? cloud().clearFaults() : cloud().clearFault(endpointNamed(words[0]));
}

/// A fault that takes a word besides the endpoint.
Command faultCommand(const std::string& verb, const std::string& what, const std::string& summary,
                     const std::string& example, CloudFault (*make)(const std::string& word)) {
    const std::string name = "sim cloud " + verb;
    return {name,
            "ENDPOINT[:PART] " + what + " [REQUESTS]",
            summary,
            {name + " " + example},
            [make](Desk&, const Words& words) {
                if (words.size() < 2) {
                    throw UsageError();
                }
                setFault(words, 2, make(words[1]));
            },
            {Cloud::endpointNames()}};
}

Command faultCommand(const std::string& verb, const std::string& summary, const std::string& example,
                     const CloudFault& fault) {
    const std::string name = "sim cloud " + verb;
    return {name,
            "ENDPOINT[:PART] [REQUESTS]",
            summary,
            {name + " " + example},
            [fault](Desk&, const Words& words) {
                if (words.empty()) {
                    throw UsageError();
                }
                setFault(words, 1, fault);
            },
            {Cloud::endpointNames()}};
}

Command plainCommand(const std::string& verb, const std::string& summary, const std::function<void()>& run) {
    const std::string name = "sim cloud " + verb;
    return {name,
            "",
            summary,
            {name},
            [run](Desk&, const Words& words) {
                if (!words.empty()) {
                    throw UsageError();
                }
                run();
            },
            {}};
}

}  // namespace

std::vector<Command> simCloudCommands() {
    return {
        faultCommand("fail", "CODE", "has an endpoint answer with a code of failure, 400 to 599", "stream 500",
                     statusFault),
        faultCommand("answer", "TEXT", "has an endpoint answer 200 with that body", R"(stream {"items": []} 1)",
                     CloudFault::body),
        faultCommand("delay", "TIME", "has an endpoint answer late", "file_links:shelf-3 2s 1", lateFault),
        faultCommand("drop", "has an endpoint never answer", "devices:living-camera", CloudFault::never()),
        faultCommand("cut", "has an endpoint close the connection in the middle of its answer", "files",
                     CloudFault::cut()),
        faultCommand("huge", "has an endpoint answer with 32 MB", "files 1", CloudFault::huge()),
        faultCommand("endless", "has an endpoint answer without an end", "files 1", CloudFault::endless()),
        faultCommand("loop", "has an endpoint redirect to itself", "file_links", CloudFault::redirectLoop()),
        faultCommand("chunks", "has an endpoint answer in chunks and not in one piece", "stream", CloudFault::chunks()),
        {"sim cloud faults",
         "",
         "lists what was set so",
         {"sim cloud faults"},
         [](Desk& desk, const Words& words) { words.empty() ? listFaults(desk) : throw UsageError(); },
         {}},
        {"sim cloud clear",
         "[ENDPOINT]",
         "takes back the faults of an endpoint, or of all",
         {"sim cloud clear stream"},
         clear,
         {Cloud::endpointNames()}},
        {"sim cloud requests",
         "[reset]",
         "lists what the plug-in asked the cloud, or forgets that",
         {"sim cloud requests"},
         listRequests,
         {Hint(Words{"reset"})}},
        plainCommand("forged", "shows certificates from an authority that nobody knows",
                     [] { cloud().setForeignCertificates(true); }),
        plainCommand("genuine", "shows certificates that are trusted again",
                     [] { cloud().setForeignCertificates(false); }),
        plainCommand("down", "takes the cloud's web endpoints away", CloudHost::down),
        plainCommand("up", "brings them back", CloudHost::up),
    };
}

}  // namespace homeloom::tv
