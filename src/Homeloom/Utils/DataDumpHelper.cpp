// Writes collected values as text or JSON.
#include "Homeloom/Utils/DataDumpHelper.h"

#include <dlfcn.h>
#include <glib.h>
#include <json-glib/json-glib.h>

#include "Common/HLLog.h"
#include "Homeloom/Utils/CFileUtil.h"

namespace VMFramework::HomeLoom {

namespace {

using Text = std::unique_ptr<char, decltype(&g_free)>;

template <typename Object>
using ObjectOwner = std::unique_ptr<Object, decltype(&g_object_unref)>;

/// Has the JSON library stay in the process from now on.
///
/// It registers its types with GObject, which stays and never forgets a type; but it may be unloaded itself, together
/// with the plug-in if nothing else uses it. The types would then lead into memory that is gone, and the plug-in,
/// loaded again, could not register them a second time.
void KeepJsonLibrary() {
    Dl_info where{};
    void* library = nullptr;
    if (dladdr(reinterpret_cast<void*>(&json_builder_new), &where) != 0) {
        library = dlopen(where.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
    }
    if (library == nullptr) {
        HL_LOGE("the JSON library can't be kept");
        return;
    }
    dlclose(library);
}

/// What JSON can hold: the library takes valid UTF-8 only.
Text ValidText(const std::string& text) {
    return {g_utf8_make_valid(text.c_str(), -1), &g_free};
}

JsonNode* MakeNode(const std::string& value) {
    return json_node_init_string(json_node_alloc(), ValidText(value).get());
}

JsonNode* MakeNode(int value) {
    return json_node_init_int(json_node_alloc(), value);
}

JsonNode* MakeNode(bool value) {
    return json_node_init_boolean(json_node_alloc(), value ? TRUE : FALSE);
}

template <typename Values>
JsonNode* MakeNode(const Values& values) {
    JsonArray* array = json_array_new();
    for (const auto& value : values) {
        json_array_add_element(array, MakeNode(value));
    }
    JsonNode* node = json_node_init_array(json_node_alloc(), array);
    json_array_unref(array);
    return node;
}

JsonNode* MakeNode(const std::map<std::string, std::string>& values) {
    JsonObject* object = json_object_new();
    for (const auto& [key, value] : values) {
        json_object_set_member(object, ValidText(key).get(), MakeNode(value));
    }
    JsonNode* node = json_node_init_object(json_node_alloc(), object);
    json_object_unref(object);
    return node;
}

std::string TextOf(const std::string& value) {
    return value;
}

std::string TextOf(int value) {
    return std::to_string(value);
}

std::string TextOf(bool value) {
    return value ? "true" : "false";
}

std::string TextOf(const std::pair<const std::string, std::string>& value) {
    return value.first + ":" + value.second;
}

}  // namespace

DataDumpHelper::DataDumpHelper() {
    KeepJsonLibrary();
}

void DataDumpHelper::FreeNode::operator()(JsonNode* node) const {
    json_node_unref(node);
}

void DataDumpHelper::doPrint(const std::string& text) {
    HL_LOGI("d[%s]", text.c_str());
}

// ---- Text ----

template <typename Values>
void DataDumpHelper::addItems(const Values& values) {
    std::string text;
    const char* separator = "";
    for (const auto& value : values) {
        const std::string item = TextOf(value);
        doPrint(item);
        text += separator + item;
        separator = ",";
    }
    const MutexLock lock(_mutex);
    _info += text;
}

void DataDumpHelper::SetInfo(const std::map<std::string, std::string>& values) {
    addItems(values);
}

void DataDumpHelper::SetInfo(const std::vector<std::string>& values) {
    addItems(values);
}

void DataDumpHelper::SetInfo(const std::vector<int>& values) {
    addItems(values);
}

void DataDumpHelper::SetInfo(const std::list<std::string>& values) {
    addItems(values);
}

void DataDumpHelper::SetInfo(const std::string& value) {
    addItems(std::list<std::string>{value});
}

void DataDumpHelper::SetInfo(const char* value) {
    SetInfo(std::string(value != nullptr ? value : ""));
}

void DataDumpHelper::SetInfo(int value) {
    SetInfo(TextOf(value));
}

void DataDumpHelper::SetInfo(bool value) {
    SetInfo(TextOf(value));
}

std::string DataDumpHelper::GetInfo() const {
    const MutexLock lock(_mutex);
    return _info;
}

void DataDumpHelper::ClearInfo() {
    const MutexLock lock(_mutex);
    _info.clear();
    _nodes.clear();
}

bool DataDumpHelper::FlushToFile(const std::string& path) const {
    return CFileUtil::Write(path, GetInfo(), true);
}

// ---- JSON ----

void DataDumpHelper::addNode(const std::string& key, Node node) {
    const MutexLock lock(_mutex);
    _nodes.emplace_back(key, std::move(node));
}

void DataDumpHelper::SetInfoToJson(const std::string& key, const std::map<std::string, std::string>& values) {
    addNode(key, Node(MakeNode(values)));
}

void DataDumpHelper::SetInfoToJson(const std::string& key, const std::vector<std::string>& values) {
    addNode(key, Node(MakeNode(values)));
}

void DataDumpHelper::SetInfoToJson(const std::string& key, const std::vector<int>& values) {
    addNode(key, Node(MakeNode(values)));
}

void DataDumpHelper::SetInfoToJson(const std::string& key, const std::list<std::string>& values) {
    addNode(key, Node(MakeNode(values)));
}

void DataDumpHelper::SetInfoToJson(const std::string& key, const std::string& value) {
    addNode(key, Node(MakeNode(value)));
}

void DataDumpHelper::SetInfoToJson(const std::string& key, const char* value) {
    SetInfoToJson(key, std::string(value != nullptr ? value : ""));
}

void DataDumpHelper::SetInfoToJson(const std::string& key, int value) {
    addNode(key, Node(MakeNode(value)));
}

void DataDumpHelper::SetInfoToJson(const std::string& key, bool value) {
    addNode(key, Node(MakeNode(value)));
}

void DataDumpHelper::GenerateJsonString() {
    const ObjectOwner<JsonBuilder> builder(json_builder_new(), &g_object_unref);
    const MutexLock lock(_mutex);
    json_builder_begin_object(builder.get());
    for (const auto& [key, node] : _nodes) {
        json_builder_set_member_name(builder.get(), ValidText(key).get());
        // The builder keeps what it is given; ours serve the next time, too.
        json_builder_add_value(builder.get(), json_node_copy(node.get()));
    }
    json_builder_end_object(builder.get());

    JsonNode* root = json_builder_get_root(builder.get());
    const ObjectOwner<JsonGenerator> generator(json_generator_new(), &g_object_unref);
    json_generator_set_root(generator.get(), root);
    const Text text(json_generator_to_data(generator.get(), nullptr), &g_free);
    json_node_unref(root);
    _info = text.get();
}

}  // namespace VMFramework::HomeLoom
