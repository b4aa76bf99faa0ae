/// The settings as a document value, key by key.
#pragma once

#include <ImporterTessel/settings/TesselInfo.h>
#include <kestrel/qelcore/serialization/Value.h>

namespace ImporterTessel {

/// The record as a document value, without the two texts that are not persisted. Threads: [any-thread].
[[nodiscard]] qelcore::serialization::Value DocumentFromTessel(const TesselInfo& info);

/// Reads a parsed document; a value that is no object gives the defaults, nothing included. A document without
/// a version has version 0.
/// @throws qelcore::serialization::missing_key_exception, type_exception, parse_exception
/// Threads: [any-thread].
[[nodiscard]] TesselInfo TesselFromDocument(const qelcore::serialization::Value& document);

} // namespace ImporterTessel
