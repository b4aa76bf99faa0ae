/// The Tessel suite: documents, pictures, sound and dialog of the importer of `.tessel` files.
#pragma once

#include "../Check.h"

namespace conformance {

/// The extension by which the checker knows that importer.
constexpr char kTesselExtension[] = "tessel";

/// The checks of each subject. @{
[[nodiscard]] std::vector<Check> TesselSelectorChecks();
[[nodiscard]] std::vector<Check> TesselStartUpChecks();
[[nodiscard]] std::vector<Check> TesselRegistrationChecks();
[[nodiscard]] std::vector<Check> TesselInstanceChecks();
[[nodiscard]] std::vector<Check> TesselDescriptionChecks();
[[nodiscard]] std::vector<Check> TesselSettingsTextChecks();
[[nodiscard]] std::vector<Check> TesselSettingsDialogChecks();
[[nodiscard]] std::vector<Check> TesselDocumentChecks();
[[nodiscard]] std::vector<Check> TesselFrameChecks();
[[nodiscard]] std::vector<Check> TesselSwatchChecks();
[[nodiscard]] std::vector<Check> TesselAudioChecks();
[[nodiscard]] std::vector<Check> TesselBarrierChecks();
/// @}

} // namespace conformance
