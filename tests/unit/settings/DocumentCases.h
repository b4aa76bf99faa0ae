/// The corpus of documents with the answers that the rules give for them.
///
/// A manifest in `documents/` is a text of cases, three lines each: a claim, the document (indented by four
/// spaces) and the answer (likewise). Blank lines and lines that begin with # are passed over.
///
/// In a document these are replaced; everything else stands for itself:
///   @required          the members of an object with all required keys and no others
///   @required-KEY-KEY  the same without the named keys
///   @hex(E282)         bytes
///   @repeat(1000,[)    the text behind the comma, so many times
///
/// An answer is one of these, and a default record is meant where no other is named; a KEY comes after those
/// that lead to it, parted by points:
///   default                    nothing is logged
///   malformed                  logged as JSON that is not well-formed
///   missing KEY                logged as a missing key
///   wrong KEY                  logged as a value of the wrong type
///   broken                     logged, with any text
///   broken KEY                 logged as a value of KEY that stands for nothing
///   reads FIELD=VALUE ...      the record of @required but for these fields; nothing is logged
///   reads-but KEY FIELD=VALUE  the same, with KEY logged as a value of the wrong type
#pragma once

#include <ImporterTessel/settings/TesselInfo.h>

#include <filesystem>
#include <string>
#include <vector>

namespace documents {

struct Case {
    std::string claim;
    std::string document; ///< with everything replaced
    ImporterTessel::TesselInfo record;
    bool isLogged = false;
    std::string logPart; ///< a piece of the one message that is logged
    int line = 0;        ///< of the claim
};

/// The record that @required stands for. It differs from the default one in every field it sets.
[[nodiscard]] ImporterTessel::TesselInfo RequiredRecord();

/// @throws std::runtime_error that names the line where a manifest is not as described.
[[nodiscard]] std::vector<Case> ReadManifest(const std::filesystem::path& file);

/// Replaces what a document of a manifest may hold.
[[nodiscard]] std::string Expand(const std::string& document);

} // namespace documents
