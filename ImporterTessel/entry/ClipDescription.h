/// What a clip's settings mean to the host: opening its file and describing it.
#pragma once

#include <ImporterTessel/settings/TesselInfo.h>
#include <kestrel/importabi/Records.h>
#include <kestrel/importabi/StandardParameters.h>

#include <cstdint>
#include <string_view>

namespace ImporterTessel {

/// A path from the host; null is the empty path, which does not exist.
[[nodiscard]] std::u16string_view PathFrom(const ksUTF16* path) noexcept;

/// Serves selector 39: reads the data file into `info`.
/// @return `ksResultServed`, also for a file with a malformed text, which opens as the default clip;
///         `ksResultFileUnreadable` with `info` untouched.
[[nodiscard]] std::int32_t OpenFile(const ksOpenRec& open, TesselInfo& info);

/// Serves selector 37: describes the clip with the settings `info`. Where the clip's file does not exist,
/// `info` is first replaced by the record's settings text.
///
/// @param record  Bytes 0 and 1 are written whatever happens; all else only with `ksResultServed`.
/// @return `ksResultServed`; `ksResultFileUnreadable` with neither a file nor a text; `ksResultFailed` where
///         the host lacks the legacy suite.
[[nodiscard]] std::int32_t DescribeClip(const ksStdParms* stdParms, const ksFileAccessRec& file,
                                        ksFileInfoRec& record, TesselInfo& info);

} // namespace ImporterTessel
