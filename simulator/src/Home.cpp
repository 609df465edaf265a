#include "simulator/Home.h"

#include <algorithm>

namespace simulator {

Device newDevice(const Model& model) {
    Device device;
    device.name = model.name;
    device.vid = model.vid;
    device.types = model.types;
    device.resources = model.resources;
    device.core = model.core;
    return device;
}

namespace {

template <class Items>
auto* findById(Items& items, const std::string& id) {
    auto found = std::find_if(items.begin(), items.end(), [&](const auto& item) { return item.id == id; });
    return found == items.end() ? nullptr : &*found;
}

template <class Resources>
auto* findByUri(Resources& resources, const std::string& uri) {
    auto found = std::find_if(resources.begin(), resources.end(), [&](const auto& item) { return item.uri == uri; });
    return found == resources.end() ? nullptr : &*found;
}

const Device* onlyDevice(const std::vector<Device>& devices, std::string Device::*field, const std::string& text) {
    const Device* only = nullptr;
    for (const Device& device : devices) {
        if (device.*field != text) {
            continue;
        }
        if (only != nullptr) {
            return nullptr;
        }
        only = &device;
    }
    return only;
}

}  // namespace

const Property* Resource::find(const std::string& property) const {
    auto found =
        std::find_if(properties.begin(), properties.end(), [&](const Property& item) { return item.name == property; });
    return found == properties.end() ? nullptr : &*found;
}

const Resource* Device::find(const std::string& uri) const {
    return findByUri(resources, uri);
}

Resource* Device::find(const std::string& uri) {
    return findByUri(resources, uri);
}

const Device* Home::device(const std::string& id) const {
    return findById(devices, id);
}

Device* Home::device(const std::string& id) {
    return findById(devices, id);
}

const Device* Home::findDevice(const std::string& text) const {
    for (std::string Device::*field : {&Device::id, &Device::nick, &Device::name}) {
        if (const Device* found = onlyDevice(devices, field, text)) {
            return found;
        }
    }
    return nullptr;
}

const Location* Home::location(const std::string& id) const {
    return findById(locations, id);
}

Location* Home::location(const std::string& id) {
    return findById(locations, id);
}

const Room* Home::room(const std::string& id) const {
    for (const Location& location : locations) {
        if (const Room* found = findById(location.rooms, id)) {
            return found;
        }
    }
    return nullptr;
}

const Model* Home::model(const std::string& vid) const {
    auto found = models.find(vid);
    return found == models.end() ? nullptr : &found->second;
}

bool Home::isServedByHub(const std::string& deviceId) const {
    return std::find(hub.serves.begin(), hub.serves.end(), deviceId) != hub.serves.end();
}

}  // namespace simulator
