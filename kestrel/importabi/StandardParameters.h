/// What the host hands to every request: the way to its allocator and to its named suites.
///
/// The host owns everything reachable from `ksStdParms` and keeps it unchanged while the importer is
/// loaded; an importer may keep the pointer. Records of the wire format are packed and little-endian:
/// read and write their fields by value, because they are unaligned. Tables of functions are arrays of
/// 8-byte pointers in the platform's C calling convention.
///
/// Thread words in these headers ([ui-thread], [any-thread], [thread-safe], [serialised]) are defined in
/// docs/threads.md.
#ifndef KESTREL_IMPORTABI_STANDARD_PARAMETERS_H
#define KESTREL_IMPORTABI_STANDARD_PARAMETERS_H

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

/// A host function whose signature importers do not need. Its slot holds a function that does nothing.
typedef void (*ksUnknownFunction)(void);

/// The host's allocator.
typedef struct ksMemoryFunctions {
    ksUnknownFunction slots0To7[8];
    /// Returns a block of `bytes` bytes, or null when there is no memory. A block goes back to the host
    /// through a record (see `ksFileAccessRec::newPath`), and the host frees it. [thread-safe]
    void* (*newBlock)(uint32_t bytes);
} ksMemoryFunctions;
static_assert(offsetof(ksMemoryFunctions, slots0To7) == 0, "wire format");
static_assert(offsetof(ksMemoryFunctions, newBlock) == 64, "slot 8");
static_assert(sizeof(ksMemoryFunctions) == 72, "wire format");

/// Access to the host's suites: versioned tables of functions, asked for by name (see Suites.h).
typedef struct ksSuiteAccess {
    /// Stores the table of the suite `name` at exactly `version` into `*suite`. The table lives as long as
    /// the process.
    /// @return 0, or a negative status with `*suite` untouched: no such name or version, or a null
    ///         argument. [thread-safe]
    int32_t (*acquireSuite)(const char* name, int32_t version, const void** suite);
} ksSuiteAccess;
static_assert(offsetof(ksSuiteAccess, acquireSuite) == 0, "slot 0");
static_assert(sizeof(ksSuiteAccess) == 8, "wire format");

typedef struct ksUtilityFunctions {
    ksUnknownFunction slots0To6[7];
    /// Returns the suite access; never null. [thread-safe]
    ksSuiteAccess* (*getSuiteAccess)(void);
} ksUtilityFunctions;
static_assert(offsetof(ksUtilityFunctions, slots0To6) == 0, "wire format");
static_assert(offsetof(ksUtilityFunctions, getSuiteAccess) == 56, "slot 7");
static_assert(sizeof(ksUtilityFunctions) == 64, "wire format");

/// The host's tables. No pointer in it is null.
typedef struct __attribute__((packed)) ksServiceTables {
    uint8_t reserved0[4];
    const ksMemoryFunctions* memory; ///< in
    uint8_t reserved12[16];
    const ksUtilityFunctions* utility; ///< in
} ksServiceTables;
static_assert(offsetof(ksServiceTables, reserved0) == 0, "wire format");
static_assert(offsetof(ksServiceTables, memory) == 4, "wire format");
static_assert(offsetof(ksServiceTables, reserved12) == 12, "wire format");
static_assert(offsetof(ksServiceTables, utility) == 28, "wire format");
static_assert(sizeof(ksServiceTables) == 36, "wire format");

/// The second argument of every request. [thread-safe] to read.
typedef struct __attribute__((packed)) ksStdParms {
    uint8_t reserved0[12];
    const ksServiceTables* services; ///< in  never null
} ksStdParms;
static_assert(offsetof(ksStdParms, reserved0) == 0, "wire format");
static_assert(offsetof(ksStdParms, services) == 12, "wire format");
static_assert(sizeof(ksStdParms) == 20, "wire format");

#endif
