/// A document that is changed key by key, as text: layout, order, and keys that are no settings stay.
#pragma once

#include <kestrel/qelcore/serialization/Value.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace tessel::document {

/// Paths name keys with points between: "mFramePAR.numerator". They count from what a wrapper wraps.
/// Threads: [any-thread].
class DocumentEditor {
public:
    /// @param text  a JSON object, perhaps wrapped; bytes from its first NUL on stay as they are
    /// @throws importhost::HostError  for any other text, in one line
    explicit DocumentEditor(std::string text);

    /// A file's. @throws importhost::HostError  naming the file: it cannot be read, or holds another text
    [[nodiscard]] static DocumentEditor Open(const std::filesystem::path& file);

    /// The value at a path; nothing where there is none.
    [[nodiscard]] qelcore::serialization::Value Find(std::string_view path) const;

    /// Puts a value in the place of the one at the path, or adds the key to its object behind the last one,
    /// and objects around it where they are missing. Of equal keys the last is replaced, which is the one
    /// that counts.
    /// @throws importhost::HostError  where something on the path is there and is no object
    void Set(std::string_view path, const qelcore::serialization::Value& value);

    /// Takes the key at the path out of its object, with its comma; every one of equal keys. Nothing happens
    /// where there is none.
    void Remove(std::string_view path);

    [[nodiscard]] const std::string& Text() const noexcept { return mText; }

    /// The same settings as writers of documents print them, spread over lines: keys in ascending order,
    /// without a wrapper, ending in a newline.
    [[nodiscard]] std::string CanonicalText() const;

private:
    [[nodiscard]] qelcore::serialization::Value Root() const;

    std::string mText;
};

} // namespace tessel::document
