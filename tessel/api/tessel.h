/* libtessel: clips of .tessel documents, from C.
 *
 * A clip is opened from a document, describes itself, and gives its pictures and its sound into the caller's
 * memory: the same values that `tessel render` writes.
 *
 * Results: every call that can fail returns a `tessel_result`; `tessel_error_text` then says why, in one line.
 * A failed call leaves what it was to write as it was, unless said otherwise. No exception leaves the library.
 *
 * Ownership: `tessel_open_*` give a clip that the caller owns and closes, `tessel_movie_open` a movie,
 * `tessel_document_new` a document. Texts belong to the library: those of a clip live until it is closed.
 *
 * Structures carry their size in their first member. The caller sets it to `sizeof` before the call; the
 * library writes no more, so that programs built with an older header go on working.
 *
 * Threads: [thread-safe] may be called from any thread at any time, on one clip too. [any-thread] may be called
 * from any thread, but not on one object at the same time. Clips share nothing that a call changes.
 *
 * Texts are UTF-8 and end with a NUL.
 */
#ifndef TESSEL_API_TESSEL_H
#define TESSEL_API_TESSEL_H

#include <stddef.h>
#include <stdint.h>

#ifdef _WIN32
#ifdef TESSEL_BUILD
#define TESSEL_API __declspec(dllexport)
#else
#define TESSEL_API __declspec(dllimport)
#endif
#else
#define TESSEL_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* One of the values below. */
typedef int32_t tessel_result;

enum {
    TESSEL_OK = 0,
    TESSEL_BAD_ARGUMENT = 1, /* a null pointer, a number out of its range, a structure without its size */
    TESSEL_NOT_OPENED = 2,   /* the plug-in cannot be found or loaded, or the document cannot be read */
    TESSEL_NOT_POSSIBLE = 3, /* the clip has no such picture or sound, or not in that layout */
    TESSEL_FAILED = 4,       /* the plug-in failed */
    TESSEL_OUT_OF_MEMORY = 5,
    TESSEL_REFUSED = 6 /* an unknown setting, a wrong value, or a clip that could not be played */
};

/* Why the last failed call of this thread failed; empty where none has. Valid until the thread's next failed
 * call. Threads: [thread-safe]. */
TESSEL_API const char* tessel_error_text(void);

/* The library's version, such as "0.1.0". Threads: [thread-safe]. */
TESSEL_API const char* tessel_version(void);

/* ---- Clips ---- */

typedef struct tessel_clip tessel_clip;

typedef struct tessel_open_options {
    size_t size;
    /* The importer plug-in: its file or folder. Null: where the environment variable KESTREL_PLUGIN_PATH says,
     * else beside the host's library. */
    const char* plugin;
    /* Not 0: a document that cannot be read gives the plug-in's default clip instead of an error;
     * `tessel_warning` then says why. */
    int32_t allow_default;
} tessel_open_options;

/* Opens a document. The file is read once and may be removed afterwards.
 * options: null for none. Threads: [thread-safe]. */
TESSEL_API tessel_result tessel_open_file(const char* path, const tessel_open_options* options,
                                          tessel_clip** clip);

/* Opens a document that is in memory: `length` bytes of JSON. Errors call it "the document".
 * Threads: [thread-safe]. */
TESSEL_API tessel_result tessel_open_text(const char* text, size_t length, const tessel_open_options* options,
                                          tessel_clip** clip);

/* Null is allowed. No call on the clip may be under way. Threads: [any-thread]. */
TESSEL_API void tessel_close(tessel_clip* clip);

/* What the plug-in remarked when the clip was opened, and whether its sound cannot be had; one line each, empty
 * where all is well.
 * Threads: [thread-safe]. */
TESSEL_API const char* tessel_warning(const tessel_clip* clip);

/* The most channels that sound can be had of. */
enum { TESSEL_MOST_CHANNELS = 64 };

enum { TESSEL_PROGRESSIVE = 0, TESSEL_UPPER_FIELD_FIRST = 1, TESSEL_LOWER_FIELD_FIRST = 2 };

typedef struct tessel_description {
    size_t size;
    int32_t width;  /* pixels; 0 or less: the clip has no picture */
    int32_t height; /* pixels */
    /* Width to height of a pixel, in lowest terms; 0 to 1 where it is not known. */
    int32_t pixel_aspect_numerator;
    int32_t pixel_aspect_denominator;
    int32_t field_order; /* TESSEL_PROGRESSIVE, ... */
    /* Frames per second, in lowest terms; 0 to 1 where the clip has no usable rate. Frame n lasts from
     * n to n + 1 times rate_denominator / rate_numerator seconds. */
    int32_t rate_numerator;
    int32_t rate_denominator;
    int64_t frame_count; /* 0 or more */
    /* Samples per second and channel; 0 where it is no whole number from 1 on: then the clip gives no sound. */
    int32_t sample_rate;
    int32_t channel_count; /* 0 or more; sound can be had of TESSEL_MOST_CHANNELS at most */
    /* Not 0: six channels are L R C LFE Ls Rs. */
    int32_t is_surround_51;
    /* How many samples a channel has from the first frame's start to the last one's end. */
    int64_t sample_count;
    /* Codes of ITU-T H.273 that the clip claims; 2 is "unspecified". full_range is 0 or 1. */
    int32_t primaries;
    int32_t transfer;
    int32_t matrix;
    int32_t full_range;
    const char* color_space; /* a name to read */
    /* The format that the document names, as the host's four characters, first character in the lowest byte;
     * 0 where it says none. Pictures of planar and DV formats come in another one. */
    uint32_t pixel_format;
    int32_t is_still; /* not 0: every frame shows the same picture */
} tessel_description;

/* Threads: [thread-safe]. */
TESSEL_API tessel_result tessel_describe(const tessel_clip* clip, tessel_description* description);

/* ---- Pictures ---- */

/* How the samples of a picture lie in memory. Rows run from top to bottom. Samples wider than a byte are
 * little-endian; those of 10 bits in 16 lie in the low bits. */
typedef enum tessel_layout {
    /* The plug-in's own bytes, in the format that `tessel_picture::format` names. */
    TESSEL_LAYOUT_OWN = 0,
    TESSEL_LAYOUT_BGRA = 1, /* 8 bits; the names give the components in the order of memory */
    TESSEL_LAYOUT_ARGB = 2,
    TESSEL_LAYOUT_BGRX = 3, /* X: an unused byte */
    TESSEL_LAYOUT_XRGB = 4,
    TESSEL_LAYOUT_RGBA = 5,
    TESSEL_LAYOUT_RGB = 6,    /* three bytes a pixel */
    TESSEL_LAYOUT_RGBA64 = 7, /* 16 bits a component */
    TESSEL_LAYOUT_RGB48 = 8,
    TESSEL_LAYOUT_GBRP_F32 = 9,   /* planes of 32-bit floats: G, B, R */
    TESSEL_LAYOUT_GBRAP_F32 = 10, /* and A */
    TESSEL_LAYOUT_UYVY = 11,      /* Cb Y' Cr Y' for two pixels, 8 bits */
    TESSEL_LAYOUT_YUYV = 12,      /* Y' Cb Y' Cr */
    TESSEL_LAYOUT_V210 = 13,      /* 6 pixels in four 32-bit words, 10 bits; rows are multiples of 128 bytes */
    TESSEL_LAYOUT_YUV420P = 14,   /* planes Y', Cb, Cr; 8 bits */
    TESSEL_LAYOUT_YUV422P = 15,
    TESSEL_LAYOUT_YUV444P = 16,
    TESSEL_LAYOUT_YUV420P10 = 17, /* 10 bits in 16 */
    TESSEL_LAYOUT_YUV422P10 = 18,
    TESSEL_LAYOUT_YUV444P10 = 19,
    TESSEL_LAYOUT_YUVA444P10 = 20,
    /* No layout: gives the type room for other numbers, which are refused. */
    TESSEL_LAYOUT_ROOM = 0x7FFFFFFF
} tessel_layout;

enum {
    TESSEL_SAMPLES_U8 = 0,
    TESSEL_SAMPLES_U16 = 1, /* sample_bits of them used, the low ones */
    TESSEL_SAMPLES_F32 = 2,
    TESSEL_SAMPLES_V210 = 3 /* 32-bit words with three samples of 10 bits */
};

/* What a picture needs, and what its samples mean. */
typedef struct tessel_picture {
    size_t size;
    int32_t width;       /* pixels */
    int32_t height;      /* pixels */
    int32_t plane_count; /* 1 to 4 */
    int32_t plane_rows[4];
    /* The bytes of a plane's row that are written. A row may be longer in the caller's memory. */
    size_t row_bytes[4];
    int32_t sample_type; /* TESSEL_SAMPLES_U8, ... */
    int32_t sample_bits; /* 8, 10, 16 or 32 */
    /* Pixels of a plane lie in groups, the last of which may be partly used: 2 pixels in 4 bytes for UYVY, 6 in
     * 16 for v210, else 1. */
    int32_t group_pixels;
    int32_t group_bytes;
    /* log2 of how much smaller planes 1 and 2 are than plane 0, for planes Y', Cb, Cr. */
    int32_t chroma_shift_x;
    int32_t chroma_shift_y;
    /* TESSEL_LAYOUT_OWN: the format of the plug-in's bytes, as its four characters, first in the lowest byte.
     * Else 0. */
    uint32_t format;
    /* H.273 code of the matrix that made Y'CbCr samples, 0 for R'G'B'; and whether their codes have full range.
     * Both say what the samples are, where the description says what the clip claims to be. */
    int32_t matrix;
    int32_t full_range;
    int32_t is_linear; /* not 0: linear light */
} tessel_picture;

/* What pictures in a layout are. Asks the plug-in for one frame, the first time.
 * TESSEL_NOT_POSSIBLE: a clip without pictures. Threads: [thread-safe]. */
TESSEL_API tessel_result tessel_describe_picture(tessel_clip* clip, tessel_layout layout,
                                                 tessel_picture* picture);

/* Writes frame `frame` (0 or more; also behind the last one, and then as the rules continue it).
 *
 * Where the layout has the clip's own samples they are moved, never computed. Else they are converted as
 * `tessel render` does: in float with one rounding at the end, Y'CbCr with the clip's matrix in limited range.
 *
 * planes:  the first byte of the top row of each of `plane_count` planes
 * strides: bytes from one row to the one below, of each plane; at least row_bytes, or at most -row_bytes
 * TESSEL_FAILED may leave the planes half written. Threads: [thread-safe]. */
TESSEL_API tessel_result tessel_frame(tessel_clip* clip, int64_t frame, tessel_layout layout,
                                      void* const* planes, const ptrdiff_t* strides);

/* ---- Sound ---- */

/* Writes `count` samples of each channel, from sample `start` on (0 or more), as 32-bit floats where 1 is full
 * scale. Channels come in the order of files: L R C LFE Ls Rs.
 * channels: as many buffers as the clip has channels, each of `count` floats
 * TESSEL_NOT_POSSIBLE: a clip without sound. TESSEL_FAILED may leave the buffers half written.
 * Threads: [thread-safe]; one request at a time is served. */
TESSEL_API tessel_result tessel_samples(tessel_clip* clip, int64_t start, size_t count, float* const* channels,
                                        size_t channel_count);

/* ---- Movies ---- */

/* A clip as the bytes of a QuickTime movie, for whatever reads movies from memory. The movie is never written:
 * its pictures and its sound are made when their bytes are read. */
typedef struct tessel_movie tessel_movie;

typedef struct tessel_movie_options {
    size_t size;
    /* "raw", "v210", "v408", or "none" for sound alone. Null: the one that keeps most of the clip's samples;
     * clips of floats become 16-bit R'G'B'A, or v210. */
    const char* video_codec;
    /* "pcm16", "pcm24", "pcm32", "pcmfloat", or "none" for the picture alone. Null: pcm24. */
    const char* audio_codec;
} tessel_movie_options;

/* Opens a clip as a movie with the packets, times and tags of the file that `tessel render` writes with the
 * same codecs. The clip may be closed before the movie. Costs one frame, and some 16 bytes of memory for each
 * frame of the clip.
 *
 * options: null for none
 * TESSEL_NOT_POSSIBLE: a clip that cannot be such a movie. TESSEL_BAD_ARGUMENT: no codec has such a name.
 * Threads: [thread-safe]. */
TESSEL_API tessel_result tessel_movie_open(tessel_clip* clip, const tessel_movie_options* options,
                                           tessel_movie** movie);

/* Bytes in all; 0 for null. Threads: [thread-safe]. */
TESSEL_API int64_t tessel_movie_size(const tessel_movie* movie);

/* Fills the buffer from byte `offset` on (0 or more), as far as the movie goes.
 * got: gets how many bytes were filled: fewer than `count` only at the end, 0 behind it
 * TESSEL_FAILED may leave the buffer half filled. Threads: [thread-safe]. */
TESSEL_API tessel_result tessel_movie_read(tessel_movie* movie, int64_t offset, void* buffer, size_t count,
                                           size_t* got);

/* Null is allowed. No call on the movie may be under way. Threads: [any-thread]. */
TESSEL_API void tessel_movie_close(tessel_movie* movie);

/* ---- Making documents ---- */

/* A new document, as `tessel new` makes it. */
typedef struct tessel_document tessel_document;

/* What a document begins with: at most one of `template_name`, `file` and `text`; all null: the usual template.
 */
typedef struct tessel_document_options {
    size_t size;
    const char* template_name; /* as `tessel list templates` names it */
    const char* file;          /* another document; its keys that are no settings stay */
    const char* text;          /* the same in memory: `text_length` bytes of JSON */
    size_t text_length;
} tessel_document_options;

/* Makes a document from settings as people name them. Each is "NAME=VALUE" with the names and values of
 * `tessel new` ("size=1920x1080", "rate=29.97", "tone=1000:-18"), or a key of the document itself with a value
 * in JSON ("mFramePAR.numerator=10"). Settings are applied in an order of their own, whatever order they are
 * given in; keys follow them as they are given. Files of swatches are read at once; their names are relative to
 * the working folder.
 *
 * options:  null for none
 * settings: `setting_count` texts; may be null where the count is 0
 * TESSEL_REFUSED: an unknown setting, a wrong value, or a clip that could not be played; the line says what
 * would be right. TESSEL_NOT_OPENED: the document to begin with cannot be read. Threads: [thread-safe]. */
TESSEL_API tessel_result tessel_document_new(const tessel_document_options* options,
                                             const char* const* settings, size_t setting_count,
                                             tessel_document** document);

/* Changes settings, given as above, all or none of them. Threads: [any-thread]. */
TESSEL_API tessel_result tessel_document_set(tessel_document* document, const char* const* settings,
                                             size_t setting_count);

/* The document's text, for `tessel_open_text` or a file: JSON, keys in ascending order, ending in a newline.
 * Valid until the document is changed or closed; empty for null.
 * length: gets its bytes without the NUL at the end; may be null. Threads: [any-thread]. */
TESSEL_API const char* tessel_document_text(const tessel_document* document, size_t* length);

/* What works and is perhaps not meant, one line each; empty where all is well. Valid as the text is.
 * Threads: [any-thread]. */
TESSEL_API const char* tessel_document_warning(const tessel_document* document);

/* Null is allowed. Threads: [any-thread]. */
TESSEL_API void tessel_document_close(tessel_document* document);

#ifdef __cplusplus
}
#endif

#endif
