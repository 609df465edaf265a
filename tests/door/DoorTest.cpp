#include <gmock/gmock.h>

#include <csignal>
#include <map>
#include <thread>
#include <utility>

#include "Program.h"

using ::testing::HasSubstr;
using VMFramework::json::JsonValue;

namespace {

constexpr char kJson[] = "application/json";
constexpr char kText[] = "text/plain; charset=utf-8";

}  // namespace

TEST(DoorTest, TellsTheHomeAndWhatACommandChangesInIt) {
    const Program program;
    Listener one(program);
    Listener other(program);
    const Event first = one.next();
    other.next("hello");
    EXPECT_EQ(first.type, "hello");
    const JsonValue hello = first.data["hello"];
    EXPECT_EQ(hello["load_status"].asInt(), 0);
    EXPECT_TRUE(hello["signed_in"].asBool());
    EXPECT_EQ(hello["language"].asString(), "en_US.utf8");
    auto client = program.client();
    EXPECT_EQ(client.Get("/v1/home")->body, "{\"home\":" + hello["home"].toString() + "}");

    const JsonValue answer = program.post(R"({"id": "x", "command": "do", "arguments": ["washer"]})");
    EXPECT_EQ(answer["id"].asString(), "x");
    EXPECT_TRUE(answer["succeeded"].asBool());
    for (Listener* const listener : {&one, &other}) {
        EXPECT_EQ(listener->next("report").data.toString(), answer["reports"][0].toString());
        EXPECT_EQ(listener->next("report").data.toString(), answer["reports"][1].toString());
        EXPECT_EQ(listener->next().data["command"].asString(), "do washer");
    }
    EXPECT_THAT(client.Get("/v1/devices/washer")->body, HasSubstr("\"state_text\":\"Washing"));

    // Who comes back with the number of the hello hears all that came since, and no hello.
    Listener again(program, first.id);
    EXPECT_EQ(again.next().data.toString(), answer["reports"][0].toString());
    again.next("command");

    const JsonValue failed = program.post("sim fly", kText);
    EXPECT_FALSE(failed["succeeded"].asBool());
    EXPECT_THAT(failed["error"].asString(), HasSubstr("there is no command"));
    EXPECT_EQ(again.next("command").data["error"].asString(), failed["error"].asString());
}

TEST(DoorTest, LetsAProgramStandBehindADevice) {
    Program program;
    Listener listener(program);
    listener.next("hello");
    program.post("sim driver bedside-lamp on", kText);
    JsonValue done;
    const auto command = [&] {
        std::thread presser([&] { done = program.post("do bedside-lamp", kText); });
        const JsonValue asked = listener.next("device_command").data["device_command"];
        return std::pair(std::move(presser), asked);
    };
    auto [presser, asked] = command();
    EXPECT_EQ(asked["device_id"].asString() + asked["uri"].asString() + asked["values"].toString(),
              "bedside-lamp/capability/switch/main/0{\"switch\":\"on\"}");
    auto client = program.client();
    const JsonValue sim = JsonValue::Create(client.Get("/v1/sim")->body);
    EXPECT_EQ(sim["device_commands"][0].toString(), asked.toString());
    // The command that waits doesn't hold up what it waits for.
    const std::string number = asked["number"].toString();
    EXPECT_TRUE(program.post("sim driver confirm " + number, kText)["succeeded"].asBool());
    presser.join();
    EXPECT_TRUE(done["succeeded"].asBool());
    EXPECT_THAT(client.Get("/v1/devices/bedside-lamp")->body, HasSubstr("\"state_text\":\"On"));
    EXPECT_THAT(program.post("sim driver confirm " + number, kText)["error"].asString(), HasSubstr("no command"));
    EXPECT_THAT(program.post("sim driver confirm", kText)["error"].asString(), HasSubstr("usage: sim driver confirm"));

    auto [again, refused] = command();
    program.post("sim driver refuse " + refused["number"].toString(), kText);
    again.join();
    EXPECT_FALSE(done["succeeded"].asBool());
    EXPECT_EQ(program.end(SIGTERM), 0);
}

TEST(DoorTest, ShowsTheOtherSide) {
    const Program program;
    Listener listener(program);
    listener.next("hello");
    EXPECT_TRUE(program.post("sim fail homeloom_core_execute_scene_async -5 2", kText)["succeeded"].asBool());
    listener.next("sim");
    program.post("sim set kitchen-plug value=on", kText);
    auto client = program.client();
    const JsonValue sim = JsonValue::Create(client.Get("/v1/sim")->body);
    EXPECT_EQ(sim["faults"].toString(),
              R"([{"function":"homeloom_core_execute_scene_async","kind":"fail","code":-5,"remaining":2}])");
    EXPECT_EQ(sim["agent_state"].asString(), "connected");
    EXPECT_GT(sim["devices"][0]["resources"].size(), 0U);
    for (const char* const path : {"/v1/catalogue", "/v1/schema/home", "/v1/schema/event"}) {
        EXPECT_TRUE(JsonValue::Create(client.Get(path)->body).isObject()) << path;
    }
    for (const char* const path : {"/v1/schema/none", "/v1/devices/none", "/v1/none", "/v1/devices/"}) {
        const auto result = client.Get(path);
        EXPECT_EQ(result->status, 404) << path;
        EXPECT_EQ(JsonValue::Create(result->body)["error"]["status"].asInt(), 404) << result->body;
    }
}

TEST(DoorTest, RunsTheCommandsOfSeveralClientsOneAfterTheOther) {
    const Program program;
    Listener listener(program);
    listener.next("hello");
    constexpr int kClients = 3;
    constexpr int kCommands = 4;
    std::vector<std::thread> clients;
    for (int number = 0; number < kClients; ++number) {
        clients.emplace_back([&program, number] {
            for (int i = 0; i < kCommands; ++i) {
                const int id = number * kCommands + i;
                const auto answer = program.post(R"({"id":)" + std::to_string(id) + R"(,"command":"do washer"})");
                EXPECT_EQ(answer["id"].asInt(), id);
                EXPECT_EQ(answer["reports"][0]["name"].asString(), "hl_do_main_action");
            }
        });
    }
    for (std::thread& client : clients) {
        client.join();
    }
    std::map<int, int> next;
    for (int i = 0; i < kClients * kCommands; ++i) {
        const int id = listener.next("command").data["id"].asInt();
        EXPECT_EQ(id % kCommands, next[id / kCommands]++);
    }
}

TEST(DoorTest, SaysWhatIsWrongWithARequest) {
    const Program program;
    auto client = program.client();
    struct Case {
        const char* body;
        const char* type;
        int status;
        const char* reason;
    };
    const std::string tooLong(65537, 'x');
    const Case cases[] = {
        {"", kText, 400, "empty"},
        {" \r\n", kText, 400, "empty"},
        {"do washer\ndo dryer", kText, 400, "more than one line"},
        {"\xff", kText, 400, "UTF-8"},
        {tooLong.c_str(), kText, 413, "longer"},
        {"do washer", "application/xml", 415, "type"},
        {"do washer", kJson, 400, "no JSON"},
        {"[]", kJson, 400, "no object"},
        {"{}", kJson, 400, "\"command\" is missing"},
        {R"({"command": 1})", kJson, 400, "\"command\" is no text"},
        {R"({"command": ""})", kJson, 400, "empty"},
        {R"({"comand": "do washer"})", kJson, 400, "has no \"comand\""},
        {R"({"command": "do", "arguments": "washer"})", kJson, 400, "\"arguments\" is no array"},
        {R"({"command": "do", "arguments": [{}]})", kJson, 400, "\"arguments\"[0] is no text"},
        {R"({"command": "do washer", "id": []})", kJson, 400, "\"id\""},
    };
    for (const Case& one : cases) {
        const auto result = client.Post("/v1/commands", one.body, one.type);
        ASSERT_TRUE(result) << one.body;
        EXPECT_EQ(result->status, one.status) << one.body;
        EXPECT_THAT(JsonValue::Create(result->body)["error"]["reason"].asString(), HasSubstr(one.reason)) << one.body;
    }
    EXPECT_EQ(client.Get("/v1/commands")->status, 405);
    EXPECT_EQ(client.Put("/v1/home", "", kJson)->status, 405);
    EXPECT_EQ(client.Get("/v1/home", {{"Host", "tv.example"}})->status, 403);
    EXPECT_EQ(client.Get("/v1/events?last_event_id=x")->status, 400);
    EXPECT_EQ(client.Post("/v1/commands", {{"Content-Encoding", "gzip"}}, "x", kText)->status, 415);
    const auto provider = [](std::size_t, httplib::DataSink& sink) {
        sink.done();
        return true;
    };
    EXPECT_EQ(client.Post("/v1/commands", provider, kText)->status, 415);
    EXPECT_EQ(client.Get("/healthz")->status, 200);
}

TEST(DoorTest, EndsOnASignalThoughClientsListenAndWait) {
    Program program;
    Listener listener(program);
    listener.next("hello");
    std::thread waiting([&program] { program.post("watch 100", kText); });
    program.client().Post("/v1/commands", "", "image/png");
    EXPECT_EQ(program.end(SIGTERM), 0);
    while (!listener.next().type.empty()) {
    }
    waiting.join();
}
