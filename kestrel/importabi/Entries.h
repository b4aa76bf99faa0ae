/// The two functions that an importer exports, and the names of the resources in its file.
///
/// Resources.h makes the resources that every importer needs.
#ifndef KESTREL_IMPORTABI_ENTRIES_H
#define KESTREL_IMPORTABI_ENTRIES_H

#include "StandardParameters.h"

/// Put before the definitions of the two functions: C linkage, and visible outside the library.
#ifdef __cplusplus
#define KS_IMPORTER_ENTRY extern "C" KS_EXPORTED
#else
#define KS_IMPORTER_ENTRY KS_EXPORTED
#endif
#ifdef _WIN32
#define KS_EXPORTED __declspec(dllexport)
#else
#define KS_EXPORTED __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/// `xImportEntry`: serves one request. Lets no exception out.
///
/// @param selector  Request number (see Selectors.h), compared as an unsigned number.
/// @param stdParms  The host's standard parameters.
/// @param param1    The selector's first record, or an index in the pointer's low 32 bits; else null.
/// @param param2    The selector's second record, or the instance; else null.
/// @return a `ksResult`. Threads: the word of the selector's record.
typedef int32_t (*ksImportEntry)(int32_t selector, const ksStdParms* stdParms, void* param1, void* param2);

/// Takes a plug-in's identity. The texts are borrowed for the call. [any-thread]
///
/// @param hostContext  The pointer that the host gave.
/// @param nameKey      As the property list's "name": localisation key, "=", default display text.
/// @param matchName    As the property list's "eMNA".
/// @param kind         As the property list's "catg": "Importer".
/// @param text         "".
/// @param code         As the property list's "kind": 0x494D5054, which reads IMPT.
/// @param value13      13.
/// @param value29      29.
/// @param zero         0.
/// @return a status, which importers do not examine.
typedef int32_t (*ksPluginDataCallback)(void* hostContext, const char* nameKey, const char* matchName,
                                        const char* kind, const char* text, uint32_t code, int32_t value13,
                                        int32_t value29, int64_t zero);

/// `PluginDataEntryFunction`: calls `callback` exactly once with the plug-in's identity, before it returns.
/// Comes before start-up, and must tell what the property list tells: the host refuses a plug-in whose two
/// identities differ. A null callback is not called. [any-thread]
typedef void (*ksPluginDataEntry)(void* hostContext, ksPluginDataCallback callback);

#ifdef __cplusplus
}
#endif

/// The host finds the two functions by these names. The entry name in a property list is not used.
static const char kImportEntryName[] = "xImportEntry";
static const char kPluginDataEntryName[] = "PluginDataEntryFunction";

/// Resources are sections of the plug-in's file, whose content is exactly the resource's bytes. The host
/// reads the first three without running the plug-in.
static const char kPropertyListSection[] = ".ksres.PIPL.16000";
static const char kImporterKindSection[] = ".ksres.IMPT.1000";
static const char kPluginTypeSection[] = ".ksres.TYPE.1000";
/// A dialog's layout in the two layout languages; the layout's name follows.
static const char kLumenSectionPrefix[] = ".ksres.LUMEN.";
static const char kSableSectionPrefix[] = ".ksres.SABLE.";

/// An ELF note leads to a layout in the loaded plug-in, whose file the host does not open again. Its
/// description: the layout's distance from the description's start and its size, 32 bits each, then the
/// section's name without ".ksres." and a NUL. The package's kestrel_add_importer_resource writes section and
/// note.
static const char kResourceNoteOwner[] = "Kestrel";
enum { kResourceNoteType = 1 };

#endif
