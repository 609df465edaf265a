#include "simulator/HomeLoader.h"

#include <fstream>
#include <set>
#include <sstream>

#include "DocumentReader.h"
#include "HomeForms.h"
#include "HomeNames.h"
#include "World.h"

namespace simulator {

namespace {

std::string readFile(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    if (!stream || !(text << stream.rdbuf())) {
        throw HomeError(file, "file", "can't be read, or is empty");
    }
    return text.str();
}

std::string beside(const std::string& file, const std::string& name) {
    const std::size_t slash = file.rfind('/');
    return slash == std::string::npos || name.compare(0, 1, "/") == 0 ? name : file.substr(0, slash + 1) + name;
}

// ---- Resources ----

/// "value", or {"type": "Object", "value": {...}} where the type can't be seen from the value.
Property readProperty(const std::string& name, const Node& node) {
    if (!node.isObject()) {
        return {name, typeOf(node.value()), node.document()};
    }
    const std::string type = node["type"].text();
    const std::string value = valueOfType(type, node["value"].document());
    if (value.empty()) {
        node["value"].fail("expected a value of type " + type);
    }
    return {name, type, value};
}

/// Sets the resource's properties, adding those that it has not.
void readResource(const std::string& uri, const Node& node, std::vector<Resource>& resources, bool osv) {
    Resource* resource = nullptr;
    for (Resource& present : resources) {
        resource = present.uri == uri ? &present : resource;
    }
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
            resource->properties.push_back(readProperty(name, member));
            continue;
        }
        present->value = valueOfType(present->type, member.document());
        if (present->value.empty()) {
            member.fail("expected a value of type " + present->type);
        }
    }
}

void readResources(const Node& owner, std::vector<Resource>& resources) {
    for (const char* member : {"resources", "osv_resources"}) {
        for (const auto& [uri, resource] : owner[member].members()) {
            readResource(uri, resource, resources, std::string(member) == "osv_resources");
        }
    }
}

/// {"/uri": {"property": value}} as changes; null is any value.
std::vector<Change> readChanges(const Node& node, const std::vector<Resource>& resources) {
    std::vector<Change> changes;
    for (const auto& [uri, properties] : node.members()) {
        const Resource* resource = nullptr;
        for (const Resource& present : resources) {
            resource = present.uri == uri ? &present : resource;
        }
        if (resource == nullptr) {
            properties.fail("no such resource");
        }
        for (const auto& [name, value] : properties.members()) {
            changes.push_back({uri, name, value.isNull() ? "" : value.document()});
        }
    }
    return changes;
}

void checkTargets(const Node& node, const std::vector<Resource>& resources) {
    for (const auto& [uri, properties] : node.members()) {
        for (const Resource& resource : resources) {
            for (const auto& [name, value] : properties.members()) {
                if (resource.uri == uri && resource.find(name) == nullptr) {
                    value.fail("no such property of the resource");
                }
            }
        }
    }
}

// ---- Models ----

Reaction readReaction(const Node& node, const std::vector<Resource>& resources) {
    const std::vector<Change> causes = readChanges(node["when"], resources);
    if (causes.size() != 1) {
        node["when"].fail("expected one property of one resource");
    }
    Reaction reaction;
    reaction.uri = causes.front().uri;
    reaction.property = causes.front().property;
    reaction.value = causes.front().value;
    reaction.changes = readChanges(node["set"], resources);
    checkTargets(node["set"], resources);
    reaction.afterMilliseconds = node["after_ms"].number(0);
    reaction.status = node["status"].isMissing() ? -1 : node["status"].oneOf(kStatusNames);
    return reaction;
}

Command readCommand(const Node& node, const std::vector<Resource>& resources) {
    Command command;
    command.component = node["component"].text("main");
    command.capability = node["capability"].text();
    command.command = node["command"].text();
    command.changes = readChanges(node["set"], resources);
    checkTargets(node["set"], resources);
    return command;
}

void readCore(const Node& node, CoreRecord& core) {
    core.type = node["type"].text(core.type);
    core.presentationId = node["presentation"].text(core.presentationId);
    core.manufacturerName = node["manufacturer"].text(core.manufacturerName);
    core.details = node["details"].document(core.details);
    core.icons = node["icons"].document(core.icons);
    core.possibleIcons = node["possible_icons"].document(core.possibleIcons);
    core.badgeIcons = node["badge_icons"].document(core.badgeIcons);
}

/// A model, and what its devices have before their own entries are read.
struct ModelEntry {
    Model model;
    Device pattern;
    std::string canvas;
};

/// Throws a HomeError that tells all mistakes.
void check(const Node& node, const Form& form) {
    std::vector<HomeMistake> mistakes = mistakesIn(node, form);
    if (!mistakes.empty()) {
        throw HomeError(std::move(mistakes));
    }
}

ModelEntry readModel(const Node& node) {
    ModelEntry entry;
    entry.model.vid = node["vid"].text();
    entry.model.uiMetadata = node["ui_metadata"].document("");
    entry.canvas = node["canvas"].document("");
    readResources(node, entry.model.resources);
    for (const Node& reaction : node["reactions"].elements()) {
        entry.model.reactions.push_back(readReaction(reaction, entry.model.resources));
    }
    for (const Node& command : node["commands"].elements()) {
        entry.model.commands.push_back(readCommand(command, entry.model.resources));
    }
    Device& pattern = entry.pattern;
    pattern.vid = entry.model.vid;
    pattern.name = node["name"].text("");
    pattern.types = node["types"].texts();
    pattern.resources = entry.model.resources;
    pattern.core.presentationId = pattern.vid;
    readCore(node["core"], pattern.core);
    return entry;
}

// ---- The home ----

/// Reads a home document part by part; later parts check the ids that they name against the earlier ones.
class HomeReader {
public:
    explicit HomeReader(const Node& document) : _document(document) {}

    Home read() {
        check(_document, homeForm());
        _home.now = _document["now"].text(_home.now);
        readAccount(_document["account"]);
        for (const Node& location : _document["locations"].elements()) {
            readLocation(location);
        }
        for (const Node& model : _document["models"].elements()) {
            readModelEntry(model);
        }
        for (const auto& [id, canvas] : _document["presentations"].members()) {
            _home.presentations[id] = canvas.document();
        }
        for (const Node& device : _document["devices"].elements()) {
            readDevice(device);
        }
        readHub(_document["hub"]);
        readMembers();
        readServices();
        return std::move(_home);
    }

private:
    /// Reads an id that must be new among those of its kind.
    std::string newId(const Node& node, const char* kind) {
        const std::string id = node["id"].text();
        if (!_ids.insert(std::string(kind) + "/" + id).second) {
            node["id"].fail(std::string("another ") + kind + " has the id \"" + id + "\"");
        }
        return id;
    }

    std::string knownLocation(const Node& node) {
        const std::string id = node.text();
        if (_home.location(id) == nullptr) {
            node.fail("no location has the id \"" + id + "\"");
        }
        return id;
    }

    const Device& knownDevice(const Node& node) {
        const std::string id = node.text();
        if (_ids.count("device/" + id) == 0) {
            node.fail("no device has the id \"" + id + "\"");
        }
        return *_home.device(id);
    }

    void readAccount(const Node& node) {
        _home.account = {node["login_id"].text(), node["user_id"].text(), node["access_token"].text(),
                         node["tv"].text("")};
    }

    void readLocation(const Node& node) {
        Location location;
        location.id = newId(node, "location");
        location.name = node["name"].text();
        location.permission = node["permission"].text("");
        const Node owner = node["owner"];
        location.ownerId = owner["id"].text(_home.account.userId);
        location.ownerName = owner["name"].text("");
        for (const Node& room : node["rooms"].elements()) {
            location.rooms.push_back({newId(room, "room"), room["name"].text()});
        }
        const Node migrated = node["favorites_migrated"];
        location.favoritesMigrated = !migrated.isMissing();
        location.favoritesMigratedDate = migrated["date"].text("");
        location.favoritesMigratedModel = migrated["model"].text("");
        _home.locations.push_back(std::move(location));
    }

    void addModel(ModelEntry entry, const Node& place) {
        const std::string vid = entry.model.vid;
        if (!_ids.insert("model/" + vid).second) {
            place.fail("another model has the vid \"" + vid + "\"");
        }
        if (!entry.canvas.empty()) {
            _home.presentations[entry.pattern.core.presentationId] = entry.canvas;
        }
        _home.models[vid] = std::move(entry.model);
        _patterns[vid] = std::move(entry.pattern);
    }

    void readModelEntry(const Node& node) {
        if (node.isObject()) {
            addModel(readModel(node), node["vid"]);
            return;
        }
        const std::string file = beside(node.file(), node.text());
        const Document document(readFile(file), file);
        check(document.root(), modelForm());
        addModel(readModel(document.root()), document.root()["vid"]);
    }

    void readDevice(const Node& node) {
        const std::string vid = node["vid"].text();
        const auto pattern = _patterns.find(vid);
        if (pattern == _patterns.end()) {
            node["vid"].fail("no model has the vid \"" + vid + "\"");
        }
        Device device = pattern->second;
        device.id = newId(node, "device");
        device.name = node["name"].text(device.name);
        device.nick = node["nick"].text("");
        device.prefix = node["prefix"].text("");
        device.status = node["status"].isMissing() ? Connected : node["status"].oneOf(kStatusNames);
        if (!node["types"].isMissing()) {
            device.types = node["types"].texts();
        }
        if (device.types.empty()) {
            node["types"].fail("expected the device's types, here or in its model");
        }
        device.location = knownLocation(node["location"]);
        device.room = node["room"].text("");
        checkRoom(device, node["room"]);
        readResources(node, device.resources);
        readCore(node["core"], device.core);
        device.energyThisMonth = node["energy_this_month"].number(-1);
        device.stream = node["stream"].text("");
        device.images = node["images"].texts();
        _home.devices.push_back(std::move(device));
    }

    void checkRoom(const Device& device, const Node& node) const {
        bool isThere = device.room.empty();
        for (const Room& room : _home.location(device.location)->rooms) {
            isThere = isThere || room.id == device.room;
        }
        if (!isThere) {
            node.fail("location \"" + device.location + "\" has no room with the id \"" + device.room + "\"");
        }
    }

    void readHub(const Node& node) {
        _home.hub.deviceId = node["device"].isMissing() ? "" : knownDevice(node["device"]).id;
        for (const Node& served : node["serves"].elements()) {
            _home.hub.serves.push_back(knownDevice(served).id);
        }
    }

    void readMembers() {
        for (const Node& scene : _document["scenes"].elements()) {
            readScene(scene);
        }
        for (const Node& routine : _document["routines"].elements()) {
            _home.routines.push_back({newId(routine, "routine"), knownLocation(routine["location"]),
                                      routine["enabled"].flag(true), routine["document"].document()});
        }
        for (const Node& favorite : _document["favorites"].elements()) {
            _home.favorites.push_back({newId(favorite, "favorite"), knownLocation(favorite["location"]),
                                       favorite["member"].text(), favorite["member_type"].text("DEVICE"),
                                       favorite["created"].text(_home.now), favorite["updated"].text(_home.now),
                                       favorite["order"].number(0)});
        }
        for (const Node& app : _document["installed_apps"].elements()) {
            _home.installedApps.push_back(
                {newId(app, "installed app"), app["name"].text(), app["status"].text("AUTHORIZED"), app["app"].text(),
                 knownLocation(app["location"]), app["ui"].document(""), app["dashboard"].document("")});
        }
    }

    void readScene(const Node& node) {
        Scene scene;
        scene.id = newId(node, "scene");
        scene.location = knownLocation(node["location"]);
        scene.document = node["document"].document();
        for (const Node& action : node["actions"].elements()) {
            const Device& device = knownDevice(action["device"]);
            checkTargets(action["set"], device.resources);
            for (const Change& change : readChanges(action["set"], device.resources)) {
                scene.actions.push_back({device.id, change});
            }
        }
        _home.scenes.push_back(std::move(scene));
    }

    void readServices() {
        _home.catalog = _document["catalog"].document("");
        _home.sceneIcons = _document["scene_icons"].document("");
        _home.wifiLocker = _document["wifi_locker"].document("");
        for (const auto& [key, value] : _document["key_values"].members()) {
            _home.keyValues[key] = value.text();
        }
        const Node profile = _document["notification_profile"];
        _home.notificationProfile = {profile["provider"].text(""), profile["registration"].text(""),
                                     profile["app"].text(""), profile["locale"].text("")};
        _home.thirdPartyNotification = _document["third_party_notification"].flag(true);
        for (const Node& blocked : _document["blocked_devices"].elements()) {
            _home.blockedDevices.push_back(knownDevice(blocked).id);
        }
    }

    const Node& _document;
    Home _home;
    std::map<std::string, Device> _patterns;  // by vid
    std::set<std::string> _ids;               // "kind/id"
};

std::string textOf(const std::vector<HomeMistake>& mistakes) {
    std::string text;
    for (const HomeMistake& mistake : mistakes) {
        text += (text.empty() ? "" : "\n") + mistake.file + ": " + mistake.place + ": " + mistake.reason;
    }
    return text;
}

}  // namespace

const char* typeOf(const json::value& value) {
    switch (value.kind()) {
        case json::kind::bool_:
            return "Boolean";
        case json::kind::int64:
        case json::kind::uint64:
            return "Integer";
        case json::kind::double_:
            return "Double";
        case json::kind::array:
            return "Array";
        default:
            return "String";
    }
}

HomeError::HomeError(std::vector<HomeMistake> mistakes)
    : std::runtime_error(textOf(mistakes)), _mistakes(std::move(mistakes)) {}

HomeError::HomeError(const std::string& file, const std::string& place, const std::string& reason)
    : HomeError(std::vector<HomeMistake>{{file, place, reason}}) {}

Home loadHome(const std::string& file) {
    return parseHome(readFile(file), file);
}

Home parseHome(std::string_view text, const std::string& name) {
    const Document document(text, name);
    return HomeReader(document.root()).read();
}

Model loadModel(const std::string& file) {
    const Document document(readFile(file), file);
    check(document.root(), modelForm());
    return readModel(document.root()).model;
}

}  // namespace simulator
