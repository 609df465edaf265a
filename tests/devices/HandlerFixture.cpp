#include "HandlerFixture.h"
#include "clock/Clock.h"

#include <chrono>
#include <functional>
#include <future>
#include <stdexcept>
#include <utility>

#include <glib.h>
#include <vconf.h>

#include "CPluginMgr.h"
#include "Helpers/CEndpointListHelper.h"
#include "Homeloom/Common/MsgDispatcher.h"
#include "Homeloom/Tessel/TesselHandler.h"
#include "Homeloom/UIMeta/Metadata.h"

namespace VMFramework::HomeLoom {

namespace framework = homeloom::desktop::framework;

HandlerFixture::HandlerFixture() {
    CPluginMgr::GetInstance().Init();
    simulator::Home home;
    home.account = {"login", "user", "token", "self"};
    agent.load(home);
    vconf_set_str("db/es_master/signup_info", R"({"di":"self"})");
    TesselHandler::GetInstance().Connect([](homeloom_client_error_e, homeloom_client_connection_state_e, void*) {},
                                         nullptr);
    agent.waitIdle();
    handler->SetAccessTokenGetter([] { return std::string(); });
    handler->SetIsHubConnectedDevice([this](const std::string& id) { return hubDevices.count(id) != 0; });
}

HandlerFixture::~HandlerFixture() {
    TesselHandler::GetInstance().Disconnect();
    settle();
    if (handler) {
        handler->Deinit();
        handler->ClearTimers();
    }
    EXPECT_EQ(0, agent.holdings().total());
}

Device::_deviceInfo HandlerFixture::infoOf(const std::string& id, const std::string& vid, const std::string& type,
                                           int status) {
    Device::_deviceInfo info;
    info.device_id = id;
    info.device_name = id;
    info.vid = vid;
    info.device_type = type;
    info.status = static_cast<DeviceStatus>(status);
    return info;
}

std::shared_ptr<Device> HandlerFixture::add(const std::string& id, const std::string& vid, const std::string& type,
                                            const std::vector<std::string>& uris, int status) {
    simulator::Device device;
    device.id = id;
    device.vid = vid;
    device.types = {type};
    device.status = status;
    for (const auto& uri : uris) {
        device.resources.push_back({uri, {}, false});
    }
    agent.addDevice(device);
    handler->HandleDeviceInfo(infoOf(id, vid, type, status), uris, {});
    return handler->FindDevice(id);
}

void HandlerFixture::parse(const std::string& vid, const std::string& document) {
    ASSERT_TRUE(Metadata::GetInstance().ParseMetadata(vid, document)) << vid;
}

void HandlerFixture::setUiMetadata(const std::string& vid, const std::string& document) {
    simulator::Model model;
    model.vid = vid;
    model.uiMetadata = document;
    agent.setModel(model);
}

void HandlerFixture::settle() {
    const auto drain = [](const std::function<void(ThreadJob)>& enqueue) {
        auto done = std::make_shared<std::promise<void>>();
        auto future = done->get_future();
        enqueue([done] { done->set_value(); });
        future.wait();
    };
    if (handler && !handler->IsQuit()) {
        drain([this](ThreadJob job) { handler->addMetadataParsingJobToScheduler(std::move(job), "drain"); });
    }
    agent.waitIdle();
    if (handler && !handler->IsQuit()) {
        drain([this](ThreadJob job) { handler->AddJobToStatusScheduler(std::move(job), "drain"); });
    }
    drain([](ThreadJob job) { SGTMsgDispatcher::GetInstance().EnqueueData(std::move(job), "drain"); });
}

int HandlerFixture::elapsedTimers() {
    homeloom::clock::advance(std::chrono::seconds(1));
    int count = 0;
    while (g_main_context_iteration(nullptr, FALSE)) {
        ++count;
    }
    return count;
}

std::vector<HandlerFixture::ReportPtr> HandlerFixture::takeNotifications() {
    std::vector<ReportPtr> notifications;
    for (const auto& report : framework::reports(_mark)) {
        _mark = report->number + 1;
        if (report->kind == framework::Report::Kind::Notify) {
            EXPECT_EQ(0u, report->transaction);
            notifications.push_back(report);
        }
    }
    return notifications;
}

std::vector<std::string> HandlerFixture::takeTexts(const std::string& key) {
    std::vector<std::string> texts;
    for (const auto& report : takeNotifications()) {
        texts.push_back(report->properties.text(key));
    }
    return texts;
}

HandlerFixture::ReportPtr HandlerFixture::sendDeviceList() {
    const std::size_t mark = framework::reportCount();
    {
        const auto list = IEndpointListHelper::Create();
        const auto lock = handler->GetDeviceData(list);
        EXPECT_TRUE(lock.owns_lock());
        CPluginMgr::GetInstance().ReportDeviceList(list);
    }
    auto sent = framework::waitFor(
        [](const framework::Report& report) { return report.kind == framework::Report::Kind::DeviceList; },
        std::chrono::seconds(10), mark);
    return sent ? sent : throw std::runtime_error("no device list came");
}

std::set<std::string> HandlerFixture::subscriptions() {
    std::set<std::string> texts;
    for (const auto& [deviceId, uris] : simulator::Agent::instance().subscriptions()) {
        texts.insert(deviceId + " " + uris);
    }
    return texts;
}

}  // namespace VMFramework::HomeLoom
