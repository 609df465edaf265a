// The text of a server-sent event, sent as each of the kinds that the plug-in listens to.

#include "support/Input.h"
#include "support/Plugin.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto& plugin = fuzz::Plugin::running();
    const std::string text = fuzz::text(data, size);
    for (const int kind : {0x1, 0x2, 0x4, 0x100, 0x800, 0x1000, 0x8000, 0x40000}) {
        plugin.agent.sendEvent(kind, text);
    }
    plugin.waitForEvents();
    return 0;
}
