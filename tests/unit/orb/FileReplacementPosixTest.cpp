// How old files are replaced: what a person may write can be saved, and nothing of the old file is lost.
#include "SaveFile.h"

#include <kestrel/orb/File.h>
#include <kestrel/orb/SaveReport.h>
#include <kestrel/qelcore/logging/Log.h>

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sched.h>
#include <support/ScopedVariable.h>
#include <support/TemporaryFolder.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <string>

namespace {

namespace fs = std::filesystem;
using namespace ORB;
using orbtests::Create;
using orbtests::Save;
using test::ReadFile;
using test::TemporaryFolder;
using test::WriteFile;

constexpr unsigned kNobody = 65534;
constexpr int kCannotTest = 77;

/// What `act` returns, in a process of its own.
int InChild(const std::function<int()>& act)
{
    const pid_t child = fork();
    if (child == 0) {
        _exit(act());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

/// Makes this process that of a user without rights. Only the superuser can.
bool BecomeNobody()
{
    return setgroups(0, nullptr) == 0 && setgid(kNobody) == 0 && setuid(kNobody) == 0;
}

/// What `act` returns as a user without rights.
int AsNobody(const std::function<int()>& act)
{
    return InChild([&act] { return BecomeNobody() ? act() : kCannotTest; });
}

int SaveAsNobody(const fs::path& path)
{
    return AsNobody([&path] { return -Save(path, "new and longer"); });
}

void GiveToNobody(const fs::path& path)
{
    ASSERT_EQ(chown(path.c_str(), kNobody, kNobody), 0);
}

/// Why saving fails; empty where it succeeds. Runs `prepare` and the save in a process of its own.
std::string FailureOfSave(const fs::path& path, const fs::path& report, const std::function<bool()>& prepare)
{
    WriteFile(report, "");
    const int result = InChild([&] {
        std::string failure;
        const ScopedSaveListener listener([&failure](const SaveReport& saved) { failure = saved.failure; });
        const int told = open(report.c_str(), O_WRONLY | O_CLOEXEC);
        if (!prepare()) {
            return kCannotTest;
        }
        static_cast<void>(Save(path, "new"));
        return write(told, failure.data(), failure.size()) == static_cast<ssize_t>(failure.size()) ? 0 : 1;
    });
    return result == 0 ? ReadFile(report) : "no result: " + std::to_string(result);
}

ino_t InodeOf(const fs::path& path)
{
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_ino;
}

class FileReplacementPosix : public testing::Test {
protected:
    void SetUp() override
    {
        fs::permissions(mFolder.Path(), static_cast<fs::perms>(0755));
        fs::permissions(mElsewhere.Path(), static_cast<fs::perms>(0777));
        WriteFile(mOut, "old");
    }
    void TearDown() override { EXPECT_EQ(mElsewhere.Count(), 0U) << "a copy or a temporary file is left over"; }

    void ExpectSavedInPlace(ino_t before)
    {
        EXPECT_EQ(ReadFile(mOut), "new and longer");
        EXPECT_EQ(InodeOf(mOut), before);
    }

    // In this order: temporary folders are made where TMPDIR says.
    TemporaryFolder mFolder;
    TemporaryFolder mElsewhere;
    const test::ScopedVariable mElsewhereNamed{"TMPDIR", mElsewhere.Path().c_str()};
    fs::path mOut = mFolder / "out";
};

TEST_F(FileReplacementPosix, AWritableFileInAFolderThatIsNotWritableIsOverwritten)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "only the superuser can become another user";
    }
    GiveToNobody(mOut);
    const ino_t before = InodeOf(mOut);
    ASSERT_EQ(SaveAsNobody(mOut), kDone);
    ExpectSavedInPlace(before);
    EXPECT_EQ(mFolder.Count(), 1U);
}

TEST_F(FileReplacementPosix, AnothersFileInAStickyFolderIsOverwritten)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "only the superuser can become another user";
    }
    fs::permissions(mFolder.Path(), static_cast<fs::perms>(01777));
    fs::permissions(mOut, static_cast<fs::perms>(0666));
    const ino_t before = InodeOf(mOut);
    ASSERT_EQ(SaveAsNobody(mOut), kDone);
    ExpectSavedInPlace(before);
    EXPECT_EQ(mFolder.Count(), 1U);
}

TEST_F(FileReplacementPosix, AFileThatIsAMountPointIsOverwritten)
{
    WriteFile(mFolder / "mounted", "old");
    const int result = InChild([this] {
        if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount((mFolder / "mounted").c_str(), mOut.c_str(), nullptr, MS_BIND, nullptr) != 0) {
            return kCannotTest;
        }
        return -Save(mOut, "new and longer");
    });
    if (result == kCannotTest) {
        GTEST_SKIP() << "files cannot be mounted here";
    }
    ASSERT_EQ(result, kDone);
    EXPECT_EQ(ReadFile(mFolder / "mounted"), "new and longer");
    EXPECT_EQ(ReadFile(mOut), "old") << "outside of the mount";
    EXPECT_EQ(mFolder.Count(), 2U);
}

TEST_F(FileReplacementPosix, HardLinksStayTogether)
{
    fs::create_hard_link(mOut, mFolder / "link");
    fs::permissions(mOut, static_cast<fs::perms>(0640));
    ASSERT_EQ(Save(mFolder / "link", "new and longer"), kDone);
    EXPECT_EQ(ReadFile(mOut), "new and longer");
    EXPECT_EQ(fs::hard_link_count(mOut), 2U);
    ASSERT_EQ(Save(mOut, "short"), kDone);
    EXPECT_EQ(ReadFile(mFolder / "link"), "short");
    EXPECT_EQ(static_cast<unsigned>(fs::status(mOut).permissions()), 0640U);
    EXPECT_EQ(mFolder.Count(), 2U);
}

TEST_F(FileReplacementPosix, EachFolderWithoutRoomForACopyIsNamedWithItsReason)
{
    fs::create_hard_link(mOut, mFolder / "link"); // so the file is overwritten, after its content is copied
    WriteFile(mOut, std::string(4096, 'x'));
    const std::string failure = FailureOfSave(mOut, mFolder / "report", [] {
        const rlimit limit{512, 512}; // more than the new content and the report, less than the old content
        return std::signal(SIGXFSZ, SIG_IGN) != SIG_ERR && setrlimit(RLIMIT_FSIZE, &limit) == 0;
    });
    const std::string why = "' (it is larger than files may be here)";
    EXPECT_EQ(failure, "no temporary file can be written in '" + mFolder.Path().string() + why + " or '" +
                           mElsewhere.Path().string() + why);
    EXPECT_EQ(ReadFile(mOut), std::string(4096, 'x'));
    EXPECT_EQ(mFolder.Count(), 3U) << "a copy is left over";
}

TEST_F(FileReplacementPosix, EachFolderThatTakesNoNewContentIsNamedWithItsReason)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "only the superuser can become another user";
    }
    GiveToNobody(mOut);
    const fs::path missing = mElsewhere / "missing";
    const std::string failure = FailureOfSave(mOut, mFolder / "report", [&missing] {
        return setenv("TMPDIR", missing.c_str(), 1) == 0 && BecomeNobody();
    });
    EXPECT_EQ(failure, "no temporary file can be written in '" + mFolder.Path().string() +
                           "' (permission denied) or '" + missing.string() + "' (there is no such folder)");
    EXPECT_EQ(ReadFile(mOut), "old");
}

TEST_F(FileReplacementPosix, AFolderThatServesBothPurposesIsNamedOnce)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "only the superuser can become another user";
    }
    GiveToNobody(mOut);
    const std::string failure = FailureOfSave(mOut, mFolder / "report", [this] {
        return setenv("TMPDIR", mFolder.Path().c_str(), 1) == 0 && BecomeNobody();
    });
    EXPECT_EQ(failure,
              "no temporary file can be written in '" + mFolder.Path().string() + "' (permission denied)");
}

TEST_F(FileReplacementPosix, ExtendedAttributesAreKept)
{
    if (setxattr(mOut.c_str(), "user.note", "value", 5, 0) != 0) {
        GTEST_SKIP() << "this file system has no extended attributes";
    }
    ASSERT_EQ(Save(mOut, "new"), kDone);
    std::array<char, 16> value{};
    EXPECT_EQ(getxattr(mOut.c_str(), "user.note", value.data(), value.size()), 5);
    EXPECT_STREQ(value.data(), "value");
}

TEST_F(FileReplacementPosix, TheOwnerIsKeptWhereThatIsAllowed)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "only the superuser can give files away";
    }
    GiveToNobody(mOut);
    ASSERT_EQ(Save(mOut, "new"), kDone);
    struct stat status {};
    ASSERT_EQ(stat(mOut.c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, kNobody);
    EXPECT_EQ(status.st_gid, kNobody);
}

TEST_F(FileReplacementPosix, AnOwnerThatCannotBeKeptIsNamedInTheLog)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "only the superuser can become another user";
    }
    GiveToNobody(mFolder.Path());
    ASSERT_EQ(chown(mOut.c_str(), 0, kNobody), 0);
    fs::permissions(mOut, static_cast<fs::perms>(04664));
    const int result = AsNobody([this] {
        std::string logged;
        const qelcore::logging::ScopedListener listener(
            [&logged](const qelcore::logging::Message& message) { logged += message.text; });
        const bool isSaved = Save(mOut, "new") == kDone;
        return isSaved && logged.find(mOut.string()) != std::string::npos &&
                       logged.find("owner root") != std::string::npos
                   ? 0
                   : 1;
    });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(ReadFile(mOut), "new");
    struct stat status {};
    ASSERT_EQ(stat(mOut.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0664U) << "nobody's file must not run as nobody because root's did";
}

TEST_F(FileReplacementPosix, WhatAKilledSaveLeavesIsGoneAfterTheNextOne)
{
    const int killed = InChild([this] {
        File file;
        if (Create(mOut, file) != kDone) {
            return 1;
        }
        return raise(SIGKILL);
    });
    ASSERT_EQ(killed, -SIGKILL);
    // Temporary files without a name vanish by themselves. On a file system that cannot make such files, the
    // next save removes this one.
    WriteFile(mFolder / ".kestrel-0123456789abcdef.tmp", "half");
    fs::create_directory(mFolder / ".kestrel-fedcba9876543210.tmp");
    WriteFile(mFolder / ".kestrel-fedcba9876543210.tmp/picture", "half");
    ASSERT_EQ(Save(mOut, "new"), kDone);
    EXPECT_EQ(ReadFile(mOut), "new");
    EXPECT_EQ(mFolder.Count(), 1U);
}

TEST_F(FileReplacementPosix, OtherTemporaryFilesAreLeftAlone)
{
    WriteFile(mFolder / ".kestrel-0123456789abcdef.tmp", "being written by somebody else");
    const int writer = open((mFolder / ".kestrel-0123456789abcdef.tmp").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(writer, LOCK_EX), 0);
    for (const char* const name :
         {".kestrel-0123456789abcde.tmp", ".kestrel-0123456789ABCDEF.tmp", "kestrel.tmp", ".x.tmp"}) {
        WriteFile(mFolder / name, "not ours");
    }
    fs::create_symlink(mOut, mFolder / ".kestrel-aaaaaaaaaaaaaaaa.tmp");
    ASSERT_EQ(Save(mOut, "new"), kDone);
    close(writer);
    EXPECT_EQ(mFolder.Count(), 7U);
    EXPECT_EQ(ReadFile(mOut), "new");
}

TEST_F(FileReplacementPosix, TheNewContentIsNotReadableForOthersBeforeTheOldOneWas)
{
    fs::permissions(mOut, static_cast<fs::perms>(0600));
    File file;
    ASSERT_EQ(Create(mOut, file), kDone);
    for (const fs::directory_entry& entry : fs::directory_iterator(mFolder.Path())) {
        EXPECT_EQ(static_cast<unsigned>(entry.status().permissions()) & 077U, 0U) << entry.path();
    }
    ASSERT_EQ(file.Write(std::string_view("new")), kDone);
    EXPECT_EQ(static_cast<unsigned>(fs::status(mOut).permissions()), 0600U);
}

TEST_F(FileReplacementPosix, ALeaseIsWaitedFor)
{
    std::array<int, 2> ready{};
    ASSERT_EQ(pipe(ready.data()), 0);
    const pid_t holder = fork();
    if (holder == 0) {
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGIO);
        sigprocmask(SIG_BLOCK, &signals, nullptr);
        const int file = open(mOut.c_str(), O_RDWR | O_CLOEXEC);
        const char taken = fcntl(file, F_SETLEASE, F_WRLCK) == 0 ? 'y' : 'n';
        (void)!write(ready[1], &taken, 1);
        int signal = 0;
        sigwait(&signals, &signal); // somebody opens the file
        usleep(50'000);
        _exit(fcntl(file, F_SETLEASE, F_UNLCK));
    }
    char taken = 0;
    ASSERT_EQ(read(ready[0], &taken, 1), 1);
    close(ready[0]);
    close(ready[1]);
    if (taken != 'y') {
        kill(holder, SIGKILL);
        waitpid(holder, nullptr, 0);
        GTEST_SKIP() << "this file system has no leases";
    }
    File file;
    EXPECT_EQ(File::OpenForReading(mOut.u16string(), file), kDone);
    kill(holder, SIGKILL);
    waitpid(holder, nullptr, 0);
}

TEST_F(FileReplacementPosix, ThePersonAtTheOtherEndOfAPipeNoticesNothing)
{
    const fs::path pipePath = mFolder / "pipe";
    ASSERT_EQ(mkfifo(pipePath.c_str(), 0600), 0);
    std::array<int, 2> opened{};
    ASSERT_EQ(pipe(opened.data()), 0);
    const pid_t writer = fork();
    if (writer == 0) {
        const int end = open(pipePath.c_str(), O_WRONLY | O_CLOEXEC); // waits for a reader
        (void)!write(opened[1], "x", 1);
        _exit(end < 0 ? 1 : 0);
    }
    usleep(100'000); // until the writer waits
    File file;
    EXPECT_EQ(File::OpenForReading(pipePath.u16string(), file), kAccessDenied);
    pollfd noticed{opened[0], POLLIN, 0};
    EXPECT_EQ(poll(&noticed, 1, 300), 0) << "the writer has found a reader";
    kill(writer, SIGKILL);
    waitpid(writer, nullptr, 0);
    close(opened[0]);
    close(opened[1]);
}

} // namespace
