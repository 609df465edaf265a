#ifndef HOMELOOM_TV_DIFFERENCES_H
#define HOMELOOM_TV_DIFFERENCES_H

#include <optional>
#include <string>
#include <vector>

#include <VMFramework/JsonValue.h>

namespace homeloom::tv {

/// Where two documents differ: "devices/washer/state_text", with the JSON text of each side. A side that has nothing
/// there is empty.
struct Difference {
    std::string place;
    std::optional<std::string> before;
    std::optional<std::string> after;
};

/// All places in which `after` differs from `before`, in an order of their own. Elements that have an "id" are compared
/// with the element of that id, wherever it stands in its array; the order of such elements says nothing.
std::vector<Difference> differences(const VMFramework::json::JsonValue& before,
                                    const VMFramework::json::JsonValue& after);

}  // namespace homeloom::tv

#endif
