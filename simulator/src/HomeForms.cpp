#include "HomeForms.h"

#include <utility>

#include "HomeNames.h"
#include "simulator/HomeSchema.h"

namespace simulator {

namespace {

using Kind = Form::Kind;

Form plain(Kind kind, const char* meaning) {
    Form form;
    form.kind = kind;
    form.meaning = meaning;
    return form;
}

Form any(const char* meaning = "") {
    return plain(Kind::Any, meaning);
}
Form text(const char* meaning = "") {
    return plain(Kind::Text, meaning);
}
Form id(const char* meaning = "") {
    return plain(Kind::Id, meaning);
}
Form number(const char* meaning = "") {
    return plain(Kind::Number, meaning);
}
Form flag(const char* meaning = "") {
    return plain(Kind::Flag, meaning);
}

Form status(const char* meaning) {
    Form form = plain(Kind::Word, meaning);
    for (const auto& [name, number] : kStatusNames) {
        form.words.emplace_back(name);
    }
    return form;
}

Form object(const char* meaning, std::vector<FormMember> members) {
    Form form = plain(Kind::Object, meaning);
    form.members = std::move(members);
    return form;
}

Form map(const char* meaning, Form element) {
    Form form = plain(Kind::Map, meaning);
    form.element.push_back(std::move(element));
    return form;
}

Form list(const char* meaning, Form element) {
    Form form = plain(Kind::List, meaning);
    form.element.push_back(std::move(element));
    return form;
}

FormMember must(const char* name, Form form) {
    return {name, true, std::move(form)};
}
FormMember may(const char* name, Form form) {
    return {name, false, std::move(form)};
}

FormMember schemaMember() {
    return may("$schema", text("Where an editor finds the JSON Schema of the document"));
}

Form core() {
    return object("The core record of a device",
                  {may("type", text("The type that the core record tells")),
                   may("presentation", text("What its canvas document is found by; the vid if not given")),
                   may("manufacturer", text()), may("details", any("As the cloud answers it")),
                   may("icons", any("As the cloud answers it")), may("possible_icons", any("As the cloud answers it")),
                   may("badge_icons", any("As the cloud answers it"))});
}

/// {"/uri": {"property": value}}, the values being checked against the properties' types.
Form values(const char* meaning) {
    return map(meaning, map("", any()));
}

Form modelResources(const char* meaning) {
    Form property =
        object("A value, or its type and value where the type can't be seen from the value",
               {must("type", text("As the agent calls it: Object, Double, StringArray, ...")), must("value", any())});
    property.instead = Form::Instead::AnyButObject;
    return map(meaning, map("", std::move(property)));
}

Form makeModel() {
    const Form reaction = object(
        "What else happens in the device when a property is set",
        {must("when", values("One property and its value; null stands for any value")),
         may("set", values("What changes then")), may("after_ms", number("How much later; at once if not given")),
         may("status", status("The device's new status"))});
    const Form confirmation = object("How a device takes a value that the TV wants",
                                     {must("when", values("One property and its value; null stands for any value")),
                                      may("refuses", flag("Whether it refuses the value")),
                                      may("after_ms", number("How much later the value changes; at once if not given")),
                                      may("set", values("What changes in place of what was wanted"))});
    const Form command =
        object("What a capability's command sets",
               {may("component", text("main if not given")), must("capability", text()), must("command", text()),
                may("set", values("What changes then; the value \"$0\" stands for the command's first argument"))});
    return object("A device model",
                  {schemaMember(), must("vid", text("The id that devices and their metadata find it by")),
                   may("types", list("The types of its devices, such as oic.d.washer", text())),
                   may("name", text("The name of devices that have none of their own")), may("core", core()),
                   may("ui_metadata", any("The document as the cloud publishes it; without it no state is shown")),
                   may("canvas", any("The document as the cloud publishes it")),
                   may("resources", modelResources("What a device has and starts with, by URI and property")),
                   may("osv_resources", modelResources("Likewise, read in the manner of hub-connected devices")),
                   may("reactions", list("", reaction)), may("commands", list("", command)),
                   may("confirms", list("", confirmation))});
}

Form location() {
    return object("", {must("id", id()), must("name", text()), may("permission", text("What the user may do there")),
                       may("owner", object("The account's own if not given", {may("id", text()), may("name", text())})),
                       may("rooms", list("", object("", {must("id", id()), must("name", text())}))),
                       may("favorites_migrated", object("When the favorites of an older TV were taken over",
                                                        {may("date", text()), may("model", text())}))});
}

Form device() {
    return object(
        "", {must("id", id()), must("vid", text("Its model")), must("location", text("The location's id")),
             may("room", text("The room's id")), may("name", text("The model's if not given")),
             may("nick", text("The name that the user gave")), may("prefix", text()),
             may("types", list("The model's if not given", text())), may("status", status("connected if not given")),
             may("resources", values("What is other than in its model, by URI and property")),
             may("osv_resources", values("Likewise")), may("core", core()), may("energy_this_month", number("In Wh")),
             may("stream", text("The address that the audio-video service gives for a camera")),
             may("images", list("Ids of the files with pictures of its inside", text()))});
}

Form scene() {
    const Form action = object("", {must("device", text("The device's id")), may("set", values("What changes in it"))});
    return object(
        "", {must("id", id()), must("location", text("The location's id")),
             must("document", any("As the cloud holds it")), may("actions", list("What running it does", action))});
}

Form routine() {
    return object("", {must("id", id()), must("location", text("The location's id")),
                       may("enabled", flag("true if not given")), must("document", any("As the cloud holds it"))});
}

Form favorite() {
    return object("", {must("id", id()), must("location", text("The location's id")),
                       must("member", text("The id of a device, scene or routine")),
                       may("member_type", text("DEVICE if not given")), may("created", text()), may("updated", text()),
                       may("order", number())});
}

Form installedApp() {
    return object("", {must("id", id()), must("name", text()), may("status", text("AUTHORIZED if not given")),
                       must("app", text("The app's id in the catalog")), must("location", text("The location's id")),
                       may("ui", any()), may("dashboard", any())});
}

Form makeHome() {
    Form model = modelForm();
    model.meaning = "The name of a model file, beside the document, or a model in place";
    model.instead = Form::Instead::Text;
    return object(
        "A home",
        {schemaMember(), may("now", text("The date that new records carry")),
         must("account",
              object("Who is signed in", {must("login_id", text()), must("user_id", text()),
                                          must("access_token", text()), may("tv", text("The cloud's id of this TV"))})),
         may("locations", list("", location())), may("models", list("", std::move(model))),
         may("presentations", map("Canvas documents by presentation id, beyond those that models bring", any())),
         may("devices", list("", device())),
         may("hub", object("This TV as a hub", {may("device", text("The id of its device")),
                                                may("serves", list("The ids of the devices behind it", text()))})),
         may("scenes", list("", scene())), may("routines", list("", routine())), may("favorites", list("", favorite())),
         may("installed_apps", list("Services of the home", installedApp())),
         may("catalog", any("What the cloud answers, as it stands")),
         may("scene_icons", any("What the cloud answers, as it stands")),
         may("wifi_locker", any("What the cloud answers, as it stands")),
         may("key_values", map("Small texts that the platform keeps for the user", text())),
         may("notification_profile",
             object("Where push notifications go",
                    {may("provider", text()), may("registration", text()), may("app", text()), may("locale", text())})),
         may("third_party_notification", flag("Whether there are any; true if not given")),
         may("blocked_devices", list("The ids of devices that nobody wants to be notified of", text()))});
}

/// What the plug-in reads as a text: also a number, true or false.
Form scalar() {
    return plain(Kind::Scalar, "");
}

Form oneOf(std::vector<std::string> words) {
    Form form = plain(Kind::Word, "");
    form.words = std::move(words);
    return form;
}

Form metadataIcon() {
    return object("", {must("mid", scalar())});
}

Form metadataLink() {
    return object("", {must("href", scalar()), may("if", scalar()), may("rt", scalar())});
}

Form metadataAlternatives() {
    return list("", object("", {must("key", scalar()), may("value", scalar()), may("type", scalar())}));
}

Form metadataRule() {
    return object("", {must("href", scalar()), must("property", scalar()),
                       must("operator", oneOf({"=", "!=", ">=", "startWith", "endWith", "contain", "notContain"})),
                       must("operand", scalar()), may("type", scalar())});
}

Form metadataState() {
    const Form argument = object("", {must("n", scalar()), must("href", scalar()), must("property", scalar()),
                                      may("alternatives", metadataAlternatives())});
    return object("", {may("name", scalar()), may("order", number()), may("emphasis", flag()), may("group", scalar()),
                       may("type", scalar()), may("iconUrl", metadataIcon()),
                       may("label", object("", {must("label", scalar()), may("arguments", list("", argument))})),
                       may("visible", metadataRule())});
}

Form metadataAction() {
    return object("", {may("order", number()), may("controlType", scalar()), must("link", metadataLink()),
                       must("property", scalar()), may("alternatives", metadataAlternatives()), may("group", scalar()),
                       may("iconUrl", metadataIcon()), may("visible", metadataRule())});
}

Form metadataResource() {
    return object(
        "", {may("controllable", flag()), may("order", number()), must("link", metadataLink()),
             must("property", scalar()), may("controlType", scalar()), may("alternatives", metadataAlternatives()),
             may("range", list("", number())), may("label", object("", {must("label", scalar())})),
             may("emphasis", flag()), may("ruleEvent", flag()), may("ruleAction", flag())});
}

Form makeUiMetadata() {
    const Form codes = list("", object("", {must("po", scalar()), must("label", scalar())}));
    return object(
        "",
        {must("message", oneOf({"SUCCESS"})),
         must("data", object("", {may("version", scalar()), may("vid", scalar()), may("iconUrl", metadataIcon()),
                                  may("ms", list("", metadataState())), may("ma", list("", metadataAction())),
                                  may("dpResources", list("", metadataResource())),
                                  may("dpInfo", list("", object("", {may("os", scalar()), may("dpUri", scalar()),
                                                                     may("serverDpUri", scalar())}))),
                                  may("language",
                                      list("", object("", {must("locale", scalar()), must("poCodes", codes)})))}))});
}

const char* nameOf(Kind kind) {
    switch (kind) {
        case Kind::Text:
            return "text";
        case Kind::Id:
            return "id";
        case Kind::Number:
            return "whole number";
        case Kind::Flag:
            return "true or false";
        case Kind::Word:
            return "word";
        case Kind::Object:
            return "object";
        case Kind::Map:
            return "object by name";
        case Kind::List:
            return "list";
        case Kind::Scalar:
        case Kind::Any:
            break;
    }
    return "anything";
}

void addMembers(const Form& form, const std::string& place, std::vector<HomeMember>& all) {
    if (!form.element.empty()) {
        addMembers(form.element.front(), place + (form.kind == Kind::List ? "[]" : ".NAME"), all);
        return;
    }
    for (const FormMember& member : form.members) {
        const std::string there = place.empty() ? member.name : place + "." + member.name;
        std::string kind = nameOf(member.form.kind);
        for (const std::string& word : member.form.words) {
            kind += (&word == &member.form.words.front() ? ": " : ", ") + word;
        }
        all.push_back({there, kind, member.required, member.form.meaning});
        if (there != "models") {
            addMembers(member.form, there, all);
        }
    }
}

std::vector<HomeMember> membersOf(const Form& form) {
    std::vector<HomeMember> all;
    addMembers(form, "", all);
    return all;
}

}  // namespace

const Form& uiMetadataForm() {
    static const Form form = makeUiMetadata();
    return form;
}

const Form& modelForm() {
    static const Form form = makeModel();
    return form;
}

const Form& homeForm() {
    static const Form form = makeHome();
    return form;
}

std::string homeSchema() {
    return toText(schemaOf(homeForm()));
}

std::string uiMetadataSchema() {
    return toText(schemaOf(uiMetadataForm()));
}

std::string modelSchema() {
    return toText(schemaOf(modelForm()));
}

std::vector<HomeMember> homeMembers() {
    return membersOf(homeForm());
}

std::vector<HomeMember> modelMembers() {
    return membersOf(modelForm());
}

}  // namespace simulator
