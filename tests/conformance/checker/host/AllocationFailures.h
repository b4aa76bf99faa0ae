/// Makes the process's `operator new` count, and fail on demand, libraries included.
#pragma once

namespace conformance {

struct AllocationFailures {
    /// The `nth` allocation from now on throws `std::bad_alloc`; those after it succeed.
    static void FailNth(int nth) noexcept;
    /// Allocations succeed again; forgets what failed.
    static void Stop() noexcept;
    /// Whether one has failed since `FailNth`.
    [[nodiscard]] static bool HasFailed() noexcept;

    /// Allocations of this process so far that were not exempt.
    [[nodiscard]] static long Made() noexcept;
    /// Blocks that are allocated and not yet freed, exempt ones included.
    [[nodiscard]] static long Outstanding() noexcept;

    /// While one lives, allocations of its thread neither fail nor count: they are the host's.
    class Exempt {
    public:
        Exempt() noexcept;
        ~Exempt();
        Exempt(const Exempt&) = delete;
        Exempt& operator=(const Exempt&) = delete;
    };
};

} // namespace conformance
