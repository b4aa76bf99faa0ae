#include "SaveFile.h"

#include <kestrel/orb/File.h>

#include <gtest/gtest.h>
#include <support/TemporaryFolder.h>

#include <string>
#include <thread>

namespace {

using namespace ORB;
using orbtests::Create;
using test::ReadFile;
using test::TemporaryFolder;
using test::WriteFile;

TEST(FileRead, GivesSizeAndBytes)
{
    const TemporaryFolder folder;
    const std::string bytes("a\0b\xFF\n", 5);
    WriteFile(folder / "in", bytes);
    File file;
    ASSERT_EQ(File::OpenForReading((folder / "in").u16string(), file), kDone);
    std::uint64_t size = 0;
    ASSERT_EQ(file.GetSizeOnDisk(size), kDone);
    EXPECT_EQ(size, bytes.size());
    std::string buffer(10, 'x');
    std::uint32_t read = 99;
    ASSERT_EQ(file.Read(buffer, read), kDone);
    EXPECT_EQ(read, 5U);
    EXPECT_EQ(buffer, bytes + "xxxxx");
}

TEST(FileRead, GoesOnWhereTheLastReadStopped)
{
    const TemporaryFolder folder;
    WriteFile(folder / "in", "abcde");
    File file;
    ASSERT_EQ(File::OpenForReading((folder / "in").u16string(), file), kDone);
    std::string all;
    std::uint32_t read = 1;
    while (read != 0) {
        std::string buffer(2, ' ');
        ASSERT_EQ(file.Read(buffer, read), kDone);
        all += buffer.substr(0, read);
    }
    EXPECT_EQ(all, "abcde");
}

TEST(FileRead, PathsMayHoldAnyCharacter)
{
    const TemporaryFolder folder;
    const std::u16string name = u"ä 日本 \U0001F600 \"'\\\n";
    const std::u16string path = folder.Path().u16string() + u"/" + name;
    File file;
    ASSERT_EQ(File::Create(path, 3, 3, 2, 1, 0, file), kDone);
    ASSERT_EQ(file.Write(std::string_view("x")), kDone);
    ASSERT_EQ(File::OpenForReading(path, file), kDone);
    EXPECT_EQ(PathUtils::GetFilePart(path), name);
}

std::string ContentsOf(const std::filesystem::path& path)
{
    File file;
    EXPECT_EQ(File::OpenForReading(path.u16string(), file), kDone);
    std::string buffer(100, ' ');
    std::uint32_t read = 0;
    EXPECT_EQ(file.Read(buffer, read), kDone);
    return buffer.substr(0, read);
}

TEST(ScopedReading, LaterReadsSeeTheFileThatTheFirstOneOpened)
{
    const TemporaryFolder folder;
    const std::filesystem::path path = folder / "in";
    const auto replace = [&](const char* bytes) {
        WriteFile(folder / "new", bytes);
        std::filesystem::rename(folder / "new", path);
    };
    WriteFile(path, "first");
    {
        const ScopedReading scope;
        EXPECT_EQ(ContentsOf(path), "first");
        replace("second");
        EXPECT_EQ(ContentsOf(path), "first");
        {
            const ScopedReading inner;
            EXPECT_EQ(ContentsOf(path), "first");
        }
        EXPECT_EQ(ContentsOf(path), "first") << "an inner scope changes nothing";
        std::string elsewhere;
        std::thread([&] { elsewhere = ContentsOf(path); }).join();
        EXPECT_EQ(elsewhere, "second") << "other threads read what is there";
    }
    EXPECT_EQ(ContentsOf(path), "second");
}

TEST(ScopedReading, FilesThatAreReadAtOnceHaveAPlaceEach)
{
    const TemporaryFolder folder;
    WriteFile(folder / "in", "abcd");
    const ScopedReading scope;
    File first;
    File second;
    ASSERT_EQ(File::OpenForReading((folder / "in").u16string(), first), kDone);
    ASSERT_EQ(File::OpenForReading((folder / "in").u16string(), second), kDone);
    std::string buffer(2, ' ');
    std::uint32_t read = 0;
    ASSERT_EQ(first.Read(buffer, read), kDone);
    ASSERT_EQ(second.Read(buffer, read), kDone);
    EXPECT_EQ(buffer, "ab");
    ASSERT_EQ(first.Read(buffer, read), kDone);
    EXPECT_EQ(buffer, "cd");
}

TEST(ScopedReading, AFileOutlivesItsScope)
{
    const TemporaryFolder folder;
    WriteFile(folder / "in", "abcd");
    File file;
    {
        const ScopedReading scope;
        ASSERT_EQ(File::OpenForReading((folder / "in").u16string(), file), kDone);
    }
    std::string buffer(4, ' ');
    std::uint32_t read = 0;
    ASSERT_EQ(file.Read(buffer, read), kDone);
    EXPECT_EQ(buffer, "abcd");
}

TEST(ScopedReading, AFileThatWasNotThereIsLookedForAgain)
{
    const TemporaryFolder folder;
    const ScopedReading scope;
    File file;
    EXPECT_EQ(File::OpenForReading((folder / "in").u16string(), file), kNotFound);
    WriteFile(folder / "in", "x");
    EXPECT_EQ(ContentsOf(folder / "in"), "x");
}

TEST(FileRead, RefusesWhatIsNoFile)
{
    const TemporaryFolder folder;
    File file;
    EXPECT_EQ(File::OpenForReading(folder.Path().u16string(), file), kAccessDenied);
    EXPECT_EQ(File::OpenForReading((folder / "none").u16string(), file), kNotFound);
    EXPECT_EQ(File::OpenForReading(u"", file), kInvalidPath);
    EXPECT_EQ(File::OpenForReading(std::u16string(u"a\xD800"), file), kInvalidPath);
    WriteFile(folder / "in", "x");
    EXPECT_EQ(File::OpenForReading((folder / "in").u16string() + u'\0', file), kInvalidPath);
    EXPECT_EQ(File::OpenForReading((folder / "in" / "below").u16string(), file), kNotFound);
}

TEST(FileRead, FailedOpenLeavesTheFileThatWasOpen)
{
    const TemporaryFolder folder;
    WriteFile(folder / "in", "abc");
    File file;
    ASSERT_EQ(File::OpenForReading((folder / "in").u16string(), file), kDone);
    ASSERT_LT(File::OpenForReading((folder / "none").u16string(), file), 0);
    std::uint64_t size = 0;
    EXPECT_EQ(file.GetSizeOnDisk(size), kDone);
    EXPECT_EQ(size, 3U);
}

TEST(FileRead, ClosedFilesFailAndLeaveTheOutputs)
{
    File file;
    std::uint64_t size = 7;
    std::uint32_t read = 8;
    std::string buffer("x");
    EXPECT_LT(file.GetSizeOnDisk(size), 0);
    EXPECT_LT(file.Read(buffer, read), 0);
    EXPECT_LT(file.Write(buffer), 0);
    EXPECT_EQ(size, 7U);
    EXPECT_EQ(read, 8U);
}

TEST(FileCreate, TakesItsPlaceOnlyInWrite)
{
    const TemporaryFolder folder;
    const std::filesystem::path out = folder / "out.tessel";
    WriteFile(out, "old");
    File file;
    ASSERT_EQ(Create(out, file), kDone);
    EXPECT_EQ(ReadFile(out), "old");
    ASSERT_EQ(file.Write(std::string_view("the new one")), kDone);
    EXPECT_EQ(ReadFile(out), "the new one");
    file.Close();
    EXPECT_EQ(ReadFile(out), "the new one");
    EXPECT_EQ(folder.Count(), 1U);
}

TEST(FileCreate, NeverWrittenLeavesNothingBehind)
{
    const TemporaryFolder folder;
    {
        File file;
        ASSERT_EQ(Create(folder / "out", file), kDone);
    }
    EXPECT_EQ(folder.Count(), 0U);
    WriteFile(folder / "out", "old");
    File file;
    ASSERT_EQ(Create(folder / "out", file), kDone);
    file.Close();
    EXPECT_EQ(folder.Count(), 1U);
    EXPECT_EQ(ReadFile(folder / "out"), "old");
}

TEST(FileCreate, IsWrittenOnce)
{
    const TemporaryFolder folder;
    File file;
    ASSERT_EQ(Create(folder / "out", file), kDone);
    ASSERT_EQ(file.Write(std::string_view("")), kDone);
    EXPECT_LT(file.Write(std::string_view("again")), 0);
    EXPECT_EQ(ReadFile(folder / "out"), "");
    EXPECT_EQ(folder.Count(), 1U);
}

TEST(FileCreate, IsClosedOnceItIsWritten)
{
    const TemporaryFolder folder;
    File file;
    ASSERT_EQ(Create(folder / "out", file), kDone);
    ASSERT_EQ(file.Write(std::string_view("abc")), kDone);
    std::uint64_t size = 7;
    EXPECT_LT(file.GetSizeOnDisk(size), 0);
    EXPECT_EQ(size, 7U);
}

TEST(FileCreate, MovedFilesKeepTheirPlace)
{
    const TemporaryFolder folder;
    File first;
    ASSERT_EQ(Create(folder / "out", first), kDone);
    File second(std::move(first));
    ASSERT_EQ(second.Write(std::string_view("x")), kDone);
    EXPECT_EQ(ReadFile(folder / "out"), "x");
}

TEST(FileCreate, RefusesOtherModes)
{
    const TemporaryFolder folder;
    const std::u16string path = (folder / "out").u16string();
    File file;
    EXPECT_EQ(File::Create(path, 1, 3, 2, 1, 0, file), kInvalidPath);
    EXPECT_EQ(File::Create(path, 3, 0, 2, 1, 0, file), kInvalidPath);
    EXPECT_EQ(File::Create(path, 3, 3, 1, 1, 0, file), kInvalidPath);
    EXPECT_EQ(File::Create(path, 3, 3, 2, 0, 0, file), kInvalidPath);
    EXPECT_EQ(File::Create(path, 3, 3, 2, 1, 1, file), kInvalidPath);
    EXPECT_EQ(folder.Count(), 0U);
}

TEST(FileCreate, RefusesAFolderAndAPathWithoutFolder)
{
    const TemporaryFolder folder;
    File file;
    EXPECT_EQ(Create(folder.Path(), file), kAccessDenied);
    EXPECT_EQ(Create(folder / "none" / "out", file), kNotFound);
    EXPECT_EQ(Create(std::filesystem::path(), file), kInvalidPath);
    EXPECT_EQ(Create(folder / "out/", file), kInvalidPath);
    EXPECT_EQ(folder.Count(), 0U);
}

TEST(FileCreate, WritesManyMegabytesWhole)
{
    const TemporaryFolder folder;
    std::string bytes(20'000'000, ' ');
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<char>(i * 2'654'435'761U >> 13);
    }
    File file;
    ASSERT_EQ(Create(folder / "out", file), kDone);
    ASSERT_EQ(file.Write(bytes), kDone);
    EXPECT_TRUE(ReadFile(folder / "out") == bytes);
}

TEST(GetFilePart, IsWhatStandsAfterTheLastSeparator)
{
    EXPECT_EQ(PathUtils::GetFilePart(u"a/b.tessel"), u"b.tessel");
    EXPECT_EQ(PathUtils::GetFilePart(u"/b.tessel"), u"b.tessel");
    EXPECT_EQ(PathUtils::GetFilePart(u"b.tessel"), u"b.tessel");
    EXPECT_EQ(PathUtils::GetFilePart(u"a/"), u"");
    EXPECT_EQ(PathUtils::GetFilePart(u""), u"");
}

} // namespace
