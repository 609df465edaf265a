#include "HomeText.h"

#include <algorithm>
#include <set>
#include <utility>

#include <VMFramework/JsonValue.h>
#include <fmt/format.h>

#include "Output.h"
#include "ReportText.h"

namespace homeloom::tv {

namespace {

using VMFramework::json::JsonValue;
using Device = HomeView::Device;

constexpr int kDeviceIndent = 4;

std::string orDash(const std::string& text) {
    return text.empty() ? "-" : text;
}

std::vector<Table::Cell> deviceRow(const Device& device) {
    return {{device.title(), Tone::Strong},
            orDash(device.stateText()),
            {device.look(), lookTone(device)},
            orDash(device.mainAction()),
            {orDash(device.fields.text("icon_url")), Tone::Dim}};
}

// A room's name with its devices; the tables of all rooms share their widths.
struct RoomTable {
    std::string title;
    Table devices{kDeviceIndent};
};

class RoomsText {
public:
    RoomsText(Output& out, const HomeView& home) : _out(out), _home(home) {
        for (const Device& device : home.devices()) {
            _all.add(deviceRow(device));
        }
    }

    void show() {
        for (const auto& location : _home.locations()) {
            std::vector<RoomTable> rooms;
            for (const auto& room : location.rooms) {
                rooms.push_back(tableOf(room.name, [&](const Device& device) {
                    return device.fields.text("location_id") == location.id && device.fields.text("room_id") == room.id;
                }));
            }
            rooms.push_back(tableOf("(no room)", [&](const Device& device) {
                return device.fields.text("location_id") == location.id && _shown.count(device.id) == 0;
            }));
            showLocation(location, rooms);
        }
        const RoomTable elsewhere =
            tableOf("(in no location)", [this](const Device& device) { return _shown.count(device.id) == 0; });
        if (!elsewhere.devices.empty()) {
            showRoom(elsewhere);
        }
    }

private:
    template <typename Test>
    RoomTable tableOf(const std::string& title, Test belongs) {
        RoomTable table;
        table.title = title;
        for (const Device& device : _home.devices()) {
            if (belongs(device)) {
                table.devices.add(deviceRow(device));
                _shown.insert(device.id);
            }
        }
        table.devices.alignWith(_all);
        return table;
    }

    void showLocation(const HomeView::Location& location, const std::vector<RoomTable>& rooms) {
        const std::string owner = location.isOwner ? "yours" : location.ownerName + "'s";
        const std::string about =
            location.permission.empty() ? owner : fmt::format("{}, {}", owner, location.permission);
        _out.say(fmt::format("{}  {}", _out.style().paint(Tone::Strong, shortened(printable(location.name))),
                             _out.style().paint(Tone::Dim, "(" + shortened(printable(about)) + ")")));
        for (std::size_t i = 0; i < rooms.size(); ++i) {
            // A room is shown without devices too; what stands for no room isn't.
            if (i < location.rooms.size() || !rooms[i].devices.empty()) {
                showRoom(rooms[i]);
            }
        }
    }

    void showRoom(const RoomTable& room) {
        _out.say("  " + shortened(printable(room.title)));
        _out.say(room.devices);
    }

    Output& _out;
    const HomeView& _home;
    Table _all{kDeviceIndent};
    std::set<std::string> _shown;
};

std::string locationName(const HomeView& home, const std::string& id) {
    const auto& locations = home.locations();
    const auto found = std::find_if(locations.begin(), locations.end(), [&id](const auto& l) { return l.id == id; });
    return found != locations.end() ? found->name : id;
}

void addCards(Table& table, const std::string& text) {
    const JsonValue cards = JsonValue::Create(text);
    for (std::size_t i = 0; i < cards.size(); ++i) {
        table.add({{i == 0 ? "cards" : "", Tone::Dim}, cards[i].toString()});
    }
}

/// A table, or in its place a word that there is nothing to show in it.
void show(Output& out, const Table& table, const char* things) {
    if (table.empty()) {
        out.say(fmt::format("The home has no {}.", things));
    }
    out.say(table);
}

}  // namespace

void showRooms(Output& out, const HomeView& home) {
    RoomsText(out, home).show();
    if (home.devices().empty()) {
        out.say("The home has no devices.");
    }
}

void showDevices(Output& out, const HomeView& home) {
    Table table;
    for (const Device& device : home.devices()) {
        std::vector<Table::Cell> row = deviceRow(device);
        row.insert(row.begin(), {device.id, Tone::Plain});
        table.add(std::move(row));
    }
    show(out, table, "devices");
}

void showDevice(Output& out, const Device& device, bool whole) {
    Table table(0, whole ? Table::Fit::WrapLast : Table::Fit::Cut);
    const auto add = [&table](const char* label, const std::string& text, Tone tone = Tone::Plain) {
        table.add({{label, Tone::Dim}, {orDash(text), tone}});
    };
    add("id", device.id);
    add("nick", device.nick, Tone::Strong);
    add("name", device.name);
    add("type", device.type);
    add("look", device.look(), lookTone(device));
    add("main action", device.mainAction());
    for (const auto& [key, value] : device.fields) {
        if (key == "sub_device_card_list_info") {
            addCards(table, valueText(value));
        } else {
            add(key.c_str(), valueText(value));
        }
    }
    out.say(table);
}

void showScenes(Output& out, const HomeView& home) {
    Table table;
    for (const auto& scene : home.scenes()) {
        table.add({scene.id, {scene.name, Tone::Strong}, locationName(home, scene.location)});
    }
    show(out, table, "scenes");
}

void showRoutines(Output& out, const HomeView& home) {
    Table table;
    for (const auto& routine : home.routines()) {
        table.add({routine.id,
                   {routine.name, Tone::Strong},
                   {routine.enabled ? "enabled" : "disabled", routine.enabled ? Tone::Good : Tone::Dim},
                   locationName(home, routine.location)});
    }
    show(out, table, "routines");
}

}  // namespace homeloom::tv
