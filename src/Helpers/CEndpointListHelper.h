#ifndef HOMELOOM_HELPERS_CENDPOINTLISTHELPER_H
#define HOMELOOM_HELPERS_CENDPOINTLISTHELPER_H

#include <memory>
#include <string>
#include <type_traits>

#include <VMFramework/CNoncopyable.h>
#include <vmf_endpoint.h>

namespace VMFramework::HomeLoom {

/// An endpoint that no list owns yet.
struct EndpointDestroyer {
    void operator()(vmf_endpoint_h endpoint) const { vmf_endpoint_destroy(endpoint); }
};
using UnlistedEndpoint = std::unique_ptr<std::remove_pointer_t<vmf_endpoint_h>, EndpointDestroyer>;

/// A list of endpoints. Owns its framework list, and through it the endpoints pushed on it.
/// Used by one thread at a time.
class IEndpointListHelper : public VMFramework::CNoncopyable {
public:
    /// An empty list. Throws std::invalid_argument if the framework gives none.
    static std::shared_ptr<IEndpointListHelper> Create();

    virtual ~IEndpointListHelper() = default;

    virtual vmf_endpoint_list_h GetHandle() = 0;
    /// Appends an endpoint that was made with result 'error'. Takes it over: one that can't be appended is destroyed.
    virtual void Push(vmf_endpoint_h endpoint, vmf_error_e error) = 0;
    virtual void Pop(void** endpoint, vmf_error_e* error) = 0;
    virtual vmf_endpoint_h Find(const std::string& deviceId) = 0;
    virtual void* GetFirst() const = 0;
    virtual void* GetNext(void* cursor) const = 0;
    virtual bool Empty() const = 0;
    /// Pushes less pops, as this helper counted them.
    virtual int GetCount() const = 0;
    virtual int GetCount(const std::string& deviceType) const = 0;
};

class CEndpointListHelper : public IEndpointListHelper {
public:
    /// Takes over a framework list that is not null.
    explicit CEndpointListHelper(vmf_endpoint_list_h list) noexcept : _list(list) {}
    ~CEndpointListHelper() override { vmf_endpoint_list_destroy(_list); }

    vmf_endpoint_list_h GetHandle() override { return _list; }
    void Push(vmf_endpoint_h endpoint, vmf_error_e error) override;
    void Pop(void** endpoint, vmf_error_e* error) override;
    vmf_endpoint_h Find(const std::string& deviceId) override;
    void* GetFirst() const override { return vmf_endpoint_list_get_first(_list); }
    void* GetNext(void* cursor) const override { return vmf_endpoint_list_get_next(_list, cursor); }
    bool Empty() const override { return vmf_endpoint_list_empty(_list); }
    int GetCount() const override { return _count; }
    int GetCount(const std::string& deviceType) const override;

private:
    const vmf_endpoint_list_h _list;
    int _count = 0;
};

}  // namespace VMFramework::HomeLoom

#endif
