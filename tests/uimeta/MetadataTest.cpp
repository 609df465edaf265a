#include <atomic>
#include <thread>

#include <gmock/gmock.h>

#include "Common/CException.h"
#include "UIMetaTest.h"

namespace VMFramework::HomeLoom {
namespace {

using testing::ElementsAre;

class MetadataTest : public UIMetaTest {};

TEST_F(MetadataTest, DocumentIsParsedAgainOnlyForAnotherVersion) {
    const auto parse = [&](const std::string& text) { return metadata.ParseMetadata(kVid, text); };
    metadata.ClearMetadataMaps();
    EXPECT_FALSE(metadata.ParseMetadata("", Document("")));
    EXPECT_FALSE(parse(""));
    EXPECT_FALSE(parse("Run"));
    EXPECT_FALSE(parse(Json("{'message':'RESOURCE_NOT_FOUND_PATH','data':{}}")));
    EXPECT_TRUE(metadata.IsEmptyMetadataMap());

    EXPECT_TRUE(parse(Document("'version':'1','iconUrl':{'mid':'first'}")));
    metadata.SetGenericSubscribeUri(kVid, "/a");
    EXPECT_FALSE(parse(Document("'version':'1','iconUrl':{'mid':'ignored'}")));
    EXPECT_THROW(parse("Run"), CException);
    EXPECT_EQ(metadata.FindUiMetadata(kVid)->icon_url, "first");
    EXPECT_EQ(metadata.FindUiMetadata(kVid)->generic_subscribe_uri, "/a");

    EXPECT_TRUE(parse(Document("'version':'2'")));
    EXPECT_EQ(metadata.FindUiMetadata(kVid)->generic_subscribe_uri, "");
    EXPECT_TRUE(parse(Document("'iconUrl':{'mid':'unversioned'}")));
    EXPECT_TRUE(parse(Document("'iconUrl':{'mid':'again'}")));
    EXPECT_FALSE(parse(Json("{'message':'RESOURCE_NOT_FOUND_PATH'}")));
    EXPECT_EQ(metadata.FindUiMetadata(kVid)->icon_url, "again");
    EXPECT_EQ(metadata.GetMetadataSize(), 1);
}

TEST_F(MetadataTest, RecordsThatWereTakenStayAsTheyWere) {
    Load("'version':'1','ms':[{}]");
    const Metadata::UiMetadata taken = metadata.FindUiMetadata(kVid);
    device_ui_metadata_struct copy;
    ASSERT_TRUE(metadata.GetUiMetadataFromMap(kVid, copy));
    metadata.SetGenericSubscribeUri(kVid, "/a");
    EXPECT_EQ(taken->generic_subscribe_uri, "");
    EXPECT_EQ(metadata.GetDeviceUiMetadata().at(kVid)->generic_subscribe_uri, "/a");
    metadata.ClearMetadataMaps();
    EXPECT_EQ(taken->main_states.size(), 1U);
    EXPECT_EQ(copy.version, "1");
    EXPECT_FALSE(metadata.GetUiMetadataFromMap(kVid, copy));
}

constexpr char kLists[] =
    "'ms':[{'label':{'arguments':[{'n':'a','href':'/a','property':'one'},{'n':'b','href':'/b','property':'two'}]},"
    "'visible':{'href':'/a','property':'rule'}},"
    "{'label':{'arguments':[{'n':'a','href':'/a','property':'one'},{'n':'c','href':'/a','property':'three'}]}}],"
    "'ma':[{'link':{'href':'/a'},'property':'act'}],"
    "'dpResources':[{'link':{'href':'/a'},'property':'shown'},{'link':{'href':'/live'},'property':'liveStream'},"
    "{'link':{'href':'/later'},'property':'stream'}],"
    "'dpInfo':[{'os':'solenne','serverDpUri':'uri:dp'}],'iconUrl':{'mid':'icon.png'}";

TEST_F(MetadataTest, ListsTellWhatToSubscribeAndRead) {
    Load(kLists);
    EXPECT_THAT(metadata.GetSubscribeList(kVid), ElementsAre("/a", "/b"));
    // What only an action sets is not read.
    EXPECT_THAT(metadata.GetPropertyNameList(kVid, "/a"), ElementsAre("one", "three", "rule", "shown"));
    EXPECT_THAT(metadata.GetPropertyNameList(kVid, "/x"), ElementsAre());
    EXPECT_EQ(metadata.GetDPResourceList(kVid).size(), 3U);
    EXPECT_EQ(metadata.GetSolenneServerDpUri(kVid), "uri:dp");
    EXPECT_TRUE(metadata.HasMainAction(kVid, "act"));
    EXPECT_FALSE(metadata.HasMainAction(kVid, "/a"));
    EXPECT_EQ(metadata.NumOfMainStates(kVid), 2);
    EXPECT_EQ(metadata.NumOfMainActions(kVid), 1);

    const std::string unknown = "VID-2";
    metadata.SetGenericSubscribeUri(unknown, "/a");
    EXPECT_FALSE(metadata.IsParsedMetadata(unknown) || metadata.IsGenericMetadata(unknown) ||
                 metadata.HasMainAction(unknown, "act"));
    EXPECT_TRUE(metadata.GetSubscribeList(unknown).empty() && metadata.GetPropertyNameList(unknown, "/a").empty() &&
                metadata.GetDPResourceList(unknown).empty() && metadata.GetSolenneServerDpUri(unknown).empty());
    EXPECT_EQ(metadata.NumOfMainStates(unknown) + metadata.NumOfMainActions(unknown), 0);
}

TEST_F(MetadataTest, IconAndStreamComeFromTheDocument) {
    Load(kLists);
    const auto stream_of = [&](const char* type, DeviceStatus status, const char* uri) {
        return metadata.HasStreamResource(MakeDevice({{uri, "p", "v"}}, type, status));
    };
    EXPECT_EQ(metadata.GetStreamURI(MakeDevice({})), "/live");
    EXPECT_TRUE(stream_of("oic.d.camera", DEVICE_STATUS_CONNECTED, "/live"));
    EXPECT_TRUE(stream_of("x.com.hl.d.doorbell", DEVICE_STATUS_INACTIVE, "/live"));
    EXPECT_FALSE(stream_of("oic.d.washer", DEVICE_STATUS_CONNECTED, "/live"));
    EXPECT_FALSE(stream_of("oic.d.camera", DEVICE_STATUS_DISCONNECTED, "/live"));
    EXPECT_FALSE(stream_of("oic.d.camera", DEVICE_STATUS_CONNECTED, "/later"));  // the first entry decides

    const auto device = MakeDevice({}, "oic.d.camera");
    metadata.UpdateDeviceIconUrl(device);
    EXPECT_EQ(device->GetIconUrl(), "icon.png");
    Load("");
    metadata.UpdateDeviceIconUrl(device);
    EXPECT_EQ(device->GetIconUrl(), "");
    EXPECT_EQ(metadata.GetStreamURI(device) + metadata.GetStreamURI(nullptr), "");
    metadata.ClearMetadataMaps();
    EXPECT_FALSE(metadata.HasStreamResource(device) || metadata.HasStreamResource(nullptr));
}

// Meant for the thread sanitizer: evaluation goes on while records are replaced under it.
TEST_F(MetadataTest, EvaluatesWhileRecordsChange) {
    Load(kLists);
    std::atomic<bool> done{false};
    std::thread changer([&] {
        for (int i = 0; i < 300; ++i) {
            metadata.SetGenericSubscribeUri(kVid, std::to_string(i));
            metadata.ParseMetadata(kVid, Document(kLists));
            SetLanguage(i % 2 == 0 ? "fr_FR.utf8" : "en_US.utf8");
        }
        done = true;
    });
    const auto device = MakeDevice({{"/a", "one", "1"}});
    while (!done) {
        metadata.SetDeviceStateText(device);
        EXPECT_EQ(metadata.ActionUrl(device), "/a");
        EXPECT_EQ(metadata.GetPropertyNameList(kVid, "/b").size(), 1U);
    }
    changer.join();
}

}  // namespace
}  // namespace VMFramework::HomeLoom
