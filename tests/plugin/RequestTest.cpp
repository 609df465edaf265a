// Requests whose arguments are none of those that they take.

#include <string>
#include <variant>

#include <gmock/gmock.h>

#include "RequestTable.h"
#include "Words.h"
#include "desktop/Framework.h"
#include "support/Desk.h"
#include "support/Screen.h"

namespace framework = homeloom::desktop::framework;
namespace tv = homeloom::tv;

TEST(Request, WithWrongArgumentsHarmsNothing) {
    using Value = homeloom::desktop::Value;
    Desk desk;
    desk.startAndShow();
    desk.waitForState("washer", "Ready");
    desk.settle();
    const std::string huge(100000, 'x');
    for (const tv::RequestSpec& spec : tv::requestTable()) {
        Desk::Fields wrongTypes;
        Desk::Fields longTexts;
        for (const auto& field : tv::typedArguments(spec, tv::splitWords(spec.example))) {
            const bool isText = std::holds_alternative<std::string>(field.value);
            wrongTypes.add(field.key, isText ? Value(1) : Value(huge));
            longTexts.add(field.key, isText ? Value(huge) : field.value);
        }
        for (const auto& arguments : {Desk::Fields{}, wrongTypes, longTexts}) {
            framework::request(spec.name, arguments);
        }
    }
    desk.settle();
    EXPECT_EQ(toText(*desk.ask("hl_do_main_action", {{"device_id", "washer"}})),
              "result hl_do_main_action result=true device_id='washer'");
    desk.waitForState("washer", "Washing · 42 min left");
}
