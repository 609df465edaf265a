#ifndef HOMELOOM_TV_SCHEMAS_H
#define HOMELOOM_TV_SCHEMAS_H

#include <string>
#include <vector>

namespace homeloom::tv {

/// The documents of which the form is told: "home", "model", "event", "catalogue".
const std::vector<std::string>& schemaNames();

/// The JSON Schema (2020-12) of one of them, which needs no other. Throws std::invalid_argument for another name. Of
/// any thread.
std::string schemaJson(const std::string& name);

}  // namespace homeloom::tv

#endif
