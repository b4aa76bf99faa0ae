/// What an importer's file carries before any of it runs: property list and kinds, and the identity callback
/// that agrees with them. Included once by each importer of the tests, which may define the macros below to be
/// wrong in one place.
#pragma once

#include <kestrel/importabi/Entries.h>

#include <array>
#include <cstddef>

#ifndef WRONG_MATCH_NAME
#define WRONG_MATCH_NAME "TEST Importer"
#endif
#ifndef WRONG_KIND
#define WRONG_KIND "TPMI"
#endif
#ifndef WRONG_IMPT
#define WRONG_IMPT "xiqp"
#endif
#ifndef WRONG_CALLS
#define WRONG_CALLS 1
#endif

#define EXPORTED extern "C" __attribute__((visibility("default")))

#ifndef WRONG_WITHOUT_RESOURCES
namespace {

/// The characters of a literal without its closing zero, which is no part of a resource.
template <std::size_t Size>
constexpr std::array<char, Size - 1> Bytes(const char (&text)[Size])
{
    std::array<char, Size - 1> bytes{};
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = text[i];
    }
    return bytes;
}

} // namespace

#define RESOURCE(section_name) __attribute__((section(section_name), used)) static constexpr auto

RESOURCE(".ksres.PIPL.16000")
kPropertyList = Bytes("\x01\0"
                      "\0\0\0\0"
                      "\x04\0\0\0"
                      "NRQ5"
                      "dnik"
                      "\0\0\0\0"
                      "\x08\0\0\0" WRONG_KIND "\0\0\0\0"
                      "NRQ5"
                      "eman"
                      "\0\0\0\0"
                      "\x20\0\0\0"
                      "\x1c"
                      "$$$/Tests/Name=Test Importer"
                      "\0\0\0"
                      "NRQ5"
                      "ANMe"
                      "\0\0\0\0"
                      "\x10\0\0\0"
                      "\x0d"
                      "TEST Importer"
                      "\0\0"
                      "NRQ5"
                      "gtac"
                      "\0\0\0\0"
                      "\x0c\0\0\0"
                      "\x08"
                      "Importer"
                      "\0\0\0");
RESOURCE(".ksres.IMPT.1000") kKindResource = Bytes("\0\0" WRONG_IMPT);
RESOURCE(".ksres.TYPE.1000")
kTypeResource = Bytes("\0\0"
                      "TPMI");
#endif

// NOLINTNEXTLINE(misc-definitions-in-headers): each importer includes this file once.
EXPORTED void PluginDataEntryFunction(void* hostContext, ksPluginDataCallback callback)
{
    for (int i = 0; i < WRONG_CALLS; ++i) {
        callback(hostContext, "$$$/Tests/Name=Test Importer", WRONG_MATCH_NAME, "Importer", "", 0x494D5054, 13,
                 29, 0);
    }
}
