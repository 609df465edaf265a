#include "support/AgentStub.h"

#include <algorithm>

namespace {

constexpr int kNoData = HOMELOOM_CLIENT_ERROR_NO_DATA;
constexpr int kFailed = -5;

template <typename Value>
const Value* Find(const std::map<std::string, Value>& table, const std::string& call, const std::string& operation) {
    auto found = table.find(call);
    found = found != table.end() ? found : table.find(operation);
    return found != table.end() ? &found->second : nullptr;
}

/// Writes the values of an answer to the out arguments of their kind.
template <typename Out, typename Value>
void Fill(const std::vector<Out*>& outs, const std::vector<Value>& values) {
    for (std::size_t i = 0; i < outs.size() && i < values.size(); ++i) {
        *outs[i] = static_cast<Out>(values[i]);
    }
}

}  // namespace

void AgentStub::FailOnce(const std::string& operation, int after) {
    const std::lock_guard<std::mutex> lock(_mutex);
    _failures[operation].push_back(after);
}

std::vector<std::string> AgentStub::Calls(const std::string& operation) const {
    const std::lock_guard<std::mutex> lock(_mutex);
    std::vector<std::string> calls;
    for (const auto& [name, text] : _calls) {
        if (name == operation) {
            calls.push_back(text);
        }
    }
    return calls;
}

int AgentStub::Held() const {
    const std::lock_guard<std::mutex> lock(_mutex);
    return _held;
}

bool AgentStub::IsToFail(const std::string& operation) {
    auto& failures = _failures[operation];
    for (int& left : failures) {
        --left;
    }
    const auto now = std::find(failures.begin(), failures.end(), -1);
    if (now == failures.end()) {
        return false;
    }
    failures.erase(now);
    return true;
}

int AgentStub::ReadField(const Call& call) const {
    const auto text = call.record->texts.find(call.number);
    const auto number = call.record->numbers.find(call.number);
    if (!call.texts.empty() && text != call.record->texts.end()) {
        *call.texts[0] = text->second;
    } else if (!call.numbers.empty() && number != call.record->numbers.end()) {
        *call.numbers[0] = number->second;
    } else {
        return kNoData;
    }
    return 0;
}

int AgentStub::Answered(Call& call) {
    const std::lock_guard<std::mutex> lock(_mutex);
    _calls.emplace_back(call.operation, call.text);
    if (IsToFail(call.operation)) {
        return kFailed;
    }
    if (call.function != nullptr) {
        _callbacks[call.operation] = {call.function, call.userData};
    }
    if (call.list != nullptr) {
        for (int i = 0; i < call.number; ++i) {
            delete static_cast<Record*>(call.list[i]);
        }
        delete[] call.list;
        _held -= call.number;
    }
    const bool isRead = !call.texts.empty() || !call.numbers.empty();
    if (call.record != nullptr && isRead) {
        return ReadField(call);
    }
    if (call.record != nullptr && call.operation.rfind("Destroy", 0) == 0) {
        delete call.record;
        --_held;
    }
    if (const auto* list = Find(lists, call.text, call.operation); call.newList != nullptr && list != nullptr) {
        *call.newList = new void*[list->size()];
        *call.numbers.at(0) = static_cast<int>(list->size());
        std::transform(list->begin(), list->end(), *call.newList,
                       [](const Record& record) { return new Record(record); });
        _held += *call.numbers[0];
    }
    if (const auto* record = Find(records, call.text, call.operation); call.newRecord != nullptr && record != nullptr) {
        *call.newRecord = new Record(*record);
        ++_held;
    }
    const Answer* const answer = Find(answers, call.text, call.operation);
    if (answer == nullptr) {
        return 0;
    }
    Fill(call.texts, answer->texts);
    Fill(call.flags, answer->numbers);
    if (call.newList == nullptr) {
        Fill(call.numbers, answer->numbers);
    }
    return answer->ret;
}
