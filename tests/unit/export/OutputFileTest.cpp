#include <tessel/export/ExportError.h>
#include <tessel/export/files/OutputFile.h>

#include <gtest/gtest.h>
#include <support/TemporaryFolder.h>

#include <fstream>
#include <set>
#include <string_view>

namespace tessel::exporting {
namespace {

namespace fs = std::filesystem;

void Write(OutputFile& file, std::string_view text)
{
    file.Write(std::as_bytes(std::span(text)));
}

std::set<std::string> NamesIn(const fs::path& folder)
{
    std::set<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

TEST(OutputFile, AppearsWholeAndOnlyWhenCommitted)
{
    const test::TemporaryFolder folder;
    const fs::path path = folder.Path() / "x";
    {
        OutputFile file(path);
        Write(file, "one two");
        EXPECT_FALSE(fs::exists(path));
        file.SeekTo(4);
        Write(file, "six");
        EXPECT_EQ(file.Size(), 7);
        file.Commit();
    }
    EXPECT_EQ(test::ReadFile(path), "one six");
    EXPECT_EQ(NamesIn(folder.Path()), std::set<std::string>{"x"});
}

TEST(OutputFile, UncommittedLeavesNothingAndTheOldFileWhole)
{
    const test::TemporaryFolder folder;
    const fs::path path = folder.Path() / "x";
    std::ofstream(path) << "old";
    {
        OutputFile file(path);
        Write(file, "new");
    }
    EXPECT_EQ(test::ReadFile(path), "old");
    EXPECT_EQ(NamesIn(folder.Path()), std::set<std::string>{"x"});
}

TEST(OutputFile, FolderAndMissingFolderAreRefusedByName)
{
    const test::TemporaryFolder folder;
    EXPECT_THROW(OutputFile{folder.Path()}, ExportError);
    try {
        const OutputFile file(folder.Path() / "none" / "x");
        FAIL();
    } catch (const ExportError& error) {
        EXPECT_NE(std::string_view(error.what()).find("none/x"), std::string_view::npos) << error.what();
    }
}

} // namespace
} // namespace tessel::exporting
