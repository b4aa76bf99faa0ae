/// A complete little host for the fuzzer: suites, frames of exactly their size, an allocator.
#pragma once

#include <kestrel/importabi/StandardParameters.h>

/// The standard parameters; the same at each call, because an importer keeps suites for the process's life.
[[nodiscard]] const ksStdParms& FuzzHostParms();

/// Frees the frames and blocks that were made since the last call.
void FreeFramesAndBlocks();
