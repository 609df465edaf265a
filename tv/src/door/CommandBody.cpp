#include "CommandBody.h"

#include <VMFramework/JsonValue.h>
#include <fmt/format.h>
#include <glib.h>

#include "Words.h"

namespace homeloom::tv {

namespace {

using VMFramework::json::JsonValue;

constexpr std::size_t kLongestId = 256;
constexpr int kBadRequest = 400;
constexpr int kUnsupportedType = 415;

std::string readId(const JsonValue& id) {
    if (!id.isString() && !id.isNumber()) {
        throw Refusal(kBadRequest, "\"id\" is neither a text nor a number");
    }
    std::string text = id.toString();
    if (text.size() > kLongestId) {
        throw Refusal(kBadRequest, fmt::format("\"id\" is longer than {} bytes", kLongestId));
    }
    return text;
}

CommandBody readObject(const JsonValue& object) {
    CommandBody body;
    bool hasCommand = false;
    for (const std::string& name : object.getMemberNames()) {
        const JsonValue value = object[name];
        if (name == "id") {
            body.id = readId(value);
        } else if (name == "command" && value.isString()) {
            body.line = value.asString();
            hasCommand = true;
        } else if (name == "command") {
            throw Refusal(kBadRequest, "\"command\" is no text");
        } else if (name != "arguments") {
            throw Refusal(kBadRequest, fmt::format("a command has no \"{}\"; it has id, command, arguments", name));
        }
    }
    if (!hasCommand) {
        throw Refusal(kBadRequest, "\"command\" is missing");
    }
    if (object.isMember("arguments")) {
        const JsonValue arguments = object["arguments"];
        if (!arguments.isArray()) {
            throw Refusal(kBadRequest, "\"arguments\" is no array of texts");
        }
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            const JsonValue argument = arguments[i];
            if (!argument.isString()) {
                throw Refusal(kBadRequest, fmt::format("\"arguments\"[{}] is no text", i));
            }
            body.line += " " + quoteWord(argument.asString());
        }
    }
    return body;
}

CommandBody readJson(std::string_view text) {
    const JsonValue json = JsonValue::Create(text);
    if (json.isString()) {
        return {"", json.asString()};
    }
    if (!json.isObject()) {
        throw Refusal(kBadRequest,
                      json.isNull() ? "the body is no JSON document" : "the body is no text and no object");
    }
    return readObject(json);
}

}  // namespace

CommandBody readCommandBody(std::string_view contentType, std::string_view body) {
    const std::string type = lowered(contentType.substr(0, contentType.find_first_of("; ")));
    if (type != "application/json" && type != "text/plain") {
        throw Refusal(kUnsupportedType, "the body's type is neither application/json nor text/plain");
    }
    if (g_utf8_validate(body.data(), static_cast<gssize>(body.size()), nullptr) == FALSE) {
        throw Refusal(kBadRequest, "the body is no UTF-8 text");
    }
    CommandBody command = type == "text/plain" ? CommandBody{"", std::string(body)} : readJson(body);
    if (command.line.find('\0') != std::string::npos) {
        throw Refusal(kBadRequest, "the command holds a zero byte");
    }
    constexpr char kBlanks[] = " \t\r\n";
    const std::size_t start = command.line.find_first_not_of(kBlanks);
    if (start == std::string::npos) {
        throw Refusal(kBadRequest, "the command is empty");
    }
    command.line = command.line.substr(start, command.line.find_last_not_of(kBlanks) + 1 - start);
    if (type == "text/plain" && command.line.find('\n') != std::string::npos) {
        throw Refusal(kBadRequest, "the body has more than one line");
    }
    return command;
}

}  // namespace homeloom::tv
