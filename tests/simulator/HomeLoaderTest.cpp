#include "simulator/HomeLoader.h"

#include <gmock/gmock.h>

#include <fstream>

#include "support/Places.h"

using simulator::Home;
using simulator::HomeError;

namespace {

const char* const good = R"({
    "account": {"login_id": "a@home.example", "user_id": "u", "access_token": "t"},
    "locations": [{"id": "l", "name": "L", "rooms": [{"id": "r", "name": "R"}]}],
    "models": [{"vid": "m", "types": ["oic.d.light"],
        "resources": {"/x": {"on": true, "level": 5, "gain": 24.5, "name": "n", "list": [1]}},
        "reactions": [{"when": {"/x": {"on": true}}, "set": {"/x": {"level": 9}}}]}],
    "devices": [{"id": "d", "vid": "m", "location": "l", "room": "r", "resources": {"/x": {"level": 7}}}],
    "scenes": [{"id": "s", "location": "l", "document": {"_comment": "gone", "b": 1, "a": 2.5}, "actions": [
        {"device": "d", "set": {"/x": {"on": false}}}]}]
})";

/// The good document with one piece replaced.
std::string with(const std::string& piece, const std::string& replacement) {
    std::string text = good;
    const std::size_t at = text.find(piece);
    EXPECT_NE(at, std::string::npos) << piece;
    return text.replace(at, piece.size(), replacement);
}

}  // namespace

TEST(HomeLoader, GivesDevicesWhatTheirModelHas) {
    const Home home = simulator::parseHome(good);
    const simulator::Resource& resource = *home.device("d")->find("/x");
    std::string seen;
    for (const simulator::Property& property : resource.properties) {
        seen += property.name + ":" + property.type + "=" + property.value + " ";
    }
    EXPECT_EQ(seen, R"(on:Boolean=true level:Integer=7 gain:Double=24.5 name:String="n" list:Array=[1] )");
    EXPECT_EQ(home.scenes.front().document, R"({"b":1,"a":2.5})");
    EXPECT_EQ(home.device("d")->core.presentationId, "m");
    EXPECT_EQ(home.locations.front().ownerId, "u") << "a location without an owner is the user's own";
}

TEST(HomeLoader, TellsFilePlaceAndReasonOfAMistake) {
    const struct {
        std::string text;
        const char* message;
    } cases[] = {
        {"{\n  \"account\": nope", "h.json: line 2, column 14: no JSON"},
        {std::string(good) + " x", "no JSON: something stands behind the document"},
        {"", "h.json: line 1, column 1: no JSON"},
        {"[]", "h.json: document: expected an object, found an array"},
        {"{}", "h.json: account: expected an object, found nothing"},
        {with("\"vid\": \"m\", \"location\"", "\"location\""),
         "h.json: devices[0].vid: expected a text, found nothing"},
        {with("\"d\", \"vid\": \"m\"", "\"d\", \"vid\": \"n\""), "devices[0].vid: no model has the vid \"n\""},
        {with("\"location\": \"l\", \"room\"", "\"location\": \"k\", \"room\""),
         "devices[0].location: no location has the id \"k\""},
        {with("\"room\": \"r\"", "\"room\": \"q\""), "devices[0].room: location \"l\" has no room with the id \"q\""},
        {with("\"room\": \"r\"", "\"room\": 4"), "devices[0].room: expected a text, found a number"},
        {with("\"room\": \"r\"", "\"rom\": \"r\""),
         "devices[0].rom: unknown member; expected one of id, vid, location"},
        {with("\"room\": \"r\"", "\"status\": \"on\""),
         "devices[0].status: expected one of connected, disconnected, inactive, hidden, found \"on\""},
        {with("\"devices\": [", "\"devices\": [{\"id\": \"d\", \"vid\": \"m\", \"location\": \"l\"}, "),
         "devices[1].id: another device has the id \"d\""},
        {with("\"id\": \"d\"", "\"id\": \"\""), "devices[0].id: expected an id, found an empty text"},
        {with("\"level\": 7", "\"level\": \"seven\""),
         "devices[0].resources[\"/x\"].level: expected a value of type Integer"},
        {with("\"level\": 9", "\"lvel\": 9"), "models[0].reactions[0].set[\"/x\"].lvel: no such property"},
        {with("{\"when\": {\"/x\"", "{\"when\": {\"/y\""), "models[0].reactions[0].when[\"/y\"]: no such resource"},
        {with("\"device\": \"d\"", "\"device\": \"e\""), "scenes[0].actions[0].device: no device has the id \"e\""},
        {with("\"models\": [{", "\"models\": [\"gone.json\", {"), "gone.json: file: can't be read"},
        {with("\"scenes\"", "\"hub\": {\"serves\": [\"x\"]}, \"scenes\""), "hub.serves[0]: no device has the id \"x\""},
    };
    for (const auto& [text, message] : cases) {
        try {
            simulator::parseHome(text, "h.json");
            ADD_FAILURE() << "accepted, expected: " << message;
        } catch (const HomeError& error) {
            EXPECT_THAT(error.what(), ::testing::HasSubstr(message));
        }
    }
    EXPECT_THROW(simulator::loadHome(::testing::TempDir()), HomeError) << "a folder";
}

TEST(HomeLoader, TellsAllMistakesAtOnceAndNoneThatFollowsFromAnother) {
    const char* const text = R"({
        "account": {"login_id": "a@home.example", "user_id": "u", "access_token": "t"},
        "locations": [{"id": "l", "name": "L"}],
        "models": [{"vid": "m", "types": ["oic.d.light"], "resources": {"/x": {"on": true}},
            "reactions": [{"when": {"/y": {"on": true}}, "set": {"/z": {"on": true}, "/x": {"off": true}}}]}%],
        "devices": [{"id": "d", "vid": "m", "location": "k", "room": "r", "resources": {"/x": {"on": 5}}},
                    {"id": "e", "vid": "n", "location": "l"}],
        "hub": {"device": "f"},
        "scenes": [{"id": "s", "location": "l", "document": {}, "actions": [
            {"device": "g", "set": {"/x": {"on": false}}}, {"device": "e", "set": {"/w": {"on": 1}}}]}]})";
    const std::string others =
        "h: models[0].reactions[0].when[\"/y\"]: no such resource\n"
        "h: models[0].reactions[0].set[\"/x\"].off: no such property of the resource\n"
        "h: models[0].reactions[0].set[\"/z\"]: no such resource\n";
    const std::string behind =
        "h: hub.device: no device has the id \"f\"\n"
        "h: scenes[0].actions[0].device: no device has the id \"g\"";
    const std::string device =
        "h: devices[0].location: no location has the id \"k\"\n"
        "h: devices[0].resources[\"/x\"].on: expected a value of type Boolean\n";
    const struct {
        const char* model;  // besides the one
        std::string told;
    } cases[] = {
        {"", others + device + "h: devices[1].vid: no model has the vid \"n\"\n" + behind},
        // Whether a model file that can't be read brings the vid isn't known.
        {", \"gone.json\"", others + "gone.json: file: can't be read: No such file or directory\n" + device + behind},
    };
    for (const auto& [model, told] : cases) {
        std::string document = text;
        document.replace(document.find('%'), 1, model);
        try {
            simulator::parseHome(document, "h");
            ADD_FAILURE() << "accepted";
        } catch (const HomeError& error) {
            EXPECT_EQ(error.what(), told);
        }
    }
}

TEST(HomeLoader, WarnsOfWhatWouldBeSkippedWithoutAWord) {
    const struct {
        std::string text;
        const char* warning;  // null: none
    } cases[] = {
        {with("\"id\": \"d\"", "\"id\": \"d\", \"prefix\": \"D\""), nullptr},
        {good, "h: devices[0].nick: a device is shown by its nick, or else its prefix, and never by its name"},
        {with("\"vid\": \"m\",",
              R"("vid": "m", "ui_metadata": {"message": "SUCCESS", "data": {"ms": [{"lable": {}}]}},)"),
         "h: models[0].ui_metadata.data.ms[0].lable: unknown member; expected one of name, order"},
        {with("\"vid\": \"m\",", R"("vid": "m", "ui_metadata": {"data": {}},)"),
         "h: models[0].ui_metadata.message: expected a text, found nothing; the plug-in may skip it"},
        {with("\"vid\": \"m\",", R"("vid": "m", "ui_metadata": {"message": "SUCCESS", "data": {"ma": [{"link": {
             "href": "/x"}, "property": 5, "visible": {"href": "/x", "property": "p", "operand": 1, "operator": "=="}}]}},)"),
         "h: models[0].ui_metadata.data.ma[0].visible.operator: expected one of =, !=, >=, startWith"},
        {with("\"vid\": \"m\",", R"("vid": "m", "ui_metadata": {"message": "RESOURCE_NOT_FOUND_PATH"},)"),
         "h: devices[0].nick: "},
    };
    for (const auto& [text, warning] : cases) {
        std::vector<simulator::HomeMistake> warnings;
        simulator::parseHome(text, "h", &warnings);
        ASSERT_EQ(warnings.empty(), warning == nullptr) << text;
        if (warning != nullptr) {
            EXPECT_THAT(HomeError(warnings).what(), ::testing::StartsWith(warning));
        }
    }
    std::vector<simulator::HomeMistake> warnings;
    simulator::loadHome(homeloom::test::apartmentFile(), &warnings);
    EXPECT_TRUE(warnings.empty()) << HomeError(warnings).what();
}

TEST(HomeLoader, NamesTheModelFileThatHoldsTheMistake) {
    const std::string folder = ::testing::TempDir();
    std::ofstream(folder + "bad-model.json") << R"({"vid": "m", "reactions": 3})";
    const std::string home = with("\"models\": [", "\"models\": [\"bad-model.json\", ");
    try {
        simulator::parseHome(home, folder + "home.json");
        ADD_FAILURE();
    } catch (const HomeError& error) {
        EXPECT_EQ(error.mistakes().front().file, folder + "bad-model.json");
        EXPECT_EQ(error.mistakes().front().place, "reactions");
    }
}

TEST(HomeLoader, GeneratesHomesOfAnySize) {
    simulator::HomePlan plan;
    plan.devices = 10000;
    plan.hubDevices = 10;
    plan.locations = 3;
    plan.scenes = 7;
    plan.routines = 5;
    const Home home = simulator::generateHome(plan);
    ASSERT_EQ(home.devices.size(), 10000u);
    EXPECT_EQ(home.hub.serves.size(), 10u);
    EXPECT_EQ(home.scenes.size(), 7u);
    for (const simulator::Device& device : home.devices) {
        ASSERT_NE(home.model(device.vid), nullptr) << device.vid;
        ASSERT_NE(home.room(device.room), nullptr) << device.room;
    }
    EXPECT_TRUE(simulator::generateHome(0).devices.empty());
}
