/// Values that settings put into documents.
#pragma once

#include <kestrel/qelcore/serialization/Value.h>
#include <tessel/document/settings/DocumentEditor.h>

#include <cstdint>
#include <string_view>

namespace tessel::typed {

[[nodiscard]] qelcore::serialization::Value IntegerValue(std::int64_t number);

/// As documents hold 32-bit floats: the shortest decimal that reads back as the same float; whole numbers up to
/// 2^24 without a point.
[[nodiscard]] qelcore::serialization::Value FloatValue(float number);

/// The integer under a key, or `standard` where the key is absent or holds no integer. @param path
/// "mFramePAR.numerator"
[[nodiscard]] std::int64_t IntegerAt(const document::DocumentEditor& document, std::string_view path,
                                     std::int64_t standard);

} // namespace tessel::typed
