/// The plug-in as a part of the host's program instead of a library that it loads.
#pragma once

namespace ImporterTessel {

/// Hands the two entry points to the host's media framework by name, with the date and time of this build.
/// Nothing in the plug-in calls it; a program that links the plug-in statically does, once, at its start.
/// Threads: [thread-safe].
void RegisterStatically();

} // namespace ImporterTessel
