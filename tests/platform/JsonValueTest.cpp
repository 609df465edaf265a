#include <limits>
#include <stdexcept>
#include <string>
#include <thread>

#include <VMFramework/JsonValue.h>
#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using VMFramework::json::JsonMember;
using VMFramework::json::JsonValue;

const char* const THROWS = "throws";

template <typename Read>
std::string attempt(Read read) {
    try {
        return read();
    } catch (const std::runtime_error&) {
        return THROWS;
    }
}

std::string nested(std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
}

TEST(JsonValue, ConvertsByItsTable) {
    struct Case {
        const char *text, *asString, *asInt, *asDouble, *asBool;
        std::size_t size;
    };
    const Case cases[] = {
        {"null", "", "0", "0", "false", 0},
        {"true", "true", "1", "1", "true", 0},
        {"false", "false", "0", "0", "false", 0},
        {"0", "0", "0", "0", "false", 0},
        {"-7.9", "-7.9", "-7", "-7.9", "true", 0},
        {"2147483647.5", "2147483647.5", "2147483647", "2147483647.5", "true", 0},
        {"2147483648", "2147483648", THROWS, "2147483648", "true", 0},
        {"-2147483649", "-2147483649", THROWS, "-2147483649", "true", 0},
        {"1e999", "1e999", THROWS, "1e999", "true", 0},
        {"\"\"", "", THROWS, THROWS, THROWS, 0},
        {"\"12\"", "12", THROWS, THROWS, THROWS, 0},
        {"[]", THROWS, THROWS, THROWS, THROWS, 0},
        {"[1,[2,3]]", THROWS, THROWS, THROWS, THROWS, 2},
        {"{\"a\":null}", THROWS, THROWS, THROWS, THROWS, 1},
    };
    for (const Case& c : cases) {
        const JsonValue value = JsonValue::Create(c.text);
        EXPECT_EQ(attempt([&] { return value.asString(); }), c.asString) << c.text;
        EXPECT_EQ(attempt([&] { return std::to_string(value.asInt()); }), c.asInt) << c.text;
        EXPECT_EQ(attempt([&] { return JsonValue(value.asDouble()).toString(); }), c.asDouble) << c.text;
        EXPECT_EQ(attempt([&] { return value.asBool() ? "true" : "false"; }), c.asBool) << c.text;
        EXPECT_EQ(value.size(), c.size) << c.text;
    }
}

TEST(JsonValue, PrintsWhatItRead) {
    struct Case {
        const char *text, *printed;
    };
    const Case cases[] = {
        {" { \"b\" : 1 , \"a\" : [ true , null , { } , [ ] , \"x\" ] } ", R"({"b":1,"a":[true,null,{},[],"x"]})"},
        {"24.5", "24.5"},
        {"2.45E1", "24.5"},
        {"20.0", "20"},
        {"-0.0", "0"},
        {"0.1", "0.1"},
        {"0.30000000000000004", "0.30000000000000004"},
        {"37.257123456789012", "37.25712345678901"},
        {"126.99781599999999", "126.99781599999999"},
        {"0.000001", "0.000001"},
        {"1e-7", "1e-07"},
        {"1.7976931348623157e308", "1.7976931348623157e+308"},
        {"1e20", "100000000000000000000"},
        {"1e21", "1e+21"},
        {"9223372036854775807", "9223372036854775807"},
        {"18446744073709551615", "18446744073709551615"},
        {"36893488147419103232", "36893488147419103232"},
        {"-1e400", "-1e999"},
        {R"("\u0000\u001f\"\\\/\b\f\n\r\té\u20ac\ud83d\ude00")", R"("\u0000\u001f\"\\/\b\f\n\r\té€😀")"},
        {R"({"k\"":0})", R"({"k\"":0})"},
        {R"({"a":1,"b":2,"a":3})", R"({"a":3,"b":2})"},  // the last one wins, in the first one's place
    };
    for (const Case& c : cases) {
        const std::string printed = JsonValue::Create(c.text).toString();
        EXPECT_EQ(printed, c.printed) << c.text;
        EXPECT_EQ(JsonValue::Create(printed).toString(), c.printed) << c.text;
    }
}

TEST(JsonValue, TakesEverythingElseForNull) {
    const std::string texts[] = {
        "",
        "Run",
        "nul",
        "{",
        "[1,]",
        "{\"a\":1,}",
        "{a:1}",
        "'x'",
        "01",
        "+1",
        "1.",
        "NaN",
        "{} x",
        "1 2",
        "\"\n\"",
        "\"\xff\"",
        "\"\xc0\x80\"",
        R"("\ud800")",
        "// remark\n1",
        std::string("\"a\0b\"", 5),
        std::string("{}\0", 3),
        "1e99999999999",
        nested(65),
        std::string(1000000, '['),
        std::string(1000000, '{'),
    };
    for (const std::string& text : texts) {
        const JsonValue value = JsonValue::Create(text);
        EXPECT_TRUE(value.isNull()) << text.substr(0, 40);
        EXPECT_EQ(value.size(), 0u);
    }
    EXPECT_EQ(JsonValue::Create(nested(64)).toString(), nested(64));
}

TEST(JsonValue, ReadingNeverAddsAndNeverThrows) {
    JsonValue document = JsonValue::Create(R"({"a":{"b":[10,null]},"t":"x"})");
    const JsonValue& constant = document;
    EXPECT_EQ(constant["a"]["b"][0].asInt(), 10);
    EXPECT_EQ(document["a"]["b"][0].asInt(), 10);
    const JsonValue missingParts[] = {constant["a"]["b"][1],      constant["a"]["b"][2], constant["a"]["b"][-1],
                                      constant["x"]["y"][7]["z"], constant["t"]["a"],    constant["t"][0],
                                      constant["a"][0],           document["x"],         document["x"]["y"]};
    for (const JsonValue& missing : missingParts) {
        EXPECT_TRUE(missing.isNull());
        EXPECT_EQ(missing.asString(), "");
    }
    EXPECT_EQ(document.toString(), R"({"a":{"b":[10,null]},"t":"x"})");
    EXPECT_THAT(document.getMemberNames(), ElementsAre("a", "t"));
    EXPECT_TRUE(document.isMember("t"));
    EXPECT_FALSE(document.isMember("x"));
    for (const char* text : {"null", "1", "\"a\"", "[]"}) {
        EXPECT_THROW(JsonValue::Create(text).isMember("a"), std::runtime_error) << text;
        EXPECT_THROW(JsonValue::Create(text).getMemberNames(), std::runtime_error) << text;
    }
}

TEST(JsonValue, BuildsInTheOrderOfInsertion) {
    JsonValue root;
    root["z"] = 1;
    root[std::string("a")] = "text";
    root["null"] = JsonValue();
    root["big"] = 5000000000LL;
    root["double"] = 24.5;
    root["bool"] = true;
    root["none"] = static_cast<const char*>(nullptr);
    root["z"] = root["a"];
    root.set("list", JsonValue::CreateArray().append(1).append(JsonValue::CreateObject()));
    EXPECT_EQ(
        root.toString(),
        R"({"z":"text","a":"text","null":null,"big":5000000000,"double":24.5,"bool":true,"none":"","list":[1,{}]})");
    root.set("self", root);
    EXPECT_EQ(root["self"]["list"].toString(), "[1,{}]");

    JsonValue text("x");
    EXPECT_THROW(text.append(1), std::runtime_error);
    EXPECT_THROW(text.set("a", 1), std::runtime_error);
    EXPECT_THROW(JsonValue::CreateObject().append(1), std::runtime_error);
    EXPECT_THROW(JsonValue::CreateArray().set("a", 1), std::runtime_error);
    EXPECT_EQ(text.asString(), "x");
    EXPECT_EQ(JsonValue(std::numeric_limits<double>::quiet_NaN()).toString(), "null");
}

TEST(JsonValue, WritingIsSeenByNobodyElse) {
    for (const bool parsed : {true, false}) {
        JsonValue document = parsed ? JsonValue::Create(R"({"a":{"b":1},"l":[1]})") : JsonValue();
        if (!parsed) {
            JsonValue inner;
            inner["b"] = 1;
            document["a"] = inner;
            document["l"] = JsonValue::CreateArray().append(1);
        }
        const JsonValue copy = document;
        JsonValue part = document["a"];
        JsonValue list = document["l"];
        part["b"] = 2;
        part["c"] = list;
        list.append(list);
        EXPECT_EQ(document.toString(), R"({"a":{"b":1},"l":[1]})");
        document["a"] = "gone";
        EXPECT_EQ(copy.toString(), R"({"a":{"b":1},"l":[1]})");
        EXPECT_EQ(part.toString(), R"({"b":2,"c":[1]})");
        EXPECT_EQ(list.toString(), "[1,[1]]");
        EXPECT_EQ(document.toString(), R"({"a":"gone","l":[1]})");
    }
}

TEST(JsonValue, PartsServeSeveralThreads) {
    JsonValue document;
    document["a"] = JsonValue::Create(R"({"b":[1,2,3]})");
    auto write = [](JsonValue part) {
        EXPECT_EQ(part["b"].toString(), "[1,2,3]");
        part["b"] = "mine";
        EXPECT_EQ(part.toString(), R"({"b":"mine"})");
    };
    std::thread one(write, JsonValue(document["a"]));
    std::thread two(write, JsonValue(document["a"]));
    document["a"] = JsonValue();
    document["a"] = "overwritten";
    one.join();
    two.join();
    EXPECT_EQ(document.toString(), R"({"a":"overwritten"})");
}

// Nothing here may recurse: built values have no limit of depth, other than parsed ones.
TEST(JsonValue, PrintsWhatIsDeeplyBuilt) {
    JsonValue value = 1;
    for (int i = 0; i < 1000; ++i) {
        value = JsonValue::CreateArray().append(std::move(value));
    }
    EXPECT_EQ(value.toString(), std::string(1000, '[') + "1" + std::string(1000, ']'));
}

}  // namespace
