#ifndef HOMELOOM_TV_REQUESTTABLE_H
#define HOMELOOM_TV_REQUESTTABLE_H

#include <string>
#include <vector>

#include "FieldSpec.h"
#include "Report.h"

namespace homeloom::tv {

/// What a request takes, and how its end shows.
struct RequestSpec {
    using Type = FieldSpec::Type;
    using Argument = FieldSpec;
    enum class Answer {
        Notify,  // a notification that is tied to the request
        Result,
        State,  // hl_device_state_updated of its device, which isn't tied to it
        None    // nothing that is reported
    };
    enum class Need { Nothing, ConnectedAgent, SignedInUser };

    std::string name;
    std::vector<Argument> arguments;
    Answer answer = Answer::Notify;
    std::string answerName;               // empty if there is no answer
    std::vector<FieldSpec> answerFields;  // of an answer that is tied to the request
    bool overtakes = false;               // served ahead of the others, on a thread of its own
    std::string proof;                    // text that an answer has only if the request succeeded
    Need need = Need::Nothing;            // without it there is no answer at all
    std::string refusals;                 // for people: what else gets no answer
    std::string example;                  // arguments that fit the apartment
};

/// "a connected agent", "a signed-in user" or "nothing".
const char* nameOf(RequestSpec::Need need);

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
/// The console's line for its example: "request hl_create_room location_id=home room_name=Study".
std::string exampleOf(const RequestSpec& spec);
/// What its answer may hold, tied to it or not.
const std::vector<FieldSpec>& answerFieldsOf(const RequestSpec& spec);

}  // namespace homeloom::tv

#endif
