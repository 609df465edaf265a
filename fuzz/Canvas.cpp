// The canvas of a presentation, a state, and the status of a capability: "DOCUMENT\n----\nSTATE\n----\nSTATUS".

#include "Homeloom/Canvas/Canvas.h"

#include <VMFramework/JsonValue.h>

#include "support/Input.h"

using namespace VMFramework::HomeLoom;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto texts = fuzz::texts(data, size, 3);
    const std::string& state = texts[1];
    Canvas canvas;
    const bool isStored = canvas.CreateCanvasMap("vid", texts[0]);
    fuzz::require(canvas.IsAddedCanvasMap("vid") == isStored, "what is stored is there");
    canvas.GetStateText("vid", state);
    canvas.GetActiveState("vid", state);
    std::string component;
    std::string capability;
    std::string displayType;
    canvas.GetStatesParam("vid", component, capability);
    canvas.GetActionsParam("vid", component, capability, displayType);
    const std::string current = Canvas::GetCurrentStateValue(texts[2], capability);
    const std::string command = canvas.GetCommandValue("vid", displayType, current);
    std::string request;
    if (Canvas::MakeActionJsonValue(component, capability, command, request)) {
        fuzz::require(!VMFramework::json::JsonValue::Create(request).isNull(), "a request is JSON");
    }
    return 0;
}
