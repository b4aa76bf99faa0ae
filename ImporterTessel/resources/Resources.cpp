/// The resources that the host reads from the plug-in's file: one section each, whose content is exactly the
/// resource's bytes. The names repeat those of <importabi/Entries.h>, since a section attribute takes only a
/// literal.
#include "PropertyList.h"

#include <array>
#include <cstdint>

namespace ImporterTessel::resources {

namespace {

// Never referred to, hence `used`, and `retain` for linkers that collect unused sections. This file is
// compiled without sanitizers: their red zones would count as bytes of the resource.
[[gnu::section(".ksres.PIPL.16000"), gnu::used, gnu::retain]] constexpr auto kPropertyList = MakePropertyList();

[[gnu::section(".ksres.IMPT.1000"), gnu::used, gnu::retain]] constexpr std::array<std::uint8_t, 6>
    kImporterKind{0, 0, 'x', 'i', 'q', 'p'};

// A 16-bit 0, then the importer code with its bytes reversed.
[[gnu::section(".ksres.TYPE.1000"), gnu::used, gnu::retain]] constexpr std::array<std::uint8_t, 6> kPluginType{
    0, 0, 'T', 'P', 'M', 'I'};

} // namespace

} // namespace ImporterTessel::resources
