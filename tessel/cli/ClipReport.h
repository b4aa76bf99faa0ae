/// What the plug-in reports of a clip, for people and for programs.
#pragma once

#include <kestrel/qelcore/serialization/Value.h>
#include <tessel/document/OpenClip.h>

#include <string>

namespace tessel::cli {

/// The report as aligned lines of "name  value", each ended by a line feed. The pixel format is the one that
/// the document names; for files of other importers frame 0 is asked for it.
[[nodiscard]] std::string ReportAsTable(const document::OpenedClip& opened);

/// The same as a document; docs/cli.md lists its keys.
[[nodiscard]] qelcore::serialization::Value ReportAsDocument(const document::OpenedClip& opened);

} // namespace tessel::cli
