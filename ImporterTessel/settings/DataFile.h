/// The data file: one JSON document that holds one `TesselInfo`.
#pragma once

#include <ImporterTessel/settings/TesselInfo.h>
#include <orb/File.h>
#include <qelcore/serialization/Value.h>

#include <string>
#include <string_view>

namespace ImporterTessel {

/// The record as a document value, without the two texts that are not persisted.
[[nodiscard]] qelcore::serialization::Value DocumentFromTessel(const TesselInfo& info);

/// The record as JSON text, unformatted.
[[nodiscard]] std::string TesselToUTF8String(const TesselInfo& info);

/// Reads a parsed document; a value that is no object gives the defaults.
/// @throws qelcore::serialization::missing_key_exception, qelcore::serialization::type_exception
[[nodiscard]] TesselInfo TesselFromDocument(const qelcore::serialization::ValuePtr& document);

/// Reads text up to its first NUL. Never throws but `std::bad_alloc` in building the defaults: what goes
/// wrong is logged, and the record is the default one, or what was read where only the legacy colour space
/// failed.
[[nodiscard]] TesselInfo TesselFromUTF8String(std::string_view text);

/// Reads a file into `info`. @return the status of the open; negative leaves `info` untouched.
[[nodiscard]] ORB::Status ReadTesselFile(std::u16string_view path, TesselInfo& info);

} // namespace ImporterTessel
