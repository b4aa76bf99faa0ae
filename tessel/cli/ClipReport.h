/// What the plug-in reports of a clip, for people and for programs.
#pragma once

#include <kestrel/qelcore/serialization/Value.h>
#include <tessel/document/OpenClip.h>

#include <string>

namespace tessel::cli {

/// The pixel format is the one that the document names; for files of other importers frame 0 is asked for it.
/// The report as aligned lines of "name  value", each ended by a line feed.
[[nodiscard]] std::string ReportAsTable(const document::OpenedClip& opened);

/// The same as a document; docs/cli.md lists its keys.
[[nodiscard]] qelcore::serialization::Value ReportAsDocument(const document::OpenedClip& opened);

/// Frame number `frame` of a clip as hours, minutes, seconds and frames, counted with the nearest whole rate
/// and without dropping numbers: "01:00:00:00". "-" for a rate without frames.
[[nodiscard]] std::string Timecode(std::int64_t frame, std::int32_t timeScale, std::int32_t sampleSize);

} // namespace tessel::cli
