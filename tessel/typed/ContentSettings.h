/// Settings of what pictures show.
#pragma once

#include "Settings.h"

namespace tessel::typed {

/// Each is an `apply` of `Setting`, under the rules that stand there. @{
void ApplyPicture(const TypedValues& values, document::DocumentEditor& document);
void ApplyColors(const TypedValues& values, document::DocumentEditor& document);
void ApplySwatches(const TypedValues& values, document::DocumentEditor& document);
void ApplyNumber(const TypedValues& values, document::DocumentEditor& document);
/// @}

} // namespace tessel::typed
