#include "SizesInC.h"

#include <importabi/Entries.h>
#include <importabi/Records.h>
#include <importabi/ResultCodes.h>
#include <importabi/Selectors.h>
#include <importabi/StandardParameters.h>
#include <importabi/Suites.h>

#define SIZE_OF(type) {#type, sizeof(type)},
static const TypeSize kTypeSizes[] = {IMPORT_ABI_TYPES(SIZE_OF)};

const TypeSize* SizesInC(size_t* count)
{
    *count = sizeof kTypeSizes / sizeof kTypeSizes[0];
    return kTypeSizes;
}
