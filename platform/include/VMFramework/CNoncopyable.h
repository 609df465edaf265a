#ifndef HOMELOOM_PLATFORM_VMFRAMEWORK_CNONCOPYABLE_H
#define HOMELOOM_PLATFORM_VMFRAMEWORK_CNONCOPYABLE_H

namespace VMFramework {

/// Base of classes that are neither copied nor moved.
class CNoncopyable {
public:
    CNoncopyable(const CNoncopyable&) = delete;
    CNoncopyable& operator=(const CNoncopyable&) = delete;

protected:
    CNoncopyable() = default;
    ~CNoncopyable() = default;
};

}  // namespace VMFramework

#endif
