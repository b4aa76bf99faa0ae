// Numbered files that appear together or not at all.
#include <tessel/export/ExportError.h>
#include <tessel/export/files/SequenceWriter.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <support/TemporaryFolder.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace {

bool gFileSystemHasNoLinks = false;

} // namespace

// In place of the system's, for tests of file systems without hard links.
extern "C" int link(const char* from, const char* to) noexcept
{
    if (gFileSystemHasNoLinks) {
        errno = EPERM;
        return -1;
    }
    return static_cast<int>(syscall(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0));
}

namespace tessel::exporting {
namespace {

namespace fs = std::filesystem;
using test::ReadFile;
using test::TemporaryFolder;
using test::WriteFile;

void Write(SequenceWriter& writer, std::int64_t number)
{
    constexpr std::string_view kPicture = "new";
    writer.Write(std::as_bytes(std::span(kPicture)), number);
}

TEST(NumberedName, TakesOneNumberAndPercentSigns)
{
    EXPECT_EQ(NumberedName::Parse("a%d.png")->With(7), "a7.png");
    EXPECT_EQ(NumberedName::Parse("%%%06d%%.png")->With(123), "%000123%.png");
    EXPECT_EQ(NumberedName::Parse("%03d")->With(12345), "12345");
    EXPECT_FALSE(NumberedName::Parse("plain.png"));
    for (const char* wrong : {"%", "%6d", "%s", "%d%d", "%0d", "%-3d", "%00d", "%0999d", "%06x"}) {
        EXPECT_THROW(static_cast<void>(NumberedName::Parse(wrong)), ExportError) << wrong;
    }
}

TEST(SequenceWriter, FilesAppearTogetherOrNotAtAll)
{
    const TemporaryFolder folder;
    {
        SequenceWriter writer(folder / "%d.png", 2);
        Write(writer, 5);
    }
    EXPECT_EQ(folder.Count(), 0U);
    {
        SequenceWriter writer(folder / "%d.png", 2);
        Write(writer, 5);
        Write(writer, 6);
        writer.Finish();
    }
    EXPECT_EQ(folder.Count(), 2U);
    EXPECT_EQ(ReadFile(folder / "5.png"), "new");
    EXPECT_EQ(ReadFile(folder / "6.png"), "new");
}

TEST(SequenceWriter, SeveralPicturesWithoutANumberAreRefused)
{
    const TemporaryFolder folder;
    EXPECT_THROW(SequenceWriter(folder / "x.png", 2), ExportError);
    EXPECT_NO_THROW(SequenceWriter(folder / "x.png", 1));
}

/// Replaces 1.png to 4.png, of which the last one cannot be replaced.
void FailAtTheLastOf(const TemporaryFolder& folder)
{
    SequenceWriter writer(folder / "%d.png", 4);
    for (int number = 1; number <= 4; ++number) {
        Write(writer, number);
    }
    fs::create_directory(folder / "4.png");
    EXPECT_THROW(writer.Finish(), ExportError);
}

ino_t InodeOf(const fs::path& path)
{
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_ino;
}

class FailedSequence : public testing::TestWithParam<bool> {};

TEST_P(FailedSequence, LeavesTheOldPicturesAndNoNewOnes)
{
    const TemporaryFolder folder;
    WriteFile(folder / "1.png", "old 1");
    WriteFile(folder / "2.png", "old 2");
    const ino_t before = InodeOf(folder / "1.png");
    gFileSystemHasNoLinks = GetParam();
    FailAtTheLastOf(folder);
    gFileSystemHasNoLinks = false;
    EXPECT_EQ(ReadFile(folder / "1.png"), "old 1");
    EXPECT_EQ(ReadFile(folder / "2.png"), "old 2");
    EXPECT_EQ(InodeOf(folder / "1.png"), before) << "the old file itself, with all its attributes";
    EXPECT_EQ(fs::hard_link_count(folder / "1.png"), 1U);
    EXPECT_FALSE(fs::exists(folder / "3.png"));
    EXPECT_EQ(folder.Count(), 3U); // with the folder that was in the way
}

TEST(SequenceWriter, RestoresPicturesThatItHadToOverwrite)
{
    const TemporaryFolder folder;
    WriteFile(folder / "1.png", "an old picture");
    fs::create_directory(folder / "elsewhere");
    fs::create_hard_link(folder / "1.png", folder / "elsewhere/copy.png");
    FailAtTheLastOf(folder);
    EXPECT_EQ(ReadFile(folder / "1.png"), "an old picture");
    EXPECT_EQ(ReadFile(folder / "elsewhere/copy.png"), "an old picture");
    EXPECT_EQ(fs::hard_link_count(folder / "1.png"), 2U);
    EXPECT_EQ(folder.Count(), 3U);
}

TEST(SequenceWriter, LeavesNothingOfTheOldPicturesWhenItSucceeds)
{
    const TemporaryFolder folder;
    WriteFile(folder / "1.png", "old");
    WriteFile(folder / "2.png", "old");
    fs::create_directory(folder / "elsewhere");
    fs::create_hard_link(folder / "2.png", folder / "elsewhere/copy.png");
    {
        SequenceWriter writer(folder / "%d.png", 2);
        Write(writer, 1);
        Write(writer, 2);
        writer.Finish();
    }
    EXPECT_EQ(ReadFile(folder / "1.png"), "new");
    EXPECT_EQ(ReadFile(folder / "2.png"), "new");
    EXPECT_EQ(ReadFile(folder / "elsewhere/copy.png"), "new");
    EXPECT_EQ(folder.Count(), 3U);
}

INSTANTIATE_TEST_SUITE_P(WithAndWithoutHardLinks, FailedSequence, testing::Bool(),
                         [](const auto& info) { return info.param ? "WithoutLinks" : "WithLinks"; });

} // namespace
} // namespace tessel::exporting
