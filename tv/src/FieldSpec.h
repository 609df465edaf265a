#ifndef HOMELOOM_TV_FIELDSPEC_H
#define HOMELOOM_TV_FIELDSPEC_H

#include <string>
#include <vector>

namespace homeloom::tv {

/// A key of a request, an answer, a notify or an endpoint, with the type of its value.
struct FieldSpec {
    enum class Type { Text, Number, Flag };

    std::string key;
    Type type = Type::Text;
    std::string meaning;  // for people; empty where the key says it all
};

/// The fields of "location_id text, devices_size int, enable bool", all with the same meaning. Throws
/// std::invalid_argument for another form: the tables of this program are written so.
std::vector<FieldSpec> fieldSpecs(const std::string& text, const std::string& meaning = "");

/// "text", "int" or "bool".
const char* nameOf(FieldSpec::Type type);

/// "location_id text, devices_size int".
std::string textOf(const std::vector<FieldSpec>& fields);

}  // namespace homeloom::tv

#endif
