#include "clock/Clock.h"
#include "simulator/Cloud.h"

#include <filesystem>
#include <future>
#include <string>

#include <gmock/gmock.h>
#include <httplib.h>

#include "simulator/Agent.h"
#include "simulator/HomeLoader.h"
#include "support/Places.h"

using namespace std::chrono_literals;
using simulator::Cloud;
using simulator::CloudFault;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

const std::string kImage = "/udo/file_links/shelf-2?cid=app&di=fridge";

}  // namespace

class CloudTest : public testing::Test {
protected:
    CloudTest() {
        simulator::Agent::instance().load(simulator::loadHome(homeloom::test::apartmentFile()));
        cloud.start();
    }
    ~CloudTest() override {
        cloud.stop();
        cloud.clearFaults();
    }

    // "CODE BODY", or "error" when the transfer failed; the location in place of an empty body.
    std::string ask(const std::string& method, const std::string& target, const std::string& body = "",
                    const std::string& token = "token-of-mina") {
        ERR_clear_error();  // of an earlier connection that failed
        httplib::SSLClient client("localhost", cloud.port());
        client.set_ca_cert_path(cloud.caFile().c_str());
        const httplib::Headers headers{{"Authorization", "Bearer " + token}};
        const httplib::Result result =
            method == "GET" ? client.Get(target, headers) : client.Post(target, headers, body, "text/plain");
        if (!result) {
            return "error";
        }
        const std::string location = result->get_header_value("location");
        return std::to_string(result->status) + " " + (location.empty() ? result->body : location);
    }

    Cloud& cloud = Cloud::instance();
};

TEST_F(CloudTest, AnswersFromTheHome) {
    EXPECT_THAT(ask("GET", "/v1/devices/tv-hub"), StartsWith(R"(200 {"deviceId":"tv-hub",)"));
    EXPECT_THAT(ask("GET", "/v1/devices/nobody"), StartsWith("403 "));
    EXPECT_THAT(ask("GET", "/v1/devices/tv-hub", "", "other token"), StartsWith("401 "));
    EXPECT_EQ(
        ask("POST", "/v1/stream?source_id=living-camera"),
        R"(200 {"stream":{"gateway_url":"rtsps://streams.home.example/living-camera","source_id":"living-camera"}})");
    EXPECT_THAT(ask("POST", "/v1/stream?source_id=washer"), StartsWith("404 "));
    const char* const stop =
        R"({"commands":[{"component":"main","capability":"videoStream","command":"stopStream","arguments":[]}]})";
    EXPECT_EQ(ask("POST", "/v1/devices/doorbell/commands", stop),
              R"(200 {"results":[{"id":"doorbell","status":"ACCEPTED"}]})");
    EXPECT_THAT(ask("POST", "/v1/devices/washer/commands", stop), StartsWith("422 "));
    EXPECT_THAT(ask("GET", "/"), StartsWith("404 "));

    const std::string link = ask("GET", kImage);
    ASSERT_THAT(link, StartsWith("302 https://localhost"));
    const std::string path = link.substr(link.find("/udo/files/"));
    EXPECT_THAT(ask("GET", path), HasSubstr(">shelf-2<"));
    EXPECT_THAT(ask("GET", path + "x"), StartsWith("403 "));
    EXPECT_THAT(ask("GET", "/udo/file_links/shelf-9?cid=app&di=fridge"), StartsWith("404 "));

    const auto requests = cloud.requests();
    ASSERT_EQ(requests.size(), 12u);
    EXPECT_EQ(requests[5].endpoint, "commands");
    EXPECT_EQ(requests[5].body, stop);
    EXPECT_EQ(requests[8].target, kImage);
    EXPECT_EQ(requests[8].header("authorization"), "Bearer token-of-mina");
}

TEST_F(CloudTest, MisbehavesAsTold) {
    const struct {
        CloudFault fault;
        const char* answer;
    } cases[] = {{CloudFault::status(500), R"(500 {"error":{"message":"told to fail"}})"},
                 {CloudFault::body("no JSON"), "200 no JSON"},
                 {CloudFault::header("Location: https://elsewhere.example/"), "302 https://elsewhere.example/"},
                 {CloudFault::cut(), "error"},
                 {CloudFault::huge(), "200 xxx"},
                 {CloudFault::chunks(), R"(200 {"deviceId":"tv-hub",)"},
                 {CloudFault::late(1ms), R"(200 {"deviceId":"tv-hub",)"},
                 {CloudFault::redirectLoop(), "302 https://localhost"}};
    for (const auto& [fault, answer] : cases) {
        cloud.fault("devices", fault.times(1));
        EXPECT_THAT(ask("GET", "/v1/devices/tv-hub"), StartsWith(answer));
        EXPECT_THAT(ask("GET", "/v1/devices/tv-hub"), StartsWith("200 {")) << "it was for one request";
    }
    cloud.fault("file_links", CloudFault::status(500).only("shelf-1"));
    EXPECT_THAT(ask("GET", kImage), StartsWith("302 "));
    EXPECT_THAT(ask("GET", "/udo/file_links/shelf-1?cid=app&di=fridge"), StartsWith("500 "));
    EXPECT_THROW(cloud.fault("nothing", CloudFault::never()), std::invalid_argument);
}

TEST_F(CloudTest, KeepsAnswersBackUntilTold) {
    const auto pending = [this](int count) {
        while (cloud.pendingRequests() != count) {
            std::this_thread::yield();
        }
    };
    cloud.fault("devices", CloudFault::late(2s));
    cloud.fault("stream", CloudFault::never());
    auto late = std::async(std::launch::async, [this] { return ask("GET", "/v1/devices/tv-hub"); });
    auto never = std::async(std::launch::async, [this] { return ask("POST", "/v1/stream?source_id=living-camera"); });
    pending(2);
    EXPECT_THAT(ask("GET", kImage), StartsWith("302 ")) << "others are served meanwhile";
    homeloom::clock::advance(2s);
    EXPECT_THAT(late.get(), StartsWith("200 "));
    EXPECT_EQ(cloud.pendingRequests(), 1);
    cloud.stop();
    never.get();
}

TEST_F(CloudTest, ComesAndGoesWithItsCertificates) {
    cloud.setForeignCertificates(true);
    EXPECT_EQ(ask("GET", "/v1/devices/tv-hub"), "error");
    cloud.setForeignCertificates(false);
    EXPECT_THAT(ask("GET", "/v1/devices/tv-hub"), StartsWith("200 "));
    const std::string caFile = cloud.caFile();
    cloud.stop();
    EXPECT_FALSE(std::filesystem::exists(caFile));
    EXPECT_EQ(cloud.port(), 0);
    cloud.start();
    EXPECT_THAT(ask("GET", "/v1/devices/tv-hub"), StartsWith("200 "));
}
