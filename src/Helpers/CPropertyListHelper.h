#ifndef HOMELOOM_HELPERS_CPROPERTYLISTHELPER_H
#define HOMELOOM_HELPERS_CPROPERTYLISTHELPER_H

#include <memory>
#include <string>

#include <VMFramework/CNoncopyable.h>
#include <vmf_property.h>

namespace VMFramework::HomeLoom {

/// A named list of typed properties: the form of every request, result and notify.
/// Owns its framework list. Used by one thread at a time.
class IPropertyListHelper : public VMFramework::CNoncopyable {
public:
    /// A new, empty list. Throws std::invalid_argument if the framework gives none.
    static std::shared_ptr<IPropertyListHelper> Create();
    /// A copy of a list that is the framework's, which may go away afterwards. Throws as above.
    static std::shared_ptr<IPropertyListHelper> Create(vmf_property_list_h list);

    virtual ~IPropertyListHelper() = default;

    virtual vmf_property_list_h GetHandle() = 0;
    virtual void SetName(const std::string& name) = 0;
    virtual std::string GetName() const = 0;

    /// Appends a property that was made with result 'error'. The list owns it.
    virtual void Push(vmf_property_h property, vmf_error_e error) = 0;
    /// Does nothing when key or value is empty: to the receiver an absent key means empty.
    virtual void PushStringData(const std::string& key, const std::string& value) = 0;
    virtual void PushIntData(const std::string& key, int value) = 0;
    virtual void PushBooleanData(const std::string& key, bool value) = 0;
    virtual void Pop(void** property, vmf_error_e* error) = 0;

    /// The first property of that key, owned by the list; null if there is none.
    virtual vmf_property_h Find(const std::string& key) = 0;
    virtual void* GetFirst() const = 0;
    virtual void* GetNext(void* cursor) const = 0;
    virtual bool Empty() const = 0;

    /// Values by key. A missing key or one of another type gives "", 0 and false; nothing throws.
    virtual std::string GetString(const std::string& key) = 0;
    virtual int GetInt(const std::string& key) = 0;
    virtual bool GetBool(const std::string& key) = 0;

    /// The same for keys and names that are literals, as nearly all are: no text is made of them.
    virtual void SetName(const char* name) = 0;
    virtual void PushStringData(const char* key, const std::string& value) = 0;
    virtual void PushIntData(const char* key, int value) = 0;
    virtual void PushBooleanData(const char* key, bool value) = 0;
};

class CPropertyListHelper : public IPropertyListHelper {
public:
    /// Takes over a framework list that is not null.
    explicit CPropertyListHelper(vmf_property_list_h list) noexcept;
    ~CPropertyListHelper() override;

    vmf_property_list_h GetHandle() override;
    void SetName(const std::string& name) override;
    std::string GetName() const override;
    void Push(vmf_property_h property, vmf_error_e error) override;
    void PushStringData(const std::string& key, const std::string& value) override;
    void PushIntData(const std::string& key, int value) override;
    void PushBooleanData(const std::string& key, bool value) override;
    void Pop(void** property, vmf_error_e* error) override;
    vmf_property_h Find(const std::string& key) override;
    void* GetFirst() const override;
    void* GetNext(void* cursor) const override;
    bool Empty() const override;
    std::string GetString(const std::string& key) override;
    int GetInt(const std::string& key) override;
    bool GetBool(const std::string& key) override;
    void SetName(const char* name) override;
    void PushStringData(const char* key, const std::string& value) override;
    void PushIntData(const char* key, int value) override;
    void PushBooleanData(const char* key, bool value) override;

private:
    const vmf_property_list_h _list;
};

}  // namespace VMFramework::HomeLoom

#endif
