#include "simulator/HomeLoader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <set>
#include <sstream>

#include "DocumentReader.h"
#include "HomeForms.h"
#include "HomeNames.h"
#include "ModelReader.h"

namespace simulator {

namespace {

std::string readFile(const std::string& file) {
    errno = 0;
    const std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();  // a folder opens, and fails here
    if (!stream.is_open() || errno != 0) {
        throw HomeError(file, "file", std::string("can't be read: ") + std::strerror(errno));
    }
    if (text.str().empty()) {
        throw HomeError(file, "file", "is empty");
    }
    return text.str();
}

std::string beside(const std::string& file, const std::string& name) {
    const std::size_t slash = file.rfind('/');
    return slash == std::string::npos || name.compare(0, 1, "/") == 0 ? name : file.substr(0, slash + 1) + name;
}

/// Throws a HomeError that tells all mistakes, if there are any.
void refuse(Mistakes mistakes) {
    if (!mistakes.empty()) {
        throw HomeError(std::move(mistakes));
    }
}

void join(Mistakes& mistakes, const Mistakes& others) {
    mistakes.insert(mistakes.end(), others.begin(), others.end());
}

/// Reads a home document part by part; later parts check the ids that they name against the earlier ones.
class HomeReader {
public:
    HomeReader(const Node& document, Mistakes& warnings) : _document(document), _warnings(warnings) {}

    /// Throws a HomeError with all mistakes of the document's form, or else with all others.
    Home read() {
        refuse(mistakesIn(_document, homeForm()));
        _home.now = _document["now"].text(_home.now);
        readAccount(_document["account"]);
        for (const Node& location : _document["locations"].elements()) {
            readLocation(location);
        }
        if (_home.locations.empty()) {
            note(_warnings, _document["locations"], "without a location a home is taken for one that can't be read");
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
        refuse(std::move(_mistakes));
        return std::move(_home);
    }

private:
    /// Reads an id that must be new among those of its kind.
    std::string newId(const Node& node, const char* kind) {
        const std::string id = node["id"].text();
        if (!_ids.insert(std::string(kind) + "/" + id).second) {
            note(_mistakes, node["id"], std::string("another ") + kind + " has the id \"" + id + "\"");
        }
        return id;
    }

    bool isKnown(const char* kind, const std::string& id) const { return _ids.count(std::string(kind) + "/" + id) > 0; }

    std::string knownId(const Node& node, const char* kind) {
        const std::string id = node.text();
        if (!isKnown(kind, id)) {
            note(_mistakes, node, std::string("no ") + kind + " has the id \"" + id + "\"");
        }
        return id;
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

    void addModel(const Node& node) {
        join(_warnings, skippedMetadata(node));
        ModelDocument read = readModel(node, _mistakes);
        const std::string vid = read.model.vid;
        if (!_home.models.emplace(vid, read.model).second) {
            note(_mistakes, node["vid"], "another model has the vid \"" + vid + "\"");
        }
        if (!read.canvas.empty()) {
            _home.presentations[read.model.core.presentationId] = std::move(read.canvas);
        }
    }

    void readModelEntry(const Node& node) {
        if (node.isObject()) {
            addModel(node);
            return;
        }
        try {
            const std::string file = beside(node.file(), node.text());
            const Document document(readFile(file), file);
            refuse(mistakesIn(document.root(), modelForm()));
            addModel(document.root());
        } catch (const HomeError& error) {
            join(_mistakes, error.mistakes());
            _lacksModels = true;
        }
    }

    void readDevice(const Node& node) {
        Device device;
        const std::string vid = node["vid"].text();
        const Model* const model = _home.model(vid);
        if (model != nullptr) {
            device = newDevice(*model);
        } else {
            // Nothing that it has can be judged without its model.
            _unclear.insert(node["id"].text());
            if (!_lacksModels) {
                note(_mistakes, node["vid"], "no model has the vid \"" + vid + "\"");
            }
        }
        device.id = newId(node, "device");
        device.name = node["name"].text(device.name);
        device.nick = node["nick"].text("");
        device.prefix = node["prefix"].text("");
        if (device.nick.empty() && device.prefix.empty()) {
            note(_warnings, node["nick"], "a device is shown by its nick, or else its prefix, and never by its name");
        }
        device.status = node["status"].isMissing() ? Connected : node["status"].oneOf(kStatusNames);
        if (!node["types"].isMissing()) {
            device.types = node["types"].texts();
        }
        if (device.types.empty() && model != nullptr) {
            note(_mistakes, node["types"], "expected the device's types, here or in its model");
        }
        device.location = knownId(node["location"], "location");
        device.room = node["room"].text("");
        checkRoom(device, node["room"]);
        readResources(node, device.resources, _mistakes);
        readCore(node["core"], device.core);
        device.energyThisMonth = node["energy_this_month"].number(-1);
        device.stream = node["stream"].text("");
        device.images = node["images"].texts();
        _home.devices.push_back(std::move(device));
    }

    void checkRoom(const Device& device, const Node& node) {
        const Location* const location = _home.location(device.location);
        if (device.room.empty() || location == nullptr) {
            return;
        }
        if (std::none_of(location->rooms.begin(), location->rooms.end(),
                         [&device](const Room& room) { return room.id == device.room; })) {
            note(_mistakes, node,
                 "location \"" + device.location + "\" has no room with the id \"" + device.room + "\"");
        }
    }

    void readHub(const Node& node) {
        if (!node["device"].isMissing()) {
            _home.hub.deviceId = knownId(node["device"], "device");
        }
        for (const Node& served : node["serves"].elements()) {
            _home.hub.serves.push_back(knownId(served, "device"));
        }
    }

    void readMembers() {
        for (const Node& scene : _document["scenes"].elements()) {
            readScene(scene);
        }
        for (const Node& routine : _document["routines"].elements()) {
            _home.routines.push_back({newId(routine, "routine"), knownId(routine["location"], "location"),
                                      routine["enabled"].flag(true), routine["document"].document()});
        }
        for (const Node& favorite : _document["favorites"].elements()) {
            _home.favorites.push_back({newId(favorite, "favorite"), knownId(favorite["location"], "location"),
                                       favorite["member"].text(), favorite["member_type"].text("DEVICE"),
                                       favorite["created"].text(_home.now), favorite["updated"].text(_home.now),
                                       favorite["order"].number(0)});
        }
        for (const Node& app : _document["installed_apps"].elements()) {
            _home.installedApps.push_back(
                {newId(app, "installed app"), app["name"].text(), app["status"].text("AUTHORIZED"), app["app"].text(),
                 knownId(app["location"], "location"), app["ui"].document(""), app["dashboard"].document("")});
        }
    }

    void readScene(const Node& node) {
        Scene scene;
        scene.id = newId(node, "scene");
        scene.location = knownId(node["location"], "location");
        scene.document = node["document"].document();
        for (const Node& action : node["actions"].elements()) {
            const Device* const device = _home.device(knownId(action["device"], "device"));
            if (device == nullptr || _unclear.count(device->id) > 0) {
                continue;
            }
            for (const Change& change : readChanges(action["set"], device->resources, _mistakes)) {
                scene.actions.push_back({device->id, change});
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
            _home.blockedDevices.push_back(knownId(blocked, "device"));
        }
    }

    const Node& _document;
    Mistakes& _warnings;
    Mistakes _mistakes;
    Home _home;
    std::set<std::string> _ids;      // "kind/id"
    std::set<std::string> _unclear;  // devices whose model isn't known
    bool _lacksModels = false;       // a model file was refused, and with it a vid that isn't known
};

std::string textOf(const Mistakes& mistakes) {
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

Home loadHome(const std::string& file, std::vector<HomeMistake>* warnings) {
    return parseHome(readFile(file), file, warnings);
}

Home parseHome(std::string_view text, const std::string& name, std::vector<HomeMistake>* warnings) {
    const Document document(text, name);
    Mistakes found;
    Home home = HomeReader(document.root(), found).read();
    if (warnings != nullptr) {
        *warnings = std::move(found);
    }
    return home;
}

Model loadModel(const std::string& file) {
    const Document document(readFile(file), file);
    refuse(mistakesIn(document.root(), modelForm()));
    Mistakes mistakes;
    Model model = readModel(document.root(), mistakes).model;
    refuse(std::move(mistakes));
    return model;
}

}  // namespace simulator
