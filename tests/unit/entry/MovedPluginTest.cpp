// The built plug-in finds what it needs for as long as it is loaded, whatever became of its file.
#include <kestrel/importabi/Entries.h>
#include <kestrel/importabi/Records.h>
#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/qelui/controls/UI_Button.h>

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <support/TemporaryFolder.h>
#include <unit/qelui/FakeToolkit.h>

#include <array>
#include <filesystem>

namespace {

/// A copy of the plug-in, loaded by a relative path; unloaded at the end.
class LoadedCopy {
public:
    explicit LoadedCopy(const std::filesystem::path& folder) : mBefore(std::filesystem::current_path())
    {
        std::filesystem::copy_file(TESSEL_PLUGIN, folder / "copy.so");
        std::filesystem::current_path(folder);
        mLibrary = dlopen("./copy.so", RTLD_NOW | RTLD_LOCAL);
        EXPECT_NE(mLibrary, nullptr) << dlerror(); // NOLINT(concurrency-mt-unsafe): one thread
    }
    ~LoadedCopy()
    {
        std::filesystem::current_path(mBefore);
        dlclose(mLibrary);
    }
    LoadedCopy(const LoadedCopy&) = delete;
    LoadedCopy& operator=(const LoadedCopy&) = delete;

    /// Selector 38 for a clip of the host's, whose settings text is "{}". @return how many dialogs it showed.
    [[nodiscard]] int DialogsShown() const
    {
        const auto entry = reinterpret_cast<ksImportEntry>(dlsym(mLibrary, kImportEntryName));
        const tests::FakeToolkit toolkit(
            [](qelui::UI_Dialog& dialog) { dialog.GetControl<qelui::UI_Button>("okButton").Press(); });
        std::array<char, 10240> text{'{', '}'};
        ksFileAccessRec file{};
        ksSettingsExchangeRec exchange{};
        exchange.text = text.data();
        EXPECT_EQ(entry(38, nullptr, &file, &exchange), ksResultServed);
        return toolkit.runs;
    }

private:
    std::filesystem::path mBefore;
    void* mLibrary = nullptr;
};

TEST(MovedPlugin, ShowsItsDialogFromAnotherWorkingFolder)
{
    const test::TemporaryFolder folder;
    const LoadedCopy plugin(folder.Path());
    EXPECT_EQ(plugin.DialogsShown(), 1);
    std::filesystem::current_path("/");
    EXPECT_EQ(plugin.DialogsShown(), 1);
}

TEST(MovedPlugin, ShowsItsDialogAfterItsFileWasMovedReplacedOrRemoved)
{
    const test::TemporaryFolder folder;
    const LoadedCopy plugin(folder.Path());
    std::filesystem::rename(folder / "copy.so", folder / "moved.so");
    EXPECT_EQ(plugin.DialogsShown(), 1) << "moved";
    test::WriteFile(folder / "copy.so", "another file");
    EXPECT_EQ(plugin.DialogsShown(), 1) << "replaced";
    std::filesystem::remove(folder / "copy.so");
    std::filesystem::remove(folder / "moved.so");
    EXPECT_EQ(plugin.DialogsShown(), 1) << "removed";
}

} // namespace
