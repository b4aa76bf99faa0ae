/* mpv opens .tessel documents: a clip is a movie in memory, which mpv reads through a stream of its own.
 *
 * mpv loads this file as a script and calls mpv_open_cplugin on a thread of its own. Before mpv opens a file
 * whose name ends in .tessel, the name becomes tessel://NAME, which the stream below serves. */
#include <tessel/api/tessel.h>

#include <mpv/client.h>
#include <mpv/stream_cb.h>
#include <stdbool.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static const char kProtocol[] = "tessel";
static const char kPrefix[] = "tessel://";
static const char kEnding[] = ".tessel";
enum { kMostText = 2100 }; /* of a line for people */

/* ---- The stream ---- */

/* What mpv hands back to each call. It reads from one thread at a time. */
struct stream {
    tessel_movie* movie;
    int64_t position;
};

/* Opens a document as a movie, of pictures alone where its sound cannot be had. Null if it cannot be opened;
 * tessel_error_text then says why.
 * remark: gets what is remarked on the clip, as much as `size` bytes hold */
static tessel_movie* open_movie(const char* path, char* remark, size_t size)
{
    *remark = '\0';
    tessel_clip* clip = NULL;
    tessel_movie* movie = NULL;
    if (tessel_open_file(path, NULL, &clip) != TESSEL_OK) {
        return NULL;
    }
    tessel_movie_options options = {.size = sizeof options};
    tessel_description description = {.size = sizeof description};
    if (tessel_describe(clip, &description) == TESSEL_OK) {
        options.video_codec = description.width <= 0 ? "none" : NULL;
        const bool is_mute = description.channel_count > TESSEL_MOST_CHANNELS ||
                             (description.channel_count > 0 && description.sample_rate < 1);
        options.audio_codec = is_mute ? "none" : NULL;
    }
    snprintf(remark, size, "%s", tessel_warning(clip));
    if (tessel_movie_open(clip, &options, &movie) != TESSEL_OK) {
        movie = NULL;
    }
    tessel_close(clip); /* the movie keeps what it needs */
    return movie;
}

static int64_t read_bytes(void* cookie, char* buffer, uint64_t count)
{
    struct stream* stream = cookie;
    size_t got = 0;
    if (tessel_movie_read(stream->movie, stream->position, buffer, (size_t)count, &got) != TESSEL_OK) {
        return -1;
    }
    stream->position += (int64_t)got;
    return (int64_t)got;
}

static int64_t seek_to(void* cookie, int64_t offset)
{
    struct stream* stream = cookie;
    if (offset < 0) {
        return MPV_ERROR_GENERIC;
    }
    stream->position = offset;
    return offset;
}

static int64_t size_of(void* cookie)
{
    const struct stream* stream = cookie;
    return tessel_movie_size(stream->movie);
}

static void close_stream(void* cookie)
{
    struct stream* stream = cookie;
    tessel_movie_close(stream->movie);
    free(stream);
}

static int open_stream(void* data, char* uri, mpv_stream_cb_info* info)
{
    (void)data;
    struct stream* stream = calloc(1, sizeof *stream);
    if (stream == NULL) {
        return MPV_ERROR_NOMEM;
    }
    char remark[kMostText];
    stream->movie = open_movie(uri + strlen(kPrefix), remark, sizeof remark);
    if (stream->movie == NULL) {
        free(stream);
        return MPV_ERROR_LOADING_FAILED;
    }
    info->cookie = stream;
    info->read_fn = read_bytes;
    info->seek_fn = seek_to;
    info->size_fn = size_of;
    info->close_fn = close_stream;
    return 0;
}

/* ---- Documents by their names ---- */

/* Whether mpv is about to open a document. It has made paths of file:// names before. */
static bool is_document(const char* name)
{
    if (strstr(name, "://") != NULL) {
        return false; /* another protocol, whose files are not here */
    }
    const size_t length = strlen(name);
    const size_t ending = strlen(kEnding);
    return length > ending && strcmp(name + length - ending, kEnding) == 0;
}

/* One line where mpv prints its own, beginning with the document's name. */
static void tell(mpv_handle* mpv, const char* path, const char* line)
{
    char text[2 * kMostText];
    const bool is_named = strncmp(line, path, strlen(path)) == 0;
    snprintf(text, sizeof text, "[tessel] %s%s%s", is_named ? "" : path, is_named ? "" : ": ", line);
    const char* command[] = {"print-text", text, NULL};
    mpv_command(mpv, command);
}

/* Sends documents to the stream. What cannot be opened is said here, because a stream cannot speak. */
static void before_loading(mpv_handle* mpv)
{
    static const char kName[] = "stream-open-filename";
    char* path = mpv_get_property_string(mpv, kName);
    if (path != NULL && is_document(path)) {
        char remark[kMostText];
        tessel_movie* movie = open_movie(path, remark, sizeof remark);
        if (movie == NULL) {
            tell(mpv, path, tessel_error_text());
        } else if (*remark != '\0') {
            tell(mpv, path, remark);
        }
        tessel_movie_close(movie);
        const size_t size = sizeof kPrefix + strlen(path);
        char* uri = malloc(size);
        if (uri != NULL) {
            snprintf(uri, size, "%s%s", kPrefix, path);
            mpv_set_property_string(mpv, kName, uri);
        }
        free(uri);
    }
    mpv_free(path);
}

__attribute__((visibility("default"))) int mpv_open_cplugin(mpv_handle* mpv);

int mpv_open_cplugin(mpv_handle* mpv)
{
    enum { kUsualPriority = 50 };
    if (mpv_stream_cb_add_ro(mpv, kProtocol, NULL, open_stream) < 0 ||
        mpv_hook_add(mpv, 0, "on_load", kUsualPriority) < 0) {
        return -1;
    }
    for (;;) {
        const mpv_event* event = mpv_wait_event(mpv, -1);
        if (event->event_id == MPV_EVENT_SHUTDOWN) {
            return 0;
        }
        if (event->event_id == MPV_EVENT_HOOK) {
            const uint64_t hook = ((const mpv_event_hook*)event->data)->id;
            before_loading(mpv);
            mpv_hook_continue(mpv, hook);
        }
    }
}
