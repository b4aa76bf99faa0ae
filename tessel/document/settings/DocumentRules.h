/// What a document must be to be read, and to work. Threads: [any-thread].
#pragma once

#include "DocumentEditor.h"
#include "KeyTable.h"

#include <kestrel/qelcore/serialization/Value.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tessel::document {

/// Whether the reader takes a value for a key of this type.
[[nodiscard]] bool TypeFits(KeyType type, const qelcore::serialization::Value& value);

/// "an integer", "text": what was expected.
[[nodiscard]] std::string TypeText(KeyType type);

/// Why the plug-in would not read the document and show its default clip: one line that names the key. Nothing
/// for a document that it reads.
[[nodiscard]] std::optional<std::string> ReadingProblem(const DocumentEditor& document);

/// Why a clip that can be read cannot be played: no frame could be made of it, or no sound. One line that says
/// what would work; nothing where all does.
[[nodiscard]] std::optional<std::string> PlayingProblem(const DocumentEditor& document);

/// The matrix of the document's colour space by ITU-T H.273, BT.709's where the document names no space;
/// nothing for a space without codes.
[[nodiscard]] std::optional<std::int32_t> MatrixOfColorSpace(const DocumentEditor& document);

/// What works and is perhaps not meant, a line each: pixels of one matrix in a colour space of another.
[[nodiscard]] std::vector<std::string> DocumentWarnings(const DocumentEditor& document);

} // namespace tessel::document
