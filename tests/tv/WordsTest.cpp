#include <gmock/gmock.h>

#include <clocale>
#include <functional>

#include "CommandError.h"
#include "DeviceNames.h"
#include "RequestTable.h"
#include "Text.h"
#include "Words.h"

using namespace homeloom::tv;
using ::testing::ElementsAre;

namespace {

std::string errorOf(const std::function<void()>& function) {
    try {
        function();
    } catch (const CommandError& e) {
        return e.what();
    }
    return "";
}

TEST(Words, SplitsAsPeopleWrite) {
    const std::pair<std::string, Words> cases[] = {
        {"", {}},
        {"  do\twasher ", {"do", "washer"}},
        {R"(device "living room" 'a "b"')", {"device", "living room", R"(a "b")"}},
        {R"(x name="two words" y="a \"b\" \\" z=)", {"x", "name=two words", R"(y=a "b" \)", "z="}},
        {R"(x j={"a": [1, "}"]} k=v)", {"x", R"(j={"a": [1, "}"]})", "k=v"}},
        {R"(it's a"b c}d)", {"it's", "a\"b", "c}d"}},
    };
    for (const auto& [line, words] : cases) {
        EXPECT_EQ(splitWords(line), words) << line;
    }
    for (const char* const line : {"say \"no end", "say 'no end", "x j={\"a\": [1}", "x [\"]"}) {
        EXPECT_NE(errorOf([line] { splitWords(line); }), "") << line;
    }
    for (const std::string& word :
         {std::string("plain"), std::string("two words"), std::string("\"\\"), std::string()}) {
        EXPECT_EQ(splitWords("x " + quoteWord(word)), (Words{"x", word}));
    }
}

TEST(Text, ReadsTimesAndNumbersAndCutsAtCharacters) {
    EXPECT_EQ(parseDuration("31s"), std::chrono::milliseconds(31000));
    EXPECT_EQ(parseDuration("1.5"), std::chrono::milliseconds(1500));
    EXPECT_EQ(parseDuration("500ms"), std::chrono::milliseconds(500));
    for (const char* const text : {"", "s", "-1", "5 h", "nan", "1e99"}) {
        EXPECT_FALSE(parseDuration(text)) << text;
    }
    EXPECT_EQ(parseInt("-5"), -5);
    EXPECT_FALSE(parseInt("5x"));
    EXPECT_FALSE(parseInt("3000000000"));
    std::setlocale(LC_CTYPE, "C.UTF-8");
    EXPECT_EQ(displayWidth("세탁 24°C"), 9);
    EXPECT_EQ(clipped("세탁 중", 4), "세…");
}

TEST(Table, FitsTheScreenAndHoldsNoControlCharacters) {
    std::setlocale(LC_CTYPE, "C.UTF-8");
    Table help(2, Table::Fit::WrapLast);
    help.add({"sim hub answers normal|held|half|after-event|malformed", "says how it answers for the hub info"});
    help.add({"scan", "asks for the list"});
    EXPECT_THAT(help.lines(Style(false, 40)),
                ElementsAre("  sim hub answ…  says how it answers for", "                 the hub info",
                            "  scan           asks for the list"));
    Table rows;
    rows.add({std::string(300, 'x'), "On\033[2J\n\xff\u202e", "icon"});
    rows.add({"Lamp", "Off", "icon"});
    for (const std::string& line : rows.lines(Style(false, 30))) {
        EXPECT_LE(displayWidth(line), 30) << line;
    }
    const auto whole = rows.lines(Style());
    EXPECT_EQ(whole[0], std::string(39, 'x') + R"(… (300 bytes)  On\x1b[2J\n\xff\u202e  icon)");
    EXPECT_LT(whole[1].size(), 100u) << "one name widens no other row";
}

const NameLookup& lookup() {
    static const NameLookup names("device", {{"washer", {"Washer", "Norvane Washer"}},
                                             {"washer-2", {"Old Washer", "Norvane Washer"}},
                                             {"cam", {"Living Room Camera", ""}},
                                             {"lamp", {"", "washer"}}});
    return names;
}

TEST(NameLookup, FindsByIdNickAndNameInAnyCase) {
    const std::pair<const char*, const char*> cases[] = {
        {"washer", "washer"},
        {"WASHER-2", "washer-2"},
        {"old washer", "washer-2"},
        {"Living room camera", "cam"},
        {"norvane washer", "\"norvane washer\" may be any of washer, washer-2: name it by its id"},
        {"wahser", "there is no device \"wahser\"; near: washer (Norvane Washer)"},
        {"camera", "there is no device \"camera\"; near: cam (Living Room Camera)"},
        {"xyzzy", "there is no device \"xyzzy\""},
        {"", "there is no device \"\""}};
    for (const auto& [name, outcome] : cases) {
        std::string id;
        const std::string error = errorOf([&, &text = name] { id = lookup().find(text); });
        EXPECT_EQ(id + error, outcome);
    }
    std::size_t at = 1;
    EXPECT_EQ(lookup().take({"do", "living", "room", "camera", "/url"}, at), "cam");
    EXPECT_EQ(at, 4u);
}

TEST(RequestTable, TypesArgumentsByTheRequestsKeys) {
    const RequestSpec& move = *findRequest("hl_move_devices");
    EXPECT_EQ(typedArguments(move, {"devices_size=2", "dev_ids=1,2"}),
              (Fields{{"devices_size", 2}, {"dev_ids", "1,2"}}));
    const RequestSpec& routine = *findRequest("hl_update_routine_enable_status");
    EXPECT_EQ(typedArguments(routine, {"enable=true", "routine_id=7"}),
              (Fields{{"enable", true}, {"routine_id", "7"}}));
    EXPECT_EQ(guessedArguments({"a=true", "b=-7", "c=7x", "d=", "e=x=y"}),
              (Fields{{"a", true}, {"b", -7}, {"c", "7x"}, {"d", ""}, {"e", "x=y"}}));

    EXPECT_EQ(errorOf([&] { typedArguments(move, {"devices_size=two"}); }),
              "devices_size takes a whole number, not \"two\"");
    EXPECT_EQ(errorOf([&] { typedArguments(routine, {"enable=1"}); }), "enable takes true or false, not \"1\"");
    EXPECT_EQ(errorOf([&] { typedArguments(move, {"dev_id=1"}); }),
              "hl_move_devices has no argument dev_id; near: dev_ids");
    EXPECT_EQ(errorOf([&] { typedArguments(move, {"washer"}); }), "\"washer\" is no key=value");
}

TEST(RequestTable, ReadsSuccessFromTheAnswer) {
    const auto tells = [](const char* request, Fields answer) {
        Report report;
        report.properties = std::move(answer);
        return tellsSuccess(findRequest(request), report);
    };
    EXPECT_TRUE(tells("hl_do_main_action", {{"result", true}, {"device_id", "x"}}));
    EXPECT_FALSE(tells("hl_create_room", {{"create_room_result", false}, {"location_id", "x"}}));
    EXPECT_TRUE(tells("hl_reset_hub", {}));
    // A stream without a URL is a failure: an empty text is left out.
    EXPECT_FALSE(tells("hl_get_avp_camera_url", {{"device_id", "x"}}));
    EXPECT_TRUE(tells("hl_get_avp_camera_url", {{"device_id", "x"}, {"camera_stream_url", "rtsp://"}}));
}

}  // namespace
