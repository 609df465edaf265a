#include "Storm.h"

#include <algorithm>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <simulator/Agent.h>
#include <simulator/Cloud.h>

#include "RequestTable.h"

namespace homeloom::sweep {

namespace {

using Texts = std::vector<std::string>;

constexpr char kGuest[] = "guest@home.example";
constexpr char kButton[] = "button";

class Generator {
public:
    Generator(std::uint64_t seed, const simulator::Home& home) : _random(seed), _home(home) {}

    Script make(int length) {
        Script script;
        for (int i = 0; i < length; ++i) {
            const bool waits = chance(50);
            script.push_back(next() + (waits ? "" : " &"));
        }
        const Script end = makeGood();
        script.insert(script.end(), end.begin(), end.end());
        return script;
    }

private:
    using Action = std::string (Generator::*)();

    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(_random() % limit); }
    bool chance(std::size_t percent) { return below(100) < percent; }
    const std::string& oneOf(const Texts& texts) { return texts[below(texts.size())]; }
    const simulator::Device& anyDevice() { return _home.devices[below(_home.devices.size())]; }

    std::string next() {
        static const std::vector<std::pair<std::size_t, Action>> actions{
            {14, &Generator::act},     {18, &Generator::request},   {14, &Generator::changeDevice},
            {7, &Generator::event},    {8, &Generator::changeHome}, {8, &Generator::session},
            {13, &Generator::fault},   {5, &Generator::webFault},   {6, &Generator::hub},
            {3, &Generator::settings}, {4, &Generator::time}};
        std::size_t at = below(100);
        for (const auto& [weight, action] : actions) {
            if (at < weight) {
                return (this->*action)();
            }
            at -= weight;
        }
        return "scan";
    }

    // ---- What a person at the TV does ----

    std::string act() { return chance(25) ? oneOf({"scan", "search", "search stop"}) : "do " + anyDevice().id; }

    std::string request() {
        const auto& table = tv::requestTable();
        const tv::RequestSpec& spec = table[below(table.size())];
        return spec.example.empty() ? "request " + spec.name : fmt::format("request {} {}", spec.name, spec.example);
    }

    // ---- What happens in the home ----

    std::string changeDevice() {
        const simulator::Device& device = anyDevice();
        if (device.resources.empty() || chance(20)) {
            bringBack(device);
            return fmt::format("sim status {} {}", device.id,
                               oneOf({"connected", "connected", "disconnected", "inactive", "hidden"}));
        }
        const simulator::Resource& resource = device.resources[below(device.resources.size())];
        if (resource.properties.empty()) {
            return "device " + device.id;
        }
        const simulator::Property& property = resource.properties[below(resource.properties.size())];
        if (property.name == kButton) {
            bringBack(device);
        }
        return fmt::format("sim set {} {} {} {}", device.id, resource.uri, property.name, valueFor(property));
    }

    // One that comes back tells its values; and a press shows for a second only, whatever the button goes on saying.
    void bringBack(const simulator::Device& device) {
        Script& repair = _repairs[device.id];
        repair = {fmt::format("sim status {} connected", device.id)};
        for (const simulator::Resource& resource : device.resources) {
            if (!resource.properties.empty()) {
                const simulator::Property& first = resource.properties.front();
                repair.push_back(fmt::format("sim set {} {} {} {}", device.id, resource.uri, first.name, first.value));
            }
        }
    }

    std::string valueFor(const simulator::Property& property) {
        if (property.value == "true" || property.value == "false") {
            return oneOf({"true", "false"});
        }
        const bool isNumber =
            !property.value.empty() && property.value.find_first_not_of("-.0123456789") == std::string::npos;
        return isNumber ? std::to_string(below(100)) : oneOf({"on", "off", "Run", "Pause", "Ready", "open", "closed"});
    }

    std::string event() {
        const std::string& device = anyDevice().id;
        return oneOf({fmt::format("sim sse device-health deviceId={} status=OFFLINE", device),
                      fmt::format("sim sse device-health deviceId={} status=ONLINE", device),
                      R"(sim sse scene {"lifecycle": "UPDATE", "locationId": "home", "sceneId": "good-night"})",
                      R"(sim sse scene {"lifecycle": "DELETE", "locationId": "home", "sceneId": "none"})",
                      R"(sim sse routine {"lifecycle": "UPDATE", "locationId": "home", "ruleId": "night-watch"})",
                      R"(sim sse favorite {"lifecycle": "UPDATE", "locationId": "home"})", "sim sse 99 {}"});
    }

    std::string changeHome() {
        const std::string added = fmt::format("storm-{}", below(3));
        const std::string& room = anyRoom();
        return oneOf({fmt::format("sim add device {} {} {}", added, anyDevice().vid, room),
                      "sim remove device " + added, "sim rename device " + anyDevice().id + " Other",
                      fmt::format("sim move {} {}", anyDevice().id, room), "sim rename room " + room + " " + room,
                      "sim add room home Loft", "sim remove room Loft", "sim add location Cabin",
                      "sim remove location Cabin"});
    }

    const std::string& anyRoom() {
        static const std::string none = "none";
        const simulator::Location& location = _home.locations[below(_home.locations.size())];
        return location.rooms.empty() ? none : location.rooms[below(location.rooms.size())].id;
    }

    // ---- What the agent does ----

    std::string session() {
        return oneOf({"sim sign-out", "sim sign-in", "sim sign-in", std::string("sim sign-in ") + kGuest,
                      "sim agent io-error", "sim agent disconnected", "sim agent rejected", "sim agent connected",
                      "sim agent connected", "sim update start", "sim update end", "sim state 2", "sim state 1",
                      "sim disclaimer off", "sim disclaimer on"});
    }

    std::string fault() {
        if (chance(20)) {
            return "sim clear";
        }
        const auto& names = simulator::Agent::functionNames();
        const std::string place = fmt::format("{}#{}", names[below(names.size())], 1 + below(20));
        return oneOf({"sim fail " + place + " -5", "sim answer " + place + " -5", "sim drop " + place,
                      "sim twice " + place, "sim null " + place, "sim miscount " + place, "sim delay " + place + " 31s",
                      "sim delay " + place + " 2s", "sim say " + place + " broken"});
    }

    // ---- What cloud, hub control application and TV do ----

    std::string webFault() {
        const std::string& endpoint = oneOf(simulator::Cloud::endpointNames());
        return oneOf({"sim cloud fail " + endpoint + " 500 1", "sim cloud delay " + endpoint + " 2s 1",
                      "sim cloud drop " + endpoint + " 1", "sim cloud cut " + endpoint + " 1", "sim cloud forged",
                      "sim cloud genuine", "sim cloud down", "sim cloud up", "sim cloud clear"});
    }

    std::string hub() {
        return oneOf({"sim hub install", "sim hub uninstall", "sim hub start", "sim hub stop", "sim hub kill",
                      "sim hub pause", "sim hub resume", "sim hub reject", "sim hub accept", "sim hub onboarding fails",
                      "sim hub onboarding waits", "sim hub onboarding succeeds", "sim hub answers held",
                      "sim hub answers half", "sim hub answers malformed", "sim hub answers normal",
                      "sim hub pace 500ms", "sim hub event 0 42"});
    }

    std::string settings() {
        return oneOf({"setting db/menu_widget/language ko_KR.utf8", "setting db/menu_widget/language en_US.utf8",
                      "setting db/comss/countrycode KR", "setting db/comss/countrycode US"});
    }

    std::string time() { return oneOf({"sim time +1s", "sim time +6s", "sim time +31s", "sim time +2m"}); }

    // Nothing outside the plug-in stays broken, away, or another person's: what the plug-in knew of a device before it
    // went away, one that is loaded later can't know.
    Script makeGood() const {
        Script script{"sim clear",
                      "sim cloud clear",
                      "sim cloud genuine",
                      "sim cloud up",
                      "sim hub resume",
                      "sim hub accept",
                      "sim hub answers normal",
                      "sim hub onboarding succeeds",
                      "sim hub pace 0ms",
                      "sim hub install",
                      "sim disclaimer on",
                      "sim state 1",
                      "sim update end",
                      "sim agent connected",
                      "sim sign-in " + _home.account.loginId,
                      "setting db/menu_widget/language en_US.utf8",
                      "setting db/comss/countrycode US"};
        for (const auto& [device, repair] : _repairs) {
            script.insert(script.end(), repair.begin(), repair.end());
        }
        return script;
    }

    std::mt19937_64 _random;
    const simulator::Home& _home;
    std::map<std::string, Script> _repairs;  // of devices that are away, or pressed
};

}  // namespace

Script stormOf(std::uint64_t seed, int length, const simulator::Home& home) {
    return Generator(seed, home).make(length);
}

}  // namespace homeloom::sweep
