#ifndef HOMELOOM_DESKTOP_JSON_JSONPARSER_H
#define HOMELOOM_DESKTOP_JSON_JSONPARSER_H

#include <memory>
#include <string_view>

#include <boost/json/value.hpp>

namespace homeloom::desktop {

/// Parses a whole document into memory of its own, which goes with the last pointer to it. Null for a text that is
/// no JSON document, that nests deeper than 64 levels, or that has bytes after its value.
std::shared_ptr<boost::json::value> parseJson(std::string_view text);

}  // namespace homeloom::desktop

#endif
