// The view into a refrigerator.

#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include <VMFramework/JsonValue.h>
#include <gmock/gmock.h>

#include "clock/Turner.h"
#include "desktop/Framework.h"
#include "desktop/Settings.h"
#include "desktop/Web.h"
#include "support/Desk.h"

namespace framework = homeloom::desktop::framework;
namespace web = homeloom::desktop::web;
using namespace std::chrono_literals;
using simulator::CloudFault;
using simulator::Fault;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using VMFramework::json::JsonValue;

namespace {

constexpr char kRequest[] = "hl_get_refrigerator_innerview_url";
constexpr char kUri[] = "/udo/contents/provider/vs/0";
constexpr char kFailure[] = "notify hl_get_refrigerator_innerview_url is_success=false";

void useTimeZone(const char* name) {
    setenv("TZ", name, 1);
    tzset();
}

std::string contentsOf(const std::vector<std::string>& files, const std::string& updateTime = "") {
    std::string contents;
    for (const std::string& file : files) {
        contents += (contents.empty() ? "" : ",") + (R"({"x.com.norvane.da.fileid":")" + file + R"("})");
    }
    return R"({"x.com.norvane.da.contents":[)" + contents + R"(],"x.com.norvane.da.updatetime":")" + updateTime +
           R"("})";
}

}  // namespace

class InnerView : public testing::Test {
protected:
    InnerView() {
        useTimeZone("UTC");
        desk.startAndShow();
        desk.waitForState("fridge", "Fridge 3°C · Freezer -18°C");
        desk.settle();
        desk.mark();
    }

    /// The refrigerator tells its pictures by Tell() alone from here on.
    void Silence() {
        simulator::Model model = *desk.agent.home().model("HL-FRIDGE-FH9");
        model.reactions.clear();
        desk.agent.setModel(model);
    }

    framework::TransactionId Begin() {
        desk.agent.resetCalls();
        const auto request = framework::request(kRequest, {{"device_id", "fridge"}});
        desk.waitUntil("the command",
                       [this] { return desk.agent.callCount("homeloom_client_set_remote_representation") > 0; });
        return request;
    }

    void Tell(const std::string& representation) { desk.agent.sendUpdate("fridge", kUri, representation, "{}"); }

    /// A request's answer when the refrigerator tells this.
    Desk::ReportPtr AnswerWhenTold(const std::string& representation) {
        const auto request = Begin();
        Tell(representation);
        return AnswerTo(request);
    }

    Desk::ReportPtr AnswerTo(framework::TransactionId request) {
        return desk.waitForReport("the answer",
                                  [=](const Desk::Report& report) { return report.transaction == request; });
    }

    static std::vector<std::string> Urls(const Desk::Report& answer) {
        const JsonValue array = JsonValue::Create(answer.properties.text("inner_view_url"));
        std::vector<std::string> urls;
        for (std::size_t i = 0; i < array.size(); ++i) {
            urls.push_back(array[i].asString());
        }
        return urls;
    }

    Desk desk{homeloom::test::apartmentWith({"fridge", "washer"})};
    simulator::Cloud& cloud = desk.startCloud();
};

TEST_F(InnerView, ShowsAllPicturesInOrder) {
    useTimeZone("Asia/Seoul");
    const auto answer = desk.ask(kRequest, {{"device_id", "fridge"}});
    EXPECT_TRUE(answer->properties.flag("is_success"));
    EXPECT_EQ(answer->properties.text("datetime"), "20240501180000");
    const auto at = [](const std::string& file) {
        return StartsWith("https://files.homeloom.example/udo/files/fridge/" + file + ".svg?signature=");
    };
    EXPECT_THAT(Urls(*answer), ElementsAre(at("shelf-1"), at("shelf-2"), at("shelf-3"), at("shelf-4"), at("door-1"),
                                           at("door-2"), at("drawer-1"), at("drawer-2")));
    int links = 0;
    for (const auto& request : cloud.requests()) {
        if (request.endpoint == "file_links") {
            ++links;
            EXPECT_THAT(request.target, testing::EndsWith("?cid=Kbq7TzR2Wn&di=fridge"));
            EXPECT_EQ(request.header("Authorization"), "Bearer token-of-mina");
        }
    }
    EXPECT_EQ(links, 8);
    for (const auto& subscription : desk.agent.subscriptions()) {
        EXPECT_NE(subscription.uris, R"(["/udo/contents/provider/vs/0"])");
    }
}

TEST_F(InnerView, ASlowPictureHoldsUpTheAnswerAlone) {
    cloud.fault("file_links", CloudFault::late(10s).only("shelf-3"));
    const auto request = framework::request(kRequest, {{"device_id", "fridge"}});
    desk.waitUntil("all other pictures", [this] {
        int files = 0;
        for (const auto& seen : cloud.requests()) {
            files += seen.endpoint == "files" ? 1 : 0;
        }
        return files == 7 && cloud.pendingRequests() == 1;
    });
    EXPECT_EQ(desk.ask("hl_get_accesstoken_uid", {})->properties.text("uid"), "user-mina");
    EXPECT_FALSE(desk.isAnswered(request));
    desk.elapse(10s);
    EXPECT_THAT(Urls(*AnswerTo(request))[2], HasSubstr("shelf-3"));
}

TEST_F(InnerView, WithoutOneOfThePicturesThereIsNoAnswer) {
    const homeloom::clock::Turner turner;
    Silence();
    for (const auto& fault :
         {CloudFault::status(404), CloudFault::never(), CloudFault::body("{}"),
          CloudFault::header("Location: https://upper.example/"), CloudFault::header("location:https://no.blank/"),
          CloudFault::header("x-location: https://other.example/")}) {
        cloud.fault("file_links", fault.only("shelf-2"));
        const auto request = Begin();
        desk.log.clear();
        Tell(contentsOf({"shelf-1", "shelf-2"}));
        ASSERT_TRUE(desk.log.waitFor("url NOT FOUND in map, error!!(error:2)", 30s));
        desk.settle();
        EXPECT_FALSE(desk.isAnswered(request)) << fault.text;
        cloud.clearFaults();
    }
    // Not even when an earlier request has found it.
    EXPECT_THAT(Urls(*AnswerWhenTold(contentsOf({"shelf-3", "shelf-4"}))),
                ElementsAre(HasSubstr("shelf-3"), HasSubstr("shelf-4")));
    cloud.stop();
    const auto bad = Begin();
    Tell(contentsOf({"shelf-3", "shelf-4"}));
    desk.settle();
    EXPECT_FALSE(desk.isAnswered(bad));
}

// What counts is where the link leads, not how the transfer ends.
TEST_F(InnerView, TakesTheLastAddressOnTheWay) {
    const homeloom::clock::Turner turner;
    Silence();
    const struct {
        const char* endpoint;
        CloudFault fault;
        const char* url;
    } cases[] = {{"file_links", CloudFault::header("location: https://a.example/ x\ty"), "https://a.example/xy"},
                 {"file_links", CloudFault::redirectLoop(), "https://files.homeloom.example/udo/file_links/shelf-1?"},
                 {"files", CloudFault::header("location: https://b.example/"), "https://b.example/"},
                 {"files", CloudFault::status(500), "https://files.homeloom.example/udo/files/fridge/shelf-1.svg?"},
                 {"files", CloudFault::endless(), "https://files.homeloom.example/udo/files/fridge/shelf-1.svg?"},
                 {"files", CloudFault::huge(), "https://files.homeloom.example/udo/files/fridge/shelf-1.svg?"}};
    for (const auto& [endpoint, fault, url] : cases) {
        cloud.fault(endpoint, fault);
        EXPECT_THAT(Urls(*AnswerWhenTold(contentsOf({"shelf-1"}))), ElementsAre(StartsWith(url)));
        cloud.clearFaults();
    }
}

TEST_F(InnerView, PassesOverOneEventWithoutContents) {
    Silence();
    const auto request = Begin();
    Tell(R"({"x.com.norvane.da.control":{}})");
    Tell(contentsOf({"shelf-1"}));
    EXPECT_THAT(Urls(*AnswerTo(request)), ElementsAre(HasSubstr("shelf-1")));

    for (const char* useless : {"", "no JSON", R"({"x.com.norvane.da.contents":{}})"}) {
        const auto unanswered = Begin();
        desk.log.clear();
        Tell("{}");
        Tell(useless);
        ASSERT_TRUE(desk.log.waitFor("error! no urls(error:2)", 30s));
        EXPECT_FALSE(desk.isAnswered(unanswered)) << useless;
    }
}

TEST_F(InnerView, OneEventAnswersAllThatWait) {
    Silence();
    const auto first = Begin();
    const auto second = Begin();
    Tell(contentsOf({"shelf-1"}));
    Tell(contentsOf({"shelf-2"}));
    EXPECT_EQ(Urls(*AnswerTo(first)), Urls(*AnswerTo(second)));
    desk.settle();
    EXPECT_EQ(desk.lines().size(), 2u);
}

// Two events of one subscription are on their way when the next request subscribes: the second one answers nobody.
TEST_F(InnerView, AnEventAnswersNobodyWhoAskedAfterIt) {
    Silence();
    const auto first = Begin();
    framework::TransactionId second{};
    desk.atLogLine("[_RefrigeratorInnerViewSubscribeChanged] before job", [&] {
        desk.log.clear();
        Tell(contentsOf({"shelf-2"}));
        desk.log.waitFor("[_RefrigeratorInnerViewSubscribeChanged] enqueued");
        second = Begin();
    });
    Tell(contentsOf({"shelf-1"}));
    EXPECT_THAT(Urls(*AnswerTo(first)), ElementsAre(HasSubstr("shelf-1")));
    desk.settle();
    EXPECT_FALSE(desk.isAnswered(second));
    Tell(contentsOf({"shelf-3"}));
    EXPECT_THAT(Urls(*AnswerTo(second)), ElementsAre(HasSubstr("shelf-3")));
}

TEST_F(InnerView, TellsAtOnceWhatFailsAtOnce) {
    Silence();
    EXPECT_EQ(toText(*desk.ask(kRequest, {{"device_id", "washer"}})), kFailure);
    for (const char* function : {"homeloom_client_subscribe", "homeloom_client_set_remote_representation"}) {
        desk.agent.fault(function, Fault::fail(-5).times(1));
        EXPECT_EQ(toText(*desk.ask(kRequest, {{"device_id", "fridge"}})), kFailure) << function;
    }
    // Whoever was told so is told nothing else later.
    desk.mark();
    Tell(contentsOf({"shelf-1"}));
    desk.settle();
    EXPECT_THAT(desk.lines(), IsEmpty());
    desk.agent.setStatus("fridge", simulator::Disconnected);
    desk.waitFor("disconnected", [](const Screen& now) { return now.number("fridge", "cloud_device_status") == 1; });
    EXPECT_EQ(toText(*desk.ask(kRequest, {{"device_id", "fridge"}})), kFailure);
}

TEST_F(InnerView, MayGoWhileItsPicturesAreAwaited) {
    Silence();
    Begin();
    desk.agent.removeDevice("fridge");
    desk.waitFor("the list without it", [](const Screen& now) { return !now.has("fridge"); });
    desk.settle();
    Tell(contentsOf({"shelf-1"}));
    desk.settle();
    EXPECT_THAT(cloud.requests(), IsEmpty());
}

TEST_F(InnerView, IsFinishedBeforeThePluginEnds) {
    cloud.fault("file_links", CloudFault::never());
    framework::request(kRequest, {{"device_id", "fridge"}});
    desk.waitUntil("all requests", [this] { return cloud.pendingRequests() == 8; });
    desk.atLogLine("deinitClient Start", [this] { cloud.clearFaults(); });
    desk.stop();
    EXPECT_EQ(cloud.pendingRequests(), 0);
}

TEST_F(InnerView, TellsTheTimeOfTheTv) {
    Silence();
    const struct {
        const char* zone;
        const char* told;
        const char* shown;
    } cases[] = {{"UTC", "2020-01-02T03:04:05Z", "20200102030405"},
                 {"Asia/Seoul", "2023-12-31T20:00:00Z", "20240101050000"},
                 {"America/New_York", "2024-07-01T02:00:00Z", "20240630220000"},
                 {"Europe/Berlin", "2024-07-01T10:00:00Z", "20240701120000"},
                 {"Europe/Berlin", "2024-03-31T02:30:00Z", "20240331043000"},  // no such time on a clock there
                 {"Europe/Berlin", "2024-10-27T01:30:00Z", "20241027023000"},
                 {"Australia/Lord_Howe", "2024-01-01T00:00:00Z", "20240101110000"},
                 {"UTC", "20240501090000", "20240501090000"},
                 {"UTC", "soon", ""},
                 {"UTC", "2024-13", ""},
                 {"UTC", "", ""}};
    for (const auto& [zone, told, shown] : cases) {
        desk.settle();
        useTimeZone(zone);
        const auto answer = AnswerWhenTold(contentsOf({"shelf-1"}, told));
        EXPECT_EQ(answer->properties.text("datetime"), shown) << zone << " " << told;
    }
}

TEST_F(InnerView, AsksTheFileServiceOfItsEnvironment) {
    Silence();
    const struct {
        const char* setting;
        const char* host;
    } cases[] = {{R"({"IoTCloud":"PROD"})", "files.homeloom.example"},
                 {R"({"IoTCloud":"ACC"})", "files.acc.homeloom.example"},
                 {R"({"IoTCloud":"STG"})", "files.homeloom.example"},
                 {R"({"IoTCloud":"DEV"})", "files.dev.homeloom.example"}};
    for (const auto& [setting, host] : cases) {
        homeloom::desktop::settings::setString("db/homeloom/server/env", setting);
        EXPECT_THAT(Urls(*AnswerWhenTold(contentsOf({"shelf-1"}))),
                    ElementsAre(StartsWith("https://" + std::string(host) + "/")));
    }
}
