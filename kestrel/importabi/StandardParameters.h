/// What the host hands to every request: the way to its allocator and to its named suites.
///
/// The host owns everything reachable from `ksStdParms` and keeps it for as long as an importer is
/// loaded. All records are packed and little-endian; read fields by value, they are unaligned.
/// Function tables are arrays of 8-byte pointers in the platform's C calling convention.
#ifndef KESTREL_IMPORTABI_STANDARD_PARAMETERS_H
#define KESTREL_IMPORTABI_STANDARD_PARAMETERS_H

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

/// Any host function whose signature this system does not need to know.
typedef void (*ksUnknownFunction)(void);

/// The host's allocator, among functions that importers here do not call.
typedef struct ksMemoryFunctions {
    ksUnknownFunction slots0To7[8];
    /// Returns `bytes` bytes that belong to the host, or null. [any-thread]
    void* (*newBlock)(uint32_t bytes);
} ksMemoryFunctions;
static_assert(offsetof(ksMemoryFunctions, newBlock) == 64, "slot 8");

/// Gives access to the host's suites: versioned tables of functions, asked for by name.
typedef struct ksSuiteAccess {
    /// Stores the table of the suite `name` at `version` into `*suite`, which the host keeps for the
    /// life of the process. Returns 0, or a negative status with `*suite` untouched. [thread-safe]
    int32_t (*acquireSuite)(const char* name, int32_t version, const void** suite);
} ksSuiteAccess;

typedef struct ksUtilityFunctions {
    ksUnknownFunction slots0To6[7];
    /// Returns the suite access, never null in a complete host. [thread-safe]
    ksSuiteAccess* (*getSuiteAccess)(void);
} ksUtilityFunctions;
static_assert(offsetof(ksUtilityFunctions, getSuiteAccess) == 56, "slot 7");

typedef struct __attribute__((packed)) ksServiceTables {
    uint8_t reserved0[4];
    const ksMemoryFunctions* memory;
    uint8_t reserved12[16];
    const ksUtilityFunctions* utility;
} ksServiceTables;
static_assert(offsetof(ksServiceTables, memory) == 4, "wire format");
static_assert(offsetof(ksServiceTables, utility) == 28, "wire format");
static_assert(sizeof(ksServiceTables) == 36, "wire format");

typedef struct __attribute__((packed)) ksStdParms {
    uint8_t reserved0[12];
    const ksServiceTables* services;
} ksStdParms;
static_assert(offsetof(ksStdParms, services) == 12, "wire format");
static_assert(sizeof(ksStdParms) == 20, "wire format");

#endif
