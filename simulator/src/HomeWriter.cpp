// Writes a home as the document from which HomeLoader.cpp reads it again, models and all.
#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "HomeNames.h"
#include "Json.h"
#include "simulator/HomeLoader.h"

namespace simulator {

namespace {

constexpr std::size_t kLineWidth = 110;

/// A value's text over several lines: what fits into one line stays on it.
void layOut(std::string& out, const json::value& value, std::size_t indent, std::size_t before) {
    const std::string flat = toText(value);
    const bool isBranch = value.is_object() || value.is_array();
    if (!isBranch || flat.size() <= 2 || indent + before + flat.size() <= kLineWidth) {
        out += flat;
        return;
    }
    const bool isObject = value.is_object();
    const std::string margin(indent + 2, ' ');
    bool first = true;
    const auto add = [&](const std::string& key, const json::value& element) {
        out += (first ? "\n" : ",\n") + margin + key;
        layOut(out, element, indent + 2, key.size());
        first = false;
    };
    out += isObject ? '{' : '[';
    if (isObject) {
        for (const auto& member : value.get_object()) {
            add(quoted({member.key().data(), member.key().size()}) + ": ", member.value());
        }
    } else {
        for (const json::value& element : value.get_array()) {
            add("", element);
        }
    }
    out += '\n' + std::string(indent, ' ') + (isObject ? '}' : ']');
}

const char* statusName(int status) {
    const auto found = std::find_if(std::begin(kStatusNames), std::end(kStatusNames),
                                    [status](const auto& name) { return name.second == status; });
    return found == std::end(kStatusNames) ? kStatusNames[0].first : found->first;
}

/// An object whose members are left out when they say nothing.
class Members {
public:
    explicit Members(std::string place) : _place(std::move(place)) {}

    void always(const char* name, const std::string& text) { _object[name] = text; }
    void text(const char* name, const std::string& text, const std::string& otherwise = "") {
        if (text != otherwise) {
            _object[name] = text;
        }
    }
    void number(const char* name, int number, int otherwise) {
        if (number != otherwise) {
            _object[name] = number;
        }
    }
    void flag(const char* name, bool flag, bool otherwise) {
        if (flag != otherwise) {
            _object[name] = flag;
        }
    }
    /// Throws for a text that is no JSON: the document has no other place for it. An empty one, where otherwise there
    /// would be some, is null.
    void document(const char* name, const std::string& text, const std::string& otherwise = "") {
        if (text == otherwise) {
            return;
        }
        if (text.empty()) {
            _object[name] = nullptr;
            return;
        }
        json::error_code error;
        json::value value = json::parse(text, error);
        if (error) {
            throw std::runtime_error(_place + ": its " + name + " is no JSON and can't be written");
        }
        _object[name] = std::move(value);
    }
    void texts(const char* name, const std::vector<std::string>& texts) {
        if (!texts.empty()) {
            _object[name] = json::array(texts.begin(), texts.end());
        }
    }
    void texts(const char* name, const std::map<std::string, std::string>& texts) {
        json::object object;
        for (const auto& [key, text] : texts) {
            object[key] = text;
        }
        branch(name, std::move(object));
    }
    template <typename Branch>  // object or array
    void branch(const char* name, Branch branch) {
        if (!branch.empty()) {
            _object[name] = std::move(branch);
        }
    }
    json::object take() { return std::move(_object); }

private:
    const std::string _place;
    json::object _object;
};

template <typename Things, typename Write>
json::array arrayOf(const Things& things, Write write) {
    json::array array;
    for (const auto& thing : things) {
        array.push_back(write(thing));
    }
    return array;
}

json::value valueOf(const Property& property, bool typeIsKnown) {
    json::value value = parsed(property.value);
    if (typeIsKnown || (!value.is_object() && property.type == typeOf(value))) {
        return value;
    }
    return json::object{{"type", property.type}, {"value", std::move(value)}};
}

const Resource* resourceIn(const std::vector<Resource>& resources, const std::string& uri) {
    const auto found =
        std::find_if(resources.begin(), resources.end(), [&](const Resource& resource) { return resource.uri == uri; });
    return found == resources.end() ? nullptr : &*found;
}

/// Those of the resources and values that the pattern, a model's, doesn't give by itself.
void writeResources(Members& members, const std::vector<Resource>& resources, const std::vector<Resource>& pattern) {
    json::object plain;
    json::object osv;
    for (const Resource& resource : resources) {
        const Resource* const known = resourceIn(pattern, resource.uri);
        json::object properties;
        for (const Property& property : resource.properties) {
            const Property* const same = known == nullptr ? nullptr : known->find(property.name);
            if (same == nullptr || same->value != property.value) {
                properties[property.name] = valueOf(property, same != nullptr);
            }
        }
        if (known == nullptr || !properties.empty()) {
            (resource.osv ? osv : plain)[resource.uri] = std::move(properties);
        }
    }
    members.branch("resources", std::move(plain));
    members.branch("osv_resources", std::move(osv));
}

json::object changesOf(const std::vector<Change>& changes) {
    json::object resources;
    for (const Change& change : changes) {
        if (!resources[change.uri].is_object()) {
            resources[change.uri] = json::object();
        }
        resources[change.uri].get_object()[change.property] = parsed(change.value);  // null: any value
    }
    return resources;
}

json::object reactionJson(const Reaction& reaction) {
    Members members("a reaction");
    members.branch("when", changesOf({{reaction.uri, reaction.property, reaction.value}}));
    members.branch("set", changesOf(reaction.changes));
    members.number("after_ms", reaction.afterMilliseconds, 0);
    if (reaction.status != -1) {
        members.text("status", statusName(reaction.status));
    }
    return members.take();
}

json::object confirmationJson(const Confirmation& confirmation) {
    Members members("a confirmation");
    members.branch("when", changesOf({{confirmation.uri, confirmation.property, confirmation.value}}));
    members.flag("refuses", confirmation.refuses, false);
    members.number("after_ms", confirmation.afterMilliseconds, 0);
    members.branch("set", changesOf(confirmation.changes));
    return members.take();
}

json::object commandJson(const Command& command) {
    Members members("a command");
    members.text("component", command.component, "main");
    members.always("capability", command.capability);
    members.always("command", command.command);
    members.branch("set", changesOf(command.changes));
    return members.take();
}

/// What the record doesn't have of the pattern.
json::object coreJson(const CoreRecord& core, const CoreRecord& pattern, const std::string& place) {
    Members members(place);
    members.text("type", core.type, pattern.type);
    members.text("presentation", core.presentationId, pattern.presentationId);
    members.text("manufacturer", core.manufacturerName, pattern.manufacturerName);
    members.document("details", core.details, pattern.details);
    members.document("icons", core.icons, pattern.icons);
    members.document("possible_icons", core.possibleIcons, pattern.possibleIcons);
    members.document("badge_icons", core.badgeIcons, pattern.badgeIcons);
    return members.take();
}

json::object modelJson(const Model& model) {
    const std::string place = "model " + model.vid;
    CoreRecord pattern;
    pattern.presentationId = model.vid;
    Members members(place);
    members.always("vid", model.vid);
    members.text("name", model.name);
    members.texts("types", model.types);
    members.branch("core", coreJson(model.core, pattern, place));
    members.document("ui_metadata", model.uiMetadata);
    writeResources(members, model.resources, {});
    members.branch("reactions", arrayOf(model.reactions, reactionJson));
    members.branch("commands", arrayOf(model.commands, commandJson));
    members.branch("confirms", arrayOf(model.confirmations, confirmationJson));
    return members.take();
}

// The reader refuses ids of devices that are gone, and nothing comes of them.
std::vector<std::string> knownDevices(const std::vector<std::string>& ids, const Home& home) {
    std::vector<std::string> known;
    std::copy_if(ids.begin(), ids.end(), std::back_inserter(known),
                 [&home](const std::string& id) { return home.device(id) != nullptr; });
    return known;
}

/// What a device has beyond its model, or otherwise.
json::object deviceJson(const Device& device, const Home& home) {
    const Model* const model = home.model(device.vid);
    if (model == nullptr) {
        throw std::runtime_error("device " + device.id + " is of no model and can't be written");
    }
    for (const Resource& resource : model->resources) {
        if (device.find(resource.uri) == nullptr) {
            throw std::runtime_error("device " + device.id + " lacks its model's " + resource.uri +
                                     " and can't be written");
        }
    }
    Members members("device " + device.id);
    members.always("id", device.id);
    members.always("vid", device.vid);
    members.text("name", device.name, model->name);
    members.text("nick", device.nick);
    members.text("prefix", device.prefix);
    if (device.types != model->types) {
        members.texts("types", device.types);
    }
    if (device.status != Connected) {
        members.text("status", statusName(device.status));
    }
    members.always("location", device.location);
    members.text("room", device.room);
    members.branch("core", coreJson(device.core, model->core, "device " + device.id));
    members.number("energy_this_month", device.energyThisMonth, -1);
    members.text("stream", device.stream);
    members.texts("images", device.images);
    writeResources(members, device.resources, model->resources);
    return members.take();
}

json::object locationJson(const Location& location, const std::string& userId) {
    Members members("location " + location.id);
    members.always("id", location.id);
    members.always("name", location.name);
    members.text("permission", location.permission);
    Members owner("");
    owner.text("id", location.ownerId, userId);
    owner.text("name", location.ownerName);
    members.branch("owner", owner.take());
    members.branch("rooms", arrayOf(location.rooms, [](const Room& room) {
                       return json::object{{"id", room.id}, {"name", room.name}};
                   }));
    json::object result = members.take();
    if (location.favoritesMigrated) {
        result["favorites_migrated"] =
            json::object{{"date", location.favoritesMigratedDate}, {"model", location.favoritesMigratedModel}};
    }
    return result;
}

json::object sceneJson(const Scene& scene, const Home& home) {
    std::vector<SceneAction> actions = scene.actions;
    actions.erase(std::remove_if(actions.begin(), actions.end(),
                                 [&home](const SceneAction& action) { return home.device(action.device) == nullptr; }),
                  actions.end());
    Members members("scene " + scene.id);
    members.always("id", scene.id);
    members.always("location", scene.location);
    members.document("document", scene.document, "absent");
    members.branch("actions", arrayOf(actions, [](const SceneAction& action) {
                       return json::object{{"device", action.device}, {"set", changesOf({action.change})}};
                   }));
    return members.take();
}

json::object routineJson(const Routine& routine) {
    Members members("routine " + routine.id);
    members.always("id", routine.id);
    members.always("location", routine.location);
    members.flag("enabled", routine.enabled, true);
    members.document("document", routine.document, "absent");
    return members.take();
}

json::object favoriteJson(const Favorite& favorite, const std::string& now) {
    Members members("");
    members.always("id", favorite.id);
    members.always("location", favorite.location);
    members.always("member", favorite.memberId);
    members.text("member_type", favorite.memberType, "DEVICE");
    members.text("created", favorite.createDate, now);
    members.text("updated", favorite.lastUpdateDate, now);
    members.number("order", favorite.order, 0);
    return members.take();
}

json::object installedAppJson(const InstalledApp& app) {
    Members members("installed app " + app.id);
    members.always("id", app.id);
    members.always("name", app.displayName);
    members.text("status", app.status, "AUTHORIZED");
    members.always("app", app.appId);
    members.always("location", app.location);
    members.document("ui", app.ui);
    members.document("dashboard", app.dashboard);
    return members.take();
}

json::object profileJson(const NotificationProfile& profile) {
    Members members("");
    members.text("provider", profile.provider);
    members.text("registration", profile.registrationId);
    members.text("app", profile.appId);
    members.text("locale", profile.locale);
    return members.take();
}

json::object accountJson(const Account& account) {
    Members members("");
    members.always("login_id", account.loginId);
    members.always("user_id", account.userId);
    members.always("access_token", account.accessToken);
    members.text("tv", account.deviceId);
    return members.take();
}

json::object presentationsJson(const std::map<std::string, std::string>& presentations) {
    Members members("presentations");
    for (const auto& [id, canvas] : presentations) {
        members.document(id.c_str(), canvas, "absent");
    }
    return members.take();
}

void writeServices(Members& members, const Home& home) {
    members.document("catalog", home.catalog);
    members.document("scene_icons", home.sceneIcons);
    members.document("wifi_locker", home.wifiLocker);
    members.texts("key_values", home.keyValues);
    members.branch("notification_profile", profileJson(home.notificationProfile));
    members.flag("third_party_notification", home.thirdPartyNotification, true);
    members.texts("blocked_devices", knownDevices(home.blockedDevices, home));
}

}  // namespace

std::string writeHome(const Home& home) {
    Members members("home");
    members.always("now", home.now);
    members.branch("account", accountJson(home.account));
    members.branch("locations", arrayOf(home.locations, [&](const Location& location) {
                       return locationJson(location, home.account.userId);
                   }));
    members.branch("models", arrayOf(home.models, [](const auto& model) { return modelJson(model.second); }));
    members.branch("presentations", presentationsJson(home.presentations));
    members.branch("devices", arrayOf(home.devices, [&](const Device& device) { return deviceJson(device, home); }));
    Members hub("hub");
    if (home.device(home.hub.deviceId) != nullptr) {
        hub.text("device", home.hub.deviceId);
    }
    hub.texts("serves", knownDevices(home.hub.serves, home));
    members.branch("hub", hub.take());
    members.branch("scenes", arrayOf(home.scenes, [&](const Scene& scene) { return sceneJson(scene, home); }));
    members.branch("routines", arrayOf(home.routines, routineJson));
    members.branch("favorites",
                   arrayOf(home.favorites, [&](const Favorite& favorite) { return favoriteJson(favorite, home.now); }));
    members.branch("installed_apps", arrayOf(home.installedApps, installedAppJson));
    writeServices(members, home);
    std::string out;
    layOut(out, members.take(), 0, 0);
    return out + '\n';
}

}  // namespace simulator
