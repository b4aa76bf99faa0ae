/// What the plug-in tells the host before there is a clip: whether it starts, and its file type.
#pragma once

#include <kestrel/importabi/Records.h>
#include <kestrel/qelcore/FourCharacterCode.h>

#include <cstdint>

namespace ImporterTessel {

inline constexpr std::uint32_t kFileTypeCode = qelcore::FourCharacterCode("TSSL");

/// Serves selector 0. The gate is open only while the host's debug entry "ML.LoadTestingPluginsAtStartup" is
/// exactly "true"; the plug-in is a test tool and does not start for anybody else.
///
/// @param record  Filled where the gate is open, else untouched; may be null.
/// @return `ksResultServed`; `ksResultUnsupported` where the gate is shut; `ksResultFailed` where it is open
///         and the record null.
/// Threads: [any-thread]. Cost: the debug database is read from its file.
[[nodiscard]] std::int32_t StartUp(ksStartUpRec* record);

/// Serves selector 14, index 0: writes the file type's code, flags, name and extensions.
/// @return `ksResultServed`. Threads: [any-thread].
[[nodiscard]] std::int32_t DescribeFileType(ksFileTypeRec& record) noexcept;

} // namespace ImporterTessel
