/// Every key of a `.tessel` document: its type, whether it must be there, what its values mean.
///
/// The schema is printed from this table and `set` checks by it; a test holds it against the plug-in's reader.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tessel::document {

enum class KeyType : std::uint8_t {
    Object,
    Integer32, ///< a JSON integer; the reader takes its low 32 bits
    Integer64,
    Number,   ///< any JSON number; held as a 32-bit float
    Boolean,  ///< true, false, an integer, or the text "true" or "false"
    Text,     ///< UTF-8
    Base64,   ///< text that encodes bytes (RFC 4648, section 4)
    Integers, ///< an array
    Numbers,  ///< an array
};

/// A number that a key can have, and its meaning.
struct KeyValue {
    std::int64_t value;
    std::string_view name; ///< as commands take it: "upper"
    std::string_view meaning;
};

struct KeyInfo {
    std::string path; ///< "mFramePAR.numerator"; an object's row stands before those of its members
    KeyType type = KeyType::Object;
    bool isRequired = false;     ///< where the object that it belongs to is there
    std::string_view standard{}; ///< in new documents, as JSON; empty: objects, and what they do not write
    std::string_view meaning{};
    std::span<const KeyValue> values{}; ///< the known ones; the reader takes others, too
};

/// All keys. Static storage. Threads: [thread-safe]. @{
[[nodiscard]] const std::vector<KeyInfo>& AllKeys();
/// Null for an unknown name.
[[nodiscard]] const KeyInfo* FindKey(std::string_view path);
/// @}

/// The known values of keys with named ones. @{
[[nodiscard]] std::span<const KeyValue> FieldTypes() noexcept;
[[nodiscard]] std::span<const KeyValue> RenderFormats() noexcept;
/// @}

} // namespace tessel::document
