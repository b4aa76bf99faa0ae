/// Makes the process's `operator new` fail on demand, libraries included.
#pragma once

namespace conformance {

struct AllocationFailures {
    /// The `nth` allocation from now on throws `std::bad_alloc`; those after it succeed.
    static void FailNth(int nth) noexcept;
    /// Allocations succeed again; forgets what failed.
    static void Stop() noexcept;
    /// Whether one has failed since `FailNth`.
    [[nodiscard]] static bool HasFailed() noexcept;
    /// Makes `HasFailed` true.
    static void PretendFailed() noexcept;
};

} // namespace conformance
