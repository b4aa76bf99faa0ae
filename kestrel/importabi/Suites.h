/// The host's suites that importers of this system use: names, versions and tables of functions.
///
/// An importer asks for a table by name and version (see `ksSuiteAccess`) and may keep it. Slots whose
/// function is not described hold a null pointer or a function that does nothing. Every function returns 0
/// or more on success and a negative status on failure; its outputs are then untouched unless it says
/// otherwise. None of them throws.
#ifndef KESTREL_IMPORTABI_SUITES_H
#define KESTREL_IMPORTABI_SUITES_H

#include "StandardParameters.h"

#include <stdbool.h>

#ifdef __cplusplus
extern "C" {
#endif

/// "Kestrel Legacy Suite": between ticks per frame and the host's pair of time scale and sample size. A
/// second has 254016000000 ticks.
static const char kLegacySuiteName[] = "Kestrel Legacy Suite";
enum { kLegacySuiteVersion1 = 1, kLegacySuiteVersion2 = 2 };

typedef struct ksLegacySuite1 {
    /// Stores 254016000000 × sampleSize / timeScale, rounded to the nearest, into `*ticksPerFrame`; 0 where
    /// one of the two is not positive.
    /// @return 0, or negative for a null pointer. [thread-safe]
    int32_t (*timeScaleToTicks)(int32_t timeScale, int32_t sampleSize, int64_t* ticksPerFrame);
} ksLegacySuite1;
static_assert(offsetof(ksLegacySuite1, timeScaleToTicks) == 0, "slot 0");
static_assert(sizeof(ksLegacySuite1) == 8, "wire format");

typedef struct ksLegacySuite2 {
    ksUnknownFunction slot0;
    /// Stores the reduced pair whose timeScale / sampleSize is the rate; the nearest pair of 31-bit numbers
    /// where the rate is no such fraction.
    /// @return 0, or negative for a null pointer or where there is no such pair (a rate of 0 or less).
    ///         [thread-safe]
    int32_t (*ticksToTimeScale)(int64_t ticksPerFrame, int32_t* timeScale, int32_t* sampleSize);
} ksLegacySuite2;
static_assert(offsetof(ksLegacySuite2, slot0) == 0, "slot 0");
static_assert(offsetof(ksLegacySuite2, ticksToTimeScale) == 8, "slot 1");
static_assert(sizeof(ksLegacySuite2) == 16, "wire format");

/// A frame, opaque to an importer. It belongs to the host.
typedef void* ksFrameHandle;

/// What an importer is going to do with pixels. The host knows this one access and refuses others.
enum { ksFrameAccessReadWrite = 2 };

/// "Kestrel Vimo Creator 2 Suite": makes frames.
static const char kFrameCreatorSuiteName[] = "Kestrel Vimo Creator 2 Suite";
enum { kFrameCreatorSuiteVersion = 4 };

typedef struct ksFrameCreatorSuite4 {
    ksUnknownFunction slots0To3[4];
    /// Makes a frame of zeroed pixels for the frame request that is being served, and stores its handle.
    ///
    /// @param frame        Where the handle goes: the request's `frame`.
    /// @param access       `ksFrameAccessReadWrite`.
    /// @param pixelFormat  Four-character code of the host (see kestrel/brindle/PixelFormat.h).
    /// @param width        Pixels, 1..100000.
    /// @param height       Pixels, 1..100000.
    /// @param reserved5    false.
    /// @param reserved6    0.
    /// @param parNumerator,parDenominator  Pixel aspect ratio.
    /// @param extra16      The request's `extra16`, by address: it says which request the frame is for.
    /// @return 0; or negative with null stored in `*frame`: no memory, a format that cannot be painted, a
    ///         size out of range, a buffer above 2 GiB, another access, or an `extra16` of no request.
    ///         [thread-safe]
    int32_t (*createFrame)(ksFrameHandle* frame, int32_t access, uint32_t pixelFormat, int32_t width,
                           int32_t height, bool reserved5, int32_t reserved6, uint32_t parNumerator,
                           uint32_t parDenominator, void* extra16);
} ksFrameCreatorSuite4;
static_assert(offsetof(ksFrameCreatorSuite4, slots0To3) == 0, "slot 0");
static_assert(offsetof(ksFrameCreatorSuite4, createFrame) == 32, "slot 4");
static_assert(sizeof(ksFrameCreatorSuite4) == 40, "wire format");
static_assert(sizeof(bool) == 1, "wire format");

/// "Kestrel Vimo Suite": gives access to a frame's pixels.
static const char kFrameSuiteName[] = "Kestrel Vimo Suite";
enum { kFrameSuiteVersion = 1 };

typedef struct ksFrameSuite1 {
    ksUnknownFunction slot0;
    /// Stores the address of the row that comes first in memory. That is the picture's top row, except in
    /// the format BGRA with 32-bit floats, whose rows are stored bottom row first.
    /// @param access  `ksFrameAccessReadWrite`.
    /// @return 0, or negative for a null pointer or another access. [thread-safe]
    int32_t (*getPixels)(ksFrameHandle frame, int32_t access, void** pixels);
    /// Stores left, top, right and bottom in pixels; left and top are 0.
    /// @return 0, or negative for a null pointer. [thread-safe]
    int32_t (*getBounds)(ksFrameHandle frame, int32_t bounds[4]);
    /// Stores the bytes from one row in memory to the next. May be more than a row's pixels take, and
    /// negative in hosts that address the last row in memory.
    /// @return 0, or negative for a null pointer. [thread-safe]
    int32_t (*getRowBytes)(ksFrameHandle frame, int32_t* rowBytes);
} ksFrameSuite1;
static_assert(offsetof(ksFrameSuite1, slot0) == 0, "slot 0");
static_assert(offsetof(ksFrameSuite1, getPixels) == 8, "slot 1");
static_assert(offsetof(ksFrameSuite1, getBounds) == 16, "slot 2");
static_assert(offsetof(ksFrameSuite1, getRowBytes) == 24, "slot 3");
static_assert(sizeof(ksFrameSuite1) == 32, "wire format");

/// "Kestrel Pixel Format Suite": importers of this system ask for it and call nothing in it.
static const char kPixelFormatSuiteName[] = "Kestrel Pixel Format Suite";
enum { kPixelFormatSuiteVersion = 1 };

#ifdef __cplusplus
}
#endif

#endif
