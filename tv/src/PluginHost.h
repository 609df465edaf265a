#ifndef HOMELOOM_TV_PLUGINHOST_H
#define HOMELOOM_TV_PLUGINHOST_H

#include <filesystem>
#include <string>
#include <vector>

namespace homeloom::tv {

/// Loads the plug-in as the framework of a TV does: by its two entry points, and by nothing else. Throws
/// std::runtime_error where the library or an entry point is missing. Used on the main thread.
class PluginHost {
public:
    explicit PluginHost(const std::filesystem::path& library);
    ~PluginHost();
    PluginHost(const PluginHost&) = delete;
    PluginHost& operator=(const PluginHost&) = delete;

    /// CreatePlugin.
    void start();
    /// DestroyPlugin, and away with the library. Returns what is left of the plug-in in this process, in words.
    std::vector<std::string> unload();

private:
    using EntryPoint = bool (*)();
    EntryPoint entryPoint(const char* name) const;

    const std::filesystem::path _path;
    void* _library;
    EntryPoint _create = nullptr;
    EntryPoint _destroy = nullptr;
    bool _started = false;
};

/// The library that belongs to the program at `program`, in a build tree or installed. Throws std::runtime_error if
/// there is none.
std::filesystem::path findPlugin(const std::filesystem::path& program);

}  // namespace homeloom::tv

#endif
