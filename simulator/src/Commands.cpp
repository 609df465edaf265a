#include "Commands.h"

namespace simulator {

namespace {

const Command* findCommand(const World& world, const Device& device, const json::value& wanted) {
    const Model* model = world.home.model(device.vid);
    if (model == nullptr) {
        return nullptr;
    }
    for (const Command& command : model->commands) {
        if (command.component == textMember(wanted, "component") &&
            command.capability == textMember(wanted, "capability") &&
            command.command == textMember(wanted, "command")) {
            return &command;
        }
    }
    return nullptr;
}

/// The command's changes, with its arguments in place.
std::vector<Change> changesOf(const Command& command, const json::value& call) {
    std::vector<Change> changes = command.changes;
    const json::value* member = memberOf(&call, "arguments");
    const json::array* arguments = member == nullptr ? nullptr : member->if_array();
    for (std::size_t i = 0; arguments != nullptr && i < arguments->size(); ++i) {
        for (Change& change : changes) {
            if (change.value == quoted("$" + std::to_string(i))) {
                change.value = toText((*arguments)[i]);
            }
        }
    }
    return changes;
}

}  // namespace

int executeCommands(World& world, std::unique_lock<std::mutex>& lock, Device& device, const std::string& request,
                    json::object& reply) {
    const json::value document = parsed(request);
    const json::value* commands = memberOf(&document, "commands");
    if (commands == nullptr || !commands->is_array()) {
        return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
    }
    for (const json::value& call : commands->get_array()) {
        if (findCommand(world, device, call) == nullptr) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
    }
    const std::string id = device.id;  // which may be gone when its driver has spoken
    std::vector<std::pair<int, HandoverPtr>> commanded;
    for (const json::value& call : commands->get_array()) {
        const auto handover = std::make_shared<Handover>();
        const int code = world.command(device, changesOf(*findCommand(world, device, call), call), handover);
        commanded.emplace_back(code, handover);
    }
    json::array results;
    for (auto& [code, handover] : commanded) {
        if (handover->open > 0) {
            code = world.await(lock, handover);
        }
        if (code == HOMELOOM_CLIENT_ERROR_IO) {
            return code;
        }
        results.push_back({{"id", id}, {"status", code == 0 ? "ACCEPTED" : "FAILED"}});
    }
    reply = {{"results", results}};
    return HOMELOOM_CLIENT_ERROR_NONE;
}

}  // namespace simulator
