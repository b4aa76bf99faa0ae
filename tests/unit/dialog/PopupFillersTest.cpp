#include <ImporterTessel/dialog/ChoiceTables.h>
#include <ImporterTessel/dialog/PopupFillers.h>
#include <kestrel/brindle/ColorSpaces.h>

#include <gtest/gtest.h>

namespace {

using namespace ImporterTessel;
using qelui::UI_Popup;

TEST(FillFrameRatePopup, ChoosesTheRateOrTheFirst)
{
    for (std::size_t index = 0; index < FrameRateChoices().size(); ++index) {
        UI_Popup popup("p");
        FillFrameRatePopup(popup, FrameRateChoices()[index].rate);
        EXPECT_EQ(popup.GetValue(), static_cast<int>(index));
        EXPECT_EQ(popup.ShownText(), FrameRateChoices()[index].label);
        EXPECT_EQ(popup.Items().size(), 14U);
    }
    for (const std::int64_t ticks : {std::int64_t{4234023360}, std::int64_t{0}, std::int64_t{-1}, INT64_MAX}) {
        UI_Popup popup("p");
        FillFrameRatePopup(popup, {ticks});
        EXPECT_EQ(popup.GetValue(), 0) << ticks;
    }
}

TEST(FillPixelFormatPopup, ChoosesTheFormatOrTheFirstAndEnablesAll)
{
    for (std::size_t index = 0; index < PixelFormatChoices().size(); ++index) {
        UI_Popup popup("p");
        FillPixelFormatPopup(popup, PixelFormatChoices()[index].sdkCode);
        EXPECT_EQ(popup.GetValue(), static_cast<int>(index));
        for (const UI_Popup::Item& item : popup.Items()) {
            EXPECT_TRUE(item.enabled) << item.text;
        }
    }
    UI_Popup popup("p");
    FillPixelFormatPopup(popup, 0);
    EXPECT_EQ(popup.GetValue(), 0);
}

TEST(FillPixelAspectPopup, ChoosesByBothNumbers)
{
    UI_Popup popup("p");
    FillPixelAspectPopup(popup, {40, 33});
    EXPECT_EQ(popup.GetValue(), 2);
    UI_Popup unreduced("p");
    FillPixelAspectPopup(unreduced, {80, 66});
    EXPECT_EQ(unreduced.GetValue(), 0);
}

TEST(FillFieldTypePopup, ChoosesOneAndTwoAndElseTheFirst)
{
    for (const auto& [fieldType, chosen] : {std::pair{0, 0}, {1, 1}, {2, 2}, {3, 0}, {-1, 0}, {INT32_MAX, 0}}) {
        UI_Popup popup("p");
        FillFieldTypePopup(popup, fieldType);
        EXPECT_EQ(popup.GetValue(), chosen) << fieldType;
    }
}

TEST(FillColorSpacePopup, ChoosesEachSpaceByItself)
{
    const auto spaces = ColorSpaceChoices();
    for (std::size_t index = 0; index < spaces.size(); ++index) {
        UI_Popup popup("p");
        FillColorSpacePopup(popup, spaces[index]);
        EXPECT_EQ(popup.GetValue(), static_cast<int>(index)) << popup.ShownText();
        EXPECT_EQ(popup.ShownText(), BR::ColorSpaceUtils::QELColorSpaceToString(spaces[index], 1));
    }
}

TEST(FillColorSpacePopup, ChoosesNoneWhereNoneMatches)
{
    qelmediatypes::color::ColorSpace space = BR::ColorSpaces::Rec709();
    space.colorSpaceLinearized = !space.colorSpaceLinearized;
    UI_Popup popup("p");
    FillColorSpacePopup(popup, space);
    EXPECT_EQ(popup.GetValue(), -1);
    EXPECT_EQ(popup.Items().size(), 16U);
}

TEST(FillIdentifierFormatPopup, MapsItemsToFormatsAndChoosesTheMatch)
{
    UI_Popup popup("p");
    EXPECT_EQ(FillIdentifierFormatPopup(popup, 3, 3), (IdentifierFormatMap{{0, 2}, {1, 3}}));
    EXPECT_EQ(popup.GetValue(), 1);
    // Again: the old items go.
    EXPECT_EQ(FillIdentifierFormatPopup(popup, 2, 3), (IdentifierFormatMap{{0, 0}, {1, 1}}));
    EXPECT_EQ(popup.GetValue(), 0);
    EXPECT_EQ(popup.Items().size(), 2U);
    EXPECT_TRUE(FillIdentifierFormatPopup(popup, 0, 1).empty());
    EXPECT_EQ(popup.GetValue(), -1);
}

} // namespace
