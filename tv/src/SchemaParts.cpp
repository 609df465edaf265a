#include "SchemaParts.h"

namespace homeloom::tv::schema {

json::object text(const std::string& meaning) {
    json::object form{{"type", "string"}};
    if (!meaning.empty()) {
        form["description"] = meaning;
    }
    return form;
}

json::object wholeNumber() {
    return {{"type", "integer"}};
}

json::object flag() {
    return {{"type", "boolean"}};
}

json::object only(const std::string& word) {
    return {{"const", word}};
}

json::object arrayOf(json::value element) {
    return {{"type", "array"}, {"items", std::move(element)}};
}

json::object reference(const std::string& definition) {
    return {{"$ref", "#/$defs/" + definition}};
}

json::object valueOf(const FieldSpec& field) {
    json::object form = field.type == FieldSpec::Type::Text     ? text()
                        : field.type == FieldSpec::Type::Number ? wholeNumber()
                                                                : flag();
    if (!field.meaning.empty()) {
        form["description"] = field.meaning;
    }
    return form;
}

json::object object(json::object required, const json::object& optional) {
    json::array names;
    for (const auto& member : required) {
        names.emplace_back(member.key());
    }
    for (const auto& member : optional) {
        required.insert(member);
    }
    return {{"type", "object"},
            {"required", std::move(names)},
            {"properties", std::move(required)},
            {"additionalProperties", false}};
}

std::string document(const std::string& name, const std::string& title, json::object form, json::object definitions) {
    json::object whole{{"$schema", "https://json-schema.org/draft/2020-12/schema"},
                       {"$id", "urn:homeloom:schema:" + name},
                       {"title", title}};
    for (const auto& member : form) {
        whole.insert(member);
    }
    if (!definitions.empty()) {
        whole["$defs"] = std::move(definitions);
    }
    return json::serialize(whole);
}

}  // namespace homeloom::tv::schema
