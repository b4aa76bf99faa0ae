#include "Plugin.h"

#include "../Check.h"
#include "ForeignHost.h"
#include "GuardedRecord.h"

#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/importabi/Selectors.h>

#include <cstring>

namespace conformance {

std::string Plugin::FirstExtension() const
{
    GuardedRecord record;
    if (Request(ksSelectorFileType, ForeignStdParms(), nullptr, record.Data()) != ksResultServed) {
        return {};
    }
    char extensions[sizeof(ksFileTypeRec::extensions) + 1] = {};
    std::memcpy(extensions, static_cast<const char*>(record.Data()) + offsetof(ksFileTypeRec, extensions),
                sizeof extensions - 1);
    return extensions;
}

const std::filesystem::path& Plugin::Document() const
{
    if (mDocument.empty()) {
        throw Skipped("the checker has no document of this importer: name one with --document");
    }
    return mDocument;
}

} // namespace conformance
