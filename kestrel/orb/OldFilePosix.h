/// The old file of a replacement: kept aside, overwritten in place, brought back. Internal to this folder.
///
/// Paths are the system's own bytes; descriptors are the caller's. Functions that return an `int` return 0 or
/// an error number. Threads: [any-thread].
#pragma once

#include "FileReplacement.h"

#include <string>

namespace ORB {

/// The folder for temporary files and copies where a file's own folder is not writable: the one that the user
/// has chosen, else one that is kept over a restart.
[[nodiscard]] std::string FolderElsewhere();

/// Notes that no temporary file can be written in `folder`; `error` becomes the outcome's.
void AddRefusal(ReplacementOutcome& outcome, const std::string& folder, int error);

/// File systems without this operation count as synced.
[[nodiscard]] int SyncDescriptor(int descriptor) noexcept;

/// Overwrites the file `target` with the content of `whole`.
/// @param copyOfOld  Receives the name of a copy of the old content, which the caller removes. Only on success.
[[nodiscard]] ReplacementOutcome Overwrite(int whole, const std::string& target, std::string& copyOfOld);

/// Gives the file `target` the second name `aside`; where the file system has no hard links, its only name.
[[nodiscard]] int SetAside(const std::string& target, const std::string& aside) noexcept;

/// Takes `SetAside` back.
[[nodiscard]] int MoveBack(const std::string& aside, const std::string& target) noexcept;

/// Moves the old file back. Where that fails, it gets a name beside `target`, because `aside` may be in a
/// temporary folder.
[[nodiscard]] ReplacementOutcome RestoreFile(const std::string& aside, const std::string& target);

/// Writes the old content, which is in the file `copy`, back into `target`, and removes the copy. Where that
/// fails, the outcome names the copy.
[[nodiscard]] ReplacementOutcome RestoreContent(const std::string& copy, const std::string& target);

} // namespace ORB
