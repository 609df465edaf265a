#ifndef HOMELOOM_DESKTOP_JSON_JSONWRITER_H
#define HOMELOOM_DESKTOP_JSON_JSONWRITER_H

#include <string>

#include <boost/json/value.hpp>

namespace homeloom::desktop {

/// Compact text. Walks the tree without recursion, so that no depth of nesting is too much for it.
std::string writeJson(const boost::json::value& root);

}  // namespace homeloom::desktop

#endif
