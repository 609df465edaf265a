#include <algorithm>

#include "Json.h"
#include "simulator/HomeLoader.h"

namespace simulator {

namespace {

const int modelsOfKind = 4;

/// One kind of made-up device. Its UI metadata shows `property` of `uri` with its two values, `on` making it
/// active, and switches between them.
struct Kind {
    const char* name;
    const char* type;
    const char* uri;
    const char* property;
    const char* on;
    const char* off;
    const char* controlType;
    const char* moreUri;  // a second resource, shown behind the state; its property is "level"
};

const Kind kinds[] = {
    {"washer", "oic.d.washer", "/operational/state/vs/0", "x.com.norvane.da.state", "Run", "Ready", "PlayPause",
     "/temperature/vs/0"},
    {"light", "oic.d.light", "/capability/switch/main/0", "switch", "on", "off", "ToggleSwitch",
     "/capability/switchLevel/main/0"},
    {"airconditioner", "oic.d.airconditioner", "/power/vs/0", "x.com.norvane.da.power", "On", "Off", "ToggleSwitch",
     "/temperature/current/vs/0"},
    {"lock", "oic.d.smartlock", "/capability/lock/main/0", "lock", "locked", "unlocked", "ToggleSwitch",
     "/capability/battery/main/0"},
    {"contact", "x.com.hl.d.sensor.contact", "/capability/contactSensor/main/0", "contact", "open", "closed", "",
     "/capability/battery/main/0"},
};
const int kindCount = static_cast<int>(sizeof kinds / sizeof kinds[0]);

std::string numbered(const char* kind, int number) {
    return std::string(kind) + "-" + std::to_string(number);
}

json::object argument(const char* name, const char* uri, const char* property, const json::array& alternatives) {
    return {{"n", name}, {"href", uri}, {"property", property}, {"alternatives", alternatives}};
}

json::object uiMetadata(const Kind& kind, const std::string& vid) {
    const json::array values = {{{"key", kind.on}, {"value", "__PO_ON"}, {"type", "active"}},
                                {{"key", kind.off}, {"value", "__PO_OFF"}, {"type", "inactive"}}};
    const json::array arguments = {argument("state", kind.uri, kind.property, values),
                                   argument("level", kind.moreUri, "level", {})};
    json::array actions;
    if (*kind.controlType != '\0') {
        actions.push_back({{"controlType", kind.controlType},
                           {"link", {{"href", kind.uri}, {"if", "oic.if.a"}, {"rt", "x.com.norvane.state"}}},
                           {"property", kind.property},
                           {"order", 1},
                           {"alternatives", values}});
    }
    return {
        {"message", "SUCCESS"},
        {"data",
         {{"version", "1.0"},
          {"vid", vid},
          {"iconUrl", {{"mid", std::string("preload://") + kind.name + ".svg"}}},
          {"ms", {{{"name", "state"}, {"order", 1}, {"label", {{"label", "__PO_STATE"}, {"arguments", arguments}}}}}},
          {"ma", actions},
          {"dpResources", json::array()},
          {"language",
           {{{"locale", "en"},
             {"poCodes",
              {{{"po", "__PO_STATE"}, {"label", "<state> at <level>"}},
               {{"po", "__PO_ON"}, {"label", "On"}},
               {{"po", "__PO_OFF"}, {"label", "Off"}}}}}}}}}};
}

/// What devices of the local hub are shown by.
json::object canvas(const Kind& kind) {
    const json::array alternatives = {{{"key", kind.on}, {"value", "PO_ON"}, {"type", "active"}},
                                      {{"key", kind.off}, {"value", "PO_OFF"}, {"type", "inactive"}}};
    return {{"dashboard",
             {{"states", {{{"component", "main"}, {"capability", kind.property}, {"alternatives", alternatives}}}},
              {"actions",
               {{{"component", "main"},
                 {"capability", kind.property},
                 {"displayType", "toggleSwitch"},
                 {"toggleSwitch", {{"command", {{"on", kind.on}, {"off", kind.off}}}}}}}}}},
            {"language",
             {{{"locale", "en"},
               {"poCodes", {{{"po", "PO_ON"}, {"label", "On"}}, {{"po", "PO_OFF"}, {"label", "Off"}}}}}}}};
}

Model generateModel(const Kind& kind, const std::string& vid) {
    Model model;
    model.vid = vid;
    model.name = std::string("Made-up ") + kind.name;
    model.types = {kind.type};
    model.core.presentationId = vid;
    model.core.manufacturerName = "Norvane";
    model.core.icons = R"({"iconKey":")" + std::string(kind.name) + R"("})";
    model.uiMetadata = toText(uiMetadata(kind, vid));
    model.resources = {{kind.uri, {{kind.property, "String", quoted(kind.off)}}, false},
                       {kind.moreUri, {{"level", "Integer", "20"}}, false}};
    for (const char* command : {kind.on, kind.off}) {
        model.commands.push_back({"main", kind.property, command, {{kind.uri, kind.property, quoted(command)}}});
    }
    return model;
}

void generateLocations(const HomePlan& plan, Home& home) {
    for (int i = 0; i < plan.locations; ++i) {
        Location location;
        location.id = numbered("location", i);
        location.name = "Location " + std::to_string(i);
        location.permission = "OWNER";
        location.ownerId = home.account.userId;
        for (int j = 0; j < plan.roomsPerLocation; ++j) {
            const int number = i * plan.roomsPerLocation + j;
            location.rooms.push_back({numbered("room", number), "Room " + std::to_string(number)});
        }
        home.locations.push_back(std::move(location));
    }
}

Device generateDevice(const HomePlan& plan, const Home& home, int number) {
    const bool isServedByHub = number < plan.hubDevices;
    // Devices of the hub are lights: what they can do is a capability.
    const Kind& kind = isServedByHub ? kinds[1] : kinds[number % kindCount];
    Device device = newDevice(home.models.at(numbered(kind.name, number / kindCount % modelsOfKind)));
    device.id = numbered("device", number);
    device.nick = std::string(kind.name) + " " + std::to_string(number);
    const Location& location = home.locations[static_cast<std::size_t>(number % plan.locations)];
    device.location = location.id;
    if (!location.rooms.empty()) {
        device.room = location.rooms[static_cast<std::size_t>(number / plan.locations) % location.rooms.size()].id;
    }
    return device;
}

void generateScenesAndRoutines(const HomePlan& plan, Home& home) {
    for (int i = 0; i < plan.scenes; ++i) {
        const std::string id = numbered("scene", i);
        home.scenes.push_back({id,
                               numbered("location", i % plan.locations),
                               toText(json::object{{"id", id}, {"name", "Scene " + std::to_string(i)}}),
                               {}});
    }
    for (int i = 0; i < plan.routines; ++i) {
        const std::string id = numbered("routine", i);
        home.routines.push_back({id, numbered("location", i % plan.locations), true,
                                 toText(json::object{{"ruleId", id}, {"meta", {{"hidden", false}}}})});
    }
}

}  // namespace

Home generateHome(const HomePlan& plan) {
    Home home;
    home.account = {"resident@home.example", "user-0", "token-0", "tv-0"};
    HomePlan possible = plan;
    possible.locations = std::max(1, plan.locations);
    generateLocations(possible, home);
    for (const Kind& kind : kinds) {
        for (int i = 0; i < modelsOfKind; ++i) {
            const std::string vid = numbered(kind.name, i);
            home.models[vid] = generateModel(kind, vid);
            home.presentations[vid] = toText(canvas(kind));
        }
    }
    home.devices.reserve(static_cast<std::size_t>(std::max(0, plan.devices)));
    for (int i = 0; i < plan.devices; ++i) {
        home.devices.push_back(generateDevice(possible, home, i));
        if (i < plan.hubDevices) {
            home.hub.serves.push_back(home.devices.back().id);
        }
    }
    generateScenesAndRoutines(possible, home);
    return home;
}

Home generateHome(int devices) {
    HomePlan plan;
    plan.devices = devices;
    return generateHome(plan);
}

}  // namespace simulator
