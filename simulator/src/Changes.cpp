// How a device takes a change: its values, its reactions, and who is told.
#include <charconv>
#include <cmath>

#include "Json.h"
#include "World.h"

namespace simulator {

namespace {

// The value of a property that isn't known yet, whatever its type: the agent leaves it out.
const char* const kUnknown = "null";

const std::string capabilityPrefix = "/capability/";

bool isArrayType(const std::string& type) {
    const std::string ending = "Array";
    return type.size() >= ending.size() && type.compare(type.size() - ending.size(), ending.size(), ending) == 0;
}

/// Larger numbers aren't exact any more.
const double largest = 9e15;

std::string numberOf(const json::value& value, const std::string& text, bool isWhole) {
    double number = 0;
    if (value.is_number()) {
        number = value.to_number<double>();
    } else {
        const std::string digits = value.is_string() ? std::string(value.get_string()) : text;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
        if (error != std::errc() || end != digits.data() + digits.size() || !std::isfinite(number)) {
            return {};
        }
    }
    if (isWhole && std::abs(number) > largest) {
        return {};
    }
    return toText(isWhole ? std::trunc(number) : number);
}

Property* findProperty(Resource& resource, const std::string& name) {
    for (Property& property : resource.properties) {
        if (property.name == name) {
            return &property;
        }
    }
    return nullptr;
}

std::string canonical(const std::string& text) {
    const json::value value = parsed(text);
    return value.is_null() && text != "null" ? quoted(text) : toText(value);
}

const char* valueTypeOf(const json::value& value) {
    switch (value.kind()) {
        case json::kind::string:
            return "string";
        case json::kind::bool_:
            return "boolean";
        case json::kind::int64:
        case json::kind::uint64:
            return "integer";
        case json::kind::double_:
            return "number";
        case json::kind::array:
            return "array";
        default:
            return "object";
    }
}

}  // namespace

std::string valueOfType(const std::string& type, const std::string& text) {
    const json::value value = parsed(text);
    if (text == kUnknown) {
        return text;
    }
    if (type == "String") {
        return value.is_string() ? toText(value) : quoted(text);
    }
    if (type == "Boolean") {
        const std::string word = value.is_string() ? std::string(value.get_string()) : text;
        return word == "true" || word == "false" ? word : std::string();
    }
    if (type == "Integer") {
        return numberOf(value, text, true);
    }
    if (type == "Double" || type == "Float") {
        return numberOf(value, text, false);
    }
    if (type == "Object") {
        return value.is_object() ? toText(value) : std::string();
    }
    if (isArrayType(type)) {
        return value.is_array() ? toText(value) : "[" + canonical(text) + "]";
    }
    return canonical(text);
}

bool isOfType(const std::string& value, const std::string& type) {
    return !valueOfType(type, value).empty();
}

std::string rangeOf(const std::string& type) {
    if (type == "Boolean") {
        return "true or false";
    }
    if (type == "Integer") {
        const std::string limit = std::to_string(static_cast<long long>(largest));
        return "a whole number from -" + limit + " to " + limit;
    }
    if (type == "Double" || type == "Float") {
        return "a number";
    }
    return type == "Object" ? "a JSON object" : "any value";
}

bool capabilityOf(const std::string& uri, std::string& component, std::string& capability) {
    if (uri.compare(0, capabilityPrefix.size(), capabilityPrefix) != 0) {
        return false;
    }
    std::vector<std::string> parts(1);
    for (std::size_t i = capabilityPrefix.size(); i < uri.size(); ++i) {
        if (uri[i] == '/') {
            parts.emplace_back();
        } else {
            parts.back() += uri[i];
        }
    }
    if (parts.size() < 2 || parts.size() > 3) {
        return false;
    }
    capability = parts[0];
    component = parts.size() == 3 ? parts[1] : "main";
    return true;
}

std::string representationOf(const Resource& resource) {
    std::string text = "{";
    for (const Property& property : resource.properties) {
        if (property.value != kUnknown) {
            text += (text.size() == 1 ? "" : ",") + quoted(property.name) + ":" + property.value;
        }
    }
    return text + "}";
}

std::string dataTypesOf(const Resource& resource) {
    std::string text = "{";
    for (const Property& property : resource.properties) {
        if (property.value != kUnknown) {
            text += (text.size() == 1 ? "" : ",") + quoted(property.name) + ":" + quoted(property.type);
        }
    }
    return text + "}";
}

bool World::change(Device& device, const std::vector<Change>& changes) {
    std::vector<Change> converted;
    if (!convert(device, changes, converted)) {
        return false;
    }
    Touched touched;
    apply(device, converted, touched);
    react(device, converted, touched);
    tell(device, touched);
    return true;
}

bool World::convert(const Device& device, const std::vector<Change>& changes, std::vector<Change>& converted) {
    for (const Change& change : changes) {
        const Resource* resource = device.find(change.uri);
        if (resource == nullptr) {
            return false;
        }
        const Property* property = resource->find(change.property);
        std::string value = property == nullptr ? canonical(change.value) : valueOfType(property->type, change.value);
        if (value.empty()) {
            return false;
        }
        converted.push_back({change.uri, change.property, std::move(value)});
    }
    return true;
}

void World::apply(Device& device, const std::vector<Change>& changes, Touched& touched) {
    for (const Change& change : changes) {
        Resource* resource = device.find(change.uri);
        Property* property = resource == nullptr ? nullptr : findProperty(*resource, change.property);
        if (property == nullptr) {
            continue;
        }
        property->value = change.value;
        auto entry = touched.begin();
        while (entry != touched.end() && entry->first != change.uri) {
            ++entry;
        }
        if (entry == touched.end()) {
            entry = touched.insert(entry, {change.uri, {}});
        }
        entry->second.push_back(change.property);
    }
    changed();
}

void World::applyReaction(Device& device, const Reaction& reaction, Touched& touched) {
    std::vector<Change> converted;
    if (convert(device, reaction.changes, converted)) {
        apply(device, converted, touched);
    }
    if (reaction.status >= 0 && reaction.status != device.status) {
        setStatus(device, reaction.status);
    }
}

void World::react(Device& device, const std::vector<Change>& causes, Touched& touched) {
    const Model* model = home.model(device.vid);
    if (model == nullptr) {
        return;
    }
    for (const Reaction& reaction : model->reactions) {
        for (const Change& cause : causes) {
            const bool matches = cause.uri == reaction.uri && cause.property == reaction.property &&
                                 (reaction.value.empty() || cause.value == reaction.value);
            if (!matches) {
                continue;
            }
            if (reaction.afterMilliseconds > 0) {
                postLater(device, reaction.afterMilliseconds, [this, reaction](Device& later) {
                    Touched touchedLater;
                    applyReaction(later, reaction, touchedLater);
                    tell(later, touchedLater);
                });
                continue;
            }
            applyReaction(device, reaction, touched);
        }
    }
}

void World::postLater(const Device& waiting, int milliseconds, std::function<void(Device&)> work) {
    const auto job = [this, homes = _homes, id = waiting.id, work = std::move(work)] {
        const std::lock_guard<std::mutex> lock(mutex);
        Device* device = homes == _homes ? this->device(id) : nullptr;
        if (device != nullptr) {
            work(*device);
        }
    };
    thread.post(0, job, std::chrono::milliseconds(milliseconds));
}

void World::tell(const Device& device, const Touched& touched) {
    if (!isSignedIn) {
        return;
    }
    const bool isServedByHub = home.isServedByHub(device.id);
    for (const auto& [uri, properties] : touched) {
        const Resource* resource = device.find(uri);
        if (!isServedByHub) {
            postUpdate(device.id, uri, representationOf(*resource), dataTypesOf(*resource), "");
        }
        for (const std::string& property : properties) {
            postCapabilityEvent(device, *resource, *resource->find(property));
        }
    }
}

void World::postCapabilityEvent(const Device& device, const Resource& resource, const Property& property) {
    std::string component;
    std::string capability;
    if (!capabilityOf(resource.uri, component, capability)) {
        return;
    }
    const json::value value = parsed(property.value);
    postEvent(HOMELOOM_CORE_SSE_DEVICE_EVENT, toText(json::object{{"deviceId", device.id},
                                                                  {"componentId", component},
                                                                  {"locationId", device.location},
                                                                  {"capability", capability},
                                                                  {"attribute", property.name},
                                                                  {"value", value},
                                                                  {"valueType", valueTypeOf(value)},
                                                                  {"stateChange", true}}));
}

}  // namespace simulator
