/// Resources of plug-ins: in a file, without loading or running it, and in a loaded library.
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelcore/exceptions/Exceptions.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace qelcore::resources {

/// A file cannot be read, or is not a library of this platform. `what()` names the file and says which.
class KESTREL_API resource_exception : public Exception, public std::runtime_error {
public:
    explicit resource_exception(const std::string& message);
    ~resource_exception() override;
    resource_exception(const resource_exception&) = default;
    resource_exception& operator=(const resource_exception&) = default;
};

/// The bytes of the section `name` of the library file at `file`; nothing where the file has no such
/// section. @throws resource_exception. Threads: [any-thread].
[[nodiscard]] KESTREL_API std::optional<std::vector<std::uint8_t>>
ReadResource(const std::filesystem::path& file, std::string_view name);

/// The resource `name` ("LUMEN.MyDialog") of the program or of a library that the process has loaded, in load
/// order; the first that has it answers. Read in memory, where a note leads to it (<importabi/Entries.h>): what
/// became of the library's file, or of the working folder, does not matter. Threads: [thread-safe]. Throws only
/// `std::bad_alloc`.
[[nodiscard]] KESTREL_API std::optional<std::vector<std::uint8_t>> FindLoadedResource(std::string_view name);

} // namespace qelcore::resources
