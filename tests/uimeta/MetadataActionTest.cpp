#include "UIMetaTest.h"

namespace VMFramework::HomeLoom {
namespace {

constexpr char kGeneric[] = "'vid':'generic-default-metadata',";

/// An action over property "p" of `href`; `more` are further members.
std::string Action(const std::string& href, const std::string& more) {
    return "{'link':{'href':'" + href + "'},'property':'p'," + more + "}";
}

/// The alternatives of an action, from its keys; each key's type is the key in upper case of its first letter.
std::string Keys(const std::vector<std::string>& keys) {
    std::string list;
    for (const std::string& key : keys) {
        list += (list.empty() ? "" : ",") + ("{'key':'" + key + "','type':'T-" + key + "'}");
    }
    return "'alternatives':[" + list + "]";
}

std::string VisibleIf(const std::string& value) {
    return ",'visible':{'href':'/v','property':'p','operator':'=','operand':'" + value + "'}";
}

class MetadataActionTest : public UIMetaTest {
protected:
    struct MainAction {
        bool ready;
        std::string uri, property, value;
    };

    MainAction Ask(const std::shared_ptr<Device>& device, std::string uri = "") {
        MainAction action{false, std::move(uri), "stale", "stale"};
        action.ready = metadata.GetDeviceMainAction(device, action.uri, action.property, action.value);
        return action;
    }
};

TEST_F(MetadataActionTest, OffersTheFirstAlternativeThatIsNotCurrent) {
    struct {
        std::string href, property, action, current;
        std::string value;  // empty: nothing is ready
    } const cases[] = {
        {"/a", "p", Keys({"on", "off"}), "on", "off"},
        {"/a", "p", Keys({"on", "off"}), "off", "on"},
        {"/a", "p", Keys({"on", "off"}), "ON", "on"},
        {"/a", "p", Keys({"on", "off"}), "", ""},
        {"/a", "p", Keys({"on"}), "on", ""},
        {"/a", "p", Keys({}), "on", ""},
        {"/a", "p", Keys({"1", "2"}), "1", "2"},
        {"/a", "p", Keys({"Run", "Stop"}), "[\"Run\"]", "[\"Stop\"]"},
        {"/a", "p", Keys({"Run", "Stop"}), "[\"Options\",\"Stop\"]", "[\"Run\"]"},
        {"/a", "p", Keys({"Run"}), "[\"ReRun\"]", ""},  // contained is current
        {"/a", "p", Keys({"Run"}), "[]", "[\"Run\"]"},
        {"/a", "p", Keys({"Run"}), "[Stop", "Run"},
        {"/a", "p", "'controlType':'PushButton'," + Keys({"go", "stop"}), "go", "go"},
        {"/a", "p", "'controlType':'PushButton'," + Keys({"go"}), "", "go"},
        {"/a", "p", "'controlType':'PushButton'", "go", ""},
        // A window shade says "closed" for "close", both ways.
        {"/capability/windowShade/0", "windowShade", Keys({"close", "open"}), "closed", "open"},
        {"/capability/windowShade/0", "windowShade", Keys({"close", "open"}), "open", "closed"},
        {"/a", "windowShade", Keys({"close", "open"}), "open", "close"},
    };
    for (const auto& each : cases) {
        Load("'ma':[{'link':{'href':'" + each.href + "'},'property':'" + each.property + "'," + each.action + "}]");
        const MainAction action = Ask(MakeDevice({{each.href, each.property, each.current}}));
        SCOPED_TRACE(each.action + " at " + each.current);
        EXPECT_EQ(action.ready, !each.value.empty());
        EXPECT_EQ(action.uri, each.href);
        EXPECT_EQ(action.property, each.property);
        EXPECT_EQ(action.value, each.value);
    }
}

TEST_F(MetadataActionTest, PicksTheActionByUriVisibilityAndOrder) {
    const std::string keys = Keys({"on", "off"});
    Load("'ma':[" + Action("/c", "'order':3,'group':'sub'," + keys) + "," +
         Action("/a", "'order':1," + keys + VisibleIf("yes")) + "," +
         Action("/b", "'order':2," + keys + VisibleIf("no")) + "]");
    struct {
        std::string rule, uri, picked;
    } const cases[] = {
        {"yes", "", "/a"},  {"no", "", "/b"}, {"other", "", "/c"}, {"yes", "/c", "/c"},
        {"no", "/b", "/b"}, {"no", "/a", ""}, {"yes", "/x", ""},
    };
    for (const auto& each : cases) {
        const auto device =
            MakeDevice({{"/a", "p", "on"}, {"/b", "p", "on"}, {"/c", "p", "on"}, {"/v", "p", each.rule}});
        const MainAction action = Ask(device, each.uri);
        SCOPED_TRACE(each.rule + " " + each.uri);
        EXPECT_EQ(action.ready, !each.picked.empty());
        EXPECT_EQ(action.uri, each.picked.empty() ? each.uri : each.picked);
        EXPECT_EQ(action.value, each.picked.empty() ? "" : "off");
    }
}

TEST_F(MetadataActionTest, StatusDecidesWhatCanBeDone) {
    Load("'ma':[" + Action("/a", Keys({"on", "off"})) + "]");
    for (const int status : {1, 3}) {
        const MainAction action = Ask(MakeDevice({{"/a", "p", "on"}}, "oic.d.tv", static_cast<DeviceStatus>(status)));
        EXPECT_FALSE(action.ready);
        EXPECT_EQ(action.property + action.value, "");
    }
    const MainAction wake = Ask(MakeDevice({}, "oic.d.tv", DEVICE_STATUS_INACTIVE), "/a");
    EXPECT_TRUE(wake.ready);
    EXPECT_EQ(wake.uri + "|" + wake.property + "|" + wake.value, "/nvn/tv/switch/binary|value|true");
    metadata.ClearMetadataMaps();
    EXPECT_FALSE(Ask(MakeDevice({{"/a", "p", "on"}})).ready);
    EXPECT_FALSE(Ask(nullptr).ready);
}

TEST_F(MetadataActionTest, GenericMetadataActsOnTheUriThatWorks) {
    Load(kGeneric + ("'ma':[" + Action("/a", Keys({"on", "off"})) + "," + Action("/b", Keys({"[1]", "[2]"})) + "," +
                     Action("/c", Keys({"on"})) + "]"));
    struct {
        std::string working, uri, result;
    } const cases[] = {
        {"/b", "", "/b p [2]"},    // compared as text, never as a list
        {"/b", "/a", "/b p [2]"},  // whatever was asked for
        {"/c", "", "/a p off"},    // all keys are current: the usual way
        {"/c", "/b", "/b p [\"[2]\"]"}, {"/x", "/c", "/c p "},
    };
    const auto device = MakeDevice({{"/a", "p", "on"}, {"/b", "p", "[1]"}, {"/c", "p", "on"}});
    for (const auto& each : cases) {
        metadata.SetGenericSubscribeUri(kVid, each.working);
        const MainAction action = Ask(device, each.uri);
        EXPECT_EQ(action.uri + " " + action.property + " " + action.value, each.result) << each.working << each.uri;
    }
}

TEST_F(MetadataActionTest, CardIsDrawnByTheDecidingAction) {
    const std::string toggle = "'controlType':'ToggleSwitch'," + Keys({"on", "off"});
    const std::string push = "'controlType':'PushButton','iconUrl':{'mid':'push.png'}," + Keys({"go"});
    const std::string untyped = "'controlType':'Mode','alternatives':[{'key':'on','type':'T'},{'key':'x'}]";
    const std::string pair = "'ma':[" + Action("/s", "'group':'sub'," + push) + "," +
                             Action("/a", toggle + VisibleIf("yes")) + "," + Action("/b", push) + "]";
    struct {
        std::string data, working, a, rule;
        std::string control_type, icon, url;
    } const cases[] = {
        {pair, "", "on", "yes", "ToggleSwitch", "T-on", "/s"},  // only the url takes other groups
        {pair, "", "on", "no", "PushButton", "push.png", "/s"},
        {pair, "", "other", "yes", "ToggleSwitch", "", "/s"},
        {pair, "", "", "yes", "ToggleSwitch", "", "/s"},
        {pair, "", "[\"x\",\"off\"]", "yes", "ToggleSwitch", "T-off", "/s"},
        {pair, "", "[]", "yes", "ToggleSwitch", "", "/s"},
        {pair, "", "[[\"off\"]]", "yes", "ToggleSwitch", "", "/s"},
        {kGeneric + pair, "/b", "on", "yes", "PushButton", "push.png", "/s"},
        {kGeneric + pair, "/a", "on", "no", "ToggleSwitch", "T-on", "/s"},
        {kGeneric + pair, "/s", "on", "yes", "", "", "/s"},
        {"'ma':[" + Action("/a", untyped) + "]", "", "on", "", "Mode", "on", "/a"},
        {"'ma':[" + Action("/a", toggle + VisibleIf("yes")) + "]", "", "on", "no", "", "", ""},
        {"'ma':[]", "", "on", "", "", "", ""},
    };
    for (const auto& each : cases) {
        Load(each.data);
        metadata.SetGenericSubscribeUri(kVid, each.working);
        const auto device = MakeDevice({{"/a", "p", each.a}, {"/v", "p", each.rule}});
        SCOPED_TRACE(each.data + " a=" + each.a + " v=" + each.rule);
        EXPECT_EQ(metadata.ActionIcon(device), "");  // not evaluated yet: inactive
        device->SetIsInactive(false);
        EXPECT_EQ(metadata.GetDeviceMainActionControlType(device), each.control_type);
        EXPECT_EQ(metadata.ActionIcon(device), each.icon);
        EXPECT_EQ(metadata.ActionUrl(device), each.url);
        const auto presentation = metadata.GetPresentation(device);
        EXPECT_EQ(presentation.control_type + presentation.action_state + presentation.action_url,
                  each.control_type + each.icon + each.url);
    }
    EXPECT_EQ(
        metadata.GetDeviceMainActionControlType(nullptr) + metadata.ActionIcon(nullptr) + metadata.ActionUrl(nullptr),
        "");
}

TEST_F(MetadataActionTest, InactiveDevicesShowNoAction) {
    Load("'ma':[" + Action("/a", Keys({"on"})) + "]");
    struct {
        std::string type;
        bool inactive;
        DeviceStatus status;
        std::string icon;
    } const cases[] = {
        {"oic.d.tv", true, DEVICE_STATUS_CONNECTED, "inactive"},
        {"x.com.hl.d.monitor", true, DEVICE_STATUS_DISCONNECTED, "inactive"},
        {"oic.d.krefrigerator", true, DEVICE_STATUS_CONNECTED, ""},
        {"oic.d.tv", false, DEVICE_STATUS_INACTIVE, ""},
        {"oic.d.tv", false, DEVICE_STATUS_CONNECTED, "T-on"},
    };
    for (const auto& each : cases) {
        const auto device = MakeDevice({{"/a", "p", "on"}}, each.type, each.status);
        device->SetIsInactive(each.inactive);
        EXPECT_EQ(metadata.ActionIcon(device), each.icon) << each.type << each.status;
        EXPECT_EQ(metadata.GetPresentation(device).action_state, each.icon) << each.type << each.status;
    }
}

// Two drums and a lone title: titles are the first states by order, texts the second ones.
constexpr char kDrums[] =
    "'ms':[{'order':9,'group':'low','iconUrl':{'mid':'preload://low.png'},'label':{'label':'<s>','arguments':"
    "[{'n':'s','href':'/low','property':'p','alternatives':[{'key':'run','value':'Running'},"
    "{'key':'idle','value':'Idle','type':'inactive'}]}]}},"
    "{'order':1,'group':'main','label':{'label':'Upper'}},"
    "{'order':0,'label':{'label':'Washer'}},"
    "{'order':2,'group':'low','label':{'label':'Lower'}},"
    "{'order':3,'group':'main','label':{'label':'At rest'},"
    "'visible':{'href':'/v','property':'p','operator':'=','operand':'yes'}},"
    "{'order':4,'group':'title','label':{'label':'Only title'}},"
    "{'order':5,'group':'gone','label':{'label':'Never'},"
    "'visible':{'href':'/v','property':'p','operator':'=','operand':'never'}}],"
    "'ma':[{'group':'low','controlType':'PushButton','iconUrl':{'mid':'go.png'},'property':'p','link':{'href':'/low'},"
    "'alternatives':[{'key':'run','type':'stop'},{'key':'idle','type':'start'}],"
    "'visible':{'href':'/v','property':'p','operator':'=','operand':'yes'}},"
    "{'group':'low','controlType':'Never','link':{'href':'/never'}}]";

TEST_F(MetadataActionTest, SubDeviceCardsComeFromTheGroups) {
    const std::string none = "'control_type':'','action_state':'','action_url':''}";
    const std::string push = "'control_type':'PushButton','action_state':'go.png','action_url':'/low'}";
    const std::string title = "{'device_name':'Only title'}";
    const auto card = [](const std::string& name, const std::string& text, const std::string& icon, bool inactive) {
        return "{'device_name':'" + name + "','state_text':'" + text + "','icon_url':'" + icon +
               "','active_state':" + (inactive ? "true" : "false") + ",";
    };
    struct {
        std::string low, rule, type;
        int status;
        std::string cards;
    } const cases[] = {
        // The flag of "low" shows in "main" too, whose labels say nothing of it.
        {"idle", "yes", "oic.d.washer", 0,
         card("Lower", "Idle", "low.png", true) + push + "," + card("Upper", "At rest", "", true) + none},
        {"run", "yes", "oic.d.washer", 0,
         card("Lower", "Running", "low.png", false) + push + "," + card("Upper", "At rest", "", false) + none},
        // An action that is not visible shows the type of its value, though it is a push button.
        {"idle", "no", "oic.d.tv", 0,
         card("Lower", "Idle", "low.png", false) + "'control_type':'','action_state':'start','action_url':''}," +
             card("Upper", "Checking Status", "", false) + none},
        {"idle", "yes", "oic.d.tv", 1,
         card("Lower", "Disconnected", "low.png", true) + push + "," + card("Upper", "Disconnected", "", true) + none},
        {"run", "yes", "oic.d.washer", 3,
         card("Lower", "Checking Status", "low.png", false) + push + "," + card("Upper", "Checking Status", "", false) +
             none},
    };
    Load(kDrums);
    for (const auto& each : cases) {
        const auto device = MakeDevice({{"/low", "p", each.low}, {"/v", "p", each.rule}}, each.type,
                                       static_cast<DeviceStatus>(each.status));
        // The labels of cards have arguments too, but the context stays the state's.
        device->SetDeviceOperationalContext({"/state", "p", "on"});
        const std::string context = device->GetDeviceOperationalContext();
        EXPECT_EQ(metadata.SetSubDeviceCardList(device), 3);
        EXPECT_EQ(metadata.GetPresentation(device).context_value, context);
        EXPECT_EQ(device->GetDeviceOperationalContext(), context);
        // Groups come in the order in which the document names them, whatever the order of their states.
        EXPECT_EQ(device->GetSubDeviceCardJsonInfo(), Json("[" + each.cards + "," + title + "]"))
            << each.low << each.rule << each.type << each.status;
    }
    const auto washer = MakeDevice({});
    EXPECT_TRUE(metadata.hasSubDeviceCard(washer));
    EXPECT_TRUE(metadata.GetPresentation(washer).has_cards);
    EXPECT_EQ(metadata.GetPresentation(washer).card_count, 3);
    EXPECT_NE(washer->GetSubDeviceCardJsonInfo(), "");

    Load("'ms':[{'group':'default','label':{'label':'Plain'}}]");
    const auto device = MakeDevice({});
    device->SetSubDeviceCardJsonInfo("stale");
    metadata.SetDeviceStateText(device);
    EXPECT_EQ(device->GetSubDeviceCardJsonInfo(), "");
    EXPECT_EQ(device->GetStateText(), "Plain");
}

}  // namespace
}  // namespace VMFramework::HomeLoom
