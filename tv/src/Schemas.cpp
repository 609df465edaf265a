#include "Schemas.h"

#include <algorithm>
#include <map>
#include <stdexcept>

#include <simulator/HomeSchema.h>

#include "ReportTable.h"
#include "RequestTable.h"
#include "SchemaParts.h"

namespace homeloom::tv {

namespace {

using namespace schema;
using Answer = RequestSpec::Answer;

json::object valuesOf(const std::vector<FieldSpec>& fields) {
    json::object values;
    for (const FieldSpec& field : fields) {
        values[field.key] = valueOf(field);
    }
    return values;
}

/// {"call": ..., "name": ..., "properties": {...}} by the name, since a name tells which properties there can be.
json::object namedReport(const char* call, const std::map<std::string, json::object>& propertiesByName) {
    json::object form =
        object({{"call", only(call)}, {"name", text()}, {"properties", json::object{}}}, {{"request", wholeNumber()}});
    json::array forms;
    for (const auto& [name, properties] : propertiesByName) {
        forms.push_back(json::object{{"properties", {{"name", only(name)}, {"properties", object({}, properties)}}}});
    }
    form["oneOf"] = std::move(forms);
    return form;
}

json::object notify() {
    std::map<std::string, json::object> properties;
    for (const NotifySpec& spec : notifyTable()) {
        properties[spec.name] = valuesOf(spec.fields);
    }
    for (const RequestSpec& spec : requestTable()) {
        if (spec.answer == Answer::Notify) {
            for (const FieldSpec& field : spec.answerFields) {
                properties[spec.answerName].emplace(field.key, valueOf(field));
            }
        }
    }
    return namedReport("notify", properties);
}

json::object result() {
    std::map<std::string, json::object> properties;
    for (const RequestSpec& spec : requestTable()) {
        if (spec.answer == Answer::Result) {
            properties[spec.answerName] = valuesOf(spec.answerFields);
        }
    }
    return namedReport("result", properties);
}

/// An entry of the device list.
json::object endpoint() {
    json::array forms;
    for (const EndpointSpec& spec : endpointTable()) {
        json::object names{{"service_name", only(spec.serviceName)}, {"device_type", only(spec.deviceType)}};
        json::object others{
            {"device_id", text()}, {"device_name", text()}, {"sub_device_type", text()}, {"interface_type", text()}};
        if (!spec.interfaceType.empty()) {
            names["interface_type"] = only(spec.interfaceType);
        }
        names["extra_data"] = object({}, valuesOf(spec.extraData));
        forms.push_back(object(names, others));
    }
    return {{"anyOf", std::move(forms)}};
}

json::object home() {
    json::object device{{"id", text()}, {"name", text()}, {"nick", text()}, {"type", text()}};
    const auto& table = endpointTable();
    const auto spec = std::find_if(table.begin(), table.end(), [](const auto& each) { return each.entry == "device"; });
    const json::object room = object({{"id", text()}, {"name", text()}});
    const json::object location = object({{"id", text()},
                                          {"name", text()},
                                          {"owner_name", text()},
                                          {"is_owner", flag()},
                                          {"permission", text()},
                                          {"rooms", arrayOf(room)}});
    const json::object item = object({{"id", text()}, {"document", text("JSON")}});
    return object({{"locations", arrayOf(location)},
                   {"devices", arrayOf(object(device, valuesOf(spec->extraData)))},
                   {"scenes", arrayOf(item)},
                   {"routines", arrayOf(item)}});
}

/// What `--json` prints a line, and what the HTTP door sends as an event.
std::string eventSchema() {
    const json::object hello = object({{"version", text()},
                                       {"home", reference("home")},
                                       {"catalogue", text("the version of the catalogue")},
                                       {"load_status", wholeNumber()},
                                       {"signed_in", flag()},
                                       {"language", text()}});
    const json::object deviceCommand =
        object({{"number", wholeNumber()}, {"device_id", text()}, {"uri", text()}, {"values", {{"type", "object"}}}});
    json::array forms;
    for (const char* const report : {"load_result", "device_list", "device_found", "notify", "result"}) {
        forms.push_back(reference(report));
    }
    forms.push_back(object({{"home", reference("home")}}));
    forms.push_back(reference("command"));
    forms.push_back(object({{"hello", hello}}));
    forms.push_back(object({{"lost", wholeNumber()}}));
    forms.push_back(object({{"device_command", deviceCommand}}));
    forms.push_back(object({{"sim", object({})}}));
    json::array reports;
    for (const char* const report : {"load_result", "device_list", "device_found", "notify", "result"}) {
        reports.push_back(reference(report));
    }
    const json::object command = object({{"command", text()}, {"succeeded", flag()}, {"output", arrayOf(text())}},
                                        {{"id", json::object{{"type", {"string", "number"}}}},
                                         {"error", text("why it failed")},
                                         {"reports", arrayOf(json::object{{"anyOf", reports}})},
                                         {"reports_left_out", wholeNumber()}});
    return document(
        "event", "What homeloom-tv tells programs: one document each", {{"anyOf", std::move(forms)}},
        {{"load_result", object({{"call", only("load_result")}, {"plugin", text()}, {"status", wholeNumber()}})},
         {"device_list", object({{"call", only("device_list")}, {"endpoints", arrayOf(reference("endpoint"))}})},
         {"device_found", object({{"call", only("device_found")}, {"endpoints", arrayOf(json::object{})}})},
         {"notify", notify()},
         {"result", result()},
         {"endpoint", endpoint()},
         {"home", home()},
         {"command", command}});
}

std::string catalogueSchema() {
    const json::object fields = arrayOf(reference("field"));
    const json::object answer =
        object({{"kind", json::object{{"enum", {"notify", "result"}}}},
                {"name", text()},
                {"tied", {{"type", "boolean"}, {"description", "whether it carries the request's number"}}},
                {"fields", fields}});
    const json::object request = object({{"name", text()},
                                         {"arguments", fields},
                                         {"overtakes", flag()},
                                         {"needs", text("without it there is no answer")},
                                         {"example", text("a line of the console")}},
                                        {{"answer", answer}, {"refusals", text("what else gets no answer")}});
    const json::object notify = object({{"name", text()}, {"when", text()}, {"fields", fields}});
    const json::object endpoint = object({{"entry", text()}, {"service_name", text()}, {"fields", fields}},
                                         {{"interface_type", text()}, {"device_type", text()}});
    const json::object argument =
        object({{"kind", text("what fits there")}},
               {{"choices", arrayOf(text())}, {"behind", text("fits only behind this first argument")}});
    const json::object command = object({{"name", text()},
                                         {"usage", text("what follows the name")},
                                         {"summary", text()},
                                         {"examples", arrayOf(text())},
                                         {"arguments", arrayOf(argument)}});
    const json::object field =
        object({{"name", text()}, {"type", json::object{{"enum", {"text", "int", "bool"}}}}}, {{"meaning", text()}});
    return document("catalogue", "What homeloom-tv can be asked for, and what it tells",
                    object({{"version", text()},
                            {"requests", arrayOf(request)},
                            {"notifies", arrayOf(notify)},
                            {"endpoint_fields", arrayOf(endpoint)},
                            {"commands", arrayOf(command)},
                            {"agent_functions", arrayOf(text())},
                            {"cloud_endpoints", arrayOf(text())}}),
                    {{"field", field}});
}

std::string homeSchema() {
    return document("home", "A home for homeloom-tv", json::parse(simulator::homeSchema()).as_object());
}

std::string modelSchema() {
    return document("model", "A device model for homeloom-tv", json::parse(simulator::modelSchema()).as_object());
}

struct Schema {
    const char* name;
    std::string (*make)();
};
const Schema schemas[] = {
    {"home", homeSchema}, {"model", modelSchema}, {"event", eventSchema}, {"catalogue", catalogueSchema}};

}  // namespace

const std::vector<std::string>& schemaNames() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all;
        for (const Schema& schema : schemas) {
            all.emplace_back(schema.name);
        }
        return all;
    }();
    return names;
}

std::string schemaJson(const std::string& name) {
    for (const Schema& schema : schemas) {
        if (name == schema.name) {
            return schema.make();
        }
    }
    throw std::invalid_argument("no document is called " + name);
}

}  // namespace homeloom::tv
