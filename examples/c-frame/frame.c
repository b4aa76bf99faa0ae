/* Writes one frame of a clip as a PPM picture: frame CLIP NUMBER > PICTURE */
#include <tessel/api/tessel.h>

#include <stdio.h>
#include <stdlib.h>

static int fail(const char* what)
{
    fprintf(stderr, "frame: %s: %s\n", what, tessel_error_text());
    return EXIT_FAILURE;
}

int main(int argc, char** argv)
{
    if (argc != 3) {
        fprintf(stderr, "usage: frame CLIP NUMBER > PICTURE\n");
        return 2;
    }
    tessel_clip* clip = NULL;
    if (tessel_open_file(argv[1], NULL, &clip) != TESSEL_OK) {
        return fail("cannot open the clip");
    }
    tessel_picture picture = {.size = sizeof picture};
    if (tessel_describe_picture(clip, TESSEL_LAYOUT_RGB, &picture) != TESSEL_OK) {
        return fail(argv[1]);
    }
    const size_t bytes = picture.row_bytes[0] * (size_t)picture.height;
    void* const pixels = malloc(bytes);
    const ptrdiff_t stride = (ptrdiff_t)picture.row_bytes[0];
    if (pixels == NULL ||
        tessel_frame(clip, atoll(argv[2]), TESSEL_LAYOUT_RGB, &pixels, &stride) != TESSEL_OK) {
        return fail(argv[1]);
    }
    printf("P6\n%d %d\n255\n", (int)picture.width, (int)picture.height);
    const size_t written = fwrite(pixels, 1, bytes, stdout);
    free(pixels);
    tessel_close(clip);
    return written == bytes && fflush(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
