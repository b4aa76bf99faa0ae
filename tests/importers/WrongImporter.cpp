/// Importers that open nothing and are each wrong in one way, chosen by definitions, for tests of the loader.

#include "ImporterResources.h"

#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/importabi/Selectors.h>

#include <cstdint>

#ifndef WRONG_START
#define WRONG_START ksResultServed
#endif

#ifndef WRONG_WITHOUT_ENTRY
EXPORTED std::int32_t xImportEntry(std::int32_t selector, const ksStdParms* /*stdParms*/, void* /*param1*/,
                                   void* /*param2*/)
{
    return selector == ksSelectorStartUp ? std::int32_t{WRONG_START} : std::int32_t{ksResultNoMoreEntries};
}
#endif
