#include "DataFile.h"

#include "DocumentFields.h"
#include "DocumentText.h"

#include <kestrel/brindle/ColorSpaces.h>
#include <kestrel/qelcore/logging/Log.h>
#include <kestrel/qelcore/serialization/Json.h>

namespace ImporterTessel {

namespace {

constexpr std::string_view kLogContext = "ImporterTessel::`anonymous-namespace'::TesselFromUTF8String";

/// Texts of version 0 may name their colour space instead of holding it: at the root, or, where a root that is
/// a wrapper has no name, in the wrapped document.
void ReadLegacyColorSpace(const ParsedDocument& parsed, TesselInfo& info)
{
    constexpr std::string_view kKey = "mPredefinedColorSpace";
    const bool isAtRoot = qelcore::serialization::ObjectHasProperty(parsed.root, kKey);
    std::string name;
    ObjectReader(isAtRoot ? parsed.root : parsed.document, /*path=*/"", "TesselInfo").ReadIfPresent(kKey, name);
    if (!name.empty()) {
        info.mColorSpace = BR::QELColorSpaceFromSDKPredefinedColorSpace(name);
    }
}

} // namespace

std::string TesselToUTF8String(const TesselInfo& info)
{
    return qelcore::serialization::GetJSONUTF8String(DocumentFromTessel(info), /*formatted=*/false);
}

TesselInfo TesselFromUTF8String(std::string_view text)
{
    TesselInfo info;
    try {
        const ParsedDocument parsed = ParseDocument(text);
        info = TesselFromDocument(parsed.document);
        if (info.mVersion == 0) {
            ReadLegacyColorSpace(parsed, info);
        }
    } catch (const malformed_document& error) {
        qelcore::logging::Log(kLogContext, error.Explanation());
    } catch (...) {
        // Intended: the caller is told nothing; a malformed document opens as the default clip.
        qelcore::logging::LogCurrentException(kLogContext);
    }
    return info;
}

ORB::Status ReadTesselFile(std::u16string_view path, TesselInfo& info)
{
    std::string text;
    const ORB::Status opened = ReadDocumentText(path, text);
    if (opened >= 0) {
        info = TesselFromUTF8String(text);
    }
    return opened;
}

} // namespace ImporterTessel
