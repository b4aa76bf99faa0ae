/// What the host can do about colour.
#pragma once

namespace KSM {

/// Whether this host manages colour, so that importers should report their clips' colour spaces. Always
/// true here: the writers tag their files. Threads: [thread-safe].
[[nodiscard]] bool IsAbleToSupportColorManagement() noexcept;

} // namespace KSM
