#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <vmf_endpoint.h>
#include <vmf_property.h>
#include <vmf_service_handler.h>

#include "desktop/CallFaults.h"
#include "desktop/Framework.h"

namespace {

using namespace homeloom::desktop;
using testing::ElementsAre;

class PropertyListTest : public testing::Test {
protected:
    ~PropertyListTest() override {
        passCalls();
        EXPECT_EQ(framework::liveHandles().total(), 0u);
    }

    vmf_property_list_h makeList(const std::string& keys) {
        vmf_error_e error = VMF_ERROR_FAILED;
        const vmf_property_list_h list = vmf_property_list_create(&error);
        EXPECT_EQ(error, VMF_ERROR_NONE);
        for (const char key : keys) {
            const std::string name(1, key);
            vmf_property_list_push_property(list, vmf_property_create_string(name.c_str(), "text", &error));
        }
        return list;
    }

    static std::vector<vmf_property_h> contents(vmf_property_list_h list) {
        std::vector<vmf_property_h> found;
        for (void* at = vmf_property_list_get_first(list); at; at = vmf_property_list_get_next(list, at)) {
            found.push_back(static_cast<vmf_property_h>(at));
        }
        return found;
    }
};

TEST_F(PropertyListTest, KeepsOrderAndTypes) {
    vmf_error_e error = VMF_ERROR_FAILED;
    const vmf_property_list_h list = makeList("ba");
    EXPECT_EQ(vmf_property_list_get_name(list), nullptr);
    EXPECT_EQ(vmf_property_list_set_name(list, "hl_request"), VMF_ERROR_NONE);
    vmf_property_list_push_property(list, vmf_property_create_int("number", -7, &error));
    vmf_property_list_push_property(list, vmf_property_create_bool("flag", true, &error));
    vmf_property_list_push_property(list, vmf_property_create_string("a", "", &error));

    const vmf_property_list_h copy = vmf_property_list_copy(list, &error);
    EXPECT_EQ(vmf_property_list_destroy(list), VMF_ERROR_NONE);
    EXPECT_STREQ(vmf_property_list_get_name(copy), "hl_request");
    const auto found = contents(copy);
    ASSERT_EQ(found.size(), 5u);
    EXPECT_EQ(vmf_property_list_find(copy, "a"), found[1]);  // the first of two
    EXPECT_EQ(vmf_property_list_find(copy, "z"), nullptr);

    const char* text = nullptr;
    int number = 1;
    bool flag = false;
    EXPECT_EQ(vmf_property_get_string(found[4], &text), VMF_ERROR_NONE);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(vmf_property_get_int(found[2], &number), VMF_ERROR_NONE);
    EXPECT_EQ(number, -7);
    EXPECT_EQ(vmf_property_get_bool(found[3], &flag), VMF_ERROR_NONE);
    EXPECT_TRUE(flag);
    EXPECT_EQ(vmf_property_get_int(found[3], &number), VMF_ERROR_WRONG_TYPE);
    EXPECT_EQ(vmf_property_get_int(nullptr, &number), VMF_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(number, -7);  // left as it was

    void* popped = nullptr;
    EXPECT_EQ(vmf_property_list_pop(copy, &popped), VMF_ERROR_NONE);
    EXPECT_EQ(popped, found[0]);
    EXPECT_EQ(vmf_property_get_string(found[0], &text), VMF_ERROR_NONE);  // lives as long as the list
    EXPECT_EQ(contents(copy).size(), 4u);
    EXPECT_EQ(vmf_property_list_get_next(copy, popped), nullptr);
    for (int i = 0; i < 4; ++i) {
        EXPECT_FALSE(vmf_property_list_empty(copy));
        vmf_property_list_pop(copy, &popped);
    }
    EXPECT_TRUE(vmf_property_list_empty(copy));
    EXPECT_EQ(vmf_property_list_pop(copy, &popped), VMF_ERROR_NOT_FOUND);
    EXPECT_EQ(vmf_property_list_destroy(copy), VMF_ERROR_NONE);
    EXPECT_EQ(vmf_property_get_string(found[0], &text), VMF_ERROR_INVALID_PARAMETER);
}

TEST_F(PropertyListTest, EndpointsKeepWhatWasSet) {
    const vmf_endpoint_h washer = vmf_endpoint_create();
    vmf_endpoint_set_service_name(washer, "homeloom");
    vmf_endpoint_set_device_id(washer, "w1");
    vmf_endpoint_set_device_type(washer, "washer");
    vmf_endpoint_set_extra_data(washer, "z", "text");
    vmf_endpoint_set_extra_data_int(washer, "a", 1);
    vmf_endpoint_set_extra_data_int(washer, "z", 2);  // replaces, in its place, with another type
    EXPECT_EQ(vmf_endpoint_get_extra_data(washer, "z"), nullptr);
    EXPECT_EQ(vmf_endpoint_get_device_name(washer), nullptr);
    EXPECT_STREQ(vmf_endpoint_get_device_id(washer), "w1");

    const vmf_endpoint_h copy = vmf_endpoint_copy(washer);
    vmf_endpoint_set_device_id(copy, "w2");
    vmf_error_e error = VMF_ERROR_FAILED;
    const vmf_endpoint_list_h list = vmf_endpoint_list_create(&error);
    EXPECT_TRUE(vmf_endpoint_list_empty(list));
    EXPECT_EQ(vmf_endpoint_list_push_endpoint(list, washer), VMF_ERROR_NONE);
    EXPECT_EQ(vmf_endpoint_list_push_endpoint(list, copy), VMF_ERROR_NONE);
    EXPECT_EQ(vmf_endpoint_list_push_endpoint(list, copy), VMF_ERROR_INVALID_STATE);
    EXPECT_EQ(vmf_endpoint_destroy(copy), VMF_ERROR_INVALID_STATE);  // it is the list's
    EXPECT_EQ(vmf_endpoint_list_find(list, "w2"), copy);
    EXPECT_EQ(vmf_endpoint_list_find(list, "w3"), nullptr);
    EXPECT_EQ(vmf_endpoint_list_count(list, "washer"), 2);
    EXPECT_EQ(vmf_endpoint_list_get_next(list, vmf_endpoint_list_get_first(list)), copy);
    void* popped = nullptr;
    EXPECT_EQ(vmf_endpoint_list_pop(list, &popped), VMF_ERROR_NONE);
    EXPECT_EQ(popped, washer);
    EXPECT_EQ(vmf_endpoint_list_get_first(list), copy);
    EXPECT_EQ(vmf_endpoint_list_destroy(list), VMF_ERROR_NONE);
    EXPECT_EQ(vmf_endpoint_get_device_id(copy), nullptr);
    EXPECT_EQ(vmf_endpoint_destroy(washer), VMF_ERROR_NONE);
}

// Null, ended handles, those of another kind, and pointers that were never handles.
TEST_F(PropertyListTest, RefusesBadHandles) {
    vmf_error_e error = VMF_ERROR_NONE;
    int local = 0;
    const vmf_property_list_h ended = makeList("a");
    void* const endedProperty = vmf_property_list_get_first(ended);
    vmf_property_list_destroy(ended);
    const vmf_property_list_h list = makeList("a");
    const vmf_endpoint_h endpoint = vmf_endpoint_create();
    const std::vector<void*> bad = {nullptr,
                                    &local,
                                    ended,
                                    endedProperty,
                                    endpoint,
                                    reinterpret_cast<void*>(~std::uintptr_t{0}),
                                    vmf_property_list_get_first(list)};
    for (void* handle : bad) {
        const auto badList = static_cast<vmf_property_list_h>(handle);
        const auto badEndpoints = static_cast<vmf_endpoint_list_h>(handle);
        const auto badHandler = static_cast<vmf_service_handler_h>(handle);
        const vmf_string_t text = vmf_string_new("homeloom", 8);
        EXPECT_EQ(vmf_property_list_set_name(badList, "x"), VMF_ERROR_INVALID_PARAMETER);
        EXPECT_EQ(vmf_property_list_get_name(badList), nullptr);
        EXPECT_EQ(vmf_property_list_find(badList, "a"), nullptr);
        EXPECT_EQ(vmf_property_list_get_first(badList), nullptr);
        EXPECT_TRUE(vmf_property_list_empty(badList));
        EXPECT_EQ(vmf_property_list_copy(badList, &error), nullptr);
        EXPECT_EQ(error, VMF_ERROR_INVALID_PARAMETER);
        EXPECT_EQ(vmf_property_list_destroy(badList), VMF_ERROR_INVALID_PARAMETER);
        EXPECT_EQ(vmf_property_list_push_property(badList, vmf_property_create_int("x", 1, &error)),
                  VMF_ERROR_INVALID_PARAMETER);  // and the property is gone
        EXPECT_TRUE(vmf_endpoint_list_empty(badEndpoints));
        EXPECT_EQ(vmf_endpoint_list_push_endpoint(badEndpoints, endpoint), VMF_ERROR_INVALID_PARAMETER);
        EXPECT_EQ(vmf_endpoint_list_destroy(badEndpoints), VMF_ERROR_INVALID_PARAMETER);
        EXPECT_NE(vmf_service_handler_subscribe_service(badHandler, text), 0);
        EXPECT_NE(vmf_service_handler_notify(badHandler, text, list, nullptr, 0), 0);
        EXPECT_NE(vmf_service_handler_destroy(badHandler), 0);
        if (handle != endpoint) {
            EXPECT_EQ(vmf_endpoint_set_device_id(static_cast<vmf_endpoint_h>(handle), "x"),
                      VMF_ERROR_INVALID_PARAMETER);
            EXPECT_EQ(vmf_endpoint_destroy(static_cast<vmf_endpoint_h>(handle)), VMF_ERROR_INVALID_PARAMETER);
        }
    }
    EXPECT_EQ(vmf_property_create_string("key", nullptr, &error), nullptr);
    EXPECT_EQ(vmf_property_create_string(nullptr, "value", &error), nullptr);
    EXPECT_EQ(vmf_endpoint_set_extra_data(endpoint, "key", nullptr), VMF_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(vmf_property_list_set_name(list, nullptr), VMF_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(vmf_property_list_push_property(list, static_cast<vmf_property_h>(vmf_property_list_get_first(list))),
              VMF_ERROR_INVALID_STATE);
    EXPECT_EQ(contents(list).size(), 1u);
    vmf_property_list_destroy(list);
    vmf_endpoint_destroy(endpoint);
}

TEST_F(PropertyListTest, CallsFailAsTold) {
    vmf_error_e error = VMF_ERROR_NONE;
    failCalls("vmf_property_list_create", VMF_ERROR_OUT_OF_MEMORY, onlyCall(2));
    const vmf_property_list_h list = makeList("");
    EXPECT_EQ(vmf_property_list_create(&error), nullptr);
    EXPECT_EQ(error, VMF_ERROR_OUT_OF_MEMORY);
    vmf_property_list_destroy(makeList(""));

    failCalls("vmf_property_list_push_property", VMF_ERROR_FAILED, firstCalls(1));
    EXPECT_EQ(vmf_property_list_push_property(list, vmf_property_create_int("x", 1, &error)), VMF_ERROR_FAILED);
    EXPECT_TRUE(vmf_property_list_empty(list));
    vmf_property_list_push_property(list, vmf_property_create_int("x", 1, &error));
    EXPECT_FALSE(vmf_property_list_empty(list));
    failCalls("vmf_endpoint_create", VMF_ERROR_FAILED);
    EXPECT_EQ(vmf_endpoint_create(), nullptr);
    EXPECT_EQ(vmf_endpoint_create(), nullptr);
    EXPECT_THROW(failCalls("vmf_property_list_creat", -1), std::invalid_argument);
    EXPECT_THROW(failCalls("vmf_endpoint_create", 0), std::invalid_argument);
    vmf_property_list_destroy(list);
}

}  // namespace
