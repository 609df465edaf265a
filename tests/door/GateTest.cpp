#include "door/Gate.h"

#include <gtest/gtest.h>
#include <httplib.h>

#include "door/CommandBody.h"

using namespace homeloom::tv;

namespace {

// The status with which a request is refused; 0 if it isn't.
int refused(const Gate& gate, const httplib::Headers& headers, const std::string& token = "",
            const std::string& path = "/v1/home") {
    httplib::Request request;
    request.method = "GET";
    request.path = path;
    request.headers = headers;
    if (!token.empty()) {
        request.params.emplace("token", token);
    }
    try {
        gate.check(request);
        return 0;
    } catch (const Refusal& refusal) {
        return refusal.status;
    }
}

}  // namespace

TEST(GateTest, LetsInNobodyWhomAnotherSiteSends) {
    const struct {
        int status;
        httplib::Headers headers;
    } cases[] = {
        {0, {{"Host", "127.0.0.1:8080"}}},
        {0, {{"Host", "LocalHost:8080"}}},
        {0, {{"Host", "[::1]:8080"}}},
        {0, {{"Host", "localhost:8080"}, {"Origin", "http://localhost:8080"}}},
        {400, {}},
        {400, {{"Host", ""}}},
        {400, {{"Host", "127.0.0.1:80a"}}},
        {400, {{"Host", "[::1:8080"}}},
        {400, {{"Host", "127.0.0.1:8080"}, {"Host", "127.0.0.1:8080"}}},
        {403, {{"Host", "127.0.0.1"}}},
        {403, {{"Host", "127.0.0.1:8081"}}},
        {403, {{"Host", "tv.example:8080"}}},
        {403, {{"Host", "127.0.0.1.tv.example:8080"}}},
        {403, {{"Host", "192.168.1.2:8080"}}},
        {403, {{"Host", "127.0.0.1:8080"}, {"Origin", "http://tv.example"}}},
        {403, {{"Host", "127.0.0.1:8080"}, {"Origin", "http://localhost:8080"}}},
        {403, {{"Host", "127.0.0.1:8080"}, {"Origin", "https://127.0.0.1:8080"}}},
        {403, {{"Host", "127.0.0.1:8080"}, {"Origin", "null"}}},
    };
    const Gate gate({"127.0.0.1", 8080}, "");
    for (const auto& one : cases) {
        std::string text;
        for (const auto& [name, value] : one.headers) {
            text += name + ": " + value + " ";
        }
        EXPECT_EQ(refused(gate, one.headers), one.status) << text;
    }
    // On the network it is reached by addresses, which nobody can let lead elsewhere.
    const Gate open({"0.0.0.0", 8080}, "");
    EXPECT_EQ(refused(open, {{"Host", "192.168.1.2:8080"}}), 0);
    EXPECT_EQ(refused(open, {{"Host", "tv.example:8080"}}), 403);
}

TEST(GateTest, AsksForTheToken) {
    const Gate gate({"127.0.0.1", 8080}, "open-sesame");
    const std::pair<const char*, const char*> host{"Host", "127.0.0.1:8080"};
    EXPECT_EQ(refused(gate, {host}), 401);
    EXPECT_EQ(refused(gate, {host}, "", "/healthz"), 0);
    EXPECT_EQ(refused(gate, {host}, "open-sesama"), 401);
    EXPECT_EQ(refused(gate, {host}, "open-sesame"), 0);
    EXPECT_EQ(refused(gate, {host, {"Authorization", "Bearer open-sesame"}}), 0);
    EXPECT_EQ(refused(gate, {host, {"Authorization", "Basic open-sesame"}}), 401);
    EXPECT_EQ(refused(gate, {host, {"Cookie", "a=b; homeloom-8080=open-sesame"}}), 0);
    EXPECT_EQ(refused(gate, {host, {"Cookie", "homeloom-8081=open-sesame"}}), 401);
}

TEST(GateTest, ReadsWhereToListen) {
    const struct {
        const char* text;
        const char* authority;  // empty: no address
        bool isLoopback;
    } cases[] = {
        {"8080", "127.0.0.1:8080", true},
        {"0", "127.0.0.1:0", true},
        {"127.0.0.2:80", "127.0.0.2:80", true},
        {"[::1]:80", "[::1]:80", true},
        {"localhost:1", "localhost:1", true},
        {"0.0.0.0:80", "0.0.0.0:80", false},
        {"tv:80", "tv:80", false},
        {"127.evil:80", "127.evil:80", false},
        {"", "", false},
        {"65536", "", false},
        {"-1", "", false},
        {"tv", "", false},
        {"::1:80", "", false},
        {"tv:", "", false},
    };
    for (const auto& one : cases) {
        const auto address = parseDoorAddress(one.text);
        EXPECT_EQ(address ? address->authority() : "", one.authority) << one.text;
        EXPECT_EQ(address && address->isLoopback(), one.isLoopback) << one.text;
    }
}
