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
    // 13 and 29 are the host's; it does not examine what the callback answers, and neither does this.
    static_cast<void>(callback(hostContext, ImporterTessel::kNameKey, ImporterTessel::kMatchName,
                               ImporterTessel::kKind, "", ImporterTessel::kImporterCode, 13, 29, 0));
}
