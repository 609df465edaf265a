#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <vmf_endpoint.h>
#include <vmf_property.h>
#include <vmf_service_handler.h>

#include "desktop/Framework.h"

namespace {

using namespace homeloom::desktop;

class PropertyListTest : public testing::Test {
protected:
    ~PropertyListTest() override { EXPECT_EQ(framework::liveHandles().total(), 0u); }

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
};

TEST_F(PropertyListTest, EndpointsBelongToTheirList) {
    const vmf_endpoint_h washer = vmf_endpoint_create();
    vmf_endpoint_set_device_id(washer, "w1");
    vmf_endpoint_set_extra_data(washer, "z", "text");
    vmf_endpoint_set_extra_data_int(washer, "z", 2);  // replaces it, with another type
    EXPECT_EQ(vmf_endpoint_get_extra_data(washer, "z"), nullptr);
    const vmf_endpoint_h copy = vmf_endpoint_copy(washer);
    vmf_endpoint_set_device_id(copy, "w2");
    EXPECT_STREQ(vmf_endpoint_get_device_id(washer), "w1");

    vmf_error_e error = VMF_ERROR_FAILED;
    const vmf_endpoint_list_h list = vmf_endpoint_list_create(&error);
    EXPECT_EQ(vmf_endpoint_list_push_endpoint(list, washer), VMF_ERROR_NONE);
    EXPECT_EQ(vmf_endpoint_list_push_endpoint(list, copy), VMF_ERROR_NONE);
    EXPECT_EQ(vmf_endpoint_list_push_endpoint(list, copy), VMF_ERROR_INVALID_STATE);
    EXPECT_EQ(vmf_endpoint_destroy(copy), VMF_ERROR_INVALID_STATE);  // it is the list's
    void* popped = nullptr;
    EXPECT_EQ(vmf_endpoint_list_pop(list, &popped), VMF_ERROR_NONE);
    EXPECT_EQ(popped, washer);
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
    EXPECT_EQ(vmf_property_list_get_next(list, vmf_property_list_get_first(list)), nullptr);
    vmf_property_list_destroy(list);
    vmf_endpoint_destroy(endpoint);
}

}  // namespace
