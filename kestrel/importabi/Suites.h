/// The host's suites that importers of this system use: names, versions and function tables.
///
/// A table's entries that nobody here calls are kept as placeholders, so that the others stand in
/// their slots. Every function returns 0 or more on success and a negative status on failure, with
/// its outputs untouched then.
#ifndef KESTREL_IMPORTABI_SUITES_H
#define KESTREL_IMPORTABI_SUITES_H

#include "StandardParameters.h"

#ifdef __cplusplus
#include <cstdbool>
#else
#include <stdbool.h>
#endif

/// "Kestrel Legacy Suite": between ticks per frame and the host's pair of time scale and sample size.
static const char kLegacySuiteName[] = "Kestrel Legacy Suite";
enum { kLegacySuiteVersion1 = 1, kLegacySuiteVersion2 = 2 };

typedef struct ksLegacySuite1 {
    /// `*ticksPerFrame` = 254016000000 × sampleSize / timeScale; 0 where that is no rate. [thread-safe]
    int32_t (*timeScaleToTicks)(int32_t timeScale, int32_t sampleSize, int64_t* ticksPerFrame);
} ksLegacySuite1;

typedef struct ksLegacySuite2 {
    ksUnknownFunction slot0;
    /// The exact pair timeScale / sampleSize of the rate, reduced. [thread-safe]
    int32_t (*ticksToTimeScale)(int64_t ticksPerFrame, int32_t* timeScale, int32_t* sampleSize);
} ksLegacySuite2;
static_assert(offsetof(ksLegacySuite2, ticksToTimeScale) == 8, "slot 1");

/// A frame of the host, opaque to an importer; the host owns it.
typedef void* ksFrameHandle;

/// How pixels are going to be used; 2 is the only access that importers here ask for.
enum { ksFrameAccessReadWrite = 2 };

/// "Kestrel Vimo Creator 2 Suite": makes frames.
static const char kFrameCreatorSuiteName[] = "Kestrel Vimo Creator 2 Suite";
enum { kFrameCreatorSuiteVersion = 4 };

typedef struct ksFrameCreatorSuite4 {
    ksUnknownFunction slots0To3[4];
    /// Makes a frame and stores its handle in `*frame`.
    ///
    /// @param pixelFormat  Host four-character code; one that cannot be painted is refused.
    /// @param width,height Pixels, 1..100000; a buffer above 2 GiB is refused.
    /// @param extra16      The 16 bytes that came with the frame request, handed through by address.
    /// @return 0, or negative with a null handle stored. [serialised]
    int32_t (*createFrame)(ksFrameHandle* frame, int32_t access, uint32_t pixelFormat, int32_t width,
                           int32_t height, bool reserved5, int32_t reserved6, uint32_t parNumerator,
                           uint32_t parDenominator, void* extra16);
} ksFrameCreatorSuite4;
static_assert(offsetof(ksFrameCreatorSuite4, createFrame) == 32, "slot 4");

/// "Kestrel Vimo Suite": looks into frames.
static const char kFrameSuiteName[] = "Kestrel Vimo Suite";
enum { kFrameSuiteVersion = 1 };

typedef struct ksFrameSuite1 {
    ksUnknownFunction slot0;
    /// The address of the frame's first pixel row in memory. [thread-safe]
    int32_t (*getPixels)(ksFrameHandle frame, int32_t access, void** pixels);
    /// left, top, right, bottom in pixels. [thread-safe]
    int32_t (*getBounds)(ksFrameHandle frame, int32_t bounds[4]);
    /// Bytes from one row to the next; may be padded, may be negative. [thread-safe]
    int32_t (*getRowBytes)(ksFrameHandle frame, int32_t* rowBytes);
} ksFrameSuite1;
static_assert(offsetof(ksFrameSuite1, getPixels) == 8, "slot 1");
static_assert(offsetof(ksFrameSuite1, getRowBytes) == 24, "slot 3");

/// "Kestrel Pixel Format Suite": acquired together with the two frame suites; nothing here calls it.
static const char kPixelFormatSuiteName[] = "Kestrel Pixel Format Suite";
enum { kPixelFormatSuiteVersion = 1 };

#endif
