/// The host's frame suites, as this process keeps them.
#pragma once

#include <kestrel/importabi/StandardParameters.h>
#include <kestrel/importabi/Suites.h>

namespace ImporterTessel {

/// Tables of the host; never released, because the host keeps them as long as the process lives.
struct FrameSuites {
    const ksFrameCreatorSuite4* creator = nullptr;
    const ksFrameSuite1* frame = nullptr;
    const void* pixelFormat = nullptr; ///< acquired with the others; nothing calls it
};

/// The process-wide suites, acquired through `stdParms` by the first call that gets all three, and kept from
/// then on: later calls do not look at `stdParms`.
///
/// @return null where a table on the way, or a suite, cannot be had. Throws only what the host throws.
/// Threads: [serialised] until it has once returned suites, then [thread-safe].
[[nodiscard]] const FrameSuites* AcquireFrameSuites(const ksStdParms* stdParms);

} // namespace ImporterTessel
