// Reads device models, and what devices and scenes have in common with them: resources and changes of them.
#include "ModelReader.h"

#include "HomeForms.h"
#include "HomeNames.h"
#include "World.h"

namespace simulator {

namespace {

Resource* find(std::vector<Resource>& resources, const std::string& uri) {
    for (Resource& resource : resources) {
        if (resource.uri == uri) {
            return &resource;
        }
    }
    return nullptr;
}

const Resource* find(const std::vector<Resource>& resources, const std::string& uri) {
    return find(const_cast<std::vector<Resource>&>(resources), uri);
}

std::string expected(const std::string& type) {
    return "expected a value of type " + type;
}

/// "value", or {"type": "Object", "value": {...}} where the type can't be seen from the value.
void addProperty(const std::string& name, const Node& node, Resource& resource, Mistakes& mistakes) {
    if (!node.isObject()) {
        resource.properties.push_back({name, typeOf(node.value()), node.document()});
        return;
    }
    const std::string type = node["type"].text();
    const std::string value = valueOfType(type, node["value"].document());
    if (value.empty()) {
        note(mistakes, node["value"], expected(type));
    }
    resource.properties.push_back({name, type, value});
}

/// Sets the resource's properties, adding those that it has not.
void readResource(const std::string& uri, const Node& node, std::vector<Resource>& resources, bool osv,
                  Mistakes& mistakes) {
    Resource* resource = find(resources, uri);
    if (resource == nullptr) {
        resource = &resources.emplace_back();
        resource->uri = uri;
        resource->osv = osv;
    }
    for (const auto& [name, member] : node.members()) {
        Property* present = nullptr;
        for (Property& property : resource->properties) {
            present = property.name == name ? &property : present;
        }
        if (present == nullptr) {
            addProperty(name, member, *resource, mistakes);
            continue;
        }
        present->value = valueOfType(present->type, member.document());
        if (present->value.empty()) {
            note(mistakes, member, expected(present->type));
        }
    }
}

/// Null is any value. Properties that the resource has not may be meant: they can trigger reactions.
std::vector<Change> readCauses(const Node& node, const std::vector<Resource>& resources, Mistakes& mistakes) {
    std::vector<Change> causes;
    for (const auto& [uri, properties] : node.members()) {
        if (find(resources, uri) == nullptr) {
            note(mistakes, properties, "no such resource");
            continue;
        }
        for (const auto& [name, value] : properties.members()) {
            causes.push_back({uri, name, value.isNull() ? "" : value.document()});
        }
    }
    return causes;
}

/// The one of them; an empty one, with a mistake noted, where there isn't exactly one.
Change readCause(const Node& node, const std::vector<Resource>& resources, Mistakes& mistakes) {
    const std::size_t mistakesBefore = mistakes.size();
    const std::vector<Change> causes = readCauses(node, resources, mistakes);
    if (causes.size() == 1) {
        return causes.front();
    }
    if (mistakes.size() == mistakesBefore) {
        note(mistakes, node, "expected one property of one resource");
    }
    return {};
}

Reaction readReaction(const Node& node, const std::vector<Resource>& resources, Mistakes& mistakes) {
    const Change cause = readCause(node["when"], resources, mistakes);
    Reaction reaction;
    reaction.uri = cause.uri;
    reaction.property = cause.property;
    reaction.value = cause.value;
    reaction.changes = readChanges(node["set"], resources, mistakes);
    reaction.afterMilliseconds = node["after_ms"].number(0);
    reaction.status = node["status"].isMissing() ? -1 : node["status"].oneOf(kStatusNames);
    return reaction;
}

Command readCommand(const Node& node, const std::vector<Resource>& resources, Mistakes& mistakes) {
    Command command;
    command.component = node["component"].text("main");
    command.capability = node["capability"].text();
    command.command = node["command"].text();
    command.changes = readChanges(node["set"], resources, mistakes);
    return command;
}

Confirmation readConfirmation(const Node& node, const std::vector<Resource>& resources, Mistakes& mistakes) {
    const Change cause = readCause(node["when"], resources, mistakes);
    return {cause.uri,
            cause.property,
            cause.value,
            node["refuses"].flag(false),
            node["after_ms"].number(0),
            readChanges(node["set"], resources, mistakes)};
}

}  // namespace

void note(Mistakes& mistakes, const Node& node, const std::string& reason) {
    mistakes.push_back({node.file(), node.place(), reason});
}

void readResources(const Node& owner, std::vector<Resource>& resources, Mistakes& mistakes) {
    for (const char* member : {"resources", "osv_resources"}) {
        for (const auto& [uri, resource] : owner[member].members()) {
            readResource(uri, resource, resources, std::string(member) == "osv_resources", mistakes);
        }
    }
}

std::vector<Change> readChanges(const Node& node, const std::vector<Resource>& resources, Mistakes& mistakes) {
    for (const auto& [uri, properties] : node.members()) {
        const Resource* const resource = find(resources, uri);
        for (const auto& [name, value] : properties.members()) {
            if (resource != nullptr && resource->find(name) == nullptr) {
                note(mistakes, value, "no such property of the resource");
            }
        }
    }
    return readCauses(node, resources, mistakes);
}

void readCore(const Node& node, CoreRecord& core) {
    core.type = node["type"].text(core.type);
    core.presentationId = node["presentation"].text(core.presentationId);
    core.manufacturerName = node["manufacturer"].text(core.manufacturerName);
    const auto readDocument = [&node](const char* name, std::string& document) {
        document = node[name].isNull() ? "" : node[name].document(document);
    };
    readDocument("details", core.details);
    readDocument("icons", core.icons);
    readDocument("possible_icons", core.possibleIcons);
    readDocument("badge_icons", core.badgeIcons);
}

ModelDocument readModel(const Node& node, Mistakes& mistakes) {
    ModelDocument read;
    Model& model = read.model;
    model.vid = node["vid"].text();
    model.name = node["name"].text("");
    model.types = node["types"].texts();
    model.core.presentationId = model.vid;
    readCore(node["core"], model.core);
    model.uiMetadata = node["ui_metadata"].document("");
    read.canvas = node["canvas"].document("");
    readResources(node, model.resources, mistakes);
    for (const Node& reaction : node["reactions"].elements()) {
        model.reactions.push_back(readReaction(reaction, model.resources, mistakes));
    }
    for (const Node& command : node["commands"].elements()) {
        model.commands.push_back(readCommand(command, model.resources, mistakes));
    }
    for (const Node& confirmation : node["confirms"].elements()) {
        model.confirmations.push_back(readConfirmation(confirmation, model.resources, mistakes));
    }
    return read;
}

Mistakes skippedMetadata(const Node& model) {
    const Node metadata = model["ui_metadata"];
    const bool isMeantToShowNothing =
        metadata.isObject() && metadata["message"].isText() && metadata["message"].text() == "RESOURCE_NOT_FOUND_PATH";
    if (metadata.isMissing() || isMeantToShowNothing) {
        return {};
    }
    Mistakes skipped = mistakesIn(metadata, uiMetadataForm());
    for (HomeMistake& mistake : skipped) {
        mistake.reason += "; the plug-in may skip it";
    }
    return skipped;
}

}  // namespace simulator
