/// What scripts cannot reach: settings that no document carries, and what the dialog asks of the host.
#include <ImporterTessel/dialog/ImporterTesselPrefsDialogImpl.h>
#include <ImporterTessel/settings/DataFile.h>
#include <kestrel/qelcore/exceptions/Exceptions.h>
#include <kestrel/qelcore/logging/Log.h>
#include <kestrel/qelcore/text/Unicode.h>
#include <kestrel/qellumenfactory/Parser.h>
#include <tests/unit/qelui/FakeToolkit.h>

#include <gtest/gtest.h>
#include <support/TemporaryFolder.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace ImporterTessel;
using namespace qelui;
using Exchange = ImporterTesselPrefsDialogDataExchange;

std::string LayoutText()
{
    return test::ReadFile(TEST_LAYOUTS ".lumen");
}

/// The layout without the widget of that identifier, which holds no others.
std::string LayoutWithout(const std::string& identifier)
{
    std::string layout = LayoutText();
    const std::size_t at = layout.find("identifier: \"" + identifier + '"');
    const std::size_t begin = layout.rfind("qel_", at);
    return layout.erase(begin, layout.find(")\n", at) + 1 - begin);
}

class PrefsDialog : public testing::Test {
protected:
    /// Runs the dialog on `prefs`; `act` does what a person does. @return what the exchange holds afterwards.
    TesselInfo Run(const TesselInfo& prefs, const std::function<void(UI_Dialog&)>& act,
                   const std::string& layout = LayoutText())
    {
        exchange = std::make_shared<Exchange>();
        exchange->SetPrefs(prefs);
        toolkit.reset(); // before the new one: its destructor ends the use of any toolkit
        toolkit = std::make_unique<tests::FakeToolkit>(act);
        prepare(*toolkit);
        const auto view = std::make_shared<ImporterTesselPrefsDialogImpl>(exchange, DrawSupplier{}, nullptr);
        EXPECT_FALSE(view->IsInitialized());
        std::istringstream stream(layout);
        view->ParseLumenScript(stream);
        EXPECT_TRUE(view->IsInitialized());
        TesselInfo after;
        exchange->GetPrefs(after);
        return after;
    }
    static void Ok(UI_Dialog& dialog) { dialog.GetControl<UI_Button>("okButton").Press(); }
    [[nodiscard]] std::u16string Path(const char* name) const { return (mFolder / name).u16string(); }

    test::TemporaryFolder mFolder;
    std::shared_ptr<Exchange> exchange;
    std::function<void(tests::FakeToolkit&)> prepare = [](tests::FakeToolkit&) {};
    std::unique_ptr<tests::FakeToolkit> toolkit;
};

TEST_F(PrefsDialog, AStoredSavePathIsShownAndItsBoxCheckedAndDisabled)
{
    TesselInfo prefs;
    prefs.mSavePath = Path("stored.tessel");
    (void)Run(prefs, [&](UI_Dialog& dialog) {
        EXPECT_EQ(dialog.GetControl<UI_StaticText>("saveToPathStaticTextID").GetValue(),
                  qelcore::text::ToUTF8(prefs.mSavePath));
        const auto& box = dialog.GetControl<UI_CheckBox>("useAsCustomImporterID");
        EXPECT_TRUE(box.IsChecked());
        EXPECT_FALSE(box.IsEnabled());
        EXPECT_TRUE(dialog.GetControl<UI_Button>("saveFileButtonID").IsEnabled());
        Ok(dialog);
    });
    // OK wrote the file. The dialog has checked the box itself, which does not count as a choice.
    EXPECT_TRUE(std::filesystem::exists(mFolder / "stored.tessel"));
    EXPECT_FALSE(exchange->UsesFileAsCustomImporter());
}

TEST_F(PrefsDialog, AClipWithoutAUsableRateHasOneFrameAndKeepsItAtTheRateThatIsChosen)
{
    TesselInfo prefs;
    prefs.mVideoFrameRate = {qelmediatypes::FrameRate::kUnusableTicks};
    const TesselInfo after = Run(prefs, [](UI_Dialog& dialog) {
        EXPECT_EQ(dialog.GetControl<UI_NumberEdit>("durationFramesTextID").GetValue(), 1.0);
        dialog.GetControl<UI_Popup>("frameRatePopupID").Choose(5); // 24 fps
        EXPECT_EQ(dialog.GetControl<UI_NumberEdit>("durationFramesTextID").GetValue(), 1.0);
        Ok(dialog);
    });
    EXPECT_EQ(after.mVideoFrameRate.ticksPerFrame, 10'584'000'000);
    EXPECT_EQ(after.mVideoDuration.Ticks(), 10'584'000'000);
}

TEST_F(PrefsDialog, NumbersThatRoundToTheLargestFloatAreThatAndNoInfinity)
{
    // 3.4028235e38 is beyond the largest float, 3.40282346638...e38, by less than half a unit of its last
    // place.
    const TesselInfo after = Run({}, [](UI_Dialog& dialog) {
        dialog.GetControl<UI_NumberEdit>("chooseColorRedTextID0").EnterValue(3.4028235e38);
        dialog.GetControl<UI_NumberEdit>("chooseColorGreenTextID0").EnterValue(-3.4028235e38);
        dialog.GetControl<UI_NumberEdit>("chooseColorBlueTextID0").EnterValue(3.4028236e38);
        Ok(dialog);
    });
    constexpr float kLargest = std::numeric_limits<float>::max();
    EXPECT_EQ(after.mTopGradiantColorEnd.mRedPart, kLargest);
    EXPECT_EQ(after.mTopGradiantColorEnd.mGreenPart, -kLargest);
    EXPECT_EQ(after.mTopGradiantColorEnd.mBluePart, std::numeric_limits<float>::infinity());
}

TEST_F(PrefsDialog, ASwatchFileThatFailsIsLoggedWithItsNameAndWhatIsWrongWithIt)
{
    struct Row {
        const char* name;
        const char* content; // null for no file
        const char* message; // what the log line holds beside the file's name
    };
    for (const Row& row :
         {Row{"absent.json", nullptr, ": no such file"},
          Row{"broken.json", "{\n\"colorSwatches\" []}", ": JSON not well-formed: line 2, column 17: "},
          Row{"lacking.json", "{}", ": \"colorSwatches\": missing key of SwatchColors"},
          Row{"wrong.json",
              R"({"colorSwatches": [1, "red"], "legalRangeGradient": [], "fullRangeGradient": []})",
              ": \"colorSwatches[1]\": expected a number"}}) {
        if (row.content != nullptr) {
            std::ofstream(mFolder / row.name) << row.content;
        }
        prepare = [&](tests::FakeToolkit& host) { host.files = {Path(row.name)}; };
        std::vector<std::string> lines;
        const qelcore::logging::ScopedListener listener(
            [&](const qelcore::logging::Message& message) { lines.push_back(message.text); });
        (void)Run({}, [](UI_Dialog& dialog) {
            dialog.GetControl<UI_Button>("swatchColorsFileButtonID").Press();
            Ok(dialog);
        });
        ASSERT_EQ(lines.size(), 1U) << row.name;
        const std::string expected = (mFolder / row.name).string() + row.message;
        EXPECT_EQ(lines[0].substr(0, expected.size()), expected);
    }
}

TEST_F(PrefsDialog, ASwatchFileThatIsAFolderIsLoggedToo)
{
    prepare = [&](tests::FakeToolkit& host) { host.files = {mFolder.Path().u16string()}; };
    std::vector<std::string> lines;
    const qelcore::logging::ScopedListener listener(
        [&](const qelcore::logging::Message& message) { lines.push_back(message.text); });
    (void)Run({}, [](UI_Dialog& dialog) {
        dialog.GetControl<UI_Button>("swatchCoordinatesFileButtonID").Press();
        Ok(dialog);
    });
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].find(mFolder.Path().string() + ": "), 0U) << lines[0];
    EXPECT_NE(lines[0].find("directory"), std::string::npos) << lines[0];
}

TEST_F(PrefsDialog, AStaleFieldSlotInGradientModePicksNothingAndRefreshesTheEdits)
{
    const TesselInfo after = Run({}, [](UI_Dialog& dialog) {
        dialog.GetControl<UI_Popup>("chooseColorPopupID").SetValue(0);
        auto& red = dialog.GetControl<UI_NumberEdit>("chooseColorRedTextID1");
        red.SetValue(0.75);
        dialog.GetControl<UI_Button>("chooseColorButtonID1").Press();
        EXPECT_EQ(red.GetValue(), 0.0) << "the lower field's red";
        Ok(dialog);
    });
    EXPECT_TRUE(toolkit->colorRequests.empty());
    EXPECT_EQ(after.mLowerFieldColor, TesselInfo().mLowerFieldColor);
}

TEST_F(PrefsDialog, FieldColorsArePickedWhateverTheSlot)
{
    TesselInfo prefs;
    prefs.mRenderFormat = kRenderFieldColors;
    prepare = [](tests::FakeToolkit& host) { host.colors = {sharedui::PickerColor{0.1F, 0.2F, 0.3F, 0.4F}}; };
    const TesselInfo after = Run(prefs, [](UI_Dialog& dialog) {
        dialog.GetControl<UI_Popup>("chooseColorPopupID").SetValue(2);
        dialog.GetControl<UI_Button>("chooseColorButtonID1").Press();
        Ok(dialog);
    });
    // Intended: alpha stays 1.
    EXPECT_EQ(after.mLowerFieldColor, (FloatColor{1.0F, 0.1F, 0.2F, 0.3F}));
    EXPECT_EQ(after.mBottomGradiantColorEnd, prefs.mBottomGradiantColorEnd);
}

TEST_F(PrefsDialog, ThePickerGetsTheColorAsRedGreenBlueAlpha)
{
    TesselInfo prefs;
    prefs.mTopGradiantColorEnd = {0.4F, 0.1F, 0.2F, 0.3F};
    (void)Run(prefs, [](UI_Dialog& dialog) { dialog.GetControl<UI_Button>("chooseColorButtonID0").Press(); });
    ASSERT_EQ(toolkit->colorRequests.size(), 1U);
    EXPECT_EQ(toolkit->colorRequests[0].color, (sharedui::PickerColor{0.1F, 0.2F, 0.3F, 0.4F}));
    EXPECT_NE(toolkit->colorRequests[0].parent, nullptr);
}

TEST_F(PrefsDialog, TheFileDialogsHaveTheirFiltersAndTheNameOfTheLastSave)
{
    prepare = [&](tests::FakeToolkit& host) {
        host.files = {std::nullopt, std::nullopt, Path("first.tessel"), std::nullopt};
    };
    const TesselInfo after = Run({}, [](UI_Dialog& dialog) {
        dialog.GetControl<UI_Button>("swatchCoordinatesFileButtonID").Press();
        dialog.GetControl<UI_Button>("swatchColorsFileButtonID").Press();
        dialog.GetControl<UI_Button>("saveToPathButtonID").Press();
        dialog.GetControl<UI_Button>("saveToPathButtonID").Press();
        Ok(dialog);
    });
    const auto& requests = toolkit->fileRequests;
    ASSERT_EQ(requests.size(), 4U);
    const struct {
        const char* description;
        const char* extension;
        bool saveAs;
        const char16_t* name;
    } kWanted[] = {{"Swatch Coordinates File", "json", false, u""},
                   {"Swatch Colors File", "json", false, u""},
                   {"Tessel Data", "tessel", true, u"Default Frame"},
                   {"Tessel Data", "tessel", true, u"first.tessel"}};
    for (std::size_t index = 0; index < 4; ++index) {
        ASSERT_EQ(requests[index].filters.size(), 1U);
        EXPECT_EQ(requests[index].filters[0].description, kWanted[index].description);
        EXPECT_EQ(requests[index].filters[0].extension, kWanted[index].extension);
        EXPECT_EQ(requests[index].saveAs, kWanted[index].saveAs);
        EXPECT_EQ(requests[index].proposedName, kWanted[index].name);
        EXPECT_NE(requests[index].parent, nullptr);
    }
    EXPECT_EQ(after.mClipName, u"first.tessel");
    EXPECT_EQ(after.mSavePath, Path("first.tessel"));
}

TEST_F(PrefsDialog, WritingHandsTheExchangeTheFormerClipName)
{
    prepare = [&](tests::FakeToolkit& host) { host.files = {Path("first.tessel")}; };
    (void)Run({}, [&](UI_Dialog& dialog) {
        exchange->Cancel();
        dialog.GetControl<UI_Button>("saveToPathButtonID").Press();
        TesselInfo held;
        exchange->GetPrefs(held);
        EXPECT_EQ(held.mClipName, u"Default Frame");
        EXPECT_EQ(held.mSavePath, Path("first.tessel"));
        EXPECT_FALSE(exchange->IsCancelled()) << "handing over the settings clears the flag";
    });
    // The run ended without OK, which is a cancel.
    EXPECT_TRUE(exchange->IsCancelled());
}

TEST_F(PrefsDialog, TheRetryBoxAsksAsTheHostKnowsIt)
{
    prepare = [&](tests::FakeToolkit& host) {
        host.files = {Path("nowhere/a.tessel"), Path("nowhere/b.tessel")};
        host.boxes = {16, 64};
    };
    const TesselInfo after = Run({}, [](UI_Dialog& dialog) {
        dialog.GetControl<UI_Button>("saveToPathButtonID").Press();
        EXPECT_FALSE(dialog.GetControl<UI_Button>("saveFileButtonID").IsEnabled());
        Ok(dialog);
    });
    ASSERT_EQ(toolkit->boxRequests.size(), 2U);
    const auto& box = toolkit->boxRequests[0];
    EXPECT_EQ(box.title, "Error saving file");
    EXPECT_EQ(box.text, "There was a problem saving the file. Choose another path?");
    EXPECT_EQ(box.buttonSet, 80);
    EXPECT_EQ(box.defaultButton, 16);
    EXPECT_EQ(box.icon, 1);
    EXPECT_NE(box.parent, nullptr);
    EXPECT_EQ(after.mSavePath, Path("nowhere/b.tessel")) << "the last failed path stays";
}

TEST_F(PrefsDialog, AnyAnswerButTheDefaultGivesUp)
{
    prepare = [&](tests::FakeToolkit& host) {
        host.files = {Path("nowhere/a.tessel"), Path("b.tessel")};
        host.boxes = {17};
    };
    (void)Run({}, [](UI_Dialog& dialog) { dialog.GetControl<UI_Button>("saveToPathButtonID").Press(); });
    EXPECT_EQ(toolkit->boxRequests.size(), 1U);
    EXPECT_EQ(toolkit->fileRequests.size(), 1U);
}

TEST_F(PrefsDialog, ThePathTextsAreElidedInTheMiddle)
{
    prepare = [&](tests::FakeToolkit& host) { host.files = {Path("x.json"), Path("y.tessel")}; };
    (void)Run({}, [](UI_Dialog& dialog) {
        dialog.GetControl<UI_Button>("swatchColorsFileButtonID").Press();
        dialog.GetControl<UI_Button>("saveToPathButtonID").Press();
        for (const char* const identifier : {"swatchColorsFilePathTextID", "saveToPathStaticTextID"}) {
            EXPECT_EQ(static_cast<int>(dialog.GetControl<UI_StaticText>(identifier).GetDisplayOption()), 3);
        }
    });
}

TEST_F(PrefsDialog, ChannelsBeyondAFloatsRangeBecomeInfinite)
{
    TesselInfo prefs;
    prefs.mRenderFormat = kRenderFieldColors;
    const TesselInfo after = Run(prefs, [](UI_Dialog& dialog) {
        dialog.GetControl<UI_NumberEdit>("chooseColorRedTextID0").EnterValue(1e300);
        dialog.GetControl<UI_NumberEdit>("chooseColorBlueTextID0").EnterValue(-1e300);
        Ok(dialog);
    });
    EXPECT_EQ(after.mUpperFieldColor.mRedPart, std::numeric_limits<float>::infinity());
    EXPECT_EQ(after.mUpperFieldColor.mBluePart, -std::numeric_limits<float>::infinity());
}

TEST_F(PrefsDialog, AnAmplitudeThatIsNoNumberShowsTheLeast)
{
    TesselInfo prefs;
    prefs.mSteadyToneAmplitude = std::numeric_limits<float>::quiet_NaN();
    (void)Run(prefs, [](UI_Dialog& dialog) {
        EXPECT_EQ(dialog.GetControl<UI_HotTextNumber>("amplitudeHotTextNumber").GetValue(), -300.0);
    });
}

TEST_F(PrefsDialog, DecibelsAndGainAreEachOthersInverse)
{
    for (int tenths = -3000; tenths <= 0; tenths += 37) {
        const double decibels = tenths / 10.0;
        const TesselInfo after = Run({}, [&](UI_Dialog& dialog) {
            dialog.GetControl<UI_HotTextNumber>("amplitudeHotTextNumber").EnterValue(decibels);
            Ok(dialog);
        });
        ASSERT_NEAR(after.mSteadyToneAmplitude / std::pow(10.0, decibels / 20.0), 1.0, 1e-5) << decibels;
        (void)Run(after, [&](UI_Dialog& dialog) {
            EXPECT_NEAR(dialog.GetControl<UI_HotTextNumber>("amplitudeHotTextNumber").GetValue(), decibels,
                        1e-3);
        });
    }
}

TEST_F(PrefsDialog, OpeningAndPressingOkChangesNothingOnWholeFrames)
{
    TesselInfo prefs;
    prefs.mSwatchColors.colorSwatches = {0.1F, 0.2F, 0.3F};
    prefs.mUpperFieldColor = {0.123456F, 16.5F, -0.25F, 1e-7F};
    for (const std::int64_t ticks :
         {std::int64_t{8475667200}, std::int64_t{10594584000}, std::int64_t{254016000}}) {
        prefs.mVideoFrameRate = {ticks};
        for (const std::int64_t frames : {1, 2, 1799, 107892, 2147483647}) {
            prefs.mVideoDuration = qelmediatypes::TickTime(frames, prefs.mVideoFrameRate);
            const TesselInfo after = Run(prefs, [](UI_Dialog& dialog) { Ok(dialog); });
            EXPECT_TRUE(after == prefs) << ticks << " ticks per frame, " << frames << " frames, now "
                                        << after.mVideoDuration.Ticks() << " ticks";
        }
    }
}

TEST_F(PrefsDialog, EveryControlThatIsMissingIsNamed)
{
    const qellumenfactory::Layout whole = qellumenfactory::ParseLayout(LayoutText(), "whole");
    const auto dialog = std::make_unique<UI_Dialog>("d");
    // Every widget with an identifier that is no group, dropped one at a time.
    std::vector<std::string> identifiers;
    const std::function<void(const qellumenfactory::LayoutNode&)> collect =
        [&](const qellumenfactory::LayoutNode& node) {
            if (node.children.empty() && node.Find(qellumenfactory::Key::Identifier) != nullptr) {
                identifiers.push_back(node.Text(qellumenfactory::Key::Identifier));
            }
            for (const auto& child : node.children) {
                collect(child);
            }
        };
    collect(whole.root);
    ASSERT_EQ(identifiers.size(), 35U);
    for (const std::string& identifier : identifiers) {
        try {
            (void)Run(
                {}, [](UI_Dialog&) { ADD_FAILURE() << "shown"; }, LayoutWithout(identifier));
            ADD_FAILURE() << identifier << " is missing and nobody noticed";
        } catch (const qelcore::null_pointer_exception& exception) {
            EXPECT_NE(std::string(exception.what()).find("qelui::UI_"), std::string::npos) << exception.what();
            EXPECT_NE(std::string(exception.what()).find(identifier), std::string::npos) << exception.what();
        }
    }
}

} // namespace
