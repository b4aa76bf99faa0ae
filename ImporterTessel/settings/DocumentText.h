/// Texts of documents: from a file to a string, from a string to the value that the readers take.
#pragma once

#include <kestrel/orb/File.h>
#include <kestrel/qelcore/serialization/Value.h>

#include <stdexcept>
#include <string>
#include <string_view>

namespace ImporterTessel {

/// A text is not JSON. `what()` is always "JSON not well-formed".
class malformed_document : public std::runtime_error {
public:
    /// @param detail  One line that says what is wrong and where.
    explicit malformed_document(const std::string& detail);

    /// `what()`, a colon and the detail.
    [[nodiscard]] const std::string& Explanation() const noexcept { return mExplanation; }

private:
    std::string mExplanation;
};

/// Reads a file's bytes up to its first NUL into `text`. What cannot be read of an open file, or lies beyond
/// 4 GiB, is not there: the text ends before it.
/// @return the status of the open; negative leaves `text` untouched. Throws only `std::bad_alloc`.
[[nodiscard]] ORB::Status ReadDocumentText(std::u16string_view path, std::string& text);

/// Parses a text up to its first NUL and takes the document out of its wrapper: a root object with the key
/// "SerializerWrappedObject" stands for the value under that key.
/// @throws malformed_document
[[nodiscard]] qelcore::serialization::ValuePtr ParseDocument(std::string_view text);

} // namespace ImporterTessel
