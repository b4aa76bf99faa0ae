/// Sizes of the wire format's types as a C compiler sees them.
#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct TypeSize {
    const char* name;
    size_t size;
} TypeSize;

/// The sizes in the order of `kTypeSizes`; `*count` receives how many.
const TypeSize* SizesInC(size_t* count);

#ifdef __cplusplus
}
#endif

// NOLINTBEGIN(cppcoreguidelines-macro-usage): one list for both languages, which share nothing else.
#define IMPORT_ABI_TYPES(ENTRY)                                                                                \
    ENTRY(ksStdParms)                                                                                          \
    ENTRY(ksServiceTables)                                                                                     \
    ENTRY(ksMemoryFunctions)                                                                                   \
    ENTRY(ksUtilityFunctions)                                                                                  \
    ENTRY(ksSuiteAccess)                                                                                       \
    ENTRY(ksStartUpRec)                                                                                        \
    ENTRY(ksFileTypeRec)                                                                                       \
    ENTRY(ksAudioRec)                                                                                          \
    ENTRY(ksIndexedRec)                                                                                        \
    ENTRY(ksFileAccessRec)                                                                                     \
    ENTRY(ksOpenRec)                                                                                           \
    ENTRY(ksFileInfoRec)                                                                                       \
    ENTRY(ksSettingsExchangeRec)                                                                               \
    ENTRY(ksFrameSizeRec)                                                                                      \
    ENTRY(ksFrameRec)                                                                                          \
    ENTRY(ksSEIColorCodesRec)                                                                                  \
    ENTRY(ksColorRec)                                                                                          \
    ENTRY(ksLegacySuite1)                                                                                      \
    ENTRY(ksLegacySuite2)                                                                                      \
    ENTRY(ksFrameCreatorSuite4)                                                                                \
    ENTRY(ksFrameSuite1)                                                                                       \
    ENTRY(ksUTF16)
// NOLINTEND(cppcoreguidelines-macro-usage)
