#include <ImporterTessel/dialog/DataExchange.h>
#include <ImporterTessel/dialog/ImporterTesselPrefsDialogImpl.h>
#include <ImporterTessel/settings/DataFile.h>
#include <kestrel/qelcore/classref/ClassWatcher.h>
#include <kestrel/qelcore/exceptions/Exceptions.h>
#include <kestrel/qelworkspace/Workspace.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using namespace ImporterTessel;
using Exchange = ImporterTesselPrefsDialogDataExchange;
using Interface = IImporterTesselPrefsDialogDataExchange;

TEST(DataExchange, AnswersToTheNamesOfInterfaceAndClassWithTheirOwnAddresses)
{
    const auto exchange = std::make_shared<Exchange>();
    EXPECT_EQ(exchange->QueryInterface("IImporterTesselPrefsDialogDataExchange"),
              static_cast<Interface*>(exchange.get()));
    EXPECT_EQ(exchange->QueryInterface("ImporterTessel::ImporterTesselPrefsDialogDataExchange"),
              exchange.get());
}

TEST(DataExchange, AnswersToNoOtherText)
{
    const auto exchange = std::make_shared<Exchange>();
    const std::string name(Interface::kTypeName);
    for (const std::string& other :
         {std::string(), name.substr(1), name.substr(0, name.size() - 1), name + '\0', name + 'x',
          std::string("iImporterTesselPrefsDialogDataExchange"), "ImporterTessel::" + name,
          std::string("ImporterTesselPrefsDialogDataExchange")}) {
        EXPECT_EQ(exchange->QueryInterface(other), nullptr) << other;
    }
}

TEST(DataExchange, HoldsCopies)
{
    const auto exchange = std::make_shared<Exchange>();
    TesselInfo info;
    info.mFrameWidth = 64;
    info.mSavePath = u"/a";
    info.mSwatchColors.colorSwatches = {1.0F};
    exchange->SetPrefs(info);
    info.mFrameWidth = 65;
    TesselInfo held;
    exchange->GetPrefs(held);
    EXPECT_EQ(held.mFrameWidth, 64);
    EXPECT_EQ(held.mSavePath, u"/a");
    EXPECT_EQ(held.mSwatchColors.colorSwatches.size(), 1U);
    EXPECT_EQ(exchange->GetDataFileText(), TesselToUTF8String(held));
}

TEST(DataExchange, SettingPrefsClearsTheCancelledFlagAndLeavesTheOther)
{
    const auto exchange = std::make_shared<Exchange>();
    EXPECT_FALSE(exchange->IsCancelled());
    exchange->SetUseFileAsCustomImporter(true);
    exchange->Cancel();
    EXPECT_TRUE(exchange->IsCancelled());
    exchange->SetPrefs({});
    EXPECT_FALSE(exchange->IsCancelled());
    EXPECT_TRUE(exchange->UsesFileAsCustomImporter());
    exchange->SetUseFileAsCustomImporter(false);
    EXPECT_FALSE(exchange->UsesFileAsCustomImporter());
}

TEST(DataExchange, SharesItselfAndIsWatched)
{
    const std::size_t before = qelcore::classref::CountWatched(Exchange::kTypeName);
    auto exchange = std::make_shared<Exchange>();
    EXPECT_EQ(qelcore::classref::CountWatched(Exchange::kTypeName), before + 1);
    auto shared = exchange->GetSharedFromThis();
    exchange.reset();
    EXPECT_EQ(qelcore::classref::CountWatched(Exchange::kTypeName), before + 1);
    shared.reset();
    EXPECT_EQ(qelcore::classref::CountWatched(Exchange::kTypeName), before);
}

/// An object without the interface.
class Stranger final : public qelcore::classref::UnknownBase {
public:
    void* QueryInterface(std::string_view /*typeName*/) noexcept override { return nullptr; }
};

TEST(CreatePrefsDialog, NeedsTheInterface)
{
    const auto stranger = std::make_shared<Stranger>();
    EXPECT_THROW(CreatePrefsDialog(*stranger, {}, nullptr), qelcore::null_pointer_exception);
}

TEST(CreatePrefsDialog, WithoutALayoutNothingIsShownAndNothingChanges)
{
    // This test program has no layout resource.
    const auto exchange = std::make_shared<Exchange>();
    CreatePrefsDialog(*exchange, {}, nullptr);
    EXPECT_FALSE(exchange->IsCancelled());
}

TEST(HostWindow, IsTheMainWindowAndItsWorkspace)
{
    EXPECT_EQ(FindHostMainWindow(), nullptr);
    EXPECT_EQ(FindHostWorkspace(), nullptr);
    qelworkspace::workspace::MainWindow window("W");
    EXPECT_EQ(FindHostMainWindow(), &window);
    EXPECT_EQ(FindHostWorkspace(), window.GetWorkspace());
}

} // namespace
