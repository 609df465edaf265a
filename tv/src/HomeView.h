#ifndef HOMELOOM_TV_HOMEVIEW_H
#define HOMELOOM_TV_HOMEVIEW_H

#include <string>
#include <unordered_map>
#include <vector>

#include "Report.h"

namespace homeloom::tv {

/// The home as a screen of the TV would hold it: made of what the plug-in reports, and of nothing else.
class HomeView {
public:
    struct Device {
        std::string id;
        std::string name;
        std::string nick;
        std::string type;
        Fields fields;           // all others, by the keys of endpoint and notification
        std::size_t listed = 0;  // so many of them, the first ones, came with the list

        /// What people call it.
        const std::string& title() const { return nick.empty() ? name : nick; }
        /// Whether its state is that none is known yet.
        bool isStateUnknown() const;
        std::string stateText() const { return isStateUnknown() ? "No state yet" : fields.text("state_text"); }
        /// Lit or greyed out.
        bool looksOn() const { return fields.number("active_state") != 0; }
        bool isConnected() const { return fields.number("cloud_device_status") == 0; }
        bool isRunning() const { return fields.flag("running_state"); }
        std::string look() const;
        /// Control and its icon; empty for a device that can't be controlled.
        std::string mainAction() const;
    };
    struct Room {
        std::string id;
        std::string name;
    };
    struct Location {
        std::string id;
        std::string name;
        std::string ownerName;
        bool isOwner = false;
        std::string permission;
        std::vector<Room> rooms;
    };
    /// A scene or a routine.
    struct Item {
        std::string id;
        std::string name;
        std::string location;
        std::string document;
        bool enabled = true;
    };

    void apply(const Report& report);

    /// Whether a home was reported since the start, and no sign-out since.
    bool isKnown() const { return _known; }
    const std::vector<Location>& locations() const { return _locations; }
    const std::vector<Device>& devices() const { return _devices; }
    const std::vector<Item>& scenes() const { return _scenes; }
    const std::vector<Item>& routines() const { return _routines; }
    const Device* device(const std::string& id) const;

private:
    void applyList(const std::vector<EndpointRecord>& endpoints);
    void applyItem(const Report& report);
    void applyState(const Fields& properties);

    bool _known = false;
    std::vector<Location> _locations;
    std::vector<Device> _devices;
    std::unordered_map<std::string, std::size_t> _deviceIndex;  // by id
    std::vector<Item> _scenes;
    std::vector<Item> _routines;
};

}  // namespace homeloom::tv

#endif
