// The wrapper over curl, against a real server: what goes over the wire, and what never does.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <list>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <KRCurl/KRCurlEasy.h>
#include <KRCurl/KRCurlUtility.h>

#include "NetworkTest.h"

using namespace KRCurl;
using simulator::CloudFault;
using testing::ElementsAre;
namespace web = homeloom::desktop::web;

namespace {

constexpr char kUrl[] = "https://api.homeloom.example/v1/devices/washer";

unsigned Append(char* data, unsigned size, unsigned nmemb, void* to) {
    static_cast<std::string*>(to)->append(data, size * nmemb);
    return size * nmemb;
}

int ThrowOnDebug(DEBUG_TYPE, char*, unsigned, void*) {
    throw std::runtime_error("from the callback");
}

class KRCurl_ : public NetworkTest {
protected:
    KRCurl_() {
        EXPECT_TRUE(easy.Initialize());
        Prepare(easy);
    }

    void Prepare(KRCurlEasy& handle) {
        EXPECT_TRUE(handle.setOption(KRCURL_OPTION_URL, kUrl));
        EXPECT_TRUE(handle.setOption(KRCURL_OPTION_WRITEFUNCTION, Append));
        EXPECT_TRUE(handle.setOption(KRCURL_OPTION_WRITEDATA, &body));
    }

    static bool Reaches(const std::string& url) {
        KRCurlEasy handle;
        return handle.Initialize() && handle.setOption(KRCURL_OPTION_URL, url) && handle.send();
    }

    long Code() {
        long code = -1;
        EXPECT_TRUE(easy.getInfo(KRCURL_INFO_RESPONSE_CODE, &code));
        return code;
    }

    std::string body;
    KRCurlEasy easy;
};

}  // namespace

TEST_F(KRCurl_, TakesEachOptionByItsOwnKindOfValueOnly) {
    // In the order of the overloads below.
    const std::vector<std::vector<int>> options = {{48, 50, 59, 60}, {1, 16, 17, 19, 20, 30}, {75}, {78, 80}, {84},
                                                   {86, 88, 91}};
    for (int number = 0; number < 128; ++number) {
        const auto option = static_cast<KRCURL_OPTION_TYPE>(number);
        const std::vector<std::function<bool(KRCurlEasy&)>> overloads = {
            [&](KRCurlEasy& handle) { return handle.setOption(option, std::string("text")); },
            [&](KRCurlEasy& handle) { return handle.setOption(option, 1L); },
            [&](KRCurlEasy& handle) { return handle.setOption(option, std::list<std::string>{"A: b"}); },
            [&](KRCurlEasy& handle) { return handle.setOption(option, Append); },
            [&](KRCurlEasy& handle) { return handle.setOption(option, ThrowOnDebug); },
            [&](KRCurlEasy& handle) { return handle.setOption(option, static_cast<void*>(&body)); }};
        for (std::size_t kind = 0; kind < overloads.size(); ++kind) {
            SCOPED_TRACE("option " + std::to_string(number) + ", overload " + std::to_string(kind));
            KRCurlEasy handle;
            EXPECT_FALSE(overloads[kind](handle));  // not before Initialize
            EXPECT_TRUE(handle.Initialize());
            const auto& own = options[kind];
            EXPECT_EQ(overloads[kind](handle), std::count(own.begin(), own.end(), number) == 1);
        }
    }
    KRCurlEasy handle;
    EXPECT_FALSE(handle.send());
    long code = 0;
    EXPECT_FALSE(easy.getInfo(static_cast<KRCURL_INFO_TYPE>(7), &code));
}

TEST_F(KRCurl_, PostsWhatItWasGivenAndReadsNoInput) {
    const std::string withNul("a\0b", 3);
    const struct {
        std::vector<std::pair<KRCURL_OPTION_TYPE, std::variant<long, std::string>>> options;
        std::string body;
    } rows[] = {
        {{{KRCURL_OPTION_POST, 1L}}, ""},
        {{{KRCURL_OPTION_POST, 1L}, {KRCURL_OPTION_POSTFIELDS, "a=b"}}, "a=b"},
        {{{KRCURL_OPTION_COPYPOSTFIELDS, "a=b"}, {KRCURL_OPTION_POST, 1L}}, "a=b"},
        {{{KRCURL_OPTION_POSTFIELDSIZE, 3L}, {KRCURL_OPTION_POSTFIELDS, withNul}}, withNul},
        {{{KRCURL_OPTION_POSTFIELDSIZE, 2L}, {KRCURL_OPTION_COPYPOSTFIELDS, "abc"}}, "ab"},
        {{{KRCURL_OPTION_POSTFIELDS, withNul}}, "a"},
    };
    // Whoever read it would find this, and never an end.
    int input[2];
    ASSERT_EQ(pipe2(input, O_NONBLOCK), 0);
    ASSERT_EQ(write(input[1], "leak", 4), 4);
    ASSERT_EQ(dup2(input[0], STDIN_FILENO), STDIN_FILENO);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.body);
        easy.reset();
        Prepare(easy);
        for (const auto& [option, value] : row.options) {
            // A copy of its own, gone before the request is sent.
            const auto copy = std::make_unique<std::variant<long, std::string>>(value);
            const auto set = [&, to = option](const auto& own) { return easy.setOption(to, own); };
            EXPECT_TRUE(std::visit(set, *copy));
        }
        cloud.resetRequests();
        EXPECT_TRUE(easy.send());
        ASSERT_EQ(cloud.requests().size(), 1u);
        const auto request = cloud.requests()[0];
        EXPECT_EQ(request.method, "POST");
        EXPECT_EQ(request.body, row.body);
        EXPECT_EQ(request.header("Content-Length"), std::to_string(row.body.size()));
    }
    char left[8];
    EXPECT_EQ(read(input[0], left, sizeof(left)), 4);
}

TEST_F(KRCurl_, ReadsNothingBehindTheFields) {
    EXPECT_TRUE(easy.setOption(KRCURL_OPTION_POSTFIELDSIZE, 100L));
    EXPECT_FALSE(easy.setOption(KRCURL_OPTION_POSTFIELDS, std::string("short")));
    EXPECT_TRUE(easy.setOption(KRCURL_OPTION_POSTFIELDSIZE, 64L));
    EXPECT_TRUE(easy.setOption(KRCURL_OPTION_POSTFIELDS, std::string(64, 'x')));
    EXPECT_FALSE(easy.setOption(KRCURL_OPTION_POSTFIELDS, std::string("short")));
    EXPECT_TRUE(easy.send());
    EXPECT_EQ(cloud.requests().back().body, std::string(64, 'x'));
    easy.reset();
    EXPECT_TRUE(easy.setOption(KRCURL_OPTION_COPYPOSTFIELDS, std::string("short")));
    EXPECT_FALSE(easy.setOption(KRCURL_OPTION_POSTFIELDSIZE, 6L));
}

TEST_F(KRCurl_, WritesToNoStandardStream) {
    KRCurlEasy silent;
    ASSERT_TRUE(silent.Initialize());
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_TRUE(silent.setOption(KRCURL_OPTION_URL, kUrl));
    EXPECT_TRUE(silent.setOption(KRCURL_OPTION_VERBOSE, 1L));
    EXPECT_TRUE(silent.setOption(KRCURL_OPTION_HTTPHEADER, std::list<std::string>{"Authorization: Bearer secret"}));
    // Nobody is there to use these.
    EXPECT_TRUE(silent.setOption(KRCURL_OPTION_WRITEDATA, this));
    EXPECT_TRUE(silent.setOption(KRCURL_OPTION_HEADERDATA, this));
    EXPECT_TRUE(silent.setOption(KRCURL_OPTION_DEBUGDATA, this));
    EXPECT_TRUE(silent.send());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

// The other callbacks' are the plug-in's own to see.
TEST_F(KRCurl_, LetsAnExceptionOfTheDebugCallbackOutOfSend) {
    easy.setOption(KRCURL_OPTION_VERBOSE, 1L);
    easy.setOption(KRCURL_OPTION_DEBUGFUNCTION, ThrowOnDebug);
    EXPECT_THROW(easy.send(), std::runtime_error);
    easy.reset();
    Prepare(easy);
    EXPECT_TRUE(easy.send());
}

TEST_F(KRCurl_, EndsWhenACallbackTakesAnythingButTheWhole) {
    // The last one would have curl pause for good.
    const std::vector<Callback> takers = {[](char*, unsigned, unsigned, void*) { return 0u; },
                                          [](char*, unsigned, unsigned nmemb, void*) { return nmemb + 1; },
                                          [](char*, unsigned, unsigned, void*) { return 0x10000001u; }};
    for (const Callback taker : takers) {
        EXPECT_TRUE(easy.setOption(KRCURL_OPTION_WRITEFUNCTION, taker));
        EXPECT_FALSE(easy.send());
    }
}

TEST_F(KRCurl_, LeavesTheMachineByNoWay) {
    web::trust("");
    EXPECT_FALSE(Reaches(kUrl)) << "the cloud is nobody that this machine knows";
    web::trust(cloud.caFile());
    setenv("https_proxy", "http://127.0.0.1:9", 1);
    EXPECT_TRUE(Reaches(kUrl));
    web::routeHost("api.homeloom.example", 0);
    EXPECT_FALSE(Reaches(kUrl));
    EXPECT_TRUE(Reaches("https://elsewhere.example/"));
    web::routeOtherHosts(0);
    web::routeHost("api.homeloom.example", cloud.port());
    EXPECT_TRUE(Reaches(kUrl));
    EXPECT_FALSE(Reaches("https://elsewhere.example/"));
    EXPECT_FALSE(Reaches("file:///etc/hostname"));
}

TEST_F(KRCurl_, SendsNoSecondHeaderLine) {
    for (const std::string& token : {std::string("a\r\nX-Evil: 1"), std::string("a\nb"), std::string("a\0b", 3)}) {
        EXPECT_FALSE(easy.setOption(KRCURL_OPTION_HTTPHEADER, std::list<std::string>{"X-Token: " + token}));
        EXPECT_FALSE(easy.setOption(KRCURL_OPTION_URL, kUrl + token));
        EXPECT_FALSE(easy.setOption(KRCURL_OPTION_CUSTOMREQUEST, "GET" + token));
    }
}

TEST_F(KRCurl_, FollowsRedirectionsOnlyWhenToldAndNotForEver) {
    EXPECT_TRUE(easy.setOption(KRCURL_OPTION_HTTPHEADER, std::list<std::string>{"Authorization: Bearer secret"}));
    cloud.fault("devices", CloudFault::redirectLoop());
    EXPECT_TRUE(easy.send());
    EXPECT_EQ(Code(), 302);
    EXPECT_TRUE(easy.setOption(KRCURL_OPTION_FOLLOWLOCATION, 1L));
    EXPECT_FALSE(easy.send());

    // The token is not for other hosts.
    cloud.fault("devices", CloudFault::header("location: https://elsewhere.example/v1/devices/x").times(1));
    cloud.resetRequests();
    EXPECT_TRUE(easy.send());
    const auto requests = cloud.requests();
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].header("Authorization"), "Bearer secret");
    EXPECT_EQ(requests[1].host, "elsewhere.example");
    EXPECT_EQ(requests[1].header("Authorization"), "");

    cloud.fault("devices", CloudFault::header("location: file:///etc/hostname").times(1));
    EXPECT_FALSE(easy.send());
}

TEST(KRCurlFaults, KnowTheirStepsOnly) {
    EXPECT_THROW(web::fail("SEND"), std::invalid_argument);
    EXPECT_THROW(web::routeOtherHosts(65536), std::invalid_argument);
    web::fail("send", homeloom::desktop::firstCalls(1));
    web::fail("URL");
    EXPECT_THAT(web::failingSteps(), ElementsAre("URL", "send"));
    KRCurlEasy easy;
    EXPECT_TRUE(easy.Initialize());
    EXPECT_FALSE(easy.send());
    EXPECT_THAT(web::failingSteps(), ElementsAre("URL"));
}

TEST(KRCurlUtility_, MakesQueries) {
    const std::vector<std::vector<std::string>> rows = {
        {"", "source_id", "porch-camera", "?source_id=porch-camera"},
        {"", "source_id", "a b&c=d/\xc3\xa9?#%", "?source_id=a%20b%26c%3Dd%2F%C3%A9%3F%23%25"},
        {"", "", "", "?="},
        {"?a=1", "b", "2", "?a=1&b=2"},
        {"https://host/path", "a", "~._-", "https://host/path?a=~._-"}};
    for (const auto& row : rows) {
        std::string query = row[0];
        KRCurlUtility::makeQueryString(query, row[1], row[2]);
        EXPECT_EQ(query, row[3]);
    }
}
