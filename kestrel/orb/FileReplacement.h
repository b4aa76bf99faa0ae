/// Putting a new file in the place of an old one. Paths are the system's own bytes.
#pragma once

#include <string>

namespace ORB {

/// The file that `path` stands for once all symbolic links are followed, also when it does not exist yet.
/// @return 0, or an error number with `target` undefined. Threads: [any-thread].
[[nodiscard]] int ResolveTarget(const std::string& path, std::string& target);

/// A hidden name beside `target` that nobody else uses, however long the target's own name is.
/// Threads: [any-thread].
[[nodiscard]] std::string TemporaryName(const std::string& target);

} // namespace ORB
