#include "Form.h"

#include <algorithm>
#include <limits>

namespace simulator {

namespace {

using Kind = Form::Kind;

std::string listed(const std::vector<std::string>& words) {
    std::string list;
    for (const std::string& word : words) {
        list += (list.empty() ? "" : ", ") + word;
    }
    return list;
}

const char* wanted(const Form& form) {
    switch (form.kind) {
        case Kind::Text:
        case Kind::Id:
        case Kind::Word:
            return "a text";
        case Kind::Scalar:
            return "a text, a number, true or false";
        case Kind::Number:
            return "a whole number";
        case Kind::Flag:
            return "true or false";
        case Kind::Object:
            return form.instead == Form::Instead::Text ? "an object or a text" : "an object";
        case Kind::Map:
            return "an object";
        case Kind::List:
            return "an array";
        case Kind::Any:
            break;
    }
    return "a value";
}

bool isOfKind(const Node& node, const Form& form) {
    switch (form.kind) {
        case Kind::Text:
        case Kind::Id:
        case Kind::Word:
            return node.value().is_string();
        case Kind::Scalar:
            return node.value().is_string() || node.value().is_number() || node.value().is_bool();
        case Kind::Number:
            return node.isNumber();
        case Kind::Flag:
            return node.value().is_bool();
        case Kind::Object:
        case Kind::Map:
            return node.isObject();
        case Kind::List:
            return node.value().is_array();
        case Kind::Any:
            break;
    }
    return true;
}

bool isInstead(const Node& node, const Form& form) {
    return !node.isObject() && (form.instead == Form::Instead::AnyButObject ||
                                (form.instead == Form::Instead::Text && node.value().is_string()));
}

class Check {
public:
    void walk(const Node& node, const Form& form) {
        if (isInstead(node, form)) {
            return;
        }
        if (!isOfKind(node, form)) {
            add(node, std::string("expected ") + wanted(form) + ", found " + node.kindName());
            return;
        }
        switch (form.kind) {
            case Kind::Id:
                if (node.text().empty()) {
                    add(node, "expected an id, found an empty text");
                }
                break;
            case Kind::Word:
                if (const std::string word = node.text(); !contains(form.words, word)) {
                    add(node, "expected one of " + listed(form.words) + ", found \"" + word + "\"");
                }
                break;
            case Kind::Object:
                walkMembers(node, form);
                break;
            case Kind::Map:
                for (const auto& [name, member] : node.members()) {
                    walk(member, form.element.front());
                }
                break;
            case Kind::List:
                for (const Node& element : node.elements()) {
                    walk(element, form.element.front());
                }
                break;
            default:
                break;
        }
    }

    std::vector<HomeMistake> mistakes() { return std::move(_mistakes); }

private:
    static bool contains(const std::vector<std::string>& words, const std::string& word) {
        return std::find(words.begin(), words.end(), word) != words.end();
    }

    void walkMembers(const Node& node, const Form& form) {
        std::vector<std::string> names;
        for (const FormMember& member : form.members) {
            const Node place = node[member.name.c_str()];
            if (!place.isMissing()) {
                walk(place, member.form);
            } else if (member.required) {
                add(place, std::string("expected ") + wanted(member.form) + ", found nothing");
            }
            names.push_back(member.name);
        }
        for (const auto& [name, member] : node.members()) {
            if (!contains(names, name)) {
                add(member, "unknown member; expected one of " + listed(names));
            }
        }
    }

    void add(const Node& node, const std::string& reason) { _mistakes.push_back({node.file(), node.place(), reason}); }

    std::vector<HomeMistake> _mistakes;
};

json::object ofType(const char* type) {
    return {{"type", type}};
}

json::object objectSchema(const Form& form) {
    json::object properties{{kComment, true}};
    json::array required;
    for (const FormMember& member : form.members) {
        properties[member.name] = schemaOf(member.form);
        if (member.required) {
            required.emplace_back(member.name);
        }
    }
    json::object schema = ofType("object");
    schema["properties"] = std::move(properties);
    schema["additionalProperties"] = false;
    if (!required.empty()) {
        schema["required"] = std::move(required);
    }
    switch (form.instead) {
        case Form::Instead::Text:
            return {{"anyOf", {ofType("string"), std::move(schema)}}};
        case Form::Instead::AnyButObject:
            return {{"anyOf", {json::object{{"not", ofType("object")}}, std::move(schema)}}};
        case Form::Instead::Nothing:
            break;
    }
    return schema;
}

json::object schemaOfKind(const Form& form) {
    switch (form.kind) {
        case Kind::Text:
            return ofType("string");
        case Kind::Id:
            return {{"type", "string"}, {"minLength", 1}};
        case Kind::Scalar:
            return {{"type", {"string", "number", "boolean"}}};
        case Kind::Number:
            return {{"type", "integer"},
                    {"minimum", std::numeric_limits<int>::min()},
                    {"maximum", std::numeric_limits<int>::max()}};
        case Kind::Flag:
            return ofType("boolean");
        case Kind::Word:
            return {{"enum", json::value_from(form.words)}};
        case Kind::Object:
            return objectSchema(form);
        case Kind::Map:
            return {{"type", "object"},
                    {"properties", json::object{{kComment, true}}},
                    {"additionalProperties", schemaOf(form.element.front())}};
        case Kind::List:
            return {{"type", "array"}, {"items", schemaOf(form.element.front())}};
        case Kind::Any:
            break;
    }
    return {};
}

}  // namespace

std::vector<HomeMistake> mistakesIn(const Node& node, const Form& form) {
    Check check;
    check.walk(node, form);
    return check.mistakes();
}

json::object schemaOf(const Form& form) {
    json::object schema = schemaOfKind(form);
    if (!form.meaning.empty()) {
        schema["description"] = form.meaning;
    }
    return schema;
}

}  // namespace simulator
