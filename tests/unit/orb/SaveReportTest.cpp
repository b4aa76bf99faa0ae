#include "SaveFile.h"

#include <kestrel/orb/File.h>
#include <kestrel/orb/SaveReport.h>

#include <gtest/gtest.h>
#include <support/TemporaryFolder.h>

#include <stdexcept>
#include <vector>

namespace {

using namespace ORB;
using orbtests::Create;
using test::TemporaryFolder;

Status Save(const std::filesystem::path& path)
{
    return orbtests::Save(path, "x");
}

TEST(SaveReport, TellsOfEachSaveWithItsPathAndItsEnd)
{
    const TemporaryFolder folder;
    std::vector<SaveReport> reports;
    {
        const ScopedSaveListener listener([&](const SaveReport& report) { reports.push_back(report); });
        EXPECT_EQ(Save(folder / "out"), kDone);
        EXPECT_EQ(Save(folder / "none/out"), kNotFound);
        EXPECT_EQ(Save(folder.Path()), kAccessDenied);
        EXPECT_EQ(Save(""), kInvalidPath);
    }
    EXPECT_EQ(Save(folder / "unheard"), kDone);
    ASSERT_EQ(reports.size(), 4U);
    EXPECT_EQ(reports[0].path, (folder / "out").u16string());
    EXPECT_EQ(reports[0].status, kDone);
    EXPECT_EQ(reports[0].failure, "");
    EXPECT_EQ(reports[1].path, (folder / "none/out").u16string());
    EXPECT_EQ(reports[1].status, kNotFound);
    EXPECT_EQ(reports[1].failure, "its folder does not exist");
    EXPECT_EQ(reports[2].failure, "it is a folder");
    EXPECT_EQ(reports[3].status, kInvalidPath);
}

TEST(SaveReport, AFileThatWasNeverWrittenIsNoSave)
{
    const TemporaryFolder folder;
    int reports = 0;
    const ScopedSaveListener listener([&](const SaveReport&) { ++reports; });
    File file;
    ASSERT_EQ(Create(folder / "out", file), kDone);
    file.Close();
    EXPECT_EQ(reports, 0);
}

TEST(SaveReport, TheNewestListenerHearsAndWhatItThrowsStopsThere)
{
    const TemporaryFolder folder;
    int older = 0;
    const ScopedSaveListener listener([&](const SaveReport&) { ++older; });
    {
        const ScopedSaveListener newer([](const SaveReport&) { throw std::runtime_error("listener"); });
        EXPECT_EQ(Save(folder / "out"), kDone);
    }
    EXPECT_EQ(older, 0);
    EXPECT_EQ(Save(folder / "out"), kDone);
    EXPECT_EQ(older, 1);
}

} // namespace
