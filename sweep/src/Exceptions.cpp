#include "Exceptions.h"

#include <fnmatch.h>

#include <fmt/format.h>

namespace homeloom::sweep {

const std::vector<KnownException>& knownExceptions() {
    static const std::vector<KnownException> table{};
    return table;
}

bool concerns(const KnownException& exception, const Place& place) {
    const std::string text = place.text();
    const std::string fault = text.substr(text.find('#') + 1);
    return fnmatch(exception.function.c_str(), place.function.c_str(), 0) == 0 &&
           fnmatch(exception.fault.c_str(), fault.c_str(), 0) == 0;
}

bool explains(const KnownException& exception, const Place& place, const Problem& problem) {
    return concerns(exception, place) && problem.judge == exception.judge &&
           problem.text.find(exception.text) != std::string::npos;
}

}  // namespace homeloom::sweep
