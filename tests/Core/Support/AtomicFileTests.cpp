#include "HarbexClipCore/Support/AtomicFile.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

namespace harbex {
namespace {

namespace fs = std::filesystem;

class AtomicFileTests : public testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/harbex-atomic-XXXXXX";
        folder_ = ::mkdtemp(pattern);
    }
    void TearDown() override { fs::remove_all(folder_); }

    std::vector<std::string> names() const {
        std::vector<std::string> out;
        for (const auto& entry : fs::directory_iterator(folder_))
            out.push_back(entry.path().filename());
        std::sort(out.begin(), out.end());
        return out;
    }
    static mode_t modeOf(const fs::path& path) {
        struct stat info {};
        ::stat(path.c_str(), &info);
        return info.st_mode & 07777;
    }

    fs::path folder_;
};

TEST_F(AtomicFileTests, ReplacesTheFileWithPrivatePermissionsWhateverTheUmask) {
    const mode_t old = ::umask(0);
    const fs::path path = folder_ / "History.sealed";
    ASSERT_TRUE(writeFileAtomically(path, std::string_view("first")));
    ASSERT_TRUE(writeFileAtomically(path, std::string_view("second")));
    ::umask(old);
    EXPECT_EQ(stringOf(*readFile(path)), "second");
    EXPECT_EQ(modeOf(path), 0600u);
    EXPECT_EQ(names(), std::vector<std::string>{"History.sealed"});
}

TEST_F(AtomicFileTests, AFailedWriteKeepsTheOldFileAndLeavesNoTemporary) {
    const fs::path path = folder_ / "History.sealed";
    ASSERT_TRUE(writeFileAtomically(path, std::string_view("old")));
    // A file-size limit makes write() fail part-way, as a full disk would; root is not exempt.
    const pid_t child = ::fork();
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{4096, 4096};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const auto status = writeFileAtomically(path, std::string(100000, 'x'));
        ::_exit(!status && status.error().operation == "write" ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(stringOf(*readFile(path)), "old");
    EXPECT_EQ(names(), std::vector<std::string>{"History.sealed"});
}

TEST_F(AtomicFileTests, ARenameOntoAFolderFailsCleanly) {
    const fs::path path = folder_ / "Images";
    fs::create_directory(path);
    const auto status = writeFileAtomically(path, std::string_view("data"));
    ASSERT_FALSE(status);
    EXPECT_EQ(status.error().operation, "rename");
    EXPECT_TRUE(fs::is_directory(path));
    EXPECT_EQ(names(), std::vector<std::string>{"Images"});
}

TEST_F(AtomicFileTests, ErrorsDescribeTheOperationAndPath) {
    const auto status = writeFileAtomically(folder_ / "missing" / "file", std::string_view("x"));
    ASSERT_FALSE(status);
    EXPECT_EQ(status.error().code, ENOENT);
    const auto read = readFile(folder_ / "absent");
    ASSERT_FALSE(read);
    EXPECT_TRUE(read.error().isNotFound());
    EXPECT_NE(read.error().description().find("absent"), std::string::npos);
    EXPECT_NE(read.error().description().find("No such file"), std::string::npos);
}

TEST_F(AtomicFileTests, StaleTemporariesAreRemovedAndNothingElse) {
    ASSERT_TRUE(writeFileAtomically(folder_ / "keep.json", std::string_view("{}")));
    for (const char* name :
         {".keep.json.harbex-tmp-1A2B3C4D", ".History.sealed.harbex-tmp-00000000"}) {
        ASSERT_TRUE(writeFileAtomically(folder_ / name, std::string_view("partial")));
    }
    ASSERT_TRUE(writeFileAtomically(folder_ / ".hidden", std::string_view("mine")));
    removeStaleTemporaries(folder_);
    EXPECT_EQ(names(), (std::vector<std::string>{".hidden", "keep.json"}));
}

TEST_F(AtomicFileTests, CreatedFoldersArePrivate) {
    const mode_t old = ::umask(0);
    const fs::path nested = folder_ / "a" / "b";
    ASSERT_TRUE(createDirectories(nested));
    ::umask(old);
    EXPECT_EQ(modeOf(folder_ / "a"), 0700u);
    EXPECT_EQ(modeOf(nested), 0700u);
    ASSERT_TRUE(writeFileAtomically(folder_ / "file", std::string_view("x")));
    EXPECT_FALSE(createDirectories(folder_ / "file"));
}

TEST_F(AtomicFileTests, ReadingIntoAKeptStringGivesTheWholeFileWhateverItHeldBefore) {
    const fs::path path = folder_ / "data";
    std::string kept(200'000, '#');  // larger than some files below, smaller than others
    for (std::size_t size : {0u, 1u, 65'535u, 65'536u, 65'537u, 150'000u, 1'000'003u}) {
        std::string content(size, '\0');
        for (std::size_t i = 0; i < size; ++i) content[i] = static_cast<char>(i * 131 + i / 7);
        ASSERT_TRUE(writeFileAtomically(path, content));
        ASSERT_TRUE(readFileInto(path, kept)) << size;
        EXPECT_EQ(kept.size(), size);
        EXPECT_TRUE(kept == content) << "content differs at size " << size;
    }
}

TEST_F(AtomicFileTests, ReadingIntoAStringFailsWithTheFileErrorAndLeavesItEmpty) {
    struct Case {
        const char* name;
        fs::path path;
        int code;
    };
    const Case cases[] = {
        {"missing", folder_ / "absent", ENOENT},
        {"a folder", folder_, EISDIR},
    };
    for (const auto& c : cases) {
        std::string kept = "left over";
        const auto read = readFileInto(c.path, kept);
        ASSERT_FALSE(read) << c.name;
        EXPECT_EQ(read.error().code, c.code) << c.name;
        EXPECT_TRUE(kept.empty()) << c.name;
    }
}

}  // namespace
}  // namespace harbex
