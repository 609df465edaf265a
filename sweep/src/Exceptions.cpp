#include "Exceptions.h"

#include <fnmatch.h>

#include <algorithm>

#include <fmt/format.h>

namespace homeloom::sweep {

namespace {

constexpr char kConnecting[] =
    "a connection that the agent never tells about counts as under way, and nobody asks anew";
constexpr char kReadOnce[] = "a scan shows what the plug-in knows; it reads the home with the next connection";
constexpr char kNoStream[] = "a picture or a stream that never comes is not answered";
constexpr char kAgentAnswers[] = "the agent's answer is the answer, and nobody limits the wait for it";
constexpr char kUnheardUpdate[] = "the plug-in does not hear of the agent's update, and keeps what it had subscribed";
constexpr char kNoDisclaimer[] = "a disclaimer that can't be read is not accepted until the setting changes";
constexpr char kNoHandler[] = "without a handler of the framework there is no plug-in";

}  // namespace

const std::vector<KnownException>& knownExceptions() {
    static const std::vector<KnownException> table{
        {"*_destroy", "*=fails", Judge::Leftovers, "record of the agent", "the agent did not take its record back"},
        {"homeloom_client_disconnect", "*", Judge::Leftovers, "", "the agent did not end the connection"},
        {"homeloom_client_connect", "*=never", Judge::Healing, "", kConnecting},
        {"homeloom_client_connect", "*=never", Judge::Recovery, "", kConnecting},
        {"homeloom_client_get_remote_attributes", "*", Judge::Healing, "", kReadOnce},
        {"homeloom_client_get_ui_metadata", "*", Judge::Healing, "", kReadOnce},
        {"homeloom_client_device_detail_get_*", "*", Judge::Healing, "", kReadOnce},
        {"homeloom_client_group_get_string", "*", Judge::Healing, "", kReadOnce},
        {"homeloom_core_device_get_string", "all=*", Judge::Healing, "core_device_", kReadOnce},
        {"homeloom_core_get_device_list_async", "all=*", Judge::Healing, "core_device_", kReadOnce},
        {"homeloom_client_set_remote_attributes", "*", Judge::Answers, "hl_do_main_action was not answered",
         "the agent's confirmation is the answer, and an error that it tells later has none"},
        {"homeloom_client_set_remote_attributes", "*", Judge::Answers, "_url was not answered", kNoStream},
        {"homeloom_client_set_remote_representation", "*", Judge::Answers, "_url was not answered", kNoStream},
        {"KRCurlEasy.*", "*", Judge::Answers, "hl_get_refrigerator_innerview_url was not answered", kNoStream},
        {"homeloom_client_move_devices", "*=never", Judge::Answers, "hl_move_devices was not answered", kAgentAnswers},
        {"homeloom_client_get_third_party_notification_status", "*=never", Judge::Answers,
         "get_third_party_notification_status was not answered", kAgentAnswers},
        {"homeloom_core_get_wifilocker_user_setting", "*=never", Judge::Answers,
         "get_wifi_locker_user_setting was not answered", kAgentAnswers},
        {"cloud.file*", "*", Judge::Answers, "hl_get_refrigerator_innerview_url was not answered", kNoStream},
        {"norvane_svcmgr_set_update_status_cb", "*", Judge::Healing, "", kUnheardUpdate},
        {"norvane_svcmgr_set_update_status_cb", "*", Judge::Recovery, "", kUnheardUpdate},
        {"vconf_get_int", "*=fails", Judge::Healing, "", kNoDisclaimer},
        {"vconf_get_int", "*=fails", Judge::Recovery, "", kNoDisclaimer},
        {"vconf_get_int", "all=fails", Judge::Leftovers, "threads",
         "the agent's threads begin with the first session, which is the next plug-in's"},
        {"vmf_service_handler_create", "*", Judge::Healing, "", kNoHandler},
        {"vmf_service_handler_create", "*", Judge::Recovery, "", kNoHandler},
        {"vmf_service_handler_*", "*", Judge::Answers, "", "the framework takes no request, or no answer"},
        {"vmf_property_*", "*", Judge::Answers, "", "a request can't be read, or its answer not be written"},
        {"vmf_property_list_*", "*", Judge::Exception, "request callback",
         "the framework's side of the request callback has the catch shell"},
        {"vmf_property_list_create", "*", Judge::Exception, "IPC ",
         "what handlers of the hub control application's events throw goes to the platform's IPC"},
        {"rpc_port_parcel_send", "*", Judge::Answers, "_hub_ was not answered",
         "what can't be sent to the hub control application is not answered"},
    };
    return table;
}

bool concerns(const KnownException& exception, const Place& place) {
    const std::string text = place.text();
    const std::string fault = text.substr(text.find('#') + 1);
    return fnmatch(exception.function.c_str(), place.function.c_str(), 0) == 0 &&
           fnmatch(exception.fault.c_str(), fault.c_str(), 0) == 0;
}

bool explains(const KnownException& exception, const Place& place, const Problem& problem) {
    return concerns(exception, place) && problem.judge == exception.judge &&
           problem.text.find(exception.text) != std::string::npos;
}

bool isMeantSomewhere(const Problem& problem) {
    const auto& table = knownExceptions();
    return problem.judge == Judge::Answers &&
           std::any_of(table.begin(), table.end(), [&](const KnownException& exception) {
               return exception.judge == Judge::Answers && !exception.text.empty() &&
                      problem.text.find(exception.text) != std::string::npos;
           });
}

}  // namespace homeloom::sweep
