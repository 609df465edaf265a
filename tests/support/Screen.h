#ifndef HOMELOOM_TESTS_SUPPORT_SCREEN_H
#define HOMELOOM_TESTS_SUPPORT_SCREEN_H

#include <map>
#include <string>

#include "desktop/Framework.h"

/// What a home screen shows that goes by the plug-in's reports: the last list, brought up to date by the notifications
/// that followed.
class Screen {
public:
    void take(const homeloom::desktop::framework::Report& report);

    /// The load status; -1 before there is one.
    int status = -1;
    int lists = 0;
    /// What the last sign-in notification said.
    bool isSignedIn = false;
    int signInNotices = 0;
    /// By device id, of all endpoints: locations, rooms, scenes and routines as well.
    std::map<std::string, homeloom::desktop::Fields> endpoints;

    bool has(const std::string& id) const { return endpoints.count(id) != 0; }
    /// The endpoint's text under that key; empty when it isn't there.
    std::string text(const std::string& id, const std::string& key) const;
    std::string stateText(const std::string& id) const { return text(id, "state_text"); }
    int number(const std::string& id, const std::string& key) const;
};

/// One report as a line: "notify hl_delete_device result=true device_id='washer'".
std::string toText(const homeloom::desktop::framework::Report& report);
/// "result=true device_id='washer' devices_size=2"
std::string toText(const homeloom::desktop::Fields& fields);

#endif
