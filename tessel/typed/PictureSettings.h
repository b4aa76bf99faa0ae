/// Settings of size, format and colour space: how pictures are stored.
#pragma once

#include "Settings.h"

#include <string>
#include <vector>

namespace tessel::typed {

/// Each is an `apply` of `Setting`, under the rules that stand there. @{
void ApplySize(const TypedValues& values, document::DocumentEditor& document);
void ApplyPixelAspect(const TypedValues& values, document::DocumentEditor& document);
void ApplyFields(const TypedValues& values, document::DocumentEditor& document);
void ApplyColorSpace(const TypedValues& values, document::DocumentEditor& document);
void ApplyPixelFormat(const TypedValues& values, document::DocumentEditor& document);
/// @}

/// The names that a setting takes. @{
[[nodiscard]] std::vector<std::string> ColorSpaceChoices();
[[nodiscard]] std::vector<std::string> PixelLayoutChoices();
/// @}

} // namespace tessel::typed
