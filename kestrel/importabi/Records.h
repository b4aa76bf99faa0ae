/// The packed records that requests carry, byte for byte.
///
/// The host owns every record and all it points to, unless a field says otherwise; an importer keeps no
/// pointer into a record once it has returned. Fields are unaligned: read and write them by value. `in`
/// fields are the host's and stay as they are, and so do `reserved` bytes. `out` fields are the importer's
/// to write. A field that is neither served nor described stays as the host left it.
///
/// Before each record stands what its selector needs and gives, and every result with its meaning. For all
/// of them: a record or instance that is needed and null is answered with `ksResultFailed`, never
/// dereferenced. With a result other than `ksResultServed` the outputs are unspecified unless the result's own
/// line says what they hold, and the instance stays usable.
///
/// An instance is an importer's state for one open clip. The thread words ([any-thread] and so on, see
/// docs/threads.md) speak of instances as the objects of a request.
#ifndef KESTREL_IMPORTABI_RECORDS_H
#define KESTREL_IMPORTABI_RECORDS_H

#include "StandardParameters.h"

/// UTF-16 code unit of the paths in records.
#ifdef __cplusplus
typedef char16_t ksUTF16;
#else
typedef uint_least16_t ksUTF16;
#endif
static_assert(sizeof(ksUTF16) == 2, "wire format");

/// An instance as the host carries it from request to request. The importer makes it with selector 37, 39
/// or 81 and deletes it with selector 9. Null is no instance.
typedef void* ksInstance;
static_assert(sizeof(ksInstance) == 8, "wire format");

/// param1 of selector 0: starts the importer. param2 is null.
///
/// Needs:   nothing. This is the first request.
/// Gives:   what the importer can do.
/// Results: `ksResultServed`       started; the record is filled.
///          `ksResultUnsupported`  the importer does not want to start here; the record is untouched. The
///                                 host does not use the importer.
///          `ksResultOutOfMemory`, `ksResultFailed`  the start failed. The host does not use the importer.
/// Threads: [serialised]
typedef struct __attribute__((packed)) ksStartUpRec {
    uint32_t fileTypeCode; ///< out  four-character code, as an integer whose big-endian reading is the code
    uint8_t reserved4[24];
    uint32_t flag28; ///< out  seven capability flags, 0 or 1 each; importers of this system set them all
    uint32_t flag32; ///< out
    uint32_t flag36; ///< out
    uint8_t reserved40[4];
    uint32_t flag44; ///< out
    uint8_t reserved48[4];
    uint32_t flag52; ///< out
    uint8_t reserved56[4];
    uint32_t flag60; ///< out
    uint8_t reserved64[8];
    uint32_t flag72; ///< out
} ksStartUpRec;
static_assert(offsetof(ksStartUpRec, fileTypeCode) == 0, "wire format");
static_assert(offsetof(ksStartUpRec, reserved4) == 4, "wire format");
static_assert(offsetof(ksStartUpRec, flag28) == 28, "wire format");
static_assert(offsetof(ksStartUpRec, flag32) == 32, "wire format");
static_assert(offsetof(ksStartUpRec, flag36) == 36, "wire format");
static_assert(offsetof(ksStartUpRec, reserved40) == 40, "wire format");
static_assert(offsetof(ksStartUpRec, flag44) == 44, "wire format");
static_assert(offsetof(ksStartUpRec, reserved48) == 48, "wire format");
static_assert(offsetof(ksStartUpRec, flag52) == 52, "wire format");
static_assert(offsetof(ksStartUpRec, reserved56) == 56, "wire format");
static_assert(offsetof(ksStartUpRec, flag60) == 60, "wire format");
static_assert(offsetof(ksStartUpRec, reserved64) == 64, "wire format");
static_assert(offsetof(ksStartUpRec, flag72) == 72, "wire format");
static_assert(sizeof(ksStartUpRec) == 76, "wire format");

/// param2 of selector 14: describes one file type. param1 is its index.
///
/// Needs:   a started importer. The host asks with index 0, 1, 2, ... until an index has no entry.
/// Gives:   the file type's name and its extensions.
/// Results: `ksResultServed`         the record is filled.
///          `ksResultNoMoreEntries`  the index is past the last file type; the record is untouched.
///          `ksResultOutOfMemory`, `ksResultFailed`  the host does not use the importer.
/// Threads: [serialised]
typedef struct __attribute__((packed)) ksFileTypeRec {
    uint32_t fileTypeCode; ///< out  four-character code, as in `ksStartUpRec`
    uint32_t flags;        ///< out  importers of this system write 0xE008
    uint32_t zero8;        ///< out  0
    char displayName[256]; ///< out  UTF-8, NUL-padded; the last byte is always 0
    uint8_t reserved268[32];
    char extensions[256]; ///< out  extensions without dots, a NUL after each, then an empty one
    uint8_t reserved556[204];
    uint32_t zero760; ///< out  0
} ksFileTypeRec;
static_assert(offsetof(ksFileTypeRec, fileTypeCode) == 0, "wire format");
static_assert(offsetof(ksFileTypeRec, flags) == 4, "wire format");
static_assert(offsetof(ksFileTypeRec, zero8) == 8, "wire format");
static_assert(offsetof(ksFileTypeRec, displayName) == 12, "wire format");
static_assert(offsetof(ksFileTypeRec, reserved268) == 268, "wire format");
static_assert(offsetof(ksFileTypeRec, extensions) == 300, "wire format");
static_assert(offsetof(ksFileTypeRec, reserved556) == 556, "wire format");
static_assert(offsetof(ksFileTypeRec, zero760) == 760, "wire format");
static_assert(sizeof(ksFileTypeRec) == 764, "wire format");

/// param2 of selector 25: renders a span of sound. param1 is null.
///
/// Needs:   an instance that was opened or described.
/// Gives:   `sampleCount` samples in each of the first buffers, as many as the clip has channels. The host
///          zeroes the buffers before.
/// Results: `ksResultServed`       the samples are written.
///          `ksResultOutOfMemory`  an allocation failed.
///          `ksResultFailed`       the instance is null, `channels` is null where a sample would be written
///                                 through it, or rendering failed.
/// Threads: [thread-safe]
typedef struct __attribute__((packed)) ksAudioRec {
    int64_t position;     ///< in  first sample, counted from the clip's start; may be negative
    uint32_t sampleCount; ///< in  samples for each channel; 0 writes nothing
    float** channels;     ///< in  planar buffers of `sampleCount` floats, one for each channel, at least six
    ksInstance instance;  ///< in
} ksAudioRec;
static_assert(offsetof(ksAudioRec, position) == 0, "wire format");
static_assert(offsetof(ksAudioRec, sampleCount) == 8, "wire format");
static_assert(offsetof(ksAudioRec, channels) == 12, "wire format");
static_assert(offsetof(ksAudioRec, instance) == 20, "wire format");
static_assert(sizeof(ksAudioRec) == 28, "wire format");

/// param2 of selector 27: an enumeration with one entry. param1 is an index.
///
/// Needs:   an instance. This host does not send the request.
/// Gives:   0 for index 0.
/// Results: `ksResultServed`         `value8` is written.
///          `ksResultNoMoreEntries`  the index is not 0; the record is untouched.
///          `ksResultFailed`         the instance is null.
/// Threads: [any-thread]
typedef struct __attribute__((packed)) ksIndexedRec {
    ksInstance instance; ///< in
    uint32_t value8;     ///< out  0
} ksIndexedRec;
static_assert(offsetof(ksIndexedRec, instance) == 0, "wire format");
static_assert(offsetof(ksIndexedRec, value8) == 8, "wire format");
static_assert(sizeof(ksIndexedRec) == 12, "wire format");

/// param1 of selectors 37 and 38: the clip's file. Needs, gives, results and threads stand before the
/// record that is param2 of each.
typedef struct __attribute__((packed)) ksFileAccessRec {
    uint8_t reserved0[12];
    const ksUTF16* path; ///< in  NUL-terminated; null counts as a path that does not exist
    uint8_t reserved20[8];
    ksUTF16* newPath; ///< out  selector 38 with `ksResultUseSavedFile` only: a NUL-terminated path in a block
                      ///<      of `ksMemoryFunctions::newBlock`, which the host frees
} ksFileAccessRec;
static_assert(offsetof(ksFileAccessRec, reserved0) == 0, "wire format");
static_assert(offsetof(ksFileAccessRec, path) == 12, "wire format");
static_assert(offsetof(ksFileAccessRec, reserved20) == 20, "wire format");
static_assert(offsetof(ksFileAccessRec, newPath) == 28, "wire format");
static_assert(sizeof(ksFileAccessRec) == 36, "wire format");

/// param2 of selector 39: reads a clip's file into an instance. param1 is null.
///
/// Needs:   the file's path. The slot is null, or holds an instance that is to read this file instead.
/// Gives:   an instance with the file's settings.
/// Results: `ksResultServed`          opened; the slot holds the instance. A file that can be read but is
///                                    malformed may open with default settings: log what is wrong.
///          `ksResultFileUnreadable`  the file cannot be read. A slot that was null stays null; an instance
///                                    that was there stays there.
///          `ksResultNoInstance`      no instance could be made; the slot is null.
///          `ksResultOutOfMemory`, `ksResultFailed`  the slot is as it was.
/// Threads: [any-thread]
typedef struct __attribute__((packed)) ksOpenRec {
    uint8_t reserved0[12];
    const ksUTF16* path; ///< in  NUL-terminated; null counts as a path that does not exist
    uint8_t reserved20[16];
    ksInstance instance; ///< in/out  the instance slot
} ksOpenRec;
static_assert(offsetof(ksOpenRec, reserved0) == 0, "wire format");
static_assert(offsetof(ksOpenRec, path) == 12, "wire format");
static_assert(offsetof(ksOpenRec, reserved20) == 20, "wire format");
static_assert(offsetof(ksOpenRec, instance) == 36, "wire format");
static_assert(sizeof(ksOpenRec) == 44, "wire format");

/// param2 of selector 37: describes a clip. param1 is `ksFileAccessRec`.
///
/// Needs:   either a path that exists and an instance that selector 39 opened; or a path that does not
///          exist and `settingsText`, which then becomes the instance's settings. A null slot gets a new
///          instance, also where the description then fails.
/// Gives:   size, rate, duration and sound of the clip.
/// Results: `ksResultServed`          the record is filled.
///          `ksResultFileUnreadable`  the path does not exist and `settingsText` is null; only `hasVideo`
///                                    and `hasAudio` are written.
///          `ksResultNoInstance`      no instance could be made; the slot is null.
///          `ksResultOutOfMemory`, `ksResultFailed`  the host does not use the clip.
/// Threads: [any-thread]
///
/// Selector 81 uses the instance slot alone; see Selectors.h.
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
    uint32_t parNumerator;   ///< out  pixel aspect ratio: width of a pixel ...
    uint32_t parDenominator; ///< out  ... to its height
    uint8_t reserved42[12];
    uint32_t flag54; ///< out  1
    uint8_t reserved58[40];
    uint32_t supportsColorManagement; ///< out  0 or 1
    uint8_t reserved102[60];
    int32_t videoTimeScale;    ///< out  units per second
    int32_t videoSampleSize;   ///< out  units per frame: 30000 and 1001 make 29.97 frames a second
    int32_t videoDuration;     ///< out  units: frame count × `videoSampleSize`, wrapped to 32 bits
    int32_t audioChannelCount; ///< out
    float audioSampleRate;     ///< out  samples per second
    uint32_t audioValue182;    ///< out  6
    uint8_t reserved186[12];
    ksInstance instance;      ///< in/out  the instance slot
    const char* settingsText; ///< in  NUL-terminated text that selector 38 gave, for a clip without a file;
                              ///<     else null
} ksFileInfoRec;
static_assert(offsetof(ksFileInfoRec, hasVideo) == 0, "wire format");
static_assert(offsetof(ksFileInfoRec, hasAudio) == 1, "wire format");
static_assert(offsetof(ksFileInfoRec, frameWidth) == 2, "wire format");
static_assert(offsetof(ksFileInfoRec, frameHeight) == 6, "wire format");
static_assert(offsetof(ksFileInfoRec, reserved10) == 10, "wire format");
static_assert(offsetof(ksFileInfoRec, depth) == 12, "wire format");
static_assert(offsetof(ksFileInfoRec, reserved14) == 14, "wire format");
static_assert(offsetof(ksFileInfoRec, fieldType) == 18, "wire format");
static_assert(offsetof(ksFileInfoRec, reserved19) == 19, "wire format");
static_assert(offsetof(ksFileInfoRec, flag22) == 22, "wire format");
static_assert(offsetof(ksFileInfoRec, reserved23) == 23, "wire format");
static_assert(offsetof(ksFileInfoRec, parNumerator) == 34, "wire format");
static_assert(offsetof(ksFileInfoRec, parDenominator) == 38, "wire format");
static_assert(offsetof(ksFileInfoRec, reserved42) == 42, "wire format");
static_assert(offsetof(ksFileInfoRec, flag54) == 54, "wire format");
static_assert(offsetof(ksFileInfoRec, reserved58) == 58, "wire format");
static_assert(offsetof(ksFileInfoRec, supportsColorManagement) == 98, "wire format");
static_assert(offsetof(ksFileInfoRec, reserved102) == 102, "wire format");
static_assert(offsetof(ksFileInfoRec, videoTimeScale) == 162, "wire format");
static_assert(offsetof(ksFileInfoRec, videoSampleSize) == 166, "wire format");
static_assert(offsetof(ksFileInfoRec, videoDuration) == 170, "wire format");
static_assert(offsetof(ksFileInfoRec, audioChannelCount) == 174, "wire format");
static_assert(offsetof(ksFileInfoRec, audioSampleRate) == 178, "wire format");
static_assert(offsetof(ksFileInfoRec, audioValue182) == 182, "wire format");
static_assert(offsetof(ksFileInfoRec, reserved186) == 186, "wire format");
static_assert(offsetof(ksFileInfoRec, instance) == 198, "wire format");
static_assert(offsetof(ksFileInfoRec, settingsText) == 206, "wire format");
static_assert(sizeof(ksFileInfoRec) == 214, "wire format");

/// param2 of selector 38: gives a clip's settings as text, after a dialog where one is due. param1 is
/// `ksFileAccessRec`. No instance takes part, and none changes.
///
/// Needs:   `text` null, which asks for the buffer's size and nothing else; or a buffer of the size that
///          the importer gave, and one of these sources:
///          - a path that exists: the settings come from that file;
///          - a path that does not exist and `newClip` 0: they come from the text in the buffer;
///          - a path that does not exist and `newClip` not 0: they are the defaults with the host's
///            sequence values.
///          A dialog is due except where the path exists and `newClip` is not 0.
/// Gives:   the settings as NUL-terminated UTF-8. A text that does not fit is not written, `bufferSize`
///          neither.
/// Results: `ksResultServed`          the buffer's size was asked for and is written; or the settings are
///                                    accepted, and written where they fit.
///          `ksResultUseSavedFile`    the person saved the settings to the file `newPath`, which the clip
///                                    is to use from now on; the buffer is untouched.
///          `ksResultCancelled`       the person cancelled; the settings as they were before are written.
///          `ksResultFileUnreadable`  the file cannot be read; the buffer is untouched. No dialog was shown.
///          `ksResultUnsupported`     a dialog is due and the importer has none; the buffer is untouched.
///          `ksResultOutOfMemory`, `ksResultFailed`  no dialog can be shown, or anything else failed; the
///                                    buffer is untouched.
/// Threads: [ui-thread] where a dialog is due, else [thread-safe]
typedef struct __attribute__((packed)) ksSettingsExchangeRec {
    char* text;          ///< in/out  the host's buffer, or null to ask for its size
    uint32_t bufferSize; ///< out  bytes that the buffer must have; written with every text too
    uint8_t newClip;     ///< in  0 where the host edits a clip, else it makes one
    uint8_t reserved13[24];
    int32_t frameWidth;      ///< in  the host's sequence values, for a new clip: pixels
    int32_t frameHeight;     ///< in  pixels
    uint32_t parNumerator;   ///< in  pixel aspect ratio
    uint32_t parDenominator; ///< in
    int32_t timeScale;       ///< in  units per second
    int32_t sampleSize;      ///< in  units per frame
} ksSettingsExchangeRec;
static_assert(offsetof(ksSettingsExchangeRec, text) == 0, "wire format");
static_assert(offsetof(ksSettingsExchangeRec, bufferSize) == 8, "wire format");
static_assert(offsetof(ksSettingsExchangeRec, newClip) == 12, "wire format");
static_assert(offsetof(ksSettingsExchangeRec, reserved13) == 13, "wire format");
static_assert(offsetof(ksSettingsExchangeRec, frameWidth) == 37, "wire format");
static_assert(offsetof(ksSettingsExchangeRec, frameHeight) == 41, "wire format");
static_assert(offsetof(ksSettingsExchangeRec, parNumerator) == 45, "wire format");
static_assert(offsetof(ksSettingsExchangeRec, parDenominator) == 49, "wire format");
static_assert(offsetof(ksSettingsExchangeRec, timeScale) == 53, "wire format");
static_assert(offsetof(ksSettingsExchangeRec, sampleSize) == 57, "wire format");
static_assert(sizeof(ksSettingsExchangeRec) == 61, "wire format");

/// param1 of selector 45: the size of a clip's frames. param2 is null.
///
/// Needs:   an instance that was opened or described. This host does not send the request.
/// Gives:   width and height.
/// Results: `ksResultServed`       the size is written.
///          `ksResultUnsupported`  the index is not 0; the record is untouched.
///          `ksResultFailed`       the instance is null.
/// Threads: [any-thread]
typedef struct __attribute__((packed)) ksFrameSizeRec {
    ksInstance instance; ///< in
    uint8_t reserved8[12];
    uint32_t index; ///< in  0
    int32_t width;  ///< out  pixels
    int32_t height; ///< out  pixels
} ksFrameSizeRec;
static_assert(offsetof(ksFrameSizeRec, instance) == 0, "wire format");
static_assert(offsetof(ksFrameSizeRec, reserved8) == 8, "wire format");
static_assert(offsetof(ksFrameSizeRec, index) == 20, "wire format");
static_assert(offsetof(ksFrameSizeRec, width) == 24, "wire format");
static_assert(offsetof(ksFrameSizeRec, height) == 28, "wire format");
static_assert(sizeof(ksFrameSizeRec) == 32, "wire format");

/// param2 of selector 47: renders a frame. param1 is null.
///
/// Needs:   an instance that was opened or described.
/// Gives:   a frame, made through `ksFrameCreatorSuite4::createFrame` in the size that selector 37 gave,
///          and painted. Pixels that the importer does not paint are zero.
/// Results: `ksResultServed`       `*frame` holds the painted frame.
///          `ksResultOutOfMemory`  an allocation failed. The host takes back a frame that was made already.
///          `ksResultFailed`       the instance is null, a suite is missing, the host refused the frame, or
///                                 painting failed. The host takes back a frame that was made already.
/// Threads: [thread-safe], except that the first frame request of a process runs alone: an importer may
///          keep its suites from then on without a lock.
typedef struct __attribute__((packed)) ksFrameRec {
    ksInstance instance; ///< in
    uint8_t reserved8[4];
    int64_t time; ///< in  ticks from the clip's start, 254016000000 to the second; may be negative
    uint8_t reserved20[16];
    void** frame; ///< in  where the handle of the created frame goes; the frame belongs to the host
    uint8_t reserved44[52];
    uint8_t extra16[16]; ///< in  passed by address to the frame's creation
} ksFrameRec;
static_assert(offsetof(ksFrameRec, instance) == 0, "wire format");
static_assert(offsetof(ksFrameRec, reserved8) == 8, "wire format");
static_assert(offsetof(ksFrameRec, time) == 12, "wire format");
static_assert(offsetof(ksFrameRec, reserved20) == 20, "wire format");
static_assert(offsetof(ksFrameRec, frame) == 36, "wire format");
static_assert(offsetof(ksFrameRec, reserved44) == 44, "wire format");
static_assert(offsetof(ksFrameRec, extra16) == 96, "wire format");
static_assert(sizeof(ksFrameRec) == 112, "wire format");

/// Colour codes of ITU-T H.273.
typedef struct __attribute__((packed)) ksSEIColorCodesRec {
    int32_t primaries; ///< ColourPrimaries
    int32_t transfer;  ///< TransferCharacteristics
    int32_t matrix;    ///< MatrixCoefficients
    int32_t fullRange; ///< VideoFullRangeFlag, 0 or 1
} ksSEIColorCodesRec;
static_assert(offsetof(ksSEIColorCodesRec, primaries) == 0, "wire format");
static_assert(offsetof(ksSEIColorCodesRec, transfer) == 4, "wire format");
static_assert(offsetof(ksSEIColorCodesRec, matrix) == 8, "wire format");
static_assert(offsetof(ksSEIColorCodesRec, fullRange) == 12, "wire format");
static_assert(sizeof(ksSEIColorCodesRec) == 16, "wire format");

/// param2 of selector 73: the colour codes of a clip. param1 is an index.
///
/// Needs:   an instance that was opened or described.
/// Gives:   the codes for index 0.
/// Results: `ksResultServed`            the codes are written. Codes that the importer cannot tell stay as
///                                      the host left them.
///          `ksResultNoSuchColorIndex`  the index is not 0; the record is untouched.
///          `ksResultFailed`            the instance is null.
/// Threads: [any-thread]
typedef struct __attribute__((packed)) ksColorRec {
    ksInstance instance; ///< in
    uint32_t kind;       ///< out  3: `codes` are colour codes of H.273
    uint8_t reserved12[36];
    ksSEIColorCodesRec codes; ///< out
} ksColorRec;
static_assert(offsetof(ksColorRec, instance) == 0, "wire format");
static_assert(offsetof(ksColorRec, kind) == 8, "wire format");
static_assert(offsetof(ksColorRec, reserved12) == 12, "wire format");
static_assert(offsetof(ksColorRec, codes) == 48, "wire format");
static_assert(sizeof(ksColorRec) == 64, "wire format");

#endif
