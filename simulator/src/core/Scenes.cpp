// The agent's functions: scenes.
#include <algorithm>

#include <homeloom_core.h>

#include "../Calls.h"
#include "../Json.h"

using namespace simulator;

namespace {

SharedRecord sceneRecord(const Scene& scene) {
    auto record = std::make_shared<Record>();
    record->texts = {{HOMELOOM_CORE_SCENE_ID, scene.id}, {HOMELOOM_CORE_SCENE_JSON, scene.document}};
    return record;
}

auto findScene(World& world, const std::string& locationId, const std::string& id) {
    return std::find_if(world.home.scenes.begin(), world.home.scenes.end(),
                        [&](const Scene& scene) { return scene.id == id && scene.location == locationId; });
}

JsonAnswer noScene(const std::string& id) {
    return failure(HOMELOOM_CLIENT_ERROR_NO_DATA, "no scene " + id);
}

/// The given document as the cloud keeps it: with the scene's id in front. "" for what is no object.
std::string withId(const std::string& id, const std::string& document) {
    const json::value given = parsed(document);
    if (!given.is_object()) {
        return {};
    }
    json::object kept{{"id", id}};
    for (const auto& member : given.get_object()) {
        if (member.key() != "id") {
            kept[member.key()] = member.value();
        }
    }
    return toText(kept);
}

void postLifecycle(World& world, const char* lifecycle, const std::string& locationId, const std::string& id) {
    world.postEvent(HOMELOOM_CORE_SSE_SCENE_LIFECYCLE,
                    toText(json::object{{"lifecycle", lifecycle}, {"locationId", locationId}, {"sceneId", id}}));
}

/// Actions on devices that are gone or unreachable are skipped, and the scene then fails, as with those that refuse.
bool run(World& world, const Scene& scene, const HandoverPtr& handover) {
    bool isDone = true;
    for (const SceneAction& action : scene.actions) {
        Device* device = world.device(action.device);
        isDone = device != nullptr && device->status != Disconnected &&
                 world.command(*device, {action.change}, handover) == 0 && isDone;
    }
    return isDone;
}

JsonAnswer endOfScene(const std::string& id, bool isDone) {
    return success(toText(json::object{{"id", id}, {"result", isDone ? "Success" : "Failure"}}));
}

}  // namespace

int homeloom_core_get_scene_list_async(homeloom_client_h client, const char* location_id,
                                       homeloom_core_scene_list_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {location_id}, Needs::SignIn);
    return answerList(call, callback, user_data, [locationId = Argument(location_id).text()](World& world) {
        Records records;
        for (const Scene& scene : world.home.scenes) {
            if (scene.location == locationId) {
                records.push_back(sceneRecord(scene));
            }
        }
        return records;
    });
}

int homeloom_core_get_scene_async(homeloom_client_h client, const char* location_id, const char* scene_id,
                                  homeloom_core_scene_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {location_id, scene_id}, Needs::SignIn);
    const auto work = [locationId = Argument(location_id).text(), id = Argument(scene_id).text()](World& world) {
        const auto scene = findScene(world, locationId, id);
        return scene == world.home.scenes.end() ? nullptr : sceneRecord(*scene);
    };
    return answerRecord(call, callback, user_data, work);
}

int homeloom_core_scene_get_string(homeloom_core_scene_h scene, int field, char** value) {
    static Function& function = functionNamed(__func__);
    return getText(function, scene, field, value);
}

int homeloom_core_scene_destroy(homeloom_core_scene_h scene) {
    static Function& function = functionNamed(__func__);
    return destroy(function, scene);
}

int homeloom_core_execute_scene_async(homeloom_client_h client, const char* location_id, const char* scene_id,
                                      homeloom_core_json_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {location_id, scene_id}, Needs::SignIn);
    const std::string id = Argument(scene_id).text();
    const auto work = [locationId = Argument(location_id).text(), id](World& world, const HandoverPtr& handover) {
        const auto scene = findScene(world, locationId, id);
        if (scene == world.home.scenes.end()) {
            return noScene(id);
        }
        handover->isRefused = !run(world, *scene, handover);
        return endOfScene(id, !handover->isRefused);
    };
    const auto finish = [id](World&, bool isRefused) { return endOfScene(id, !isRefused); };
    return answerJson(call, callback, user_data, work, finish);
}

int homeloom_core_create_scene_async(homeloom_client_h client, const char* location_id, const char* scene_json,
                                     homeloom_core_json_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {location_id, scene_json}, Needs::SignIn);
    const auto work = [locationId = Argument(location_id).text(),
                       document = Argument(scene_json).text()](World& world) {
        if (world.home.location(locationId) == nullptr) {
            return failure(HOMELOOM_CLIENT_ERROR_NO_DATA, "no location " + locationId);
        }
        const std::string id = world.newId("scene");
        const std::string kept = withId(id, document);
        if (kept.empty()) {
            return failure(HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER, "the scene is no JSON object");
        }
        world.home.scenes.push_back({id, locationId, kept, {}});
        postLifecycle(world, "CREATE", locationId, id);
        return success(kept);
    };
    return answerJson(call, callback, user_data, work);
}

int homeloom_core_update_scene_async(homeloom_client_h client, const char* location_id, const char* scene_id,
                                     const char* scene_json, homeloom_core_json_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {location_id, scene_id, scene_json}, Needs::SignIn);
    const auto work = [locationId = Argument(location_id).text(), id = Argument(scene_id).text(),
                       document = Argument(scene_json).text()](World& world) {
        const auto scene = findScene(world, locationId, id);
        if (scene == world.home.scenes.end()) {
            return noScene(id);
        }
        const std::string kept = withId(id, document);
        if (kept.empty()) {
            return failure(HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER, "the scene is no JSON object");
        }
        scene->document = kept;
        postLifecycle(world, "UPDATE", locationId, id);
        return success(kept);
    };
    return answerJson(call, callback, user_data, work);
}

int homeloom_core_delete_scene_async(homeloom_client_h client, const char* location_id, const char* scene_id,
                                     homeloom_core_json_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {location_id, scene_id}, Needs::SignIn);
    const auto work = [locationId = Argument(location_id).text(), id = Argument(scene_id).text()](World& world) {
        const auto scene = findScene(world, locationId, id);
        if (scene == world.home.scenes.end()) {
            return noScene(id);
        }
        const std::string document = scene->document;
        world.home.scenes.erase(scene);
        postLifecycle(world, "DELETE", locationId, id);
        return success(document);
    };
    return answerJson(call, callback, user_data, work);
}

int homeloom_core_get_scene_icon_list_async(homeloom_client_h client, homeloom_core_json_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    return answerJson(Call(function, client, {}, Needs::SignIn), callback, user_data, [](World& world) {
        return success(world.home.sceneIcons.empty() ? "{}" : world.home.sceneIcons);
    });
}
