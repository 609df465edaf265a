#include "DeviceNames.h"

#include <algorithm>
#include <map>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "CommandError.h"
#include "Words.h"

namespace homeloom::tv {

namespace {

constexpr std::size_t kMostHints = 5;
constexpr std::size_t kLeastPartLength = 2;

std::string described(const Named& thing) {
    const auto name = std::find_if(thing.names.begin(), thing.names.end(), [&thing](const std::string& text) {
        return !text.empty() && lowered(text) != lowered(thing.id);
    });
    return name != thing.names.end() ? fmt::format("{} ({})", thing.id, *name) : thing.id;
}

}  // namespace

int editDistance(const std::string& a, const std::string& b) {
    std::vector<int> beforeLast;
    std::vector<int> last(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) {
        last[j] = static_cast<int>(j);
    }
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::vector<int> row(b.size() + 1, static_cast<int>(i));
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const int change = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, change});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
            }
        }
        beforeLast = std::exchange(last, std::move(row));
    }
    return last[b.size()];
}

std::vector<std::string> nearTo(const std::string& text, const std::vector<std::string>& candidates) {
    const std::string wanted = lowered(text);
    const int allowed = std::max(1, static_cast<int>(wanted.size()) / 3);
    std::multimap<int, std::string> ranked;
    for (const std::string& candidate : candidates) {
        const std::string name = lowered(candidate);
        const bool isPart = wanted.size() >= kLeastPartLength && name.find(wanted) != std::string::npos;
        const int distance = isPart ? 0 : editDistance(wanted, name);
        if (distance <= allowed) {
            ranked.emplace(distance, candidate);
        }
    }
    std::vector<std::string> near;
    for (const auto& [distance, candidate] : ranked) {
        if (near.size() < kMostHints && std::find(near.begin(), near.end(), candidate) == near.end()) {
            near.push_back(candidate);
        }
    }
    return near;
}

std::string nearHint(const std::vector<std::string>& near) {
    return near.empty() ? "" : fmt::format("; near: {}", fmt::join(near, ", "));
}

NameLookup::NameLookup(std::string kind, std::vector<Named> things)
    : _kind(std::move(kind)), _things(std::move(things)) {}

std::vector<const Named*> NameLookup::matches(const std::string& name) const {
    const std::string wanted = lowered(name);
    std::vector<const Named*> found;
    for (const Named& thing : _things) {
        if (lowered(thing.id) == wanted) {
            return {&thing};
        }
        const bool named = std::any_of(thing.names.begin(), thing.names.end(),
                                       [&wanted](const std::string& text) { return lowered(text) == wanted; });
        if (named && !wanted.empty()) {
            found.push_back(&thing);
        }
    }
    return found;
}

std::vector<std::string> NameLookup::near(const std::string& name) const {
    std::vector<std::string> candidates;
    std::map<std::string, const Named*> owners;
    for (const Named& thing : _things) {
        std::vector<std::string> texts = thing.names;
        texts.insert(texts.begin(), thing.id);
        for (const std::string& text : texts) {
            if (!text.empty() && owners.emplace(text, &thing).second) {
                candidates.push_back(text);
            }
        }
    }
    std::vector<std::string> near;
    for (const std::string& text : nearTo(name, candidates)) {
        const std::string description = described(*owners[text]);
        if (std::find(near.begin(), near.end(), description) == near.end()) {
            near.push_back(description);
        }
    }
    return near;
}

std::string NameLookup::find(const std::string& name) const {
    const auto found = matches(name);
    if (found.size() == 1) {
        return found.front()->id;
    }
    if (found.empty()) {
        throw CommandError(fmt::format("there is no {} \"{}\"{}", _kind, name, nearHint(near(name))));
    }
    std::vector<std::string> all;
    std::transform(found.begin(), found.end(), std::back_inserter(all), [](const Named* thing) { return thing->id; });
    throw CommandError(fmt::format("\"{}\" may be any of {}: name it by its id", name, fmt::join(all, ", ")));
}

std::string NameLookup::take(const std::vector<std::string>& words, std::size_t& at) const {
    for (std::size_t end = words.size(); end > at + 1; --end) {
        const std::string name = joinWords({words.begin(), words.begin() + static_cast<std::ptrdiff_t>(end)}, at);
        if (!matches(name).empty()) {
            at = end;
            return find(name);
        }
    }
    if (at >= words.size()) {
        throw CommandError(fmt::format("which {}?", _kind));
    }
    const std::string id = find(words[at]);
    ++at;
    return id;
}

std::string NameLookup::takeAll(const std::vector<std::string>& words, std::size_t at) const {
    if (at >= words.size()) {
        throw CommandError(fmt::format("which {}?", _kind));
    }
    return find(joinWords(words, at));
}

}  // namespace homeloom::tv
