/// The packed records that requests carry, byte for byte. The host owns every record and all it
/// points to unless a field says otherwise; an importer keeps no pointer into one after it returned.
/// Fields are unaligned: read and write them by value. `reserved` bytes are the host's and stay as
/// they are.
#ifndef KESTREL_IMPORTABI_RECORDS_H
#define KESTREL_IMPORTABI_RECORDS_H

#include "StandardParameters.h"

/// UTF-16 code unit as it stands in paths from the host.
#ifdef __cplusplus
typedef char16_t ksUTF16;
#else
typedef uint_least16_t ksUTF16;
#endif

/// Importer instance as the host carries it: made by selector 37, 39 or 81, gone with selector 9.
typedef void* ksInstance;

/// param1 of selector 0.
typedef struct __attribute__((packed)) ksStartUpRec {
    uint32_t fileTypeCode; ///< out  four-character code whose big-endian reading is the code
    uint8_t reserved4[24];
    uint32_t flag28; ///< out  seven capability flags, 0 or 1 each
    uint32_t flag32;
    uint32_t flag36;
    uint8_t reserved40[4];
    uint32_t flag44;
    uint8_t reserved48[4];
    uint32_t flag52;
    uint8_t reserved56[4];
    uint32_t flag60;
    uint8_t reserved64[8];
    uint32_t flag72;
} ksStartUpRec;
static_assert(offsetof(ksStartUpRec, flag28) == 28, "wire format");
static_assert(offsetof(ksStartUpRec, flag36) == 36, "wire format");
static_assert(offsetof(ksStartUpRec, flag44) == 44, "wire format");
static_assert(offsetof(ksStartUpRec, flag52) == 52, "wire format");
static_assert(offsetof(ksStartUpRec, flag60) == 60, "wire format");
static_assert(offsetof(ksStartUpRec, flag72) == 72, "wire format");
static_assert(sizeof(ksStartUpRec) == 76, "wire format");

/// param2 of selector 14.
typedef struct __attribute__((packed)) ksFileTypeRec {
    uint32_t fileTypeCode; ///< out
    uint32_t flags;        ///< out  0xE008 from this importer
    uint32_t zero8;        ///< out  0
    char displayName[256]; ///< out  NUL-padded, last byte always 0
    uint8_t reserved268[32];
    char extensions[256]; ///< out  NUL-separated list, closed by an empty entry
    uint8_t reserved556[204];
    uint32_t zero760; ///< out  0
} ksFileTypeRec;
static_assert(offsetof(ksFileTypeRec, displayName) == 12, "wire format");
static_assert(offsetof(ksFileTypeRec, extensions) == 300, "wire format");
static_assert(offsetof(ksFileTypeRec, zero760) == 760, "wire format");
static_assert(sizeof(ksFileTypeRec) == 764, "wire format");

/// param2 of selector 25.
typedef struct __attribute__((packed)) ksAudioRec {
    int64_t position;     ///< in  first sample to produce, in samples from clip start; may be negative
    uint32_t sampleCount; ///< in  samples to write to each channel; 0 writes nothing
    float** channels;     ///< in  planar buffers of `sampleCount` floats; the host hands at least 6
    ksInstance instance;  ///< in
} ksAudioRec;
static_assert(offsetof(ksAudioRec, channels) == 12, "wire format");
static_assert(offsetof(ksAudioRec, instance) == 20, "wire format");
static_assert(sizeof(ksAudioRec) == 28, "wire format");

/// param2 of selector 27.
typedef struct __attribute__((packed)) ksIndexedRec {
    ksInstance instance; ///< in
    uint32_t value8;     ///< out  0
} ksIndexedRec;
static_assert(offsetof(ksIndexedRec, value8) == 8, "wire format");

/// param1 of selectors 37 and 38.
typedef struct __attribute__((packed)) ksFileAccessRec {
    uint8_t reserved0[12];
    const ksUTF16* path; ///< in  NUL-terminated; null counts as a path that does not exist
    uint8_t reserved20[8];
    ksUTF16* newPath; ///< out  selector 38 with result 17: block of the host's allocator, the host's to free
} ksFileAccessRec;
static_assert(offsetof(ksFileAccessRec, path) == 12, "wire format");
static_assert(offsetof(ksFileAccessRec, newPath) == 28, "wire format");
static_assert(sizeof(ksFileAccessRec) == 36, "wire format");

/// param2 of selector 39.
typedef struct __attribute__((packed)) ksOpenRec {
    uint8_t reserved0[12];
    const ksUTF16* path; ///< in  NUL-terminated
    uint8_t reserved20[16];
    ksInstance instance; ///< in/out  the instance slot
} ksOpenRec;
static_assert(offsetof(ksOpenRec, path) == 12, "wire format");
static_assert(offsetof(ksOpenRec, instance) == 36, "wire format");
static_assert(sizeof(ksOpenRec) == 44, "wire format");

/// param2 of selectors 37 and 81.
typedef struct __attribute__((packed)) ksFileInfoRec {
    uint8_t hasVideo;    ///< out  1
    uint8_t hasAudio;    ///< out  1
    int32_t frameWidth;  ///< out  pixels
    int32_t frameHeight; ///< out  pixels
    uint8_t reserved10[2];
    uint16_t depth; ///< out  32
    uint8_t reserved14[4];
    uint8_t fieldType; ///< out  0 progressive, 1 upper field first, 2 lower field first
    uint8_t reserved19[3];
    uint8_t flag22; ///< out  1
    uint8_t reserved23[11];
    uint32_t parNumerator;   ///< out
    uint32_t parDenominator; ///< out
    uint8_t reserved42[12];
    uint32_t flag54; ///< out  1
    uint8_t reserved58[40];
    uint32_t supportsColorManagement; ///< out  0 or 1
    uint8_t reserved102[60];
    int32_t videoTimeScale;    ///< out  units per second
    int32_t videoSampleSize;   ///< out  units per frame
    int32_t videoDuration;     ///< out  units; whole frames × sample size, wrapped to 32 bits
    int32_t audioChannelCount; ///< out
    float audioSampleRate;     ///< out  samples per second
    uint32_t audioValue182;    ///< out  6
    uint8_t reserved186[12];
    ksInstance instance;      ///< in/out  the instance slot
    const char* settingsText; ///< in  NUL-terminated UTF-8 JSON for a clip without a file, or null
} ksFileInfoRec;
static_assert(offsetof(ksFileInfoRec, frameWidth) == 2, "wire format");
static_assert(offsetof(ksFileInfoRec, frameHeight) == 6, "wire format");
static_assert(offsetof(ksFileInfoRec, depth) == 12, "wire format");
static_assert(offsetof(ksFileInfoRec, fieldType) == 18, "wire format");
static_assert(offsetof(ksFileInfoRec, flag22) == 22, "wire format");
static_assert(offsetof(ksFileInfoRec, parNumerator) == 34, "wire format");
static_assert(offsetof(ksFileInfoRec, parDenominator) == 38, "wire format");
static_assert(offsetof(ksFileInfoRec, flag54) == 54, "wire format");
static_assert(offsetof(ksFileInfoRec, supportsColorManagement) == 98, "wire format");
static_assert(offsetof(ksFileInfoRec, videoTimeScale) == 162, "wire format");
static_assert(offsetof(ksFileInfoRec, videoSampleSize) == 166, "wire format");
static_assert(offsetof(ksFileInfoRec, videoDuration) == 170, "wire format");
static_assert(offsetof(ksFileInfoRec, audioChannelCount) == 174, "wire format");
static_assert(offsetof(ksFileInfoRec, audioSampleRate) == 178, "wire format");
static_assert(offsetof(ksFileInfoRec, audioValue182) == 182, "wire format");
static_assert(offsetof(ksFileInfoRec, instance) == 198, "wire format");
static_assert(offsetof(ksFileInfoRec, settingsText) == 206, "wire format");
static_assert(sizeof(ksFileInfoRec) == 214, "wire format");

/// param2 of selector 38.
typedef struct __attribute__((packed)) ksSettingsExchangeRec {
    char* text;          ///< in/out  the host's buffer, or null to ask for its size
    uint32_t bufferSize; ///< out  bytes
    uint8_t newClip;     ///< in  not 0 when the host creates a clip rather than editing one
    uint8_t reserved13[24];
    int32_t frameWidth;      ///< in  the host's sequence values, for a new clip
    int32_t frameHeight;     ///< in
    uint32_t parNumerator;   ///< in
    uint32_t parDenominator; ///< in
    int32_t timeScale;       ///< in  units per second
    int32_t sampleSize;      ///< in  units per frame
} ksSettingsExchangeRec;
static_assert(offsetof(ksSettingsExchangeRec, bufferSize) == 8, "wire format");
static_assert(offsetof(ksSettingsExchangeRec, newClip) == 12, "wire format");
static_assert(offsetof(ksSettingsExchangeRec, frameWidth) == 37, "wire format");
static_assert(offsetof(ksSettingsExchangeRec, parNumerator) == 45, "wire format");
static_assert(offsetof(ksSettingsExchangeRec, timeScale) == 53, "wire format");
static_assert(offsetof(ksSettingsExchangeRec, sampleSize) == 57, "wire format");
static_assert(sizeof(ksSettingsExchangeRec) == 61, "wire format");

/// param1 of selector 45.
typedef struct __attribute__((packed)) ksFrameSizeRec {
    ksInstance instance; ///< in
    uint8_t reserved8[12];
    uint32_t index; ///< in  0
    int32_t width;  ///< out  pixels
    int32_t height; ///< out  pixels
} ksFrameSizeRec;
static_assert(offsetof(ksFrameSizeRec, index) == 20, "wire format");
static_assert(offsetof(ksFrameSizeRec, width) == 24, "wire format");
static_assert(sizeof(ksFrameSizeRec) == 32, "wire format");

/// param2 of selector 47.
typedef struct __attribute__((packed)) ksFrameRec {
    ksInstance instance; ///< in
    uint8_t reserved8[4];
    int64_t time; ///< in  ticks from clip start, 254016000000 to the second; may be negative
    uint8_t reserved20[16];
    void** frame; ///< in  where the handle of the created frame goes; the frame is the host's
    uint8_t reserved44[52];
    uint8_t extra16[16]; ///< in  passed on by address to the frame creation
} ksFrameRec;
static_assert(offsetof(ksFrameRec, time) == 12, "wire format");
static_assert(offsetof(ksFrameRec, frame) == 36, "wire format");
static_assert(offsetof(ksFrameRec, extra16) == 96, "wire format");
static_assert(sizeof(ksFrameRec) == 112, "wire format");

/// Colour codes of ITU-T H.273.
typedef struct __attribute__((packed)) ksSEIColorCodesRec {
    int32_t primaries;
    int32_t transfer;
    int32_t matrix;
    int32_t fullRange; ///< 0 or 1
} ksSEIColorCodesRec;
static_assert(sizeof(ksSEIColorCodesRec) == 16, "wire format");

/// param2 of selector 73.
typedef struct __attribute__((packed)) ksColorRec {
    ksInstance instance; ///< in
    uint32_t kind;       ///< out  3: the codes below are filled
    uint8_t reserved12[36];
    ksSEIColorCodesRec codes; ///< out
} ksColorRec;
static_assert(offsetof(ksColorRec, kind) == 8, "wire format");
static_assert(offsetof(ksColorRec, codes) == 48, "wire format");
static_assert(sizeof(ksColorRec) == 64, "wire format");

#endif
