#include "ManPages.h"

#include <utility>

#include <simulator/HomeSchema.h>

#include "Arguments.h"
#include "Command.h"
#include "ManPage.h"

namespace homeloom::tv {

namespace {

std::string programPage() {
    ManPage page("homeloom-tv", 1, "a desk TV: runs the HomeLoom plug-in with a simulated home behind it");
    page.head("SYNOPSIS");
    page.item("homeloom-tv", "[OPTION]...", "");
    page.head("DESCRIPTION");
    page.paragraph(
        "Loads the plug-in as a TV does, puts a simulated home, its agent and its cloud behind it, and shows what the "
        "plug-in reports. On a terminal it takes commands, with history and completion. Fed from a pipe, a script or "
        "--exec it runs the commands and ends. With --serve it lets other programs and the screen's page in by HTTP.");
    page.head("OPTIONS");
    for (const OptionSpec& option : optionTable()) {
        page.item(option.name, option.value, asSentence(option.description));
    }
    page.head("COMMANDS");
    page.paragraph(
        "Devices, rooms and locations may be called by their ids, their names, or what is enough of a name. Quotes "
        "keep "
        "blanks together.");
    bool simulates = false;
    for (const Command& command : commandTable()) {
        if (!simulates && command.name.compare(0, 4, "sim ") == 0) {
            page.subhead("The other side: agent, home, cloud");
            simulates = true;
        }
        page.item(command.name, command.usage, asSentence(command.summary));
    }
    page.head("EXIT STATUS");
    page.item(std::to_string(kExitSuccess), "", "All commands succeeded, and the plug-in left nothing behind.");
    page.item(std::to_string(kExitFailure), "", "A command failed, or the plug-in left something behind.");
    page.item(std::to_string(kExitUsage), "", "The options, the home or the plug-in cannot be used.");
    page.head("EXAMPLES");
    page.example("homeloom-tv --exec \"do washer\" --exec \"sim set washer state=Ready\"\nhomeloom-tv --serve 8480");
    page.head("SEE ALSO");
    page.paragraph("homeloom-home(5), homeloom-sweep(1)");
    return page.text();
}

std::string homePage() {
    ManPage page("homeloom-home", 5, "homes for homeloom-tv");
    page.head("DESCRIPTION");
    page.paragraph(
        "A home is one JSON document: an account, its locations and devices, scenes, routines, and what else the cloud "
        "holds. homeloom-tv begins with it by --home. Members of other names than these are mistakes; members named "
        "_comment may stand anywhere and are skipped. Editors complete and check a document by its schema, "
        "which homeloom-tv --schema home prints.");
    for (const auto& [title, members] : {std::pair{"MEMBERS OF A HOME", simulator::homeMembers()},
                                         std::pair{"MEMBERS OF A MODEL", simulator::modelMembers()}}) {
        page.head(title);
        for (const simulator::HomeMember& member : members) {
            page.item(member.place, member.kind + (member.required ? ", required" : ""),
                      member.meaning.empty() ? "" : member.meaning + ".");
        }
    }
    page.head("SEE ALSO");
    page.paragraph("homeloom-tv(1)");
    return page.text();
}

}  // namespace

std::string manPage(const std::string& name) {
    return name == "homeloom-home" ? homePage() : programPage();
}

}  // namespace homeloom::tv
