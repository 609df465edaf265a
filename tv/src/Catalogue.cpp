#include "Catalogue.h"

#include <simulator/Agent.h>
#include <simulator/Cloud.h>
#include <boost/json.hpp>

#include "Command.h"
#include "ReportTable.h"
#include "RequestTable.h"

namespace homeloom::tv {

namespace {

namespace json = boost::json;

template <typename Things, typename ToJson>
json::array arrayOf(const Things& things, ToJson toJson) {
    json::array array;
    for (const auto& thing : things) {
        array.push_back(toJson(thing));
    }
    return array;
}

json::array textsOf(const std::vector<std::string>& texts) {
    return arrayOf(texts, [](const std::string& text) { return json::value(text); });
}

void addUnlessEmpty(json::object& object, const char* name, const std::string& text) {
    if (!text.empty()) {
        object[name] = text;
    }
}

json::value fieldJson(const FieldSpec& field) {
    json::object object{{"name", field.key}, {"type", nameOf(field.type)}};
    addUnlessEmpty(object, "meaning", field.meaning);
    return object;
}

json::value requestJson(const RequestSpec& spec) {
    json::object object{{"name", spec.name}, {"arguments", arrayOf(spec.arguments, fieldJson)}};
    if (spec.answer != RequestSpec::Answer::None) {
        object["answer"] = {{"kind", spec.answer == RequestSpec::Answer::Result ? "result" : "notify"},
                            {"name", spec.answerName},
                            {"tied", spec.answer != RequestSpec::Answer::State},
                            {"fields", arrayOf(answerFieldsOf(spec), fieldJson)}};
    }
    object["overtakes"] = spec.overtakes;
    object["needs"] = nameOf(spec.need);
    addUnlessEmpty(object, "refusals", spec.refusals);
    object["example"] = exampleOf(spec);
    return object;
}

json::value notifyJson(const NotifySpec& spec) {
    return {{"name", spec.name}, {"when", spec.when}, {"fields", arrayOf(spec.fields, fieldJson)}};
}

json::value endpointJson(const EndpointSpec& spec) {
    json::object object{{"entry", spec.entry}};
    addUnlessEmpty(object, "service_name", spec.serviceName);
    addUnlessEmpty(object, "interface_type", spec.interfaceType);
    addUnlessEmpty(object, "device_type", spec.deviceType);
    object["fields"] = arrayOf(spec.extraData, fieldJson);
    return object;
}

json::value hintJson(const Hint& hint) {
    json::object object{{"kind", nameOf(hint.kind)}};
    if (hint.kind == Hint::Kind::Choice) {
        object["choices"] = textsOf(hint.choices);
    }
    if (!hint.behind.empty()) {
        object["behind"] = hint.behind;
    }
    return object;
}

json::value commandJson(const Command& command) {
    return {{"name", command.name},
            {"usage", command.usage},
            {"summary", command.summary},
            {"examples", textsOf(command.examples)},
            {"arguments", arrayOf(command.hints, hintJson)}};
}

std::string makeCatalogue() {
    return json::serialize(json::object{{"version", HOMELOOM_VERSION},
                                        {"requests", arrayOf(requestTable(), requestJson)},
                                        {"notifies", arrayOf(notifyTable(), notifyJson)},
                                        {"endpoint_fields", arrayOf(endpointTable(), endpointJson)},
                                        {"commands", arrayOf(commandTable(), commandJson)},
                                        {"agent_functions", textsOf(simulator::Agent::functionNames())},
                                        {"cloud_endpoints", textsOf(simulator::Cloud::endpointNames())}});
}

}  // namespace

const std::string& catalogueJson() {
    static const std::string catalogue = makeCatalogue();
    return catalogue;
}

}  // namespace homeloom::tv
