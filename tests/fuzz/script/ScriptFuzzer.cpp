/// Whatever the script, playing it ends with a closed dialog, and each handler-made dialog gets an answer.
#include <kestrel/qelui/controls/UI_Button.h>
#include <kestrel/qelui/controls/UI_Number.h>
#include <kestrel/qelui/controls/UI_Popup.h>
#include <kestrel/qelui/controls/UI_StaticText.h>
#include <kestrel/qelui/dialogs/UI_Dialog.h>
#include <kestrel/qelui/dialogs/UI_MessageBox.h>
#include <kestrel/qelui/script/Script.h>
#include <kestrel/qelui/script/ScriptRunner.h>
#include <kestrel/qelui/script/ScriptedToolkit.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

namespace {

using namespace qelui;

void Require(bool holds, std::string_view claim)
{
    if (!holds) {
        std::cerr << "broken: " << claim << '\n';
        std::abort();
    }
}

/// Scripts that write files are parsed, but not played.
bool WritesFiles(const std::vector<script::Command>& commands)
{
    for (const script::Command& command : commands) {
        if (std::holds_alternative<script::Dump>(command.action)) {
            return true;
        }
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    auto parsed = script::ParseScript(text);
    if (const auto* const error = std::get_if<script::ScriptError>(&parsed)) {
        Require(error->line >= 1 && !error->text.empty(), "an error has a line and says why");
        return 0;
    }
    auto commands = std::get<std::vector<script::Command>>(std::move(parsed));
    if (WritesFiles(commands)) {
        return 0;
    }
    UI_Dialog dialog("d");
    auto& popup = dialog.Add(std::make_unique<UI_Popup>("p"));
    popup.AddItem("one");
    popup.AddItem("two");
    popup.SetItemEnabled(1, false);
    auto& number = dialog.Add(std::make_unique<UI_NumberEdit>("n"));
    number.SetLimits(-5.0, 100.0);
    number.SetDecimalPlaces(3);
    dialog.Add(std::make_unique<UI_CheckBox>("c"));
    dialog.Add(std::make_unique<UI_StaticText>("t"));
    auto& radios = dialog.Add(std::make_unique<UI_RadioGroup>("g"));
    radios.Add(std::make_unique<UI_RadioButton>("r"));
    radios.Add(std::make_unique<UI_RadioButton>("s"));
    auto& row = dialog.Add(std::make_unique<UI_OkCancelRow>(""));
    row.GetControl<UI_Button>("okButton").NotifyWhenChanged([&] { dialog.Close(); });

    script::ScriptRunner runner("fuzz", std::move(commands), dialog);
    auto& asks = dialog.Add(std::make_unique<UI_Button>("b"));
    asks.NotifyWhenChanged([&] {
        (void)runner.TakeFileAnswer();
        (void)runner.TakeColorAnswer();
        (void)runner.TakeBoxAnswer();
    });
    script::ModelDriver driver(dialog);
    runner.Play(driver);
    Require(dialog.IsClosed(), "the dialog is closed");
    Require(std::isfinite(number.GetValue()) && number.GetValue() >= -5.0 && number.GetValue() <= 100.0,
            "a number stays within its limits");
    Require(popup.GetValue() != 1, "nobody chooses a disabled item");
    return 0;
}
