#ifndef HOMELOOM_HOMELOOM_UTILS_DATADUMPHELPER_H
#define HOMELOOM_HOMELOOM_UTILS_DATADUMPHELPER_H

#include <list>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Common/CSingleton.h"
#include "Common/Mutex.h"

typedef struct _JsonNode JsonNode;

namespace VMFramework::HomeLoom {

/// Collects values while something is looked into, as text or as a JSON object, and writes them to a file. All
/// operations may be called from any thread.
// Part of the interface; no caller in the plug-in.
class DataDumpHelper : public CSingleton<DataDumpHelper> {
    friend class CSingleton<DataDumpHelper>;

public:
    /// Each appends the value's text to the text held: items with a comma in between, "key:value" for those of a map.
    void SetInfo(const std::map<std::string, std::string>& values);
    void SetInfo(const std::vector<std::string>& values);
    void SetInfo(const std::vector<int>& values);
    void SetInfo(const std::list<std::string>& values);
    /// Any number of texts from two on.
    template <typename... Texts>
    void SetInfo(const std::string& first, const std::string& second, const Texts&... others) {
        SetInfo(std::vector<std::string>{first, second, others...});
    }
    void SetInfo(const std::string& value);
    void SetInfo(const char* value);  // or a literal would be taken for a bool
    void SetInfo(int value);
    void SetInfo(bool value);

    /// Each adds a member to the object that GenerateJsonString makes.
    void SetInfoToJson(const std::string& key, const std::map<std::string, std::string>& values);
    void SetInfoToJson(const std::string& key, const std::vector<std::string>& values);
    void SetInfoToJson(const std::string& key, const std::vector<int>& values);
    void SetInfoToJson(const std::string& key, const std::list<std::string>& values);
    void SetInfoToJson(const std::string& key, const std::string& value);
    void SetInfoToJson(const std::string& key, const char* value);
    void SetInfoToJson(const std::string& key, int value);
    void SetInfoToJson(const std::string& key, bool value);

    /// The object of the members added so far, in their order, takes the place of the text held.
    void GenerateJsonString();

    std::string GetInfo() const;
    /// Forgets text and members.
    void ClearInfo();
    /// Replaces a file of the data folder by the text held; false, and logged, on failure.
    bool FlushToFile(const std::string& path) const;

private:
    struct FreeNode {
        void operator()(JsonNode* node) const;
    };
    using Node = std::unique_ptr<JsonNode, FreeNode>;

    DataDumpHelper();
    ~DataDumpHelper() = default;

    template <typename Values>
    void addItems(const Values& values);
    void addNode(const std::string& key, Node node);
    static void doPrint(const std::string& text);

    mutable Mutex _mutex;  // a leaf
    std::string _info GUARDED_BY(_mutex);
    std::vector<std::pair<std::string, Node>> _nodes GUARDED_BY(_mutex);  // by member name
};

}  // namespace VMFramework::HomeLoom

#endif
