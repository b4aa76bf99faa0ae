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

/// Reads a file's bytes up to its first NUL into `text`, and no more of them than `ParseDocument` needs to
/// refuse a text that is too long.
/// @return the status of the open, or the negative one of reading; negative leaves `text` untouched.
/// Throws only `std::bad_alloc`.
[[nodiscard]] ORB::Status ReadDocumentText(std::u16string_view path, std::string& text);

/// A parsed text. A root object with the key "SerializerWrappedObject" is a wrapper: the document is the value
/// under that key. Any other root is itself the document.
struct ParsedDocument {
    qelcore::serialization::Value root;
    qelcore::serialization::Value document;
};

/// Parses a text up to its first NUL. @throws malformed_document
[[nodiscard]] ParsedDocument ParseDocument(std::string_view text);

} // namespace ImporterTessel
