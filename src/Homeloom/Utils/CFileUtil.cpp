// Reads and writes text files under the application's data folder.
#include "Homeloom/Utils/CFileUtil.h"

#include <app_data_folder.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <utility>

#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr char kDataFolder[] = "/home/owner/apps_rw/com.norvane.tv.velmora-app/shared/data";
constexpr char kDefaultFile[] = "caching.dat";

constexpr mode_t kFileMode = 0644;
constexpr std::size_t kBlockSize = 16384;

/// A regular file, open; closed at the end. What is none (a folder, a pipe that nobody feeds) counts as not opened.
class OpenFile {
public:
    OpenFile(const std::string& path, int flags)
        : _descriptor(open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK, kFileMode)) {}
    ~OpenFile() {
        if (_descriptor >= 0) {
            close(_descriptor);
        }
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    bool isOpen() const {
        struct stat status {};
        return _descriptor >= 0 && fstat(_descriptor, &status) == 0 && S_ISREG(status.st_mode);
    }

    bool replace(const std::string& text) {
        if (ftruncate(_descriptor, 0) != 0) {
            return false;
        }
        std::size_t done = 0;
        while (done < text.size()) {
            const ssize_t count = write(_descriptor, text.data() + done, text.size() - done);
            if (count < 0 && errno != EINTR) {
                return false;
            }
            done += count > 0 ? static_cast<std::size_t>(count) : 0;
        }
        return true;
    }

    bool readAll(std::string& text) {
        char block[kBlockSize];
        while (true) {
            const ssize_t count = read(_descriptor, block, sizeof block);
            if (count == 0) {
                return true;
            }
            if (count < 0 && errno != EINTR) {
                return false;
            }
            text.append(block, count > 0 ? static_cast<std::size_t>(count) : 0);
        }
    }

private:
    const int _descriptor;
};

bool IsSymbolicLink(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

std::string DefaultPath() {
    return CFileUtil::GetDataFolder() + "/" + kDefaultFile;
}

/// The path of a file of the data folder, and empty for a name that leads elsewhere.
std::string PathOf(const std::string& name) {
    const std::string folder = CFileUtil::GetDataFolder() + "/";
    const std::string file = name.compare(0, folder.size(), folder) == 0 ? name.substr(folder.size()) : name;
    const bool isFileName = !file.empty() && file != "." && file != ".." && file.find('/') == std::string::npos;
    return isFileName ? folder + file : std::string();
}

}  // namespace

std::string CFileUtil::GetDataFolder() {
    return app_data_folder_elsewhere != nullptr ? app_data_folder_elsewhere() : kDataFolder;
}

bool CFileUtil::IsExistent(const std::string& path) {
    return access(path.c_str(), F_OK) == 0;
}

std::string CFileUtil::_GetPath() {
    std::string path = DefaultPath();
    return IsExistent(path) ? path : GetDataFolder();
}

bool CFileUtil::Delete() {
    // The file itself, and not _GetPath(): without the file that is the whole folder.
    const std::string path = DefaultPath();
    if (unlink(path.c_str()) != 0) {
        HL_LOGE("fail to delete file (%s)", path.c_str());
        return false;
    }
    HL_LOGI("success to delete file (%s)", path.c_str());
    return true;
}

bool CFileUtil::Write(const std::string& name, const std::string& text, bool flag) {
    HL_LOGI("enter");
    const std::string path = PathOf(name);
    if (path.empty()) {
        HL_LOGE("cannot open to %s", name.c_str());
        return false;
    }
    if (!flag && !IsExistent(path)) {
        return false;
    }
    if (IsSymbolicLink(path)) {
        HL_LOGE("is symbolic link.");
        return false;
    }
    // Refused here too: a link may take the file's place in between.
    OpenFile file(path, O_WRONLY | O_CREAT | O_NOFOLLOW);
    if (!file.isOpen()) {
        HL_LOGE("cannot open to %s", path.c_str());
        return false;
    }
    if (!file.replace(text)) {
        HL_LOGE("cannot write to %s", path.c_str());
        return false;
    }
    HL_LOGI("WRITE success");
    return true;
}

bool CFileUtil::Write(const std::string& text, bool flag) {
    return Write(kDefaultFile, text, flag);
}

bool CFileUtil::Read(const std::string& path, std::string& text) {
    if (!IsExistent(path)) {
        return false;
    }
    OpenFile file(path, O_RDONLY);
    if (!file.isOpen()) {
        HL_LOGE("cannot open to %s", path.c_str());
        return false;
    }
    std::string content;
    if (!file.readAll(content)) {
        HL_LOGE("cannot read %s", path.c_str());
        return false;
    }
    text = std::move(content);
    HL_LOGI("file : %s", path.c_str());
    return true;
}

bool CFileUtil::Read(std::string& text) {
    return Read(DefaultPath(), text);
}

}  // namespace VMFramework::HomeLoom
