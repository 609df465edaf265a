// What a device tells of a resource: "REPRESENTATION\n----\nDATA TYPES". Every resource of every device tells it.

#include "support/Input.h"
#include "support/Plugin.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto& plugin = fuzz::Plugin::running();
    const auto texts = fuzz::texts(data, size, 2);
    for (const auto& device : plugin.home.devices) {
        for (const auto& resource : device.resources) {
            plugin.agent.sendUpdate(device.id, resource.uri, texts[0], texts[1]);
        }
    }
    plugin.waitForEvents();
    return 0;
}
