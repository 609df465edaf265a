// The pages for UI developers say what the plug-in does.

#include <dlfcn.h>

#include <algorithm>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <vmf_property.h>

#include "Page.h"
#include "ReportTable.h"
#include "RequestTable.h"
#include "Words.h"
#include "desktop/Records.h"
#include "support/Desk.h"

namespace framework = homeloom::desktop::framework;
using homeloom::tv::FieldSpec;
using homeloom::tv::RequestSpec;
using testing::UnorderedElementsAreArray;

// ---- What the plug-in reads of a request: these take the place of the framework's own functions ----

namespace {

std::mutex readMutex;
std::map<std::string, std::set<std::string>> readFields;     // by request
thread_local std::pair<std::string, std::string> lastFound;  // request and key

template <typename Value>
vmf_error_e Read(const char* name, const char* type, vmf_property_h property, Value value) {
    {
        const std::lock_guard<std::mutex> lock(readMutex);
        readFields[lastFound.first].insert(lastFound.second + " " + type);
    }
    using Function = vmf_error_e(vmf_property_h, Value);
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name))(property, value);
}

}  // namespace

vmf_property_h vmf_property_list_find(vmf_property_list_h list, const char* key) {
    const char* const name = vmf_property_list_get_name(list);
    lastFound = {name != nullptr ? name : "", key};
    using Function = vmf_property_h(vmf_property_list_h, const char*);
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, "vmf_property_list_find"))(list, key);
}
vmf_error_e vmf_property_get_string(vmf_property_h property, const char** value) {
    return Read("vmf_property_get_string", "text", property, value);
}
vmf_error_e vmf_property_get_int(vmf_property_h property, int* value) {
    return Read("vmf_property_get_int", "int", property, value);
}
vmf_error_e vmf_property_get_bool(vmf_property_h property, bool* value) {
    return Read("vmf_property_get_bool", "bool", property, value);
}

namespace {

std::string TypeOf(const homeloom::desktop::Value& value) {
    return std::holds_alternative<bool>(value) ? "bool" : std::holds_alternative<int>(value) ? "int" : "text";
}

/// As the pages write them; the endpoints' table refers to the notify for what both have.
DocumentedFields Written(const std::vector<FieldSpec>& fields, bool asInTheNotify = false) {
    DocumentedFields written;
    for (const auto& field : fields) {
        const auto& notified = homeloom::tv::findNotify("hl_device_state_updated")->fields;
        const bool isThere =
            asInTheNotify && std::any_of(notified.begin(), notified.end(),
                                         [&](const FieldSpec& other) { return other.key == field.key; });
        const std::string meaning = isThere ? "as in the notify" : field.meaning;
        written.push_back(field.key + " " + nameOf(field.type) + (meaning.empty() ? "" : ": " + meaning));
    }
    return written;
}

bool HasField(const std::vector<FieldSpec>& fields, const std::string& key, const homeloom::desktop::Value& value) {
    return std::any_of(fields.begin(), fields.end(),
                       [&](const FieldSpec& field) { return field.key == key && nameOf(field.type) == TypeOf(value); });
}

/// The constants of the vocabulary below a comment, up to the next empty line.
std::vector<std::string> NamesBelow(const std::string& comment) {
    std::vector<std::string> names;
    for (const auto& line :
         linesBelow("src/Common/HLNames.h", comment, [](const auto& read) { return read.empty(); })) {
        const auto begin = line.find('"') + 1;
        names.push_back(line.substr(begin, line.rfind('"') - begin));
    }
    return names;
}

homeloom::desktop::Fields ArgumentsOf(const std::string& example) {
    auto words = homeloom::tv::splitWords(example);
    const auto* const spec = homeloom::tv::findRequest(words.at(1));
    return homeloom::tv::typedArguments(*spec, {words.begin() + 2, words.end()});
}

}  // namespace

TEST(Pages, TheRequestsAreThoseOfTheTables) {
    auto vocabulary = NamesBelow("// Requests");
    const auto overtaking = NamesBelow("// Requests that overtake the others");
    vocabulary.insert(vocabulary.end(), overtaking.begin(), overtaking.end());
    std::vector<std::string> documented;
    for (const auto& request : documentedRequests()) {
        documented.push_back(request.name);
        const auto* const spec = homeloom::tv::findRequest(request.name);
        ASSERT_NE(spec, nullptr) << request.name;
        EXPECT_EQ(request.arguments, Written(spec->arguments)) << request.name;
        const bool isTied = spec->answer == RequestSpec::Answer::Notify || spec->answer == RequestSpec::Answer::Result;
        const char* const kind = spec->answer == RequestSpec::Answer::Result ? "result " : "notify ";
        EXPECT_EQ(request.answer, isTied ? kind + spec->answerName : "") << request.name;
        EXPECT_EQ(request.answerFields, Written(spec->answerFields)) << request.name;
        EXPECT_EQ(request.needs, nameOf(spec->need)) << request.name;
        EXPECT_EQ(request.refusals, spec->refusals) << request.name;
        EXPECT_EQ(request.example, exampleOf(*spec));
        EXPECT_EQ(request.overtakes, spec->overtakes) << request.name;
        EXPECT_NO_THROW(ArgumentsOf(request.example)) << request.example;
    }
    EXPECT_THAT(documented, UnorderedElementsAreArray(vocabulary));
    EXPECT_EQ(documented.size(), homeloom::tv::requestTable().size());
}

TEST(Pages, TheNotifiesAndEndpointsAreThoseOfTheTables) {
    const auto documented = documentedNotifies();
    EXPECT_EQ(documented.size(), homeloom::tv::notifyTable().size());
    for (const auto& spec : homeloom::tv::notifyTable()) {
        ASSERT_EQ(documented.count(spec.name), 1u) << spec.name;
        EXPECT_EQ(documented.at(spec.name).when, spec.when);
        EXPECT_EQ(documented.at(spec.name).fields, Written(spec.fields)) << spec.name;
    }
    for (const auto& name : NamesBelow("// Notifies")) {
        EXPECT_NE(homeloom::tv::findNotify(name), nullptr) << name;
    }
    const auto endpoints = documentedEndpoints();
    EXPECT_EQ(endpoints.size(), homeloom::tv::endpointTable().size());
    for (const auto& spec : homeloom::tv::endpointTable()) {
        const std::vector<std::string> names{spec.serviceName, spec.interfaceType, spec.deviceType};
        ASSERT_EQ(endpoints.count(spec.entry), 1u) << spec.entry;
        EXPECT_EQ(endpoints.at(spec.entry).names, names);
        EXPECT_EQ(endpoints.at(spec.entry).fields, Written(spec.extraData, true)) << spec.entry;
    }
}

TEST(Pages, ARequestThatNeedsSomethingIsNotAnsweredWithoutIt) {
    Desk desk(homeloom::test::apartmentWith({}));
    desk.setDisclaimer(0);  // neither connected nor signed in
    desk.start();
    for (const auto& request : documentedRequests()) {
        const auto sent = framework::request(request.name, ArgumentsOf(request.example));
        desk.settle();
        EXPECT_TRUE(request.needs == "nothing" || !desk.isAnswered(sent)) << request.name;
        EXPECT_FALSE(desk.log.contains("[Normal][" + request.name + "] exception from job : bad_function_call"));
        const char* const way = request.overtakes ? "prior request for " : "normal request for ";
        EXPECT_TRUE(desk.log.contains(way + request.name)) << request.name;
    }
}

TEST(Pages, WhatIsReadAndReportedStandsThere) {
    Desk desk;
    desk.startAndShow();
    desk.settle();
    desk.mark();
    const auto requests = documentedRequests();
    std::map<framework::TransactionId, DocumentedRequest> sent;
    for (const auto& request : requests) {
        auto arguments = ArgumentsOf(request.example);
        sent[framework::request(request.name, arguments)] = request;
        if (arguments.has("device_type")) {
            arguments.set("device_type", std::string("oic.d.airconditioner"));
            sent[framework::request(request.name, arguments)] = request;
        }
        desk.settle();
        desk.elapse(std::chrono::seconds(5));  // what devices do after a while
        desk.settle();
    }
    for (const char* lifecycle : {"CREATE", "UPDATE", "DELETE"}) {
        for (const int kind : {0x100, 0x800, 0x1000, 0x8000, 0x40000}) {
            desk.agent.sendEvent(kind, R"({"locationId":"home","sceneId":"movie-time","ruleId":"night-watch",)"
                                       R"("name":"HomeLoomEnergy","installedAppId":"installed-energy","lifecycle":")" +
                                           std::string(lifecycle) + "\"}");
        }
    }
    desk.agent.set("hub-contact", "/capability/contactSensor/main/0", "contact", "open");
    desk.settle();

    for (const auto& request : requests) {
        EXPECT_THAT(readFields[request.name], UnorderedElementsAreArray(request.arguments)) << request.name;
    }

    std::set<std::string> answered;
    for (const auto& report : framework::reports()) {
        const auto request = sent.find(report->transaction);
        std::vector<FieldSpec> fields;
        if (request != sent.end()) {
            const bool isResult = report->kind == framework::Report::Kind::Result;
            EXPECT_EQ(request->second.answer, (isResult ? "result " : "notify ") + report->name);
            fields = homeloom::tv::findRequest(request->second.name)->answerFields;
            answered.insert(request->second.name);
        } else if (report->kind == framework::Report::Kind::Notify) {
            const auto* const spec = homeloom::tv::findNotify(report->name);
            ASSERT_NE(spec, nullptr) << report->name;
            fields = spec->fields;
        }
        for (const auto& [key, value] : report->properties) {
            EXPECT_TRUE(HasField(fields, key, value)) << report->name << " " << key;
        }
        for (const auto& endpoint : report->endpoints) {
            const auto& table = homeloom::tv::endpointTable();
            const auto spec = std::find_if(table.begin(), table.end(), [&](const auto& each) {
                return each.serviceName == endpoint.serviceName &&
                       each.interfaceType == endpoint.interfaceType.value_or("") &&
                       each.deviceType == endpoint.deviceType;
            });
            ASSERT_NE(spec, table.end()) << endpoint.deviceId.value_or("");
            for (const auto& [key, value] : endpoint.extraData) {
                EXPECT_TRUE(HasField(spec->extraData, key, value)) << spec->entry << " " << key;
            }
        }
    }
    // The examples fit the apartment. A talk waits for the camera's word, pictures and streams for the cloud, which
    // isn't there.
    const std::set<std::string> waiting{"execute_command", "hl_get_none_avp_camera_url", "hl_get_ring_doorbell_url",
                                        "hl_get_refrigerator_innerview_url"};
    for (const auto& request : requests) {
        EXPECT_TRUE(request.answer.empty() || answered.count(request.name) + waiting.count(request.name) > 0)
            << request.name;
    }
}
