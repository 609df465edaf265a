#include <gmock/gmock.h>

#include "UIMetaTest.h"

namespace VMFramework::HomeLoom {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

bool Parse(const std::string& text, device_ui_metadata_struct& out) {
    return UIMetadataParser().ParseMetadata(kVid, text, out);
}

device_ui_metadata_struct Parsed(const std::string& data) {
    device_ui_metadata_struct meta;
    EXPECT_TRUE(Parse(Document(data), meta)) << data;
    return meta;
}

TEST(UIMetadataParserTest, UnfitDocumentsLeaveTheRecordAlone) {
    device_ui_metadata_struct meta;
    meta.version = "kept";
    for (const char* text : {"", "Run", "[]", "7", "{", "{}", "{'message':'SUCCESS'}", "{'message':{},'data':{}}",
                             "{'message':'SUCCESS','data':null}", "{'message':'FAIL','data':{}}",
                             "{'message':'RESOURCE_NOT_FOUND_PATH','data':{'version':'2'}}",
                             "{'message':'SUCCESS','data':{'version':[]}}"}) {
        EXPECT_FALSE(Parse(Json(text), meta)) << text;
        EXPECT_EQ(meta.version, "kept") << text;
    }
    // Parts of the wrong kind are as good as absent.
    for (const char* data : {"", "'ms':7,'ma':'x','dpResources':true,'dpInfo':{'os':'solenne'},'language':{'a':1}",
                             "'ms':[null,null],'ma':[null],'dpInfo':[null],'language':[null],'dpResources':[null]",
                             "'iconUrl':'x','vid':{}", "'ms':{'name':'no list'}"}) {
        meta = Parsed(data);
        EXPECT_TRUE(meta.main_states.empty() && meta.main_actions.empty() && meta.languages.empty()) << data;
        EXPECT_FALSE(meta.is_generic);
    }
}

TEST(UIMetadataParserTest, ReadsEveryMemberOfAState) {
    const device_ui_metadata_struct meta = Parsed(
        "'version':1.5,'vid':'generic-default-metadata','ms':[{'name':'n','emphasis':true,'group':'g',"
        "'iconUrl':{'mid':'preload://a/preload://b.png'},'order':4,'type':'t','label':{'label':'<a>','arguments':["
        "{'n':'a','href':'/a','property':'p','alternatives':[{'key':'k','value':'1','type':'inactive'},"
        "{'key':'k','value':'2','type':'inactive'},{'key':'l','value':'3','type':'active'}]}]},"
        "'visible':{'href':'/v','property':'vp','operand':'o','operator':'=','type':'vt'}}]");
    EXPECT_EQ(meta.vid, kVid);
    EXPECT_EQ(meta.version, "1.5");
    EXPECT_TRUE(meta.is_generic);
    ASSERT_EQ(meta.main_states.size(), 1U);
    const device_state_struct& state = meta.main_states[0];
    EXPECT_EQ(state.name + state.group + state.type + state.label, "ngt<a>");
    EXPECT_EQ(state.icon_url, "a/preload://b.png");  // one cut
    EXPECT_TRUE(state.emphasis && state.has_visible);
    EXPECT_EQ(state.order, 4);
    EXPECT_EQ(state.visible_href + state.visible_property + state.visible_operand + state.visible_operator +
                  state.visible_type,
              "/vvpo=vt");
    ASSERT_EQ(state.arguments.size(), 1U);
    EXPECT_EQ(state.arguments[0].name + state.arguments[0].href + state.arguments[0].property, "a/ap");
    EXPECT_THAT(state.arguments[0].alternatives, ElementsAre(Pair("k", "2"), Pair("l", "3")));
    EXPECT_THAT(state.arguments[0].inactive_keys, ElementsAre("k", "k"));
    EXPECT_THAT(meta.subscribe_uris, ElementsAre("/a", "/v"));
}

TEST(UIMetadataParserTest, ReadsEveryMemberOfActionsAndResources) {
    const std::string members =
        "'controlType':'c','link':{'href':'/a','if':'i','rt':'r'},'property':'p','order':3,"
        "'alternatives':[{'key':'k','value':'v','type':'t'},{'key':'k'}]";
    const device_ui_metadata_struct meta =
        Parsed("'ma':[{" + members +
               ",'group':'g','iconUrl':{'mid':'m'},'visible':{'href':'/v','property':'vp',"
               "'operand':'o','operator':'=','type':'vt'}}],'dpResources':[{" +
               members +
               ",'controllable':true,'range':[1,-2],'label':{'label':'l'},'emphasis':true,'ruleEvent':true,"
               "'ruleAction':true},{'order':1}]");
    ASSERT_EQ(meta.main_actions.size(), 1U);
    const device_action_struct& action = meta.main_actions[0];
    EXPECT_EQ(action.control_type + action.href + action.interface_name + action.rt + action.property + action.group +
                  action.icon_url,
              "c/airpgm");
    EXPECT_EQ(action.visible_href + action.visible_property + action.visible_operand + action.visible_operator,
              "/vvpo=");
    EXPECT_THAT(action.alternative_keys, ElementsAre("k", "k"));
    EXPECT_THAT(meta.action_groups, ElementsAre("g"));
    EXPECT_EQ(action.alternatives[0].key + action.alternatives[0].value + action.alternatives[0].type, "kvt");
    ASSERT_EQ(meta.dp_resources.size(), 2U);  // in document order
    const device_dp_resource_struct& resource = meta.dp_resources[0];
    EXPECT_EQ(resource.control_type + resource.href + resource.interface_name + resource.rt + resource.property +
                  resource.label,
              "c/airpl");
    EXPECT_EQ(resource.order, 3);
    EXPECT_THAT(resource.range, ElementsAre(1, -2));
    EXPECT_TRUE(resource.controllable && resource.emphasis && resource.rule_event && resource.rule_action);
    EXPECT_THAT(meta.subscribe_uris, ElementsAre("/a"));  // neither an action's rule nor a resource counts
}

TEST(UIMetadataParserTest, BadEntryEndsItsListAndNoOther) {
    const device_ui_metadata_struct meta = Parsed(
        "'ms':[{'order':2,'name':'b'},{'order':1,'name':'a','iconUrl':{'mid':[]}},"
        "{'group':'seen','label':{'arguments':[{'href':'/seen'}]},'visible':{'href':[]}},{'name':'c'}],"
        "'ma':[{'order':2,'property':'b'},{'order':1,'property':'a'},{'order':'first'},{'property':'c'}],"
        "'dpResources':[{'property':'a'},{'range':['x']},{'property':'c'}],"
        "'dpInfo':[{'os':'solenne','serverDpUri':'s','dpUri':'d'},{'dpUri':{}}],"
        "'language':[{'locale':'en','poCodes':[{'po':'1','label':'one'},{'po':'2','label':{}}]},{'locale':'fr'}]");
    ASSERT_EQ(meta.main_states.size(), 2U);
    EXPECT_EQ(meta.main_states[0].name + meta.main_states[1].name, "ab");
    ASSERT_EQ(meta.main_actions.size(), 2U);
    EXPECT_EQ(meta.main_actions[0].property + meta.main_actions[1].property, "ab");
    EXPECT_EQ(meta.dp_resources.size(), 1U);
    EXPECT_EQ(meta.solenne_server_dp_uri + meta.dp_uri, "sd");
    EXPECT_THAT(meta.languages, ElementsAre("en"));
    EXPECT_EQ(meta.translations.at("en1"), "one");
    EXPECT_THAT(meta.subscribe_uris, ElementsAre("/seen"));  // what was met before stays met
    EXPECT_THAT(meta.state_groups, ElementsAre("seen"));
}

TEST(UIMetadataParserTest, MainActionIsTheLastPowerActionOrTheFirst) {
    const auto action = [](const std::string& href, const std::string& rt, const std::string& property,
                           const std::string& control_type) {
        return "{'link':{'href':'" + href + "','rt':'" + rt + "'},'property':'" + property + "','controlType':'" +
               control_type + "'},";
    };
    const std::string mode = action("/mode", "r", "mode", "Mode");
    struct {
        std::string actions, href, control_type;  // control_type: of the last action
    } const cases[] = {
        {mode + action("/t", "r", "t", "ToggleSwitch"), "/mode", "ToggleSwitch"},
        {mode + action("/p", "r", "x.power", "ToggleSwitch"), "/p", "ToggleSwitch"},
        {mode + action("/p", "r", "power", "Mode"), "/mode", "Mode"},
        {mode + action("/p", "r", "power", "OffPowerSwitch"), "/p", "OffPowerSwitch"},
        {mode + action("/s", "oic.r.switch.binary", "value", "Mode"), "/s", "StandbyPowerSwitch"},
        {action("/p", "r", "power", "StandbyPowerSwitch") + action("/q", "r", "power", "ToggleSwitch") + mode, "/q",
         "Mode"},
        {action("", "", "", "") + mode, "/mode", "Mode"},
    };
    for (const auto& each : cases) {
        const device_ui_metadata_struct meta = Parsed("'ma':[" + each.actions + "null]");
        EXPECT_EQ(meta.main_action_href, each.href) << each.actions;
        ASSERT_FALSE(meta.main_actions.empty());
        EXPECT_EQ(meta.main_actions.back().control_type, each.control_type) << each.actions;
    }
}

TEST(UIMetadataParserTest, LanguagesAndDpInfo) {
    const device_ui_metadata_struct meta = Parsed(
        "'language':[{'locale':'en','poCodes':[{'po':'__A','label':'a'},null,{'po':'__A','label':'b'}]},"
        "{'locale':'','poCodes':[{'po':'__B','label':'c'}]},{'locale':'fr'},{'locale':'en','poCodes':[]}],"
        "'dpInfo':[{'os':'android','serverDpUri':'x','dpUri':'1'},{'os':'solenne','serverDpUri':'s1'},"
        "{'os':'solenne','serverDpUri':'s2','dpUri':'3'},{'os':'ios'}]");
    EXPECT_THAT(meta.languages, ElementsAre("en", "fr", "en"));
    EXPECT_THAT(meta.translations, ElementsAre(Pair("__B", "c"), Pair("en__A", "b")));
    EXPECT_EQ(meta.solenne_server_dp_uri, "s1");
    EXPECT_THAT(meta.dp_uri, IsEmpty());  // the last entry's, though it has none
}

}  // namespace
}  // namespace VMFramework::HomeLoom
