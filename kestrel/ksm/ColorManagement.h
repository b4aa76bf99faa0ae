/// What the host can do about colour.
#pragma once

#include <kestrel/Export.h>

namespace KSM {

/// Whether this host manages colour, so that importers should report their clips' colour spaces. Always
/// true here: the writers tag their files. Threads: [thread-safe].
[[nodiscard]] KESTREL_API bool IsAbleToSupportColorManagement() noexcept;

} // namespace KSM
