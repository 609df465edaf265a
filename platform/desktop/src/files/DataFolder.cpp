#include "desktop/DataFolder.h"

#include <app_data_folder.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <system_error>

namespace homeloom::desktop {

namespace {

class Folder {
public:
    Folder() : _owner(getpid()) {
        std::string name = (std::filesystem::temp_directory_path() / "homeloom-data-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no folder can be made at " + name);
        }
        _path = name;
    }
    ~Folder() {
        // A forked child leaves its parent's files alone.
        if (getpid() == _owner) {
            std::error_code ignored;
            std::filesystem::remove_all(_path, ignored);
        }
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const std::filesystem::path& path() const { return _path; }

private:
    const pid_t _owner;
    std::filesystem::path _path;
};

}  // namespace

const std::filesystem::path& dataFolder() {
    static const Folder folder;
    return folder.path();
}

}  // namespace homeloom::desktop

const char* app_data_folder_elsewhere() {
    try {
        return homeloom::desktop::dataFolder().c_str();
    } catch (const std::exception&) {
        // Nothing is there, so that nothing is read or written.
        return "/nonexistent";
    }
}
