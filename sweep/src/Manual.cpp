#include "Manual.h"

#include <CLI/CLI.hpp>

#include "Arguments.h"
#include "ManPage.h"
#include "Options.h"
#include "Verdict.h"

namespace homeloom::sweep {

namespace {

void describeFaults(tv::ManPage& page) {
    page.head("FAULTS");
    page.item("fails", "", "The call does nothing and returns an error.");
    page.item("error", "", "It is accepted, and its answer is an error.");
    page.item("late", "", "It is answered behind the limit of whoever waits.");
    page.item("never", "", "It is not answered.");
    page.item("twice", "", "It is answered twice.");
    page.item("malformed", "", "Its text is cut off in the middle.");
    page.item("null", "", "It brings no text, no list.");
    page.item("miscount", "", "A list is shorter than its count tells; a web answer breaks off.");
}

void describeJudges(tv::ManPage& page) {
    page.head("JUDGES");
    page.item(nameOf(Judge::Crash), "", "The process ended by itself, or a sanitizer had something to say.");
    page.item(nameOf(Judge::Time), "", "The run did not come to its end.");
    page.item(nameOf(Judge::Exception), "", "An exception got out of the plug-in.");
    page.item(nameOf(Judge::Leftovers), "",
              "After unloading there was a record of the agent, a callback, a thread, a timer.");
    page.item(nameOf(Judge::Answers), "",
              "A request was not answered although nothing that it needs was missing, or twice, or one that has no "
              "answer was.");
    page.item(nameOf(Judge::Healing), "",
              "With the faults gone and one scan later, the home was not what a freshly loaded plug-in shows.");
    page.item(nameOf(Judge::Recovery), "", "Nor after the user had signed out and in again.");
    page.item(nameOf(Judge::Commands), "", "A command of the script failed although nothing went wrong.");
    page.paragraph(
        "Where the system is meant to come out otherwise is known, with the reason; the table marks it with *.");
}

}  // namespace

std::string manualOf(const CLI::App& app) {
    tv::ManPage page("homeloom-sweep", 1, "tries what goes wrong with the HomeLoom plug-in");
    page.head("SYNOPSIS");
    page.item("homeloom-sweep", "[OPTION]...", "");
    page.head("DESCRIPTION");
    page.paragraph(app.get_description());
    page.paragraph(
        "A script has the commands of homeloom-tv, one a line. One that ends with & is sent off, and nobody waits for "
        "what it causes. Time limits cost no time: the clock turns whenever all rest.");
    page.head("OPTIONS");
    for (const tv::OptionSpec& option : tv::optionsOf(app)) {
        page.item(option.name, option.value, tv::asSentence(option.description));
    }
    describeFaults(page);
    describeJudges(page);
    page.head("EXIT STATUS");
    page.item(std::to_string(kExitSuccess), "", "All runs came out well.");
    page.item(std::to_string(kExitFailure), "", "A run failed. The command that repeats it is printed.");
    page.item(std::to_string(kExitUsage), "",
              "The options, the script or the home cannot be used, or the script fails by itself.");
    page.head("EXAMPLES");
    page.example(
        "homeloom-sweep --script evening.script --home mine.json\n"
        "homeloom-sweep --at homeloom_core_get_scene_list_async#1=never\n"
        "homeloom-sweep --storm 17 --shrink");
    page.head("SEE ALSO");
    page.paragraph("homeloom-tv(1), homeloom-home(5)");
    return page.text();
}

}  // namespace homeloom::sweep
