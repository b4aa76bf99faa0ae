/// Resources in a plug-in's file, found without loading or running it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace qelcore::resources {

/// The bytes of the section `name` of the library file at `file`; nothing where the file has no such
/// section. @throws qelcore::Exception-derived std::runtime_error where the file cannot be read or is not
/// a library of this platform. Threads: [any-thread].
[[nodiscard]] std::optional<std::vector<std::uint8_t>> ReadResource(const std::filesystem::path& file,
                                                                    std::string_view name);

/// The same, looked for in the files of all libraries that the process has loaded, in load order; the first
/// that has it answers. Files that cannot be read are passed over.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> FindLoadedResource(std::string_view name);

} // namespace qelcore::resources
