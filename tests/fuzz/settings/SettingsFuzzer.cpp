/// Whatever the text: the reader of settings gives a record and throws nothing, and what it read is written
/// and read back equal; the readers of swatches give a record or one of their exceptions.
#include <ImporterTessel/settings/DataFile.h>
#include <ImporterTessel/settings/DocumentText.h>
#include <ImporterTessel/settings/SwatchFiles.h>
#include <kestrel/qelcore/exceptions/Exceptions.h>
#include <kestrel/qelcore/logging/Log.h>

#include <any>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string_view>

namespace {

using qelcore::serialization::Value;

void Require(bool holds, std::string_view claim)
{
    if (!holds) {
        std::cerr << "broken: " << claim << '\n';
        std::abort();
    }
}

void ReadSettings(std::string_view text)
{
    int messages = 0;
    const qelcore::logging::ScopedListener listener([&](const qelcore::logging::Message&) { ++messages; });
    ImporterTessel::TesselInfo info = ImporterTessel::TesselFromUTF8String(text);
    Require(messages <= 1, "one message at most");
    Require(messages == 0 || info.mVersion == 0 || info == ImporterTessel::TesselInfo(),
            "what is logged gives the default record, but for the legacy colour space");
    if (info.mVersion == 0) {
        info.mVersion = 1; // A colour space that is there already shall not be looked for by name.
    }
    const std::string written = ImporterTessel::TesselToUTF8String(info);
    Require(ImporterTessel::TesselFromUTF8String(written) == info, "a written record reads back");
}

template <class Record, class Reader, class Writer>
void ReadSwatches(const Value& document, const Reader& fromValue, const Writer& toValue)
{
    Record record;
    try {
        record = fromValue(document, "swatches");
    } catch (const qelcore::serialization::missing_key_exception&) {
        return;
    } catch (const qelcore::serialization::type_exception&) {
        return;
    }
    const Value written = toValue(record);
    Require(fromValue(written, "swatches") == record, "written swatches read back");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    ReadSettings(text);
    try {
        const Value document = ImporterTessel::ParseDocument(text).document;
        ReadSwatches<ImporterTessel::SwatchColors>(document, ImporterTessel::SwatchColorsFromValue,
                                                   ImporterTessel::ValueFromSwatchColors);
        ReadSwatches<ImporterTessel::SwatchCoordinates>(document, ImporterTessel::SwatchCoordinatesFromValue,
                                                        ImporterTessel::ValueFromSwatchCoordinates);
    } catch (const std::runtime_error& error) {
        Require(std::string_view(error.what()) == "JSON not well-formed",
                "only malformed text is refused here");
    }
    return 0;
}
