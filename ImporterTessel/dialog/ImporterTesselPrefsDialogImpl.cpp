#include "ImporterTesselPrefsDialogImpl.h"

#include <ImporterTessel/settings/DataFile.h>
#include <kestrel/qelcore/exceptions/Exceptions.h>
#include <kestrel/qelworkspace/Workspace.h>

#include <sstream>
#include <utility>

namespace ImporterTessel {

/// Every control but the two colour columns, which are bound by column and channel.
struct ImporterTesselPrefsDialogImpl::Bindings {
    using Impl = ImporterTesselPrefsDialogImpl;

    static constexpr std::array<Binding<qelui::UI_Popup>, 8> kPopups{{
        {"pixelFormatPopupID", &Controls::pixelFormat, &Impl::OnPixelFormat},
        {"pixelAspectPopupID", &Controls::pixelAspect, &Impl::OnPixelAspect},
        {"frameRatePopupID", &Controls::frameRate, &Impl::OnFrameRate},
        {"fieldTypePopupID", &Controls::fieldType, &Impl::OnFieldType},
        {"colorRenderingTypePopupID", &Controls::renderType, &Impl::OnRenderType},
        {"chooseColorPopupID", &Controls::colorSlot, &Impl::UpdateColorButtonLabels},
        {"colorSpacePopupID", &Controls::colorSpace, &Impl::OnColorSpace},
        {"identifierFormatPopup", &Controls::identifierFormat, &Impl::OnIdentifierFormat},
    }};
    static constexpr std::array<Binding<qelui::UI_NumberEdit>, 4> kNumberEdits{{
        {"frameWidthID", &Controls::frameWidth, &Impl::OnFrameWidth},
        {"frameHeightID", &Controls::frameHeight, &Impl::OnFrameHeight},
        {"durationFramesTextID", &Controls::durationFrames, &Impl::OnDurationFrames},
        {"durationSecondsTextID", &Controls::durationSeconds, &Impl::OnDurationSeconds},
    }};
    static constexpr std::array<Binding<qelui::UI_HotTextNumber>, 2> kHotTextNumbers{{
        {"frequencyHotTextNumber", &Controls::frequency, &Impl::OnFrequency},
        {"amplitudeHotTextNumber", &Controls::amplitude, &Impl::OnAmplitude},
    }};
    static constexpr std::array<Binding<qelui::UI_Button>, 6> kButtons{{
        {"swatchCoordinatesFileButtonID", &Controls::swatchCoordinatesFile, &Impl::ChooseSwatchCoordinatesFile},
        {"swatchColorsFileButtonID", &Controls::swatchColorsFile, &Impl::ChooseSwatchColorsFile},
        {"saveToPathButtonID", &Controls::saveToPath, &Impl::ChooseSaveToPath},
        {"saveFileButtonID", &Controls::saveFile, &Impl::OnSaveFile},
        {"okButton", &Controls::ok, &Impl::OnOk},
        {"cancelButton", &Controls::cancel, &Impl::OnCancel},
    }};
    static constexpr std::array<Binding<qelui::UI_CheckBox>, 2> kCheckBoxes{{
        {"drawFrameNumberCBID", &Controls::drawFrameNumber, &Impl::OnDrawFrameNumber},
        {"useAsCustomImporterID", &Controls::useAsCustomImporter, &Impl::OnUseAsCustomImporter},
    }};
    static constexpr std::array<Binding<qelui::UI_RadioButton>, 2> kRadioButtons{{
        {"steadyTonesBtn", &Controls::steadyTones, &Impl::OnAudioMode},
        {"identifyChannelsBtn", &Controls::identifyChannels, &Impl::OnAudioMode},
    }};
    static constexpr std::array<Binding<qelui::UI_StaticText>, 3> kStaticTexts{{
        {"swatchCoordinatesFilePathTextID", &Controls::swatchCoordinatesPath, nullptr},
        {"swatchColorsFilePathTextID", &Controls::swatchColorsPath, nullptr},
        {"saveToPathStaticTextID", &Controls::savePath, nullptr},
    }};
};

ImporterTesselPrefsDialogImpl::ImporterTesselPrefsDialogImpl(
    std::shared_ptr<IImporterTesselPrefsDialogDataExchange> exchange, const qelui::DrawSupplier& supplier,
    qelui::TopLevelWindow* parent)
    : UI_LumenViewBase(std::string(kPrefsDialogIdentifier), supplier, parent, qellumenfactory::kPreferLumen),
      mExchange(std::move(exchange))
{
    mExchange->GetPrefs(mPrefs);
}

ImporterTesselPrefsDialogImpl::~ImporterTesselPrefsDialogImpl() = default;

template <class Control>
void ImporterTesselPrefsDialogImpl::Bind(const Binding<Control>& binding)
{
    auto& control = GetDialog().GetControl<Control>(binding.identifier);
    mControls.*binding.handle = &control;
    if (binding.onChange != nullptr) {
        control.NotifyWhenChanged([this, handler = binding.onChange] { (this->*handler)(); });
    }
}

void ImporterTesselPrefsDialogImpl::BindColorColumns()
{
    constexpr std::array<std::string_view, kChannels> kChannelNames{"Red", "Green", "Blue", "Alpha"};
    for (std::size_t column = 0; column < kColumns; ++column) {
        const std::string number = std::to_string(column);
        auto& button = GetDialog().GetControl<qelui::UI_Button>("chooseColorButtonID" + number);
        button.NotifyWhenChanged([this, column] { OnColorButton(column); });
        mControls.colorButtons[column] = &button;
        for (std::size_t channel = 0; channel < kChannels; ++channel) {
            const std::string identifier =
                "chooseColor" + std::string(kChannelNames[channel]) + "TextID" + number;
            auto& edit = GetDialog().GetControl<qelui::UI_NumberEdit>(identifier);
            edit.NotifyWhenChanged([this, column, channel] { OnChannel(column, channel); });
            mControls.channels[column][channel] = &edit;
        }
    }
}

void ImporterTesselPrefsDialogImpl::BindControls()
{
    const auto bindAll = [this](const auto& table) {
        for (const auto& binding : table) {
            Bind(binding);
        }
    };
    bindAll(Bindings::kPopups);
    bindAll(Bindings::kNumberEdits);
    bindAll(Bindings::kHotTextNumbers);
    bindAll(Bindings::kButtons);
    bindAll(Bindings::kCheckBoxes);
    bindAll(Bindings::kRadioButtons);
    bindAll(Bindings::kStaticTexts);
    BindColorColumns();
    InitializeControls();
    // The host shows a picture of the settings, and keeps them where a save failed.
    GetDialog().SetDocument([this] { return TesselToUTF8String(mPrefs); });
}

void CreatePrefsDialog(qelcore::classref::UnknownBase& source, const qelui::DrawSupplier& supplier,
                       qelui::TopLevelWindow* parent)
{
    using Exchange = IImporterTesselPrefsDialogDataExchange;
    auto* const exchange = static_cast<Exchange*>(source.QueryInterface(Exchange::kTypeName));
    if (exchange == nullptr) {
        throw qelcore::null_pointer_exception(Exchange::kTypeName);
    }
    // Shares the ownership of the object, points at its interface.
    const std::shared_ptr<Exchange> shared(exchange->GetSharedFromThis(), exchange);
    const auto view = std::make_shared<ImporterTesselPrefsDialogImpl>(shared, supplier, parent);
    std::stringstream layout;
    if (view->GetScriptStream(kPrefsDialogIdentifier, layout)) {
        view->ParseLumenScript(layout);
    }
}

qelui::TopLevelWindow* FindHostMainWindow() noexcept
{
    return qelworkspace::workspace::WorkspaceUtils::FindMainTopLevelWindow();
}

qelworkspace::workspace::Workspace* FindHostWorkspace() noexcept
{
    qelui::TopLevelWindow* const window = FindHostMainWindow();
    return window == nullptr ? nullptr : window->GetWorkspace();
}

} // namespace ImporterTessel
