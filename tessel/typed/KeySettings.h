/// Keys of the document itself as settings.
#pragma once

#include <tessel/document/settings/DocumentEditor.h>

#include <string>
#include <string_view>
#include <vector>

namespace tessel::typed {

/// Sets a key of the document itself: "mFrameWidth", "mFieldType", "mFramePAR.numerator". The value is JSON,
/// one of the key's names, or for texts the text.
/// @throws SettingError  for an unknown key, and for a value of another type
void ApplyKey(std::string_view key, std::string_view value, document::DocumentEditor& document);

/// All keys of documents, by their paths.
[[nodiscard]] std::vector<std::string> KeyPaths();

} // namespace tessel::typed
