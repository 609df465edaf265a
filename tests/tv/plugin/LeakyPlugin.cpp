#include <vconf.h>
#include <vmf_property.h>

#include <stdexcept>

// A plug-in that doesn't clean up.

namespace {

void nothing(keynode_t*, void*) {}

}  // namespace

extern "C" bool CreatePlugin() {
    vmf_error_e error = VMF_ERROR_NONE;
    vmf_property_create_int("forgotten", 1, &error);
    vconf_notify_key_changed("db/forgotten", nothing, nullptr);
    throw std::runtime_error("too early");
}

extern "C" bool DestroyPlugin() {
    return true;
}
