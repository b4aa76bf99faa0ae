/// The settings dialog: edits a copy of the settings and hands it back through the data exchange.
#pragma once

#include "DataExchange.h"
#include "PopupFillers.h"

#include <ImporterTessel/settings/TesselInfo.h>
#include <kestrel/orb/File.h>
#include <kestrel/qellumenfactory/UI_LumenViewBase.h>
#include <kestrel/qelui/controls/UI_Button.h>
#include <kestrel/qelui/controls/UI_Number.h>
#include <kestrel/qelui/controls/UI_Popup.h>
#include <kestrel/qelui/controls/UI_StaticText.h>

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace ImporterTessel {

inline constexpr std::string_view kPrefsDialogIdentifier = "ImporterTesselPrefs";

/// One per settings request, never used again. Handlers run in its modal run, on the ui thread, and work on
/// its own copy of the settings; the exchange gets them on OK and whenever a file is written.
class ImporterTesselPrefsDialogImpl final : public qellumenfactory::UI_LumenViewBase {
public:
    /// Takes its copy of the settings from `exchange`. `parent` is borrowed, null for none.
    ImporterTesselPrefsDialogImpl(std::shared_ptr<IImporterTesselPrefsDialogDataExchange> exchange,
                                  const qelui::DrawSupplier& supplier, qelui::TopLevelWindow* parent);
    ~ImporterTesselPrefsDialogImpl() override;
    ImporterTesselPrefsDialogImpl(const ImporterTesselPrefsDialogImpl&) = delete;
    ImporterTesselPrefsDialogImpl& operator=(const ImporterTesselPrefsDialogImpl&) = delete;

    /// @throws qelcore::null_pointer_exception naming the type of a control that the layout lacks.
    void BindControls() override;

    /// Whether all controls show the settings and are ready for a person.
    [[nodiscard]] bool IsInitialized() const noexcept { return mInitialized; }

private:
    static constexpr std::size_t kColumns = 2;
    static constexpr std::size_t kChannels = 4;

    /// Borrowed from the dialog; set by `BindControls`.
    struct Controls {
        qelui::UI_Popup* pixelFormat = nullptr;
        qelui::UI_NumberEdit* frameWidth = nullptr;
        qelui::UI_NumberEdit* frameHeight = nullptr;
        qelui::UI_Popup* pixelAspect = nullptr;
        qelui::UI_Popup* frameRate = nullptr;
        qelui::UI_NumberEdit* durationFrames = nullptr;
        qelui::UI_NumberEdit* durationSeconds = nullptr;
        qelui::UI_Popup* fieldType = nullptr;
        qelui::UI_Popup* renderType = nullptr;
        qelui::UI_Popup* colorSlot = nullptr;
        std::array<qelui::UI_Button*, kColumns> colorButtons{};
        std::array<std::array<qelui::UI_NumberEdit*, kChannels>, kColumns> channels{};
        qelui::UI_Button* swatchCoordinatesFile = nullptr;
        qelui::UI_StaticText* swatchCoordinatesPath = nullptr;
        qelui::UI_Button* swatchColorsFile = nullptr;
        qelui::UI_StaticText* swatchColorsPath = nullptr;
        qelui::UI_Popup* colorSpace = nullptr;
        qelui::UI_CheckBox* drawFrameNumber = nullptr;
        qelui::UI_RadioButton* steadyTones = nullptr;
        qelui::UI_RadioButton* identifyChannels = nullptr;
        qelui::UI_HotTextNumber* frequency = nullptr;
        qelui::UI_HotTextNumber* amplitude = nullptr;
        qelui::UI_Popup* identifierFormat = nullptr;
        qelui::UI_CheckBox* useAsCustomImporter = nullptr;
        qelui::UI_Button* saveToPath = nullptr;
        qelui::UI_StaticText* savePath = nullptr;
        qelui::UI_Button* saveFile = nullptr;
        qelui::UI_Button* ok = nullptr;
        qelui::UI_Button* cancel = nullptr;
    };
    using Handler = void (ImporterTesselPrefsDialogImpl::*)();
    /// One row of the table of controls: where the handle goes and what a change does.
    template <class Control>
    struct Binding {
        std::string_view identifier;
        Control* Controls::*handle;
        Handler onChange;
    };
    struct Bindings;

    template <class Control>
    void Bind(const Binding<Control>& binding);
    void BindColorColumns();
    void InitializeControls();

    // Change handlers, named after their controls.
    void OnPixelFormat();
    void OnFrameWidth();
    void OnFrameHeight();
    void OnPixelAspect();
    void OnFrameRate();
    void OnDurationFrames();
    void OnDurationSeconds();
    void OnFieldType();
    void OnRenderType();
    void OnChannel(std::size_t column, std::size_t channel);
    void OnColorSpace();
    void OnDrawFrameNumber();
    void OnAudioMode();
    void OnFrequency();
    void OnAmplitude();
    void OnIdentifierFormat();
    void OnOk();
    void OnCancel();

    // What handlers and initialisation share.
    void DisableColorButtonsForSwatches();
    void UpdateRenderTypePopups();
    void UpdateColorButtonLabels();
    void UpdateColorEdits();
    void UpdateAudioEnabling();
    void InitializeSaveGroup();
    void InitializeAudio();
    /// The colour that a column shows: of the popup's slot; null where no slot is chosen.
    [[nodiscard]] FloatColor* ShownColor(std::size_t column);

    // Actions that open another dialog or a file.
    void OnColorButton(std::size_t column);
    void PickColor(FloatColor& color);
    /// The colour that a column's button picks: of the render type first; null where it picks none.
    [[nodiscard]] FloatColor* PickedColor(std::size_t column);
    void ChooseSwatchCoordinatesFile();
    void ChooseSwatchColorsFile();
    void ChooseSaveToPath();
    /// @return the write's status; 0 also where the person cancelled.
    [[nodiscard]] ORB::Status RunSaveAsDialog();
    /// Writes the settings to `path`. @return negative on failure; the record's save path is `path` even
    ///         then.
    ORB::Status WriteDataFile(const std::u16string& path);
    void OnSaveFile();
    void OnUseAsCustomImporter();

    std::shared_ptr<IImporterTesselPrefsDialogDataExchange> mExchange;
    TesselInfo mPrefs;
    bool mInitialized = false;
    Controls mControls;
    IdentifierFormatMap mIdentifierFormats;
};

/// Shows the settings dialog for the settings that `source` holds and returns when it has closed; what came
/// of it stands in `source`. Where no library has the dialog's layout, nothing is shown.
///
/// @param source  Asked for `IImporterTesselPrefsDialogDataExchange`.
/// @param parent  Borrowed; null for none.
/// @throws qelcore::null_pointer_exception  `source` lacks the interface, or the layout a control.
/// @throws qellumenfactory::LayoutError     the layout text is broken.
/// @throws qelui::NoToolkitError            nothing here can show a dialog.
void CreatePrefsDialog(qelcore::classref::UnknownBase& source, const qelui::DrawSupplier& supplier,
                       qelui::TopLevelWindow* parent);

/// The host's main window and its workspace; null where there is none. @{
[[nodiscard]] qelui::TopLevelWindow* FindHostMainWindow() noexcept;
[[nodiscard]] qelworkspace::workspace::Workspace* FindHostWorkspace() noexcept;
/// @}

} // namespace ImporterTessel
