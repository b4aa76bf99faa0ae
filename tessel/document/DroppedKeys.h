/// What a document holds beyond a clip's settings.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tessel::document {

/// Keys of a document that another one, written in its place, no longer has: a person's own notes, or keys of a
/// later version. Both texts are read up to their first NUL and unwrapped where they are wrapped. Keys that
/// older versions had for today's settings do not count.
/// @return the keys in ascending order, those of nested objects with their path ("mFramePAR.note"); none where
///         one of the texts is no JSON object.
/// Threads: [any-thread].
[[nodiscard]] std::vector<std::string> DroppedKeys(std::string_view before, std::string_view after);

} // namespace tessel::document
