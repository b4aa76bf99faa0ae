/// Private to this folder: what a file has beside its content.
#pragma once

#include <sys/stat.h>

#include <string>

namespace ORB {

/// Gives an open file the owner, group, extended attributes and permissions of an old one.
///
/// @param old      The old file's status.
/// @param oldPath  The old file, for its extended attributes.
/// @param notKept  Receives what could not be kept, such as "owner alice, attribute user.note".
/// @return 0, or the error number of setting the permissions.
[[nodiscard]] int CopyAttributes(const struct stat& old, const std::string& oldPath, int descriptor,
                                 std::string& notKept);

} // namespace ORB
