/// Settings of sound.
#pragma once

#include "Settings.h"

namespace tessel::typed {

/// Each is an `apply` of `Setting`, under the rules that stand there. @{
void ApplyTone(const TypedValues& values, document::DocumentEditor& document);
void ApplyIdent(const TypedValues& values, document::DocumentEditor& document);
void ApplyChannels(const TypedValues& values, document::DocumentEditor& document);
void ApplySampleRate(const TypedValues& values, document::DocumentEditor& document);
/// @}

/// The `remark` of a tone beyond full scale.
[[nodiscard]] std::optional<std::string> RemarkOnTone(const TypedValues& values);

} // namespace tessel::typed
