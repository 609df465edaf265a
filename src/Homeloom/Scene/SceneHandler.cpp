// Carries out scene requests, makes endpoints of scenes, and reports their events.
#include "Homeloom/Scene/SceneHandler.h"

#include <VMFramework/JsonValue.h>

#include "Common/CReporter.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Homeloom/Tessel/ITesselHandler.h"

namespace VMFramework::HomeLoom {

namespace {

// The agent's code tells only whether the cloud was asked; whether the scene ran stands in its reply.
bool parseExecuteSceneResult(int ret, const std::string& json) {
    if (ret != HOMELOOM_CLIENT_ERROR_NONE) {
        HL_LOGE("execute scene failed tessel ret : %d", ret);
        return false;
    }
    return GuardedOr(false, [&] {
        const auto reply = json::JsonValue::Create(json);
        if (reply["result"].asString() == "Success") {
            return true;
        }
        HL_LOGE("execute scene failed scene id : %s", reply["id"].asString().c_str());
        return false;
    });
}

std::string getSceneIdWithResultJson(const std::string& json) {
    return GuardedOr(std::string(), [&] {
        const auto reply = json::JsonValue::Create(json);
        return reply["id"].asString();
    });
}

template <typename Param>
void ReportChange(const std::string& locationId, const std::string& sceneId, const std::string& json) {
    Param param(nullptr);
    param.result = true;
    param.locationId = locationId;
    param.sceneId = sceneId;
    param.sceneJson = json;
    Reporter::Report(param);
}

}  // namespace

SceneHandler::SceneHandler(ITesselHandler& agent)
    : LocationRecords(agent, "SceneHandler",
                      {"scene", Names::HOMELOOM_SCENE, Names::SCENE_JSON_DATA, "sceneId", HOMELOOM_CORE_SCENE_ID,
                       HOMELOOM_CORE_SCENE_JSON, &ITesselHandler::GetCoreSceneList, &ITesselHandler::GetCoreScene,
                       &ITesselHandler::GetCoreSceneString, &ITesselHandler::DestroyCoreSceneList,
                       &ITesselHandler::DestroyCoreSingleScene}) {}

// ---- Requests ----

void SceneHandler::ExecuteScene(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                                const std::string& sceneId) {
    HL_LOGI("location id : %s, scene id : %s", locationId.c_str(), sceneId.c_str());
    ExecuteSceneParam param(transaction);
    const int ret = _agent.ExecuteCoreScene(locationId, sceneId, param.resultValue);
    param.result = parseExecuteSceneResult(ret, param.resultValue);
    param.locationId = locationId;
    param.sceneId = sceneId;
    Reporter::Report(param);
}

// In the answers to the next three the scene's id is that of the agent's reply and nothing else, and so is the JSON.

void SceneHandler::CreateScene(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                               const std::string& sceneJson) {
    HL_LOGI("location id : %s, scene json data : %s", locationId.c_str(), sceneJson.c_str());
    CreateSceneParam param(transaction);
    param.result = _agent.CreateCoreScene(locationId, sceneJson, param.sceneJson) == HOMELOOM_CLIENT_ERROR_NONE;
    param.locationId = locationId;
    param.sceneId = getSceneIdWithResultJson(param.sceneJson);
    Reporter::Report(param);
}

void SceneHandler::UpdateScene(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                               const std::string& sceneId, const std::string& sceneJson) {
    HL_LOGI("location id : %s, scene id : %s", locationId.c_str(), sceneId.c_str());
    UpdateSceneParam param(transaction);
    param.result =
        _agent.UpdateCoreScene(locationId, sceneId, sceneJson, param.sceneJson) == HOMELOOM_CLIENT_ERROR_NONE;
    param.locationId = locationId;
    param.sceneId = getSceneIdWithResultJson(param.sceneJson);
    Reporter::Report(param);
}

void SceneHandler::DeleteScene(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                               const std::string& sceneId) {
    HL_LOGI("location id : %s, scene id : %s", locationId.c_str(), sceneId.c_str());
    std::string reply;
    DeleteSceneParam param(transaction);
    param.result = _agent.DeleteCoreScene(locationId, sceneId, reply) == HOMELOOM_CLIENT_ERROR_NONE;
    param.locationId = locationId;
    param.sceneId = getSceneIdWithResultJson(reply);
    Reporter::Report(param);
}

void SceneHandler::GetSceneIconInfo(const std::shared_ptr<CTransaction>& transaction) {
    GetSceneIconsParam param(transaction);
    param.result = _agent.GetCoreSceneIconInfoJson(param.sceneIconInfo) == HOMELOOM_CLIENT_ERROR_NONE;
    Reporter::Report(param);
}

// ---- Endpoints and events ----

void SceneHandler::Created(const std::string& locationId, const std::string& sceneId) {
    HL_LOGI("[sceneCreated] location_id : %s, scene_id : %s", locationId.c_str(), sceneId.c_str());
    ReportChange<CreateSceneParam>(locationId, sceneId, GetJson(locationId, sceneId));
}

void SceneHandler::Updated(const std::string& locationId, const std::string& sceneId) {
    HL_LOGI("[sceneUpdated] location_id : %s, scene_id : %s", locationId.c_str(), sceneId.c_str());
    ReportChange<UpdateSceneParam>(locationId, sceneId, GetJson(locationId, sceneId));
}

void SceneHandler::Deleted(const std::string& locationId, const std::string& sceneId) {
    HL_LOGI("[sceneDeleted] location_id : %s, scene_id : %s", locationId.c_str(), sceneId.c_str());
    DeleteSceneParam param(nullptr);
    param.result = true;
    param.locationId = locationId;
    param.sceneId = sceneId;
    Reporter::Report(param);
}

}  // namespace VMFramework::HomeLoom
