#ifndef HOMELOOM_HOMELOOM_UTILS_CFILEUTIL_H
#define HOMELOOM_HOMELOOM_UTILS_CFILEUTIL_H

#include <string>

namespace VMFramework::HomeLoom {

/// Text files in the application's data folder. Operations answer false on failure and throw nothing; all may be
/// called from any thread.
class CFileUtil {
public:
    CFileUtil() = delete;

    /// Without a slash at its end.
    static std::string GetDataFolder();
    static bool IsExistent(const std::string& path);
    /// The default file's path if that file exists, and the folder otherwise.
    static std::string _GetPath();

    /// Removes the default file.
    static bool Delete();

    /// Replaces the content of a file of the data folder; 'name' is its name, or its full path. With 'flag' false only
    /// of a file that exists. Writes through no symbolic link.
    static bool Write(const std::string& name, const std::string& text, bool flag);
    /// The same with the default file.
    static bool Write(const std::string& text, bool flag);

    /// The whole content. 'text' stays as it is on failure.
    static bool Read(const std::string& path, std::string& text);
    /// The same with the default file.
    static bool Read(std::string& text);
};

}  // namespace VMFramework::HomeLoom

#endif
