#ifndef HOMELOOM_SIMULATOR_FORM_H
#define HOMELOOM_SIMULATOR_FORM_H

#include <string>
#include <vector>

#include "DocumentReader.h"
#include "Json.h"
#include "simulator/HomeLoader.h"

namespace simulator {

struct FormMember;

/// What may stand at a place of a document that people write, and what it means. The loader checks documents by it,
/// and the JSON Schema for editors is made from it.
struct Form {
    enum class Kind {
        Any,
        Text,
        Scalar,  // a text, a number, true or false
        Id,      // a text that isn't empty
        Number,  // a whole one, of 32 bits
        Flag,
        Word,    // one of `words`
        Object,  // with `members` and no others
        Map,     // an object with any names, each with an `element`
        List     // of `element`
    };
    /// What may stand there in place of an object.
    enum class Instead { Nothing, Text, AnyButObject };

    Kind kind = Kind::Any;
    std::string meaning;
    std::vector<std::string> words;
    std::vector<FormMember> members;
    std::vector<Form> element;  // one, of maps and lists
    Instead instead = Instead::Nothing;
};

struct FormMember {
    std::string name;
    bool required = false;
    Form form;
};

/// Where and how the node differs from the form. Members named "_comment" are skipped.
std::vector<HomeMistake> mistakesIn(const Node& node, const Form& form);

/// The form as a JSON Schema (2020-12), without a head.
json::object schemaOf(const Form& form);

}  // namespace simulator

#endif
