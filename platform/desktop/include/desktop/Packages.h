#ifndef HOMELOOM_DESKTOP_PACKAGES_H
#define HOMELOOM_DESKTOP_PACKAGES_H

#include <package_manager.h>

#include <string>

/// The TV's installed applications and what happens to them, from the other side. All operations are thread-safe.
namespace homeloom::desktop::packages {

/// Whether app_manager_get_app_info finds the application. None is installed at the start. Tells nobody.
void setInstalled(const std::string& appId, bool installed = true);
bool isInstalled(const std::string& appId);

struct Event {
    std::string package;
    package_manager_event_type_e type = PACKAGE_MANAGER_EVENT_TYPE_INSTALL;
    package_manager_event_state_e state = PACKAGE_MANAGER_EVENT_STATE_COMPLETED;
    int progress = 100;
    package_manager_error_e error = PACKAGE_MANAGER_ERROR_NONE;
};

/// Tells every watcher, on the GLib main loop.
void tell(const Event& event);
/// What the TV does when a user installs (or updates) or removes an application: its state, and the whole row of
/// events.
void install(const std::string& appId);
void uninstall(const std::string& appId);

/// Lets the coming calls of a function of package_manager.h or app_manager.h fail with this code; 0 lets them pass
/// again. Throws std::invalid_argument for a name that is none of these: app_manager_get_app_info,
/// package_manager_create, package_manager_set_event_cb.
void fail(const std::string& function, int code);

/// How many handles the plug-in holds, and how many have a callback.
int managerCount();
int watchCount();
/// How many of what app_manager_get_app_info handed out is not destroyed.
int appInfoCount();

}  // namespace homeloom::desktop::packages

#endif
