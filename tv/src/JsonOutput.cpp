#include "JsonOutput.h"

#include <cstdio>
#include <map>
#include <optional>

#include <VMFramework/JsonValue.h>

#include "Output.h"
#include "Settled.h"
#include "Text.h"

namespace homeloom::tv {

namespace {

using VMFramework::json::JsonValue;

std::string quoted(const std::string& text) {
    return JsonValue(validUtf8(text)).toString();
}

std::string valueJson(const Value& value) {
    const auto* const text = std::get_if<std::string>(&value);
    return text != nullptr ? quoted(*text) : valueText(value);
}

// Written here and not through an object: a property list may hold a key twice, and that must show.
std::string fieldsJson(const Fields& fields) {
    std::string json = "{";
    for (const auto& [key, value] : fields) {
        json += (json.size() > 1 ? "," : "") + quoted(key) + ":" + valueJson(value);
    }
    return json + "}";
}

std::string endpointJson(const EndpointRecord& endpoint) {
    std::string json = "{";
    const auto add = [&json](const char* key, const std::optional<std::string>& text) {
        if (text) {
            json += (json.size() > 1 ? ",\"" : "\"") + std::string(key) + "\":" + quoted(*text);
        }
    };
    add("service_name", endpoint.serviceName);
    add("interface_type", endpoint.interfaceType);
    add("device_id", endpoint.deviceId);
    add("device_name", endpoint.deviceName);
    add("device_type", endpoint.deviceType);
    add("sub_device_type", endpoint.subDeviceType);
    return json + (json.size() > 1 ? "," : "") + "\"extra_data\":" + fieldsJson(endpoint.extraData) + "}";
}

template <typename Things, typename ToJson>
std::string arrayJson(const Things& things, ToJson toJson) {
    std::string json = "[";
    for (const auto& thing : things) {
        json += (json.size() > 1 ? "," : "") + toJson(thing);
    }
    return json + "]";
}

std::string locationJson(const HomeView::Location& location) {
    const auto roomJson = [](const HomeView::Room& room) { return fieldsJson({{"id", room.id}, {"name", room.name}}); };
    Fields fields{{"id", location.id},
                  {"name", location.name},
                  {"owner_name", location.ownerName},
                  {"is_owner", location.isOwner},
                  {"permission", location.permission}};
    std::string json = fieldsJson(fields);
    json.back() = ',';
    return json + "\"rooms\":" + arrayJson(location.rooms, roomJson) + "}";
}

std::string itemJson(const HomeView::Item& item) {
    return fieldsJson({{"id", item.id}, {"document", item.document}});
}

void writeLine(const std::string& line) {
    std::fputs((line + "\n").c_str(), stdout);
    std::fflush(stdout);
}

class JsonOutput : public Output {
public:
    explicit JsonOutput(bool settled) : Output(Style()), _settled(settled) {}

    void endStart(const HomeView& home) override { writeStep(home); }

    bool wantsWholeSteps() const override { return _settled; }

    void beginCommand(const std::string& line) override {
        _command = line;
        _said.clear();
    }

    void endCommand(const std::string& error, const HomeView& home) override {
        if (!error.empty()) {
            say("failed: " + error);
        }
        writeStep(home);
        writeLine(jsonLine(_command, error.empty(), _said));
    }

    void say(const std::string& line) override { _said.push_back(line); }

    void report(const Report& report, const HomeView&) override {
        _settled ? _step.add(report) : writeLine(jsonLine(report));
    }

private:
    void writeStep(const HomeView& home) {
        const bool hasList = _step.hasList();
        for (const std::string& line : _step.take(home)) {
            writeLine(line);
        }
        if (hasList) {
            writeLine(jsonLine(home));
        }
    }

    const bool _settled;
    SettledStep _step;
    std::string _command;
    std::vector<std::string> _said;
};

}  // namespace

std::string jsonLine(const Report& report) {
    std::string json = std::string("{\"call\":\"") + nameOf(report.kind) + "\"";
    switch (report.kind) {
        case Report::Kind::LoadResult:
            json += ",\"plugin\":" + quoted(report.name) + ",\"status\":" + std::to_string(report.status);
            break;
        case Report::Kind::DeviceList:
        case Report::Kind::DeviceFound:
            json += ",\"endpoints\":" + arrayJson(report.endpoints, endpointJson);
            break;
        case Report::Kind::Notify:
        case Report::Kind::Result:
            json += ",\"name\":" + quoted(report.name);
            if (report.transaction != 0) {
                json += ",\"request\":" + std::to_string(report.transaction);
            }
            json += ",\"properties\":" + fieldsJson(report.properties);
    }
    return json + "}";
}

// Sorted by key: a notification that came last may have brought keys that the list doesn't have. Those are left out.
std::string jsonLine(const HomeView::Device& device) {
    std::map<std::string, Value> sorted;
    for (std::size_t i = 0; i < device.listed; ++i) {
        sorted.emplace(device.fields[i].key, device.fields[i].value);
    }
    Fields fields{{"id", device.id}, {"name", device.name}, {"nick", device.nick}, {"type", device.type}};
    for (const auto& [key, value] : sorted) {
        fields.add(key, value);
    }
    return fieldsJson(fields);
}

std::string jsonLine(const HomeView& home) {
    return "{\"home\":{\"locations\":" + arrayJson(home.locations(), locationJson) + ",\"devices\":" +
           arrayJson(home.devices(), [](const HomeView::Device& device) { return jsonLine(device); }) +
           ",\"scenes\":" + arrayJson(home.scenes(), itemJson) +
           ",\"routines\":" + arrayJson(home.routines(), itemJson) + "}}";
}

std::string jsonLine(const std::string& command, bool succeeded, const std::vector<std::string>& output) {
    JsonValue lines = JsonValue::CreateArray();
    for (const std::string& line : output) {
        lines.append(validUtf8(line));
    }
    return "{\"command\":" + quoted(command) + ",\"succeeded\":" + (succeeded ? "true" : "false") +
           ",\"output\":" + lines.toString() + "}";
}

std::unique_ptr<Output> makeJsonOutput(bool settled) {
    return std::make_unique<JsonOutput>(settled);
}

}  // namespace homeloom::tv
