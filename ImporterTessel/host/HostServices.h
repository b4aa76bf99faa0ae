/// What an importer gets from the host's standard parameters: named suites and blocks of the host's memory.
#pragma once

#include <kestrel/importabi/StandardParameters.h>

#include <cstdint>

namespace ImporterTessel {

/// The function table of the suite `name` at `version`, or null where any step on the way to it is missing:
/// the parameters, a service table, the suite access, or the suite itself. The host keeps the table for the
/// life of the process. Throws only what the host itself throws. Threads: [thread-safe].
[[nodiscard]] const void* AcquireSuite(const ksStdParms* stdParms, const char* name, std::int32_t version);

/// The same as the suite's own table type.
template <class Suite>
[[nodiscard]] const Suite* AcquireSuite(const ksStdParms* stdParms, const char* name, std::int32_t version)
{
    return static_cast<const Suite*>(AcquireSuite(stdParms, name, version));
}

/// A block of `bytes` bytes of the host's allocator, which the host frees.
/// @throws std::bad_alloc where the host has no allocator or gives null. Threads: [thread-safe].
[[nodiscard]] void* AllocateHostBlock(const ksStdParms* stdParms, std::uint32_t bytes);

} // namespace ImporterTessel
