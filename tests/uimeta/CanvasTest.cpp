#include "Homeloom/Canvas/Canvas.h"

#include "UIMetaTest.h"

namespace VMFramework::HomeLoom {
namespace {

const std::string kCanvas = Json(
    "{'dashboard':{'states':[{'component':'main','capability':'switch','alternatives':["
    "{'key':'on','value':'__ON','type':'active'},{'key':'off','value':'__OFF','type':'inactive'},"
    "{'key':'on','value':'__LATER','type':'later'},{'key':'odd','value':'__ODD'}]},{'component':'second'}],"
    "'actions':[{'component':'main','capability':'switch','displayType':'toggleSwitch',"
    "'toggleSwitch':{'command':{'on':'turnOn','off':'turnOff'}},'same':{'command':{'a':'x','b':'x'}},"
    "'bad':{'command':'x'},'none':{'command':{}}}]},"
    "'language':[{'locale':'en','poCodes':[{'po':'__ON','label':'On'},{'po':'__OFF','label':'Off'}]},"
    "{'locale':'fr','poCodes':[{'po':'__ON','label':'Marche'},{'po':'__ODD','label':'Bizarre'}]}]}");

TEST(CanvasTest, ReadsTheFirstStateActionAndLanguage) {
    Canvas canvas;
    EXPECT_TRUE(canvas.CreateCanvasMap("P", kCanvas));
    struct {
        const char *state, *text, *active;
    } const cases[] = {{"on", "On", "active"}, {"off", "Off", "inactive"}, {"odd", "", ""}, {"none", "", ""}};
    for (const auto& each : cases) {
        EXPECT_EQ(canvas.GetStateText("P", each.state), each.text);
        EXPECT_EQ(canvas.GetActiveState("P", each.state), each.active);
    }
    std::string component, capability, display_type, json;
    EXPECT_TRUE(canvas.GetStatesParam("P", component, capability));
    EXPECT_EQ(component + capability, "mainswitch");
    EXPECT_TRUE(canvas.GetActionsParam("P", component, capability, display_type));
    EXPECT_EQ(component + capability + display_type, "mainswitchtoggleSwitch");

    EXPECT_EQ(canvas.GetCommandValue("P", "toggleSwitch", "turnOn"), "turnOff");
    EXPECT_EQ(canvas.GetCommandValue("P", "toggleSwitch", "turnOff"), "turnOn");
    EXPECT_EQ(canvas.GetCommandValue("P", "toggleSwitch", ""), "turnOn");
    EXPECT_EQ(canvas.GetCommandValue("P", "same", "x"), "x");  // all are current: the last is sent
    for (const char* display : {"unknown", "bad", "none"}) {
        EXPECT_EQ(canvas.GetCommandValue("P", display, "on"), "") << display;
    }
    EXPECT_TRUE(Canvas::MakeActionJsonValue("main", "switch", "turn \"on\"", json));
    EXPECT_EQ(json, R"({"commands":[{"component":"main","capability":"switch","command":"turn \"on\""}]})");
}

TEST(CanvasTest, StatusTextGivesTheCurrentValue) {
    struct {
        const char *text, *value;
    } const cases[] = {{"{'switch':{'value':'on','unit':null}}", "on"},
                       {"{'switch':{'value':21.5}}", "21.5"},
                       {"{'switch':{}}", ""},
                       {"{'other':{'value':'on'}}", ""},
                       {"{'switch':'on'}", ""},
                       {"{'switch':{'value':{}}}", ""},
                       {"[1]", ""},
                       {"on", ""},
                       {"", ""}};
    for (const auto& each : cases) {
        EXPECT_EQ(Canvas::GetCurrentStateValue(Json(each.text), "switch"), each.value) << each.text;
    }
}

TEST(CanvasTest, UnfitDocumentsAnswerEmpty) {
    Canvas canvas;
    EXPECT_FALSE(canvas.CreateCanvasMap("P", ""));
    EXPECT_FALSE(canvas.IsAddedCanvasMap("P"));
    std::string first, second, third;
    for (const char* text :
         {"absent", "{", "[]", "{'dashboard':[]}", "{'dashboard':{'states':[],'actions':{}}}",
          "{'dashboard':{'states':['x'],'actions':[[]]}}",
          "{'dashboard':{'states':[{'component':'main','alternatives':[{'key':{}}]}],'actions':[{'component':'main',"
          "'capability':'switch'}]},'language':7}"}) {
        if (text != std::string("absent")) {
            EXPECT_TRUE(canvas.CreateCanvasMap("P", Json(text)));
            EXPECT_TRUE(canvas.IsAddedCanvasMap("P"));
        }
        SCOPED_TRACE(text);
        EXPECT_EQ(canvas.GetStateText("P", "on") + canvas.GetActiveState("P", "on"), "");
        EXPECT_FALSE(canvas.GetStatesParam("P", first, second));
        EXPECT_FALSE(canvas.GetActionsParam("P", first, second, third));
        EXPECT_EQ(canvas.GetCommandValue("P", "toggleSwitch", "on"), "");
    }
    EXPECT_TRUE(canvas.CreateCanvasMap("P", kCanvas));  // a later document takes the place
    EXPECT_EQ(canvas.GetStateText("P", "on"), "On");
}

}  // namespace
}  // namespace VMFramework::HomeLoom
