#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <vmf_endpoint.h>
#include <vmf_property.h>

#include "Common/CException.h"
#include "Helpers/CEndpointHelper.h"
#include "Helpers/CEndpointListHelper.h"
#include "Helpers/CPropertyListHelper.h"
#include "desktop/CallFaults.h"
#include "desktop/Framework.h"
#include "desktop/Log.h"

using namespace VMFramework::HomeLoom;
using homeloom::desktop::failCalls;
using homeloom::desktop::passCalls;
using testing::ElementsAre;

class Helpers : public testing::Test {
protected:
    ~Helpers() override {
        passCalls();
        EXPECT_EQ(homeloom::desktop::framework::liveHandles().total(), 0u);
    }

    static std::vector<vmf_property_h> All(const IPropertyListHelper& list) {
        std::vector<vmf_property_h> all;
        for (void* at = list.GetFirst(); at != nullptr; at = list.GetNext(at)) {
            all.push_back(static_cast<vmf_property_h>(at));
        }
        return all;
    }

    homeloom::desktop::log::Capture log{DLOG_INFO};
};

TEST_F(Helpers, PropertiesKeepOrderAndTypeAndEmptyOnesStayOut) {
    const auto list = IPropertyListHelper::Create();
    EXPECT_TRUE(list->Empty());
    EXPECT_EQ(list->GetName(), "");
    list->SetName("first");
    list->SetName("");
    EXPECT_EQ(list->GetName(), "first");

    list->PushStringData("text", "");
    list->PushStringData("", "text");
    list->PushIntData("", 1);
    list->PushBooleanData("", true);
    EXPECT_TRUE(list->Empty());

    list->PushIntData("number", 0);
    list->PushBooleanData("flag", false);
    list->PushStringData("text", "t");
    list->PushStringData("text", "hidden behind the first");
    EXPECT_THAT(All(*list), ElementsAre(list->Find("number"), list->Find("flag"), list->Find("text"), testing::_));
    EXPECT_EQ(list->GetString("text"), "t");
    EXPECT_EQ(list->Find(""), nullptr);

    void* first = nullptr;
    vmf_error_e error = VMF_ERROR_FAILED;
    list->Pop(&first, &error);
    EXPECT_EQ(error, VMF_ERROR_NONE);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(list->Find("number"), nullptr);
}

TEST_F(Helpers, WhatIsMissingOrOfAnotherTypeReadsAsEmpty) {
    const auto list = IPropertyListHelper::Create();
    list->PushIntData("number", 7);
    list->PushBooleanData("flag", true);
    list->PushStringData("text", "7");
    const struct {
        const char* key;
        std::string text;
        int number;
        bool flag;
    } cases[] = {{"number", "", 7, false},
                 {"flag", "", 0, true},
                 {"text", "7", 0, false},
                 {"none", "", 0, false},
                 {"", "", 0, false}};
    for (const auto& [key, text, number, flag] : cases) {
        EXPECT_EQ(list->GetString(key), text) << key;
        EXPECT_EQ(list->GetInt(key), number) << key;
        EXPECT_EQ(list->GetBool(key), flag) << key;
    }
    EXPECT_EQ(log.count("failed to GetInt"), 4);
    EXPECT_EQ(log.count("failed to GetBool"), 4);
}

TEST_F(Helpers, AFailingFrameworkIsLoggedAndKeepsNothing) {
    const auto list = IPropertyListHelper::Create();
    const struct {
        const char* function;
        std::function<void()> call;
        const char* words;
    } cases[] = {
        {"vmf_property_list_set_name", [&] { list->SetName("n"); }, "failed to set data in SetName!"},
        {"vmf_property_create_string", [&] { list->PushStringData("k", "v"); },
         "failed to set data in PushStringData!"},
        {"vmf_property_create_int", [&] { list->PushIntData("k", 1); }, "failed to set data in PushIntData!"},
        {"vmf_property_create_bool", [&] { list->PushBooleanData("k", true); },
         "failed to set data in PushBooleanData!"},
        {"vmf_property_list_push_property", [&] { list->PushIntData("k", 1); }, "failed to set data in Push!"},
    };
    for (const auto& [function, call, words] : cases) {
        failCalls(function, VMF_ERROR_FAILED);
        call();
        passCalls();
        EXPECT_EQ(log.count(words), 1) << function;
        EXPECT_TRUE(list->Empty()) << function;
    }
    list->Push(nullptr, VMF_ERROR_NONE);
    EXPECT_EQ(log.count("failed to set data in Push!"), 2);

    EXPECT_THROW(IPropertyListHelper::Create(nullptr), std::invalid_argument);
    failCalls("vmf_property_list_create", VMF_ERROR_OUT_OF_MEMORY);
    EXPECT_THROW(IPropertyListHelper::Create(), std::invalid_argument);
    failCalls("vmf_endpoint_list_create", VMF_ERROR_OUT_OF_MEMORY);
    EXPECT_THROW(IEndpointListHelper::Create(), std::invalid_argument);
    EXPECT_EQ(log.count("failed to copy list"), 3);
    failCalls("vmf_endpoint_create", VMF_ERROR_OUT_OF_MEMORY);
    EXPECT_THROW(IEndpointHelper::Create(), CException);
    EXPECT_THROW(IEndpointHelper::Copy(nullptr), CException);
}

TEST_F(Helpers, AnEndpointGivesBackWhatWasSetAndKeepsEmptyTexts) {
    const auto endpoint = IEndpointHelper::Create();
    EXPECT_EQ(endpoint->GetDeviceId() + endpoint->GetExtraData("state_text"), "");
    endpoint->SetServiceName("homeloom");
    endpoint->SetInterfaceType("homeloom-interfacetype");
    endpoint->SetDeviceId("washer");
    endpoint->SetDeviceName("Washer");
    endpoint->SetDeviceType("homeloom-device");
    endpoint->SetSubDeviceType("oic.d.washer");
    endpoint->SetExtraData("state_text", "");
    endpoint->SetExtraData("nick", "Old");
    endpoint->SetExtraData("nick", "W");
    endpoint->SetExtraDataInt("active_state", 1);
    endpoint->SetExtraDataBool("running_state", true);
    EXPECT_EQ(endpoint->GetServiceName(), "homeloom");
    EXPECT_EQ(endpoint->GetInterfaceType(), "homeloom-interfacetype");
    EXPECT_EQ(endpoint->GetDeviceId(), "washer");
    EXPECT_EQ(endpoint->GetDeviceName(), "Washer");
    EXPECT_EQ(endpoint->GetDeviceType(), "homeloom-device");
    EXPECT_EQ(endpoint->GetExtraData("nick"), "W");
    EXPECT_EQ(endpoint->GetExtraData("active_state"), "") << "no text";
    EXPECT_NE(vmf_endpoint_get_extra_data(endpoint->GetHandle(), "state_text"), nullptr);

    endpoint->PrintData(nullptr);
    for (const char* words :
         {"extra data nick : W", "extra data active_state : 1", "extra data running_state : true"}) {
        EXPECT_TRUE(log.contains(words)) << words;
    }
    // The copy is its helper's; the original is still ours.
    EXPECT_EQ(IEndpointHelper::Copy(endpoint->GetHandle())->GetDeviceName(), "Washer");
    vmf_endpoint_destroy(endpoint->GetHandle());
}

TEST_F(Helpers, AnEndpointListOwnsAndCounts) {
    const auto list = IEndpointListHelper::Create();
    for (const char* id : {"a", "b"}) {
        const auto endpoint = IEndpointHelper::Create();
        endpoint->SetDeviceId(id);
        endpoint->SetDeviceType("homeloom-device");
        list->Push(endpoint->GetHandle(), VMF_ERROR_NONE);
    }
    EXPECT_EQ(list->GetCount(), 2);
    EXPECT_EQ(list->GetCount("homeloom-device"), 2);
    EXPECT_EQ(list->GetCount("homeloom-scene"), 0);
    EXPECT_EQ(list->GetNext(list->GetFirst()), list->Find("b"));
    EXPECT_FALSE(list->Empty());

    failCalls("vmf_endpoint_list_push_endpoint", VMF_ERROR_FAILED);
    list->Push(IEndpointHelper::Create()->GetHandle(), VMF_ERROR_NONE);
    passCalls();
    EXPECT_EQ(log.count("Push is failed"), 1);
    EXPECT_EQ(list->GetCount(), 2);

    for (const int left : {1, 0, -1}) {  // below zero: it counts what was asked for
        void* popped = nullptr;
        list->Pop(&popped, nullptr);
        EXPECT_EQ(list->GetCount(), left);
        vmf_endpoint_destroy(static_cast<vmf_endpoint_h>(popped));
    }
    EXPECT_TRUE(list->Empty());
}
