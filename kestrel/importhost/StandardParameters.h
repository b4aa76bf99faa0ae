/// The standard parameters of this host: the way from a request to its allocator and its suites.
#pragma once

#include <kestrel/importabi/StandardParameters.h>

namespace importhost {

/// The one block of the process. Every slot of its function tables that no plug-in here needs holds a
/// function that does nothing, so that a stray call is harmless. Threads: [thread-safe].
[[nodiscard]] const ksStdParms& HostStandardParameters() noexcept;

/// Gives back a block that a plug-in got from this host's allocator and handed to the host, such as the
/// path in `ksFileAccessRec::newPath`. Null is fine. Threads: [thread-safe].
void FreeHostBlock(void* block) noexcept;

} // namespace importhost
