// Text files in the data folder, and what must not be written to.

#include "Homeloom/Utils/CFileUtil.h"

#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "desktop/DataFolder.h"

using VMFramework::HomeLoom::CFileUtil;
namespace fs = std::filesystem;

namespace {

class FileUtil : public testing::Test {
protected:
    ~FileUtil() override {
        for (const auto& entry : fs::directory_iterator(folder)) {
            fs::remove_all(entry);
        }
    }

    static std::string ContentOf(const fs::path& file) {
        std::ifstream stream(file);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    const fs::path& folder = homeloom::desktop::dataFolder();
    const fs::path defaultFile = folder / "caching.dat";
    std::string text = "untouched";
};

}  // namespace

TEST_F(FileUtil, ReadsWhatWasWrittenLast) {
    const std::string contents[] = {{"a\0\xff\n", 4}, std::string(1000000, 'x'), "", "short"};
    for (const std::string& content : contents) {
        EXPECT_TRUE(CFileUtil::Write(content, true));
        EXPECT_TRUE(CFileUtil::Read(text));
        EXPECT_EQ(text, content);
        EXPECT_TRUE(CFileUtil::Write("other", content, true));
        EXPECT_TRUE(CFileUtil::Read((folder / "other").string(), text));
        EXPECT_EQ(text, content);
    }
    EXPECT_TRUE(CFileUtil::Write((folder / "other").string(), "by its path", false));
    EXPECT_EQ(ContentOf(folder / "other"), "by its path");
}

TEST_F(FileUtil, WithoutTheDefaultFileThereIsTheFolder) {
    EXPECT_EQ(CFileUtil::_GetPath(), folder);
    EXPECT_FALSE(CFileUtil::Write("text", false)) << "only of a file that exists";
    EXPECT_FALSE(CFileUtil::IsExistent(defaultFile));
    EXPECT_FALSE(CFileUtil::Read(text));
    EXPECT_EQ(text, "untouched");
    EXPECT_FALSE(CFileUtil::Delete());
    EXPECT_TRUE(fs::is_directory(folder)) << "the folder itself is no file to delete";

    EXPECT_TRUE(CFileUtil::Write("text", true));
    EXPECT_EQ(CFileUtil::_GetPath(), defaultFile);
    EXPECT_TRUE(CFileUtil::Delete());
    EXPECT_EQ(CFileUtil::_GetPath(), folder);
}

TEST_F(FileUtil, WritesThroughNoLink) {
    const fs::path target = folder / "target";
    std::ofstream(target) << "precious";
    for (const fs::path& to : {target, folder / "nowhere"}) {
        fs::create_symlink(to, defaultFile);
        EXPECT_FALSE(CFileUtil::Write("text", true));
        EXPECT_TRUE(fs::is_symlink(defaultFile));
        EXPECT_EQ(ContentOf(target), "precious");
        EXPECT_FALSE(fs::exists(folder / "nowhere"));
        EXPECT_TRUE(CFileUtil::Delete()) << "the link goes";
        EXPECT_TRUE(fs::exists(target)) << "and what it leads to stays";
    }
}

TEST_F(FileUtil, TouchesNothingButFilesOfTheFolder) {
    const fs::path outside = folder.parent_path() / (folder.filename().string() + "-outside");
    fs::create_directory(folder / "inner");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    const fs::path names[] = {
        "", ".", "..", "inner", "pipe", "inner/x", fs::path("..") / outside.filename(), outside, folder, folder / ".."};
    for (const fs::path& name : names) {
        EXPECT_FALSE(CFileUtil::Write(name, "text", true)) << name;
    }
    EXPECT_FALSE(fs::exists(outside));
    for (const char* name : {"inner", "pipe", "nothing"}) {
        EXPECT_FALSE(CFileUtil::Read((folder / name).string(), text)) << name;
    }
    EXPECT_EQ(text, "untouched");
}
