#ifndef HOMELOOM_TV_REQUESTTABLE_H
#define HOMELOOM_TV_REQUESTTABLE_H

#include <string>
#include <vector>

#include "Report.h"

namespace homeloom::tv {

/// What a request takes, and how its end shows.
struct RequestSpec {
    enum class Type { Text, Number, Flag };
    enum class Answer {
        Tied,   // a result or a notification that is tied to the request
        State,  // hl_device_state_updated of its device
        None    // nothing that is reported
    };
    struct Argument {
        std::string key;
        Type type = Type::Text;
    };

    std::string name;
    std::vector<Argument> arguments;
    Answer answer = Answer::Tied;
    bool overtakes = false;  // served ahead of the others, on a thread of its own
    std::string needs;       // text that an answer has only if the request succeeded
    std::string example;     // arguments that fit the apartment
};

/// All requests that the plug-in serves, by name.
const std::vector<RequestSpec>& requestTable();
const RequestSpec* findRequest(const std::string& name);

/// Reads "key=value" words by the types of the request's own keys. Throws CommandError for an unknown key, a value
/// of another type, and a word of another form.
Fields typedArguments(const RequestSpec& spec, const std::vector<std::string>& words);
/// The same by the look of each value: true and false, whole numbers, anything else is a text.
Fields guessedArguments(const std::vector<std::string>& words);

/// Whether an answer says that the request was carried out.
bool tellsSuccess(const RequestSpec* spec, const Report& answer);

/// "hl_create_room location_id=TEXT room_name=TEXT".
std::string usageOf(const RequestSpec& spec);

}  // namespace homeloom::tv

#endif
