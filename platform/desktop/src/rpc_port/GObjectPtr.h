#ifndef HOMELOOM_DESKTOP_RPC_PORT_GOBJECTPTR_H
#define HOMELOOM_DESKTOP_RPC_PORT_GOBJECTPTR_H

#include <glib-object.h>

#include <memory>

namespace homeloom::desktop::rpc {

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
template <typename Object>
using ObjectPtr = std::unique_ptr<Object, Unref>;

}  // namespace homeloom::desktop::rpc

#endif
