#include "Entries.h"

#include "Identity.h"
#include "ImporterTessel.h"

std::int32_t xImportEntry(std::int32_t selector, const ksStdParms* stdParms, void* param1,
                          void* param2) noexcept
{
    return KsImportModule<ImporterTessel::ImporterTessel>::ImportEntry(selector, stdParms, param1, param2);
}

void PluginDataEntryFunction(void* hostContext, ksPluginDataCallback callback)
{
    if (callback == nullptr) {
        return;
    }
    // The host fixes 13 and 29, and gives the callback's status no meaning.
    static_cast<void>(callback(hostContext, ImporterTessel::kNameKey, ImporterTessel::kMatchName,
                               ImporterTessel::kKind, "", ImporterTessel::kImporterCode, 13, 29, 0));
}
