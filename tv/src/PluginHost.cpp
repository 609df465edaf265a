#include "PluginHost.h"

#include <dlfcn.h>

#include <stdexcept>

#include <desktop/Framework.h>
#include <desktop/Guard.h>
#include <desktop/Packages.h>
#include <desktop/RpcPort.h>
#include <desktop/Settings.h>
#include <fmt/format.h>
#include <simulator/Agent.h>
#include <simulator/ServiceManager.h>

#include "agent/AgentTape.h"

namespace homeloom::tv {

namespace {

void addCount(std::vector<std::string>& left, std::size_t count, const char* what) {
    if (count > 0) {
        left.push_back(fmt::format("{} × {}", count, what));
    }
}

void addCount(std::vector<std::string>& left, int count, const char* what) {
    addCount(left, static_cast<std::size_t>(count), what);
}

void addExceptions(std::vector<std::string>& left, const std::vector<std::string>& exceptions) {
    for (const std::string& exception : exceptions) {
        left.push_back("an exception that nobody caught: " + exception);
    }
}

std::vector<std::string> leftovers() {
    std::vector<std::string> left;
    const auto held = simulator::Agent::instance().holdings();
    addCount(left, held.clients, "connection to the agent");
    addCount(left, agentTapeState().records, "record of the agent's tape");
    addCount(left, held.records, "record of the agent");
    addCount(left, held.registrations, "registration with the agent");
    addCount(left, held.subscriptions, "subscription of a device");
    addCount(left, held.pendingCalls, "call of the agent under way");
    addCount(left, simulator::ServiceManager::instance().isWatched() ? 1 : 0, "watch of the agent's updates");
    addCount(left, desktop::settings::watchCount(), "watch of a setting");
    addCount(left, desktop::packages::managerCount(), "watch of the packages");
    addCount(left, desktop::rpc::holdings().proxies, "connection to an application");
    addCount(left, desktop::rpc::holdings().parcels, "parcel");
    const auto handles = desktop::framework::liveHandles();
    addCount(left, handles.properties, "property");
    addCount(left, handles.propertyLists, "property list");
    addCount(left, handles.endpoints, "endpoint");
    addCount(left, handles.endpointLists, "endpoint list");
    addCount(left, handles.serviceHandlers, "service handler");
    addCount(left, handles.transactions, "transaction");
    addExceptions(left, desktop::pluginExceptions());
    addExceptions(left, agentTapeState().exceptions);
    addExceptions(left, simulator::Agent::instance().escapedExceptions());
    return left;
}

}  // namespace

PluginHost::PluginHost(const std::filesystem::path& library)
    : _path(library), _library(dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (_library == nullptr) {
        throw std::runtime_error(fmt::format("the plug-in can't be loaded: {}", dlerror()));
    }
    try {
        _create = entryPoint("CreatePlugin");
        _destroy = entryPoint("DestroyPlugin");
    } catch (...) {
        dlclose(_library);
        throw;
    }
}

PluginHost::~PluginHost() {
    if (_library != nullptr) {
        unload();
    }
}

PluginHost::EntryPoint PluginHost::entryPoint(const char* name) const {
    void* const symbol = dlsym(_library, name);
    if (symbol == nullptr) {
        throw std::runtime_error(fmt::format("{} is no plug-in: it has no {}", _path.string(), name));
    }
    return reinterpret_cast<EntryPoint>(symbol);
}

void PluginHost::start() {
    _started = true;
    desktop::callPlugin("CreatePlugin", [this] { _create(); });
}

std::vector<std::string> PluginHost::unload() {
    if (_started) {
        desktop::callPlugin("DestroyPlugin", [this] { _destroy(); });
    }
    dlclose(_library);
    _library = nullptr;
    std::vector<std::string> left = leftovers();
    if (void* const still = dlopen(_path.c_str(), RTLD_NOW | RTLD_NOLOAD)) {
        dlclose(still);
        left.push_back("the library itself, which something keeps loaded");
    }
    return left;
}

std::filesystem::path findPlugin(const std::filesystem::path& program) {
    const std::filesystem::path root = program.parent_path().parent_path();
    const std::filesystem::path place = root / "lib" / "homeloom" / "libhomeloom.so";
    if (!std::filesystem::exists(place)) {
        throw std::runtime_error(fmt::format("there is no plug-in at {}; --plugin names another", place.string()));
    }
    return place;
}

}  // namespace homeloom::tv
