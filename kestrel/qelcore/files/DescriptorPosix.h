/// File descriptors with an owner. Private to this library.
#pragma once

#include <unistd.h>

namespace qelcore::files {

/// Closes a file descriptor at the end of its scope.
class Descriptor {
public:
    Descriptor() noexcept = default;
    explicit Descriptor(int descriptor) noexcept : mDescriptor(descriptor) {}
    ~Descriptor()
    {
        if (mDescriptor >= 0) {
            close(mDescriptor);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    /// Takes a descriptor, or -1; only where it has none.
    void Take(int descriptor) noexcept { mDescriptor = descriptor; }

    [[nodiscard]] bool IsOpen() const noexcept { return mDescriptor >= 0; }
    [[nodiscard]] int Get() const noexcept { return mDescriptor; }

private:
    int mDescriptor = -1;
};

} // namespace qelcore::files
