#include <VMFramework/JsonValue.h>

#include "UIMetaTest.h"

namespace VMFramework::HomeLoom {
namespace {

constexpr char kBefore[] = "Before";

class MetadataStateTest : public UIMetaTest {};

TEST_F(MetadataStateTest, StateIsVisibleByItsRule) {
    struct {
        std::string op, value, operand;
        bool visible;
    } const cases[] = {
        {"=", "ON", "on", true},
        {"=", "on", "one", false},
        {"=", "", "", true},
        {"!=", "on", "ON", false},
        {"!=", "", "on", true},
        {">=", "25", "3", true},  // as numbers: as texts "25" comes before "3"
        {">=", "3", "25", false},
        {">=", "-1", "-1", true},
        {">=", "warm", "0", true},  // no number reads as 0
        {"startWith", "Run_Wash", "RUN", true},
        {"startWith", "PreRun", "run", false},
        {"endWith", "Run_Wash", "wASH", true},
        {"endWith", "ash", "Wash", false},
        {"contain", "[\"Cool\",\"Fan\"]", "fan", true},
        {"contain", "", "", true},
        {"contain", "Cool", "Fan", false},
        {"notContain", "Cool", "cOO", false},
        {"notContain", "Cool", "Fan", true},
        {"==", "on", "on", false},
        {"", "on", "on", false},
    };
    for (const auto& each : cases) {
        Load("'ms':[{'label':{'label':'Seen'},'visible':{'href':'/a','property':'p','operator':'" + each.op +
             "','operand':'" + each.operand + "'}}]");
        const auto device = MakeDevice({{"/a", "p", each.value}});
        device->SetStateText(kBefore);
        metadata.GetDeviceStateText(device);
        EXPECT_EQ(device->GetStateText(), each.visible ? "Seen" : kBefore)
            << each.value << ' ' << each.op << ' ' << each.operand;
        EXPECT_TRUE(device->IsInactive());
    }
}

TEST_F(MetadataStateTest, DiagnosisIsAlwaysVisible) {
    Load(
        "'ms':[{'label':{'label':'Seen'},'visible':{'href':'/diagnosis/vs/0',"
        "'property':'x.com.norvane.da.diagnosisStart','operator':'=','operand':'Never'}}]");
    const auto device = MakeDevice({});
    metadata.GetDeviceStateText(device);
    EXPECT_EQ(device->GetStateText(), "Seen");
}

constexpr char kLanguages[] =
    "'language':[{'locale':'en_US','poCodes':[{'po':'__ON','label':'On'},{'po':'__OFF','label':'Off'},"
    "{'po':'__MODE','label':'Mode <m>'}]}]";

// The argument "m" has translated, plain and inactive alternatives; "n" has none.
constexpr char kArguments[] =
    "[{'n':'m','href':'/a','property':'m','alternatives':["
    "{'key':'on','value':'__ON','type':'active'},{'key':'off','value':'__OFF','type':'inactive'},"
    "{'key':'eco','value':'Twice'},{'key':'eco','value':'Saving','type':'inactive'},"
    "{'key':'3','value':'Three'},{'key':'lost','value':'__LOST'}]},"
    "{'n':'n','href':'/a','property':'n'}]";

TEST_F(MetadataStateTest, LabelIsMadeUpOfTranslationsAndArguments) {
    struct {
        std::string label, m, n;
        std::string text;
        bool inactive;
        std::string context;  // the value that the device reports as its last argument
    } const cases[] = {
        {"Ready", "", "", "Ready", true, ""},
        {"__ON", "", "", "On", false, ""},
        {"__LOST", "", "", kBefore, true, ""},
        {" ", "", "", kBefore, true, ""},
        {"", "", "", kBefore, true, ""},
        {"<m>", "on", "", "On", false, "On"},
        {"<m>", "off", "", "Off", true, "Off"},
        {"<m>", "ON", "", "ON", true, "ON"},  // keys match exactly; the flag stays as it starts
        {"<m>", "eco", "", "Saving", true, "Saving"},
        {"<m>", "lost", "", kBefore, false, ""},
        {"<m>", "", "", kBefore, true, ""},
        {"<m>", "3", "", "Three", false, "Three"},
        {"<m>", "[\"x\",\"off\",\"on\"]", "", "Off", true, "Off"},
        {"<m>", " [3] ", "", "Three", false, "Three"},
        {"<m>", "[\"x\"]", "", kBefore, true, ""},
        {"<m>", "[]", "", kBefore, true, ""},
        {"<m>", "[on", "", "[on", true, "[on"},
        {"<m>", "[{\"a\":1}]", "", kBefore, true, ""},
        {"<m>", "{}", "", "{}", true, "{}"},
        {"<n>", "", "[1,2]", "[1,2]", true, "[1,2]"},
        {"__MODE", "off", "", "Mode Off", true, "Off"},
        {"__MODE", "other", "", "Mode other", false, "other"},  // the label's own translation set the flag
        {"<m> / <n>", "on", "21", "On / 21", false, "21"},
        {"<m>/<n>", "", "21", "/21", true, "21"},
        {"<m><m>", "on", "", "OnOn", false, "On"},
        {"<m>, <none>", "on", "", "On, ", true, "On"},  // an unknown argument shows the device as inactive
        {"<none>, <m>", "on", "", ", On", false, "On"},
        {"<n> <m>", "on", "<m>", "On <m>", false, "On"},  // the first match is replaced, wherever it came from
        {"21 < 25", "", "", "21 < 25", true, ""},
        {"<m> <", "on", "", "On <", false, "On"},
    };
    for (const auto& each : cases) {
        Load("'ms':[{'label':{'label':'" + each.label + "','arguments':" + kArguments + "}}]," + kLanguages);
        const auto device = MakeDevice({{"/a", "m", each.m}, {"/a", "n", each.n}});
        device->SetStateText(kBefore);
        metadata.GetDeviceStateText(device);
        SCOPED_TRACE(each.label + " m=" + each.m + " n=" + each.n);
        EXPECT_EQ(device->GetStateText(), each.text);
        EXPECT_EQ(device->IsInactive(), each.inactive);
        const std::string context = device->GetDeviceOperationalContext();
        EXPECT_EQ(json::JsonValue::Create(context)["value"].asString(), each.context) << context;
    }
}

TEST_F(MetadataStateTest, FirstVisibleStateByOrderGivesTheText) {
    const std::string rule = "'visible':{'href':'/a','property':'p','operator':'=','operand':'on'}";
    Load(
        "'ms':[{'order':2,'label':{'label':'Third'}},{'order':1,'label':{'label':'Second'}},"
        "{'order':0,'label':{'label':'First'}," +
        rule + "},{'order':1,'label':{'label':'Equal'}}]");
    for (const auto& [value, text] : {std::pair("on", "First"), std::pair("off", "Second")}) {
        const auto device = MakeDevice({{"/a", "p", value}});
        metadata.SetDeviceStateText(device);
        EXPECT_EQ(device->GetStateText(), text);
    }
}

TEST_F(MetadataStateTest, StatusComesBeforeMetadata) {
    Load("'ms':[{'label':{'label':'__ON'}}]," + std::string(kLanguages));
    struct {
        int status;
        std::string type, text;
        bool evaluated;
    } const cases[] = {
        {0, "oic.d.washer", "On", true},        {1, "oic.d.tv", "Disconnected", false},
        {2, "oic.d.washer", "Inactive", false}, {2, "oic.d.tv", "On", true},
        {2, "oic.d.krefrigerator", "On", true}, {2, "oic.d.refrigerator", "Inactive", false},
        {2, "x.com.hl.d.monitor", "On", true},  {2, "x.com.hl.d.projector", "On", true},
        {3, "x.com.hl.d.projector", "", false}, {7, "oic.d.washer", "On", true},
    };
    for (const auto& each : cases) {
        const auto device = MakeDevice({}, each.type, static_cast<DeviceStatus>(each.status));
        device->SetStateText(kBefore);
        device->SetRunningState(true);
        device->SetControllableDevice(true);
        metadata.SetDeviceStateText(device);
        SCOPED_TRACE(each.type + ' ' + std::to_string(each.status));
        EXPECT_EQ(device->GetStateText(), each.text);
        EXPECT_EQ(device->IsInactive(), !each.evaluated);
        EXPECT_EQ(device->GetRunningState(), each.evaluated);
        EXPECT_EQ(device->IsControllableDevice(), each.evaluated);
    }
    metadata.ClearMetadataMaps();
    const auto device = MakeDevice({});
    device->SetStateText(kBefore);
    device->SetIsInactive(false);
    metadata.SetDeviceStateText(device);
    EXPECT_EQ(device->GetStateText(), kBefore);
    EXPECT_FALSE(device->IsInactive());
    metadata.SetDeviceStateText(nullptr);
    metadata.UpdateDeviceIconUrl(nullptr);
}

TEST_F(MetadataStateTest, GenericMetadataShowsTheStateOfTheUriThatWorks) {
    Load(
        "'vid':'generic-default-metadata','ms':[{'label':{'label':'Bare'}},"
        "{'label':{'label':'A <v>','arguments':[{'n':'v','href':'/a','property':'p'}]}},"
        "{'label':{'label':'B <v>','arguments':[{'n':'v','href':'/b','property':'p'}]}}]");
    for (const auto& [uri, text] : {std::pair("", "Bare"), std::pair("/b", "B 2"), std::pair("/none", kBefore)}) {
        metadata.SetGenericSubscribeUri(kVid, uri);
        const auto device = MakeDevice({{"/a", "p", "1"}, {"/b", "p", "2"}});
        device->SetStateText(kBefore);
        metadata.GetDeviceStateText(device);
        EXPECT_EQ(device->GetStateText(), text) << uri;
    }
}

TEST_F(MetadataStateTest, TextsComeInTheLanguageOfTheTv) {
    struct {
        const char* setting;
        std::vector<std::string> languages;  // of the document, each with its own name as the text
        std::string text;
    } const cases[] = {
        {"fr_CA.utf8", {"en", "fr", "fr_US"}, "fr_US"},
        {"nn_NO.utf8", {"en", "nb", "nn"}, "nb"},
        {"de_DE.utf8", {"en", "fr", "en_US"}, "en_US"},
        {"de_DE.utf8", {"en", "fr"}, "en"},
        {"de_DE.utf8", {"fr"}, ""},
        {"tlh.utf8", {"fr", "en"}, "en"},
        {"zh_TW.utf8", {"en", "zh_TW", "zh"}, "zh_TW"},
        {"zh_HK.utf8", {"en", "zh_TW", "zh"}, "zh"},
        {"zh_CN.utf8", {"en", "en_US"}, ""},  // Chinese takes no other language
        {"ko_KR.utf8", {"en_US", "ko_KR"}, "ko_KR"},
        {"ko_KR.utf8", {"ko_KR", "ko"}, "ko"},
    };
    for (const auto& each : cases) {
        std::string list;
        for (const std::string& locale : each.languages) {
            list += (list.empty() ? "{'locale':'" : ",{'locale':'") + locale + "','poCodes':[{'po':'__ME','label':'" +
                    locale + "'}]}";
        }
        SetLanguage(each.setting);
        Load("'ms':[{'label':{'label':'__ME'}}],'language':[" + list + "]");
        const auto device = MakeDevice({});
        metadata.GetDeviceStateText(device);
        EXPECT_EQ(device->GetStateText(), each.text) << each.setting << " " << list;
    }
}

TEST_F(MetadataStateTest, LanguageIsWatchedUntilTold) {
    Load(
        "'ms':[{'label':{'label':'__ME'}}],'language':[{'locale':'en','poCodes':[{'po':'__ME','label':'Me'}]},"
        "{'locale':'fr','poCodes':[{'po':'__ME','label':'Moi'}]}]");
    const auto device = MakeDevice({});
    const auto text_in = [&](const char* setting) {
        SetLanguage(setting);
        metadata.GetDeviceStateText(device);
        return device->GetStateText();
    };
    EXPECT_EQ(text_in("fr_FR.utf8"), "Moi");
    EXPECT_EQ(text_in("en_US.utf8"), "Me");
    metadata.StopLanguageWatch();
    metadata.StopLanguageWatch();
    EXPECT_EQ(text_in("fr_FR.utf8"), "Me");
}

}  // namespace
}  // namespace VMFramework::HomeLoom
