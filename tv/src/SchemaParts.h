#ifndef HOMELOOM_TV_SCHEMAPARTS_H
#define HOMELOOM_TV_SCHEMAPARTS_H

#include <initializer_list>
#include <string>
#include <utility>

#include <boost/json.hpp>

#include "FieldSpec.h"

namespace homeloom::tv::schema {

namespace json = boost::json;

// What JSON Schemas are put together from.

json::object text(const std::string& meaning = "");
json::object wholeNumber();
json::object flag();
json::object only(const std::string& word);
json::object arrayOf(json::value element);
json::object reference(const std::string& definition);
/// The value of a field of the framework.
json::object valueOf(const FieldSpec& field);

/// An object that has all the `required` members, perhaps the `optional` ones, and no others.
json::object object(json::object required, const json::object& optional = {});

/// A whole schema.
std::string document(const std::string& name, const std::string& title, json::object form,
                     json::object definitions = {});

}  // namespace homeloom::tv::schema

#endif
