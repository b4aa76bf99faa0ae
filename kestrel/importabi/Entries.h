/// The two functions that an importer exports, and the names of the resources it carries.
#ifndef KESTREL_IMPORTABI_ENTRIES_H
#define KESTREL_IMPORTABI_ENTRIES_H

#include "StandardParameters.h"

/// `xImportEntry`: serves one request. Never throws. [serialised]
///
/// @param selector    Request number, compared as unsigned.
/// @param stdParms    The host's standard parameters.
/// @param param1      Record of the selector, or a plain 32-bit index.
/// @param param2      Record of the selector.
/// @return a `ksResult`.
typedef int32_t (*ksImportEntry)(int32_t selector, const ksStdParms* stdParms, void* param1, void* param2);

/// Collects a plug-in's identity; its result is not examined.
typedef int32_t (*ksPluginDataCallback)(void* hostContext, const char* nameKey, const char* matchName,
                                        const char* kind, const char* text, uint32_t code, int32_t value13,
                                        int32_t value29, int64_t zero);

/// `PluginDataEntryFunction`: calls `callback` once with the plug-in's identity. [any-thread]
typedef void (*ksPluginDataEntry)(void* hostContext, ksPluginDataCallback callback);

/// The host resolves both by these names; the entry name in a property list is not used.
static const char kImportEntryName[] = "xImportEntry";
static const char kPluginDataEntryName[] = "PluginDataEntryFunction";

/// One section of the plug-in file per resource, its content exactly the resource's bytes.
static const char kPropertyListSection[] = ".ksres.PIPL.16000";
static const char kImporterKindSection[] = ".ksres.IMPT.1000";
static const char kPluginTypeSection[] = ".ksres.TYPE.1000";
static const char kLumenSectionPrefix[] = ".ksres.LUMEN.";
static const char kSableSectionPrefix[] = ".ksres.SABLE.";

#endif
