// What only a POSIX system has: permissions, symbolic links, pipes, limits on file sizes.
#include "SaveFile.h"

#include <kestrel/orb/File.h>

#include <gtest/gtest.h>
#include <support/TemporaryFolder.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <string>

namespace {

namespace fs = std::filesystem;
using namespace ORB;
using orbtests::Save;
using test::ReadFile;
using test::TemporaryFolder;
using test::WriteFile;

TEST(FilePosix, PermissionsOfAnExistingFileAreKept)
{
    const TemporaryFolder folder;
    const fs::path out = folder / "out";
    for (const unsigned mode : {0600U, 0640U, 0666U, 0755U}) {
        WriteFile(out, "old");
        fs::permissions(out, static_cast<fs::perms>(mode));
        ASSERT_EQ(Save(out, "new"), kDone);
        EXPECT_EQ(ReadFile(out), "new");
        EXPECT_EQ(static_cast<unsigned>(fs::status(out).permissions()), mode);
    }
}

TEST(FilePosix, ANewFilesPermissionsFollowTheUsersMask)
{
    const TemporaryFolder folder;
    const mode_t before = umask(027);
    const Status status = Save(folder / "out", "x");
    umask(before);
    ASSERT_EQ(status, kDone);
    EXPECT_EQ(static_cast<unsigned>(fs::status(folder / "out").permissions()), 0640U);
}

TEST(FilePosix, ASymbolicLinkIsWrittenThrough)
{
    const TemporaryFolder folder;
    fs::create_directory(folder / "elsewhere");
    WriteFile(folder / "elsewhere/target", "old");
    fs::create_symlink("elsewhere/target", folder / "link");
    fs::create_symlink("link", folder / "link2");
    ASSERT_EQ(Save(folder / "link2", "new"), kDone);
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    EXPECT_TRUE(fs::is_symlink(folder / "link2"));
    EXPECT_FALSE(fs::is_symlink(folder / "elsewhere/target"));
    EXPECT_EQ(ReadFile(folder / "elsewhere/target"), "new");
    EXPECT_EQ(folder.Count(), 3U);
}

TEST(FilePosix, ADanglingLinkGetsItsTarget)
{
    const TemporaryFolder folder;
    fs::create_directory(folder / "elsewhere");
    fs::create_symlink("elsewhere/target", folder / "relative");
    fs::create_symlink(folder / "absolute-target", folder / "absolute");
    ASSERT_EQ(Save(folder / "relative", "1"), kDone);
    ASSERT_EQ(Save(folder / "absolute", "2"), kDone);
    EXPECT_TRUE(fs::is_symlink(folder / "relative"));
    EXPECT_EQ(ReadFile(folder / "elsewhere/target"), "1");
    EXPECT_EQ(ReadFile(folder / "absolute-target"), "2");
}

TEST(FilePosix, LinksInCirclesAreRefused)
{
    const TemporaryFolder folder;
    fs::create_symlink("b", folder / "a");
    fs::create_symlink("a", folder / "b");
    EXPECT_EQ(Save(folder / "a", "x"), kInvalidPath);
    File file;
    EXPECT_LT(File::OpenForReading((folder / "a").u16string(), file), 0);
}

TEST(FilePosix, PipesAreRefusedWithoutWaiting)
{
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    File file;
    EXPECT_EQ(File::OpenForReading((folder / "pipe").u16string(), file), kAccessDenied);
    EXPECT_EQ(Save(folder / "pipe", "x"), kAccessDenied);
    EXPECT_TRUE(fs::is_fifo(folder / "pipe"));
}

TEST(FilePosix, ANameOfFullLengthCanBeSaved)
{
    const TemporaryFolder folder;
    const std::string name(255, 'n');
    ASSERT_EQ(Save(folder / name, "x"), kDone);
    EXPECT_EQ(ReadFile(folder / name), "x");
    EXPECT_LT(Save(folder / (name + "n"), "x"), 0);
    EXPECT_EQ(folder.Count(), 1U);
}

/// Files of this process cannot grow beyond so many bytes: what a full medium looks like.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : mHandler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &mBefore);
        const rlimit limit{bytes, mBefore.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &mBefore);
        (void)std::signal(SIGXFSZ, mHandler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    void (*mHandler)(int);
    rlimit mBefore{};
};

TEST(FilePosix, AFailedWriteLeavesTheOldFileWholeAndNothingElse)
{
    const TemporaryFolder folder;
    WriteFile(folder / "out", "old");
    Status status = kDone;
    {
        const FileSizeLimit limit(100'000);
        status = Save(folder / "out", std::string(1'000'000, 'x')); // a short write first, then an error
    }
    EXPECT_EQ(status, kIoError);
    EXPECT_EQ(ReadFile(folder / "out"), "old");
    EXPECT_EQ(folder.Count(), 1U);
}

TEST(FilePosix, ProtectedFilesAndFoldersAreRefused)
{
    if (geteuid() == 0) {
        GTEST_SKIP() << "nothing is protected from the superuser";
    }
    const TemporaryFolder folder;
    WriteFile(folder / "out", "old");
    fs::permissions(folder / "out", fs::perms::owner_read);
    EXPECT_EQ(Save(folder / "out", "new"), kAccessDenied);
    EXPECT_EQ(ReadFile(folder / "out"), "old");
    fs::permissions(folder / "out", fs::perms::none);
    File file;
    EXPECT_EQ(File::OpenForReading((folder / "out").u16string(), file), kAccessDenied);
    fs::permissions(folder.Path(), fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_EQ(Save(folder / "other", "new"), kAccessDenied);
    fs::permissions(folder.Path(), fs::perms::owner_all);
}

} // namespace
