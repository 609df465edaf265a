// What the agent answers: every function of it that answers a text answers this one, and everything is asked for.

#include <desktop/Framework.h>

#include "RequestTable.h"
#include "Words.h"
#include "support/Input.h"
#include "support/Plugin.h"

namespace framework = homeloom::desktop::framework;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto& plugin = fuzz::Plugin::running();
    const auto answer = simulator::Fault::say(fuzz::text(data, size));
    for (const auto& function : simulator::Agent::functionNames()) {
        plugin.agent.fault(function, answer);
    }
    plugin.agent.sendEvent(0x2, R"({"lifecycle":"UPDATE"})");  // reads the home anew
    plugin.agent.sendEvent(0x1000, R"({"name":"HomeLoomEnergy","installedAppId":"installed-energy"})");
    for (const auto& spec : homeloom::tv::requestTable()) {
        framework::request(spec.name, homeloom::tv::typedArguments(spec, homeloom::tv::splitWords(spec.example)));
    }
    plugin.waitForEvents();
    plugin.waitForRequests();
    return 0;
}
