#include <kestrel/qelcore/files/FileUtils.h>

#include <gtest/gtest.h>
#include <support/TemporaryFolder.h>

namespace {

using qelcore::utility::FileUtils;

TEST(FileOrDirExists, IsTrueForFilesAndFolders)
{
    const test::TemporaryFolder folder;
    test::WriteFile(folder / "\u00E4 \U0001F600", "x");
    EXPECT_TRUE(FileUtils::FileOrDirExists(folder.Path().u16string()));
    EXPECT_TRUE(FileUtils::FileOrDirExists(folder.Path().u16string() + u"/\u00E4 \U0001F600"));
    EXPECT_FALSE(FileUtils::FileOrDirExists((folder / "none").u16string()));
    EXPECT_FALSE(FileUtils::FileOrDirExists((folder / "\u00E4 \U0001F600" / "below").u16string()));
}

TEST(FileOrDirExists, IsFalseWhereItCannotBeTold)
{
    const test::TemporaryFolder folder;
    test::WriteFile(folder / "\uFFFD", "x");
    std::filesystem::create_symlink("circle", folder / "circle");
    const std::u16string path = folder.Path().u16string();
    EXPECT_FALSE(FileUtils::FileOrDirExists(u""));
    EXPECT_FALSE(FileUtils::FileOrDirExists(path + u'\0' + u"x"));
    EXPECT_FALSE(FileUtils::FileOrDirExists(path + u'/' + char16_t{0xD800})) << "not the file U+FFFD";
    EXPECT_FALSE(FileUtils::FileOrDirExists(path + u"/circle"));
    EXPECT_FALSE(FileUtils::FileOrDirExists(path + u'/' + std::u16string(5000, u'x')));
}

} // namespace
