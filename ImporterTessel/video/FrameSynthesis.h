/// Frames: created through the host's frame suites and painted from a clip's settings.
#pragma once

#include <ImporterTessel/settings/TesselInfo.h>
#include <kestrel/importabi/Records.h>

#include <cstdint>

namespace ImporterTessel {

/// Serves selector 47: creates a frame, stores its handle through the record, paints it and prints the
/// frame number.
///
/// @return `ksResultServed`, or `ksResultFailed` where a suite cannot be had, a frame query fails (the
///         created frame stays stored, unpainted) or a swatch chart breaks its rules (likewise).
/// Threads: [serialised] until the first request has filled the three process-wide suite handles, then
/// [any-thread].
[[nodiscard]] std::int32_t SynthesizeFrame(const TesselInfo& info, const ksStdParms* stdParms,
                                           ksFrameRec& record);

} // namespace ImporterTessel
