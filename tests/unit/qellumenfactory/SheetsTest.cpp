/// The settings dialog's two sheets: alike, and with every control that the dialog has.
#include <kestrel/qellumenfactory/LayoutBuilder.h>
#include <kestrel/qellumenfactory/Parser.h>
#include <kestrel/qelui/controls/UI_Button.h>
#include <kestrel/qelui/controls/UI_Number.h>

#include <gtest/gtest.h>
#include <support/TemporaryFolder.h>

#include <map>
#include <optional>
#include <string>

namespace {

using namespace qellumenfactory;
using qelui::ControlKind;

std::string ReadSheet(const char* extension)
{
    return test::ReadFile(std::string(TEST_LAYOUTS) + extension);
}

/// Whether two trees describe the same dialog, else which widgets differ. The order of parameters is not
/// compared.
testing::AssertionResult AreAlike(const LayoutNode& a, const LayoutNode& b)
{
    const auto parametersOf = [](const LayoutNode& node) {
        std::map<Key, ParameterValue> values;
        for (const Parameter& parameter : node.parameters) {
            values[parameter.key] = parameter.value;
        }
        return values;
    };
    if (a.kind != b.kind || parametersOf(a) != parametersOf(b) || a.children.size() != b.children.size()) {
        return testing::AssertionFailure() << NameOf(a.kind) << " \"" << a.Text(Key::Identifier) << "\" and "
                                           << NameOf(b.kind) << " \"" << b.Text(Key::Identifier) << '"';
    }
    for (std::size_t index = 0; index < a.children.size(); ++index) {
        if (auto alike = AreAlike(a.children[index], b.children[index]); !alike) {
            return alike;
        }
    }
    return testing::AssertionSuccess();
}

TEST(Sheets, DescribeTheSameDialog)
{
    const Layout lumen = ParseLayout(ReadSheet(".lumen"), "lumen");
    const Layout sable = ParseLayout(ReadSheet(".sable"), "sable");
    EXPECT_EQ(lumen.dialect, Dialect::Lumen);
    EXPECT_EQ(sable.dialect, Dialect::Sable);
    EXPECT_TRUE(AreAlike(lumen.root, sable.root));
}

TEST(Sheets, NameEveryParameterInBothDialects)
{
    const Layout lumen = ParseLayout(R"(
qel_dialog(identifier: "d", layout: "l", title: "t", orientation: "row", spacing: 1, margin: 2) {
    qel_groupbox(label: "g", border: false, tooltip: "x") {
        qel_number_edit(label: "n", value: 5, minValue: 1, maxValue: 9, allowZero: true, decimalPlaces: 2,
                        step: 0.5, postLabel: "Hz", minWidth: 3, minHeight: 4)
        qel_checkbox(checked: true)
    }
})",
                                     "lumen");
    const Layout sable = ParseLayout(R"(
dialog {
    identifier = "d" layout = "l" title = "t" orientation = "row" spacing = 1 margin = 2
    group {
        label = "g" border = false tooltip = "x"
        unit_edit_number {
            label = "n" value = 5 min_value = 1 max_value = 9 allow_zero = true decimal_places = 2
            step = 0.5 post_label = "Hz" width = 3 height = 4
        }
        checkbox { checked = true }
    }
})",
                                     "sable");
    EXPECT_TRUE(AreAlike(lumen.root, sable.root));
    EXPECT_EQ(lumen.root.children.at(0).children.at(0).parameters.size(), 10U);
    EXPECT_FALSE(AreAlike(lumen.root, sable.root.children.at(0)));
}

/// One control as the dialog's users know it.
struct Row {
    ControlKind kind;
    const char* identifier;
    const char* label;
    int minWidth = 0;
    std::optional<double> minimum;
    std::optional<double> maximum;
    int decimals = 0;
};

const Row kRows[] = {
    {ControlKind::Popup, "pixelFormatPopupID", "Pixel Format:", 250, {}, {}},
    {ControlKind::NumberEdit, "frameWidthID", "Frame Width:", 50, 16, 100000},
    {ControlKind::NumberEdit, "frameHeightID", "Frame Height:", 50, 16, 100000},
    {ControlKind::Popup, "pixelAspectPopupID", "Pixel Aspect:", 250, {}, {}},
    {ControlKind::Popup, "frameRatePopupID", "Frame Rate:", 200, {}, {}},
    {ControlKind::NumberEdit, "durationFramesTextID", "Duration (frames)", 100, 1, {}},
    {ControlKind::NumberEdit, "durationSecondsTextID", "Duration (seconds)", 100, 0.1, {}, 6},
    {ControlKind::Popup, "fieldTypePopupID", "Field Type:", 200, {}, {}},
    {ControlKind::Popup, "colorRenderingTypePopupID", "Render Type:", 200, {}, {}},
    {ControlKind::Popup, "chooseColorPopupID", "Colors:", 150, {}, {}},
    {ControlKind::Button, "chooseColorButtonID0", "Upper Field Color", 0, {}, {}},
    {ControlKind::NumberEdit, "chooseColorRedTextID0", "Red:", 60, {}, {}, 4},
    {ControlKind::NumberEdit, "chooseColorGreenTextID0", "Green:", 60, {}, {}, 4},
    {ControlKind::NumberEdit, "chooseColorBlueTextID0", "Blue:", 60, {}, {}, 4},
    {ControlKind::NumberEdit, "chooseColorAlphaTextID0", "Alpha:", 60, {}, {}, 4},
    {ControlKind::Button, "chooseColorButtonID1", "Lower Field Color", 0, {}, {}},
    {ControlKind::NumberEdit, "chooseColorRedTextID1", "Red:", 60, {}, {}, 4},
    {ControlKind::NumberEdit, "chooseColorGreenTextID1", "Green:", 60, {}, {}, 4},
    {ControlKind::NumberEdit, "chooseColorBlueTextID1", "Blue:", 60, {}, {}, 4},
    {ControlKind::NumberEdit, "chooseColorAlphaTextID1", "Alpha:", 60, {}, {}, 4},
    {ControlKind::Button, "swatchCoordinatesFileButtonID", "Choose Swatch Coordinates File Path...", 0, {}, {}},
    {ControlKind::StaticText, "swatchCoordinatesFilePathTextID", "Swatch Coordinates File Path:", 350, {}, {}},
    {ControlKind::Button, "swatchColorsFileButtonID", "Choose Swatch Colors File Path...", 0, {}, {}},
    {ControlKind::StaticText, "swatchColorsFilePathTextID", "Swatch Colors File Path:", 350, {}, {}},
    {ControlKind::Popup, "colorSpacePopupID", "Color Space:", 250, {}, {}},
    {ControlKind::CheckBox, "drawFrameNumberCBID", "Draw Frame Number.Field Text on Frame", 0, {}, {}},
    {ControlKind::RadioButton, "steadyTonesBtn", "Steady Tones", 0, {}, {}},
    {ControlKind::HotTextNumber, "frequencyHotTextNumber", "Tone Frequency:", 80, 1, 24000, 1},
    {ControlKind::HotTextNumber, "amplitudeHotTextNumber", "Amplitude:", 80, -300, 0, 1},
    {ControlKind::RadioButton, "identifyChannelsBtn", "Identify Channels", 0, {}, {}},
    {ControlKind::Popup, "identifierFormatPopup", "Format:", 150, {}, {}},
    {ControlKind::CheckBox, "useAsCustomImporterID", "Use File (Treat as Custom Importer)", 0, {}, {}},
    {ControlKind::Button, "saveToPathButtonID", "Choose Save To Path...", 0, {}, {}},
    {ControlKind::StaticText, "saveToPathStaticTextID", "Save To File Path:", 350, {}, {}},
    {ControlKind::Button, "saveFileButtonID", "Save File", 0, {}, {}},
    {ControlKind::Button, "okButton", "OK", 0, {}, {}},
    {ControlKind::Button, "cancelButton", "Cancel", 0, {}, {}},
};

TEST(Sheets, HoldEveryControlInReadingOrder)
{
    const auto dialog = BuildDialog(ParseLayout(ReadSheet(".lumen"), "lumen").root);
    EXPECT_EQ(dialog->Identifier(), "ImporterTesselPrefs");
    EXPECT_EQ(dialog->Title(), "Tessel Settings");
    EXPECT_EQ(dialog->Spacing(), 10);
    EXPECT_EQ(dialog->Margin(), 15);
    std::vector<qelui::UI_ControlView*> controls;
    for (qelui::UI_ControlView* const control : dialog->AllControls()) {
        if (dynamic_cast<const qelui::UI_Group*>(control) == nullptr) {
            controls.push_back(control);
            EXPECT_TRUE(!control->Tooltip().empty() || control->Parent()->Kind() == ControlKind::OkCancelRow)
                << control->Identifier();
        }
    }
    ASSERT_EQ(controls.size(), std::size(kRows));
    for (std::size_t index = 0; index < controls.size(); ++index) {
        const Row& row = kRows[index];
        const auto& control = *controls[index];
        EXPECT_EQ(control.Identifier(), row.identifier);
        EXPECT_EQ(control.Kind(), row.kind) << row.identifier;
        EXPECT_EQ(control.Label(), row.label) << row.identifier;
        EXPECT_EQ(control.MinWidth(), row.minWidth) << row.identifier;
        if (const auto* const number = dynamic_cast<const qelui::UI_NumberView*>(&control)) {
            EXPECT_EQ(number->Minimum(), row.minimum) << row.identifier;
            EXPECT_EQ(number->Maximum(), row.maximum) << row.identifier;
            EXPECT_EQ(number->DecimalPlaces(), row.decimals) << row.identifier;
        }
    }
}

TEST(Sheets, GiveHotTextNumbersTheirStepsUnitsAndValues)
{
    const auto dialog = BuildDialog(ParseLayout(ReadSheet(".sable"), "sable").root);
    const auto& frequency = dialog->GetControl<qelui::UI_HotTextNumber>("frequencyHotTextNumber");
    EXPECT_EQ(frequency.GetValue(), 1000.0);
    EXPECT_EQ(frequency.Step(), 10.0);
    EXPECT_EQ(frequency.PostLabel(), "Hz");
    const auto& amplitude = dialog->GetControl<qelui::UI_HotTextNumber>("amplitudeHotTextNumber");
    EXPECT_EQ(amplitude.GetValue(), -12.041199826559248);
    EXPECT_EQ(amplitude.Step(), 0.1);
    EXPECT_EQ(amplitude.PostLabel(), "dB");
    EXPECT_EQ(dialog->FindControl("identifierFormatPopup")->MinHeight(), 20);
    EXPECT_EQ(dialog->GetControl<qelui::UI_RadioButton>("steadyTonesBtn").GetValue(), 1);
    const auto& radioGroup = dialog->GetControl<qelui::UI_RadioGroup>("radioGroup1");
    EXPECT_FALSE(radioGroup.HasBorder());
    EXPECT_EQ(radioGroup.Spacing(), 10);
    EXPECT_EQ(radioGroup.Parent()->Label(), "Audio Settings");
    EXPECT_EQ(radioGroup.Parent()->Spacing(), 10);
    EXPECT_TRUE(dialog->GetControl<qelui::UI_NumberEdit>("durationSecondsTextID").IsZeroAllowed());
    EXPECT_FALSE(dialog->GetControl<qelui::UI_NumberEdit>("durationFramesTextID").IsZeroAllowed());
}

} // namespace
