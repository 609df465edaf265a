#ifndef HOMELOOM_PLUGIN_INTERFACE_H
#define HOMELOOM_PLUGIN_INTERFACE_H

/// What the framework resolves after it has loaded the library, and calls once each.
extern "C" {

/// Brings the plug-in up. Returns true; that says nothing about readiness, which the framework learns from
/// vmf_plugin_send_load_result. A failure to start leaves as an exception (in practice only for want of memory).
__attribute__((visibility("default"))) bool CreatePlugin();

/// Takes the plug-in down. Always returns true. Afterwards no thread, timer, callback or registration of it is left.
__attribute__((visibility("default"))) bool DestroyPlugin();
}

#endif
