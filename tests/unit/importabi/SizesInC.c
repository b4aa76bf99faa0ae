#include "SizesInC.h"

#include <kestrel/importabi/Entries.h>
#include <kestrel/importabi/Records.h>
#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/importabi/Selectors.h>
#include <kestrel/importabi/StandardParameters.h>
#include <kestrel/importabi/Suites.h>

#define SIZE_OF(type) {#type, sizeof(type)},
static const TypeSize kTypeSizes[] = {IMPORT_ABI_TYPES(SIZE_OF)};

const TypeSize* SizesInC(size_t* count)
{
    *count = sizeof kTypeSizes / sizeof kTypeSizes[0];
    return kTypeSizes;
}
