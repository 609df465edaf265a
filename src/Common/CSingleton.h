#ifndef HOMELOOM_COMMON_CSINGLETON_H
#define HOMELOOM_COMMON_CSINGLETON_H

namespace VMFramework::HomeLoom {

/// Base of singletons: built on first use, destroyed when the library is unloaded.
/// T befriends CSingleton<T> or has an accessible default constructor.
template <typename T>
class CSingleton {
public:
    static T& GetInstance() {
        static T instance;
        return instance;
    }

    CSingleton(const CSingleton&) = delete;
    CSingleton& operator=(const CSingleton&) = delete;

protected:
    CSingleton() = default;
    ~CSingleton() = default;
};

}  // namespace VMFramework::HomeLoom

#endif
