/// The data file: one JSON document that holds one `TesselInfo`.
#pragma once

#include <ImporterTessel/settings/TesselDocument.h>
#include <ImporterTessel/settings/TesselInfo.h>
#include <kestrel/orb/File.h>

#include <string>
#include <string_view>

namespace ImporterTessel {

/// The record as JSON text, unformatted. Threads: [any-thread].
[[nodiscard]] std::string TesselToUTF8String(const TesselInfo& info);

/// Reads text up to its first NUL, in a wrapper ("SerializerWrappedObject") or without. Never throws but
/// `std::bad_alloc` in building the defaults: what goes wrong is logged, and the record is the default one,
/// or what was read where only the legacy colour space failed. Threads: [any-thread].
[[nodiscard]] TesselInfo TesselFromUTF8String(std::string_view text);

/// Reads a file into `info`; a file that opens replaces it, with the defaults where the text is malformed.
/// @return the status of the open, or the negative one of reading; negative leaves `info` untouched. Throws
/// only `std::bad_alloc`. Threads: [any-thread].
[[nodiscard]] ORB::Status ReadTesselFile(std::u16string_view path, TesselInfo& info);

} // namespace ImporterTessel
