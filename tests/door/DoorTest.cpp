#include <gmock/gmock.h>

#include <csignal>

#include "Program.h"

using ::testing::HasSubstr;
using VMFramework::json::JsonValue;

TEST(DoorTest, TellsTheHomeAndWhatACommandChangesInIt) {
    Program program;
    Listener one(program);
    Listener other(program);
    const JsonValue hello = one.next("hello").data["hello"];
    other.next("hello");
    EXPECT_EQ(hello["load_status"].asInt(), 0);
    EXPECT_TRUE(hello["signed_in"].asBool());
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
}

TEST(DoorTest, EndsOnASignalThoughClientsListen) {
    Program program;
    Listener listener(program);
    listener.next("hello");
    EXPECT_EQ(program.end(SIGTERM), 0);
    EXPECT_EQ(listener.next().type, "");
}
