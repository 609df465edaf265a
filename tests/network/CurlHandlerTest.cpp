// A request from its pieces to its code: each step that can fail, each answer that can come.

#include <functional>
#include <string>
#include <vector>

#include "Common/CException.h"
#include "Homeloom/Network/CRestHandler.h"
#include "NetworkTest.h"
#include "clock/Turner.h"

using namespace VMFramework::HomeLoom;
using simulator::CloudFault;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
namespace web = homeloom::desktop::web;

namespace {

constexpr char kUrl[] = "https://api.homeloom.example/v1/devices/washer";

class Requester : public CRestHandler {
public:
    using CRestHandler::_RequestHttp;
    using CRestHandler::_SetBody;
    using CRestHandler::_SetDataBody;
    using CRestHandler::_SetHeaderHandler;
    using CRestHandler::_SetHeaderList;
    using CRestHandler::_SetMethod;
    using CRestHandler::_SetUrl;
};

struct Method {
    HttpMethod method;
    const char* body;
    const char* dataBody;
    std::vector<const char*> options;  // in order
};

const Method kMethods[] = {{HttpMethod::Get, "ignored", "ignored", {"HTTPGET"}},
                           {HttpMethod::Post, "loses", "data", {"POSTFIELDSIZE", "POSTFIELDS"}},
                           {HttpMethod::Post, "text", "", {"COPYPOSTFIELDS"}},
                           {HttpMethod::Post, "", "", {"POST"}},
                           {HttpMethod::Put, "text", "ignored", {"CUSTOMREQUEST", "COPYPOSTFIELDS"}},
                           {HttpMethod::Put, "", "", {"CUSTOMREQUEST", "COPYPOSTFIELDS"}},
                           {HttpMethod::Delete, "", "", {"CUSTOMREQUEST", "COPYPOSTFIELDS"}}};

struct Step {
    std::string name;
    std::vector<std::string> words;
};

std::vector<Step> StepsOf(const Method& method, const std::vector<const char*>& options) {
    std::vector<Step> steps = {{"Initialize", {"KRCurl init failed!"}}};
    for (const std::string name : method.options) {
        steps.push_back({name, {"setoption " + name + " failed", "set method failed!"}});
    }
    for (const std::string name : options) {
        steps.push_back({name, {"setoption " + name + " failed"}});
    }
    steps.push_back({"send", {"send failed"}});
    steps.push_back({"getInfo", {"setoption getInfo(RESPONSE_CODE) failed"}});
    return steps;
}

class CurlHandler : public NetworkTest {
protected:
    CurlHandler() {
        requester._SetMethod(HttpMethod::Get);
        requester._SetUrl(kUrl);
        requester._SetHeaderList({"Authorization: Bearer " + Token()});
    }

    // When a step and all behind it fail, only the words of that one may stand in the log, and nothing may be sent.
    void ExpectStepsToFailInOrder(const std::vector<Step>& steps, const std::function<long()>& request) {
        for (std::size_t first = 0; first < steps.size(); ++first) {
            SCOPED_TRACE(steps[first].name);
            web::pass();
            for (std::size_t i = first; i < steps.size(); ++i) {
                web::fail(steps[i].name);
            }
            log.clear();
            cloud.resetRequests();
            EXPECT_EQ(request(), 999);
            EXPECT_THAT(Errors(), ElementsAreArray(steps[first].words));
            EXPECT_EQ(cloud.requests().size(), steps[first].name == "getInfo" ? 1u : 0u);
        }
        web::pass();
    }

    Requester requester;
    std::string response;
};

class Stream : public CurlHandler {
protected:
    long Request(RequestBase* request) {
        return handler.RequestHttpAlive(HttpMethod::Get, kUrl, {"Authorization: Bearer " + Token()}, "", "", request);
    }

    CCurlHandler handler;
};

}  // namespace

TEST_F(CurlHandler, EndsWithTheWordsOfTheFirstStepThatFails) {
    requester._SetHeaderHandler([](const std::string&) {});
    for (const Method& method : kMethods) {
        requester._SetMethod(method.method);
        requester._SetBody(method.body);
        requester._SetDataBody(method.dataBody);
        ExpectStepsToFailInOrder(StepsOf(method, {"HTTPHEADER", "URL", "VERBOSE", "TIMEOUT", "WRITEFUNCTION",
                                                  "WRITEDATA", "HEADERFUNCTION", "HEADERDATA"}),
                                 [&] { return requester._RequestHttp(response); });
    }
}

TEST_F(Stream, EndsWithTheWordsOfTheFirstStepThatFails) {
    RequestBase request;
    request.callback = [](bool, unsigned, const std::string&) {};
    for (const Method& method : kMethods) {
        ExpectStepsToFailInOrder(StepsOf(method, {"HTTPHEADER", "URL", "VERBOSE", "WRITEFUNCTION", "WRITEDATA"}), [&] {
            return handler.RequestHttpAlive(method.method, kUrl, {}, method.body, method.dataBody, &request);
        });
    }
    // A time limit among them: it goes on for as long as it goes on.
    for (const char* const unused : {"TIMEOUT", "HEADERFUNCTION", "HEADERDATA"}) {
        web::fail(unused);
    }
    EXPECT_EQ(Request(&request), 200);
}

TEST_F(CurlHandler, SendsNothingWithoutAMethod) {
    for (const int method : {0, 5}) {
        Requester fresh;
        if (method != 0) {
            fresh._SetMethod(static_cast<HttpMethod>(method));
        }
        fresh._SetUrl(kUrl);
        log.clear();
        EXPECT_EQ(fresh._RequestHttp(response), 999);
        EXPECT_THAT(Errors(), ElementsAre("invalid http method!", "set method failed!"));
    }
    EXPECT_EQ(cloud.requests().size(), 0u);
}

TEST_F(CurlHandler, SendsItsPiecesAndLogsThem) {
    requester._SetHeaderList({"X-First: 1", "X-Second: t\xc3\xb6ken\"; +="});
    for (const Method& method : kMethods) {
        requester._SetMethod(method.method);
        requester._SetBody(method.body);
        requester._SetDataBody(method.dataBody);
        cloud.resetRequests();
        EXPECT_EQ(requester._RequestHttp(response), method.method == HttpMethod::Get ? 401 : 404);
        ASSERT_EQ(cloud.requests().size(), 1u);
        const auto request = cloud.requests()[0];
        const char* const names[] = {"", "GET", "POST", "PUT", "DELETE"};
        EXPECT_EQ(request.method, names[static_cast<int>(method.method)]);
        EXPECT_EQ(request.host, "api.homeloom.example");
        EXPECT_EQ(request.target, "/v1/devices/washer");
        EXPECT_EQ(request.header("X-First"), "1");
        EXPECT_EQ(request.header("X-Second"), "t\xc3\xb6ken\"; +=");
        const bool isData = method.method == HttpMethod::Post && *method.dataBody != '\0';
        EXPECT_EQ(request.body, isData ? method.dataBody : method.method == HttpMethod::Get ? "" : method.body);
    }
    EXPECT_TRUE(log.contains("url: https://api.homeloom.example/v1/devices/washer"));
    EXPECT_TRUE(log.contains("header: X-Second: t\xc3\xb6ken\"; +="));
    EXPECT_TRUE(log.contains("body: loses"));
    EXPECT_TRUE(log.contains("response code: 404"));
    // A body that holds a NUL goes out whole, whoever it is for.
    requester._SetMethod(HttpMethod::Post);
    requester._SetDataBody(std::string("a\0b", 3));
    requester._RequestHttp(response);
    EXPECT_EQ(cloud.requests().back().body, std::string("a\0b", 3));
}

TEST_F(CurlHandler, GivesCodeAndLastPieceOfTheBody) {
    EXPECT_EQ(requester._RequestHttp(response), 200);
    const std::string whole = response;
    EXPECT_THAT(whole, HasSubstr(R"("deviceId":"washer")"));
    EXPECT_THAT(Errors(), IsEmpty());

    struct Row {
        const char* what;
        CloudFault fault;
        long code;
        std::string body;
    };
    const Row rows[] = {
        {"empty", CloudFault::body(""), 200, ""},
        {"not UTF-8", CloudFault::body("\xff\xfe{"), 200, "\xff\xfe{"},
        {"a NUL", CloudFault::body(std::string("abc\0def", 7)), 200, "abc"},
        {"404", CloudFault::status(404), 404, R"({"error":{"message":"told to fail"}})"},
        {"500", CloudFault::status(500), 500, R"({"error":{"message":"told to fail"}})"},
        {"a redirection", CloudFault::redirectLoop(), 302, ""},
        {"two chunks", CloudFault::chunks(), 200, whole.substr((whole.size() + 1) / 2)},
        {"cut", CloudFault::cut(), 999, whole.substr(0, whole.size() / 2)},
        {"endless", CloudFault::endless(), 999, "[[[["},
        {"never", CloudFault::never(), 999, ""},
    };
    const homeloom::clock::Turner turner;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        cloud.fault("devices", row.fault);
        response = "of the request before";
        EXPECT_EQ(requester._RequestHttp(response), row.code);
        EXPECT_EQ(response, row.body);
    }
    cloud.fault("devices", CloudFault::huge());
    EXPECT_EQ(requester._RequestHttp(response), 200);
    EXPECT_THAT(response, Each('x'));
    EXPECT_LE(response.size(), 16384u);  // a piece of 32 megabytes

    cloud.clearFaults();
    cloud.setForeignCertificates(true);
    EXPECT_EQ(requester._RequestHttp(response), 999);
    cloud.setForeignCertificates(false);
    requester._SetUrl("no address at all");
    EXPECT_EQ(requester._RequestHttp(response), 999);
    requester._SetUrl(kUrl);
    cloud.stop();
    EXPECT_EQ(requester._RequestHttp(response), 999);
    EXPECT_EQ(response, "");
}

TEST_F(CurlHandler, TellsTheHeaderLineByLine) {
    // Without one to tell, nothing of it is set.
    web::fail("HEADERFUNCTION");
    web::fail("HEADERDATA");
    EXPECT_EQ(requester._RequestHttp(response), 200);
    web::pass();

    std::vector<std::string> lines;
    requester._SetHeaderHandler([&](const std::string& line) { lines.push_back(line); });
    cloud.fault("devices", CloudFault::header("x-odd: \xff=\"<&>"));
    EXPECT_EQ(requester._RequestHttp(response), 302);
    ASSERT_FALSE(lines.empty());
    EXPECT_THAT(lines.front(), testing::StartsWith("HTTP/1.1 302"));
    EXPECT_THAT(lines, Contains("x-odd: \xff=\"<&>\r\n"));
    EXPECT_EQ(lines.back(), "\r\n");
}

TEST_F(CurlHandler, LogsAndThrowsOnWhatTheHeaderHandlerThrows) {
    requester._SetHeaderHandler([](const std::string&) { throw CException("no such header", 2); });
    EXPECT_THROW(requester._RequestHttp(response), CException);
    EXPECT_THAT(Errors(), ElementsAre("Exception !! - no such header(error:2)(error_code:2)"));
    requester._SetHeaderHandler({});
    EXPECT_EQ(requester._RequestHttp(response), 200);
}

TEST_F(CurlHandler, CallbacksTakeNothingWithoutDataOrReceiver) {
    char data[] = "abcd";
    std::string text = "kept";
    std::function<void(const std::string&)> empty;
    for (const auto callback : {CCurlHandler::_HttpResponseBodyCb, CCurlHandler::_HttpAliveResponseBodyCb,
                                CCurlHandler::_HttpResponseHeaderCb}) {
        log.clear();
        EXPECT_EQ(callback(nullptr, 1, 4, &text), 0u);
        EXPECT_EQ(callback(data, 1, 4, nullptr), 0u);
        EXPECT_THAT(Errors(), ElementsAre("buffer is null!", "userdata is null!"));
    }
    EXPECT_EQ(text, "kept");
    EXPECT_EQ(CCurlHandler::_HttpResponseBodyCb(data, 1, 2, &text), 2u);  // no NUL stands behind the two
    EXPECT_EQ(text, "ab");
    EXPECT_THROW(CCurlHandler::_HttpResponseHeaderCb(data, 1, 4, &empty), std::bad_function_call);
}

TEST_F(Stream, HandsEachPieceOn) {
    cloud.fault("devices", CloudFault::body(std::string("abc\0def", 7)));
    std::vector<std::string> pieces;
    RequestBase request;
    request.callback = [&](bool isAlive, unsigned length, const std::string& text) {
        pieces.push_back((isAlive ? "alive " : "dead ") + std::to_string(length) + " " + text);
    };
    EXPECT_EQ(Request(&request), 200);
    EXPECT_THAT(pieces, ElementsAre("alive 7 abc"));
    EXPECT_FALSE(log.contains("url: "));

    // The second piece goes to whoever the first one named.
    cloud.fault("devices", CloudFault::chunks());
    pieces.clear();
    request.callback = [&, own = std::string(100, '1')](bool, unsigned, const std::string&) {
        request.callback = [&pieces](bool, unsigned, const std::string&) { pieces.push_back("second"); };
        pieces.push_back("first " + own.substr(99));
    };
    EXPECT_EQ(Request(&request), 200);
    EXPECT_THAT(pieces, ElementsAre("first 1", "second"));
}

TEST_F(Stream, ThrowsWithoutAFunctionAndFailsWithoutARequest) {
    RequestBase request;
    EXPECT_THROW(Request(&request), std::bad_function_call);
    log.clear();
    EXPECT_EQ(Request(nullptr), 999);
    EXPECT_THAT(Errors(), ElementsAre("userdata is null!", "send failed"));
}
