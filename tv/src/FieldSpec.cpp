#include "FieldSpec.h"

#include <algorithm>
#include <stdexcept>

#include <fmt/format.h>

namespace homeloom::tv {

namespace {

FieldSpec::Type typeNamed(const std::string& name) {
    for (const auto type : {FieldSpec::Type::Text, FieldSpec::Type::Number, FieldSpec::Type::Flag}) {
        if (name == nameOf(type)) {
            return type;
        }
    }
    throw std::invalid_argument(fmt::format("\"{}\" is no type of a field", name));
}

}  // namespace

std::vector<FieldSpec> fieldSpecs(const std::string& text, const std::string& meaning) {
    static const std::string comma = ", ";
    std::vector<FieldSpec> fields;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find(comma, begin), text.size());
        const std::string field = text.substr(begin, end - begin);
        const std::size_t blank = field.find(' ');
        if (blank == 0 || blank == std::string::npos) {
            throw std::invalid_argument(fmt::format("\"{}\" is no field", field));
        }
        fields.push_back({field.substr(0, blank), typeNamed(field.substr(blank + 1)), meaning});
        begin = end + comma.size();
    }
    return fields;
}

const char* nameOf(FieldSpec::Type type) {
    return type == FieldSpec::Type::Text ? "text" : type == FieldSpec::Type::Number ? "int" : "bool";
}

std::string textOf(const std::vector<FieldSpec>& fields) {
    std::string text;
    for (const FieldSpec& field : fields) {
        text += (text.empty() ? "" : ", ") + field.key + " " + nameOf(field.type);
    }
    return text;
}

}  // namespace homeloom::tv
