#include "EventRing.h"

#include <variant>

#include <fmt/format.h>

#include "JsonOutput.h"

namespace homeloom::tv {

namespace {

constexpr std::size_t kFieldBytes = 32;

std::size_t weightOf(const Fields& fields) {
    std::size_t weight = 0;
    for (const auto& [key, value] : fields) {
        const auto* const text = std::get_if<std::string>(&value);
        weight += kFieldBytes + key.size() + (text != nullptr ? text->size() : 0);
    }
    return weight;
}

std::size_t weightOf(const Report& report) {
    std::size_t weight = sizeof(Report) + weightOf(report.properties);
    for (const EndpointRecord& endpoint : report.endpoints) {
        weight += sizeof endpoint + weightOf(endpoint.extraData);
    }
    return weight;
}

}  // namespace

EventRing::EventRing(EventId start, Limits limits) : _limits(limits), _oldest(start + 1) {}

void EventRing::add(const ReportPtr& report) {
    add(Event{report, "", weightOf(*report)});
}

void EventRing::add(const char* type, const std::string& document) {
    std::string text = eventMessage(head() + 1, type, document);
    const std::size_t weight = sizeof(Event) + text.size();
    add(Event{nullptr, std::move(text), weight});
}

void EventRing::add(Event event) {
    _weight += event.weight;
    _events.push_back(std::move(event));
    // The newest one stays, however large it is.
    while (_events.size() > 1 && (_events.size() > _limits.count || _weight > _limits.bytes)) {
        _weight -= _events.front().weight;
        _events.pop_front();
        ++_oldest;
    }
}

std::string EventRing::textAfter(EventId& from, std::size_t bytes) {
    std::string text;
    while (from < head() && text.size() < bytes) {
        Event& event = _events[++from - _oldest];
        if (event.report) {
            event.text = eventMessage(from, "report", jsonLine(*event.report));
            event.report.reset();
            _weight -= event.weight;
            event.weight = sizeof(Event) + event.text.size();
            _weight += event.weight;
        }
        text += event.text;
    }
    return text;
}

std::string eventMessage(EventId id, const char* type, const std::string& document) {
    return fmt::format("id: {}\nevent: {}\ndata: {}\n\n", id, type, document);
}

}  // namespace homeloom::tv
