#ifndef HOMELOOM_SIMULATOR_HOME_H
#define HOMELOOM_SIMULATOR_HOME_H

#include <map>
#include <string>
#include <vector>

namespace simulator {

/// A home as the cloud holds it, and the models of its devices: plain data, loaded by HomeLoader.h, brought to life by
/// the Agent.
///
/// What a member calls a document, a details record or a value is JSON text: "\"Run\"", "21.5", "[1,2]". Values keep
/// this form so that what a device says is handed on exactly as it said it.

/// One value of a resource: `type` is a type name of the cloud's schema ("String", "Boolean", "Integer", "Double",
/// "Array", "Object", ...).
struct Property {
    std::string name;
    std::string type;
    std::string value;  // null: not known yet, so that the agent leaves the property out
};

/// Whether a property of that type takes the value, JSON text or plain.
bool isOfType(const std::string& value, const std::string& type);
/// What values of that type are, for people: "a whole number from ... to ...".
std::string rangeOf(const std::string& type);

/// A resource whose URI has the form "/capability/<capability>/<component>/0" (without a component it is "main") also
/// is that capability's state: its properties are the capability's attributes. Changing one sends a device event.
struct Resource {
    std::string uri;
    std::vector<Property> properties;
    bool osv = false;  // listed with the OSV resources of the device

    const Property* find(const std::string& property) const;
};

/// One value that is set somewhere.
struct Change {
    std::string uri;
    std::string property;
    std::string value;
};

/// What else happens in a device when a property of it is set: "after Run there are 42 minutes left".
struct Reaction {
    std::string uri;
    std::string property;
    std::string value;  // empty: any value
    std::vector<Change> changes;
    int afterMilliseconds = 0;
    int status = -1;  // the device's new status; -1 leaves it
};

/// What a capability's command does to a device. A value of "\"$0\"" stands for the first argument, and so on.
struct Command {
    std::string component;
    std::string capability;
    std::string command;
    std::vector<Change> changes;
};

/// The core family's view of a device.
struct CoreRecord {
    std::string type = "OCF";
    std::string presentationId;
    std::string manufacturerName;
    std::string details;        // document
    std::string icons;          // document
    std::string possibleIcons;  // document
    std::string badgeIcons;     // document
};

/// How a device takes a value that the TV wants: it refuses it, takes its time, or ends up with other values.
struct Confirmation {
    std::string uri;
    std::string property;
    std::string value;  // empty: any value
    bool refuses = false;
    int afterMilliseconds = 0;
    std::vector<Change> changes;  // empty: what was wanted
};

/// What all devices of one kind have in common.
struct Model {
    std::string vid;
    std::string name;                 // of devices that have none of their own
    std::vector<std::string> types;   // likewise; may be empty
    CoreRecord core;                  // as a new device has it
    std::string uiMetadata;           // document; empty: the cloud has none
    std::vector<Resource> resources;  // as a new device has them
    std::vector<Reaction> reactions;
    std::vector<Command> commands;
    std::vector<Confirmation> confirmations;
};

enum DeviceStatus { Connected = 0, Disconnected = 1, Inactive = 2, Hidden = 3 };

struct Device {
    std::string id;
    std::string name;
    std::string nick;
    std::string prefix;
    std::string vid;
    std::vector<std::string> types;
    int status = Connected;
    std::string location;
    std::string room;  // empty: in no room
    std::vector<Resource> resources;
    CoreRecord core;
    int energyThisMonth = -1;         // watt hours; -1: not metered
    std::string stream;               // the address that the audio-video service gives for it; empty: none
    std::vector<std::string> images;  // ids of the files with pictures of its inside that the cloud has

    const Resource* find(const std::string& uri) const;
    Resource* find(const std::string& uri);
};

/// A device as it comes from the factory: what its model says, and no more.
Device newDevice(const Model& model);

struct Room {
    std::string id;
    std::string name;
};

struct Location {
    std::string id;
    std::string name;
    std::string permission;
    std::string ownerId;
    std::string ownerName;
    std::vector<Room> rooms;
    bool favoritesMigrated = false;
    std::string favoritesMigratedDate;
    std::string favoritesMigratedModel;
};

/// A command or a change of some device.
struct SceneAction {
    std::string device;
    Change change;
};

struct Scene {
    std::string id;
    std::string location;
    std::string document;
    std::vector<SceneAction> actions;
};

struct Routine {
    std::string id;
    std::string location;
    bool enabled = true;
    std::string document;
};

struct Favorite {
    std::string id;
    std::string location;
    std::string memberId;
    std::string memberType;
    std::string createDate;
    std::string lastUpdateDate;
    int order = 0;
};

struct InstalledApp {
    std::string id;
    std::string displayName;
    std::string status;
    std::string appId;
    std::string location;
    std::string ui;         // document
    std::string dashboard;  // document
};

struct Account {
    std::string loginId;
    std::string userId;
    std::string accessToken;
    std::string deviceId;  // of this TV
};

/// This TV as a hub.
struct Hub {
    std::string deviceId;             // empty: the TV is no hub
    std::vector<std::string> serves;  // ids of the devices that hang on it
};

struct NotificationProfile {
    std::string provider;
    std::string registrationId;
    std::string appId;
    std::string locale;
};

struct Home {
    std::string now = "2024-05-01T09:00:00Z";  // the date that new records carry: runs can be compared
    Account account;
    std::vector<Location> locations;
    std::vector<Device> devices;
    std::map<std::string, Model> models;               // by vid
    std::map<std::string, std::string> presentations;  // presentation id to canvas document
    std::vector<Scene> scenes;
    std::vector<Routine> routines;
    std::vector<Favorite> favorites;
    std::vector<InstalledApp> installedApps;
    std::string catalog;     // document
    std::string sceneIcons;  // document
    std::string wifiLocker;  // document
    Hub hub;
    std::map<std::string, std::string> keyValues;
    NotificationProfile notificationProfile;
    bool thirdPartyNotification = true;
    std::vector<std::string> blockedDevices;                // of the third-party notification
    std::map<int, int> serverEnvironments{{0, 1}, {1, 1}};  // server type to environment

    const Device* device(const std::string& id) const;
    Device* device(const std::string& id);
    /// By id, nick or name, in this order; null also when several have that name.
    const Device* findDevice(const std::string& text) const;
    const Location* location(const std::string& id) const;
    Location* location(const std::string& id);
    const Room* room(const std::string& id) const;
    const Model* model(const std::string& vid) const;
    bool isServedByHub(const std::string& deviceId) const;
};

}  // namespace simulator

#endif
