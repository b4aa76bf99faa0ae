#include "Topics.h"

#include <tessel/export/plan/AudioCodec.h>
#include <tessel/export/plan/Container.h>
#include <tessel/export/plan/VideoCodec.h>

#include <fmt/format.h>

#include <iterator>
#include <string>

namespace tessel::cli {
namespace {

/// "  mkv    ffv1, raw, v210, ..." and "         sound: flac, ...", for each container.
std::string ContainerTable()
{
    std::string table;
    for (const exporting::Container& container : exporting::AllContainers()) {
        if (container.takesEveryCodec) {
            continue; // writes nothing
        }
        const std::string video = container.TakesVideo() ? exporting::VideoCodecNames(container) : "";
        const std::string audio = container.TakesAudio() ? exporting::AudioCodecNames(container) : "";
        const char* between = video.empty() || audio.empty() ? "" : "\n         sound: ";
        fmt::format_to(std::back_inserter(table), "  {:<7}{}{}{}\n", container.name, video, between, audio);
    }
    return table;
}

/// "  h264   H.264, --quality is CRF 0 to 51, usually 16", a line a codec.
std::string VideoCodecTable()
{
    std::string table;
    for (const exporting::VideoCodec& codec : exporting::AllVideoCodecs()) {
        fmt::format_to(std::back_inserter(table), "  {:<7}{}", codec.name, codec.title);
        if (!codec.quality.name.empty()) {
            fmt::format_to(std::back_inserter(table), "; --quality is {} {} (best) to {}, usually {}",
                           codec.quality.name, codec.quality.best, codec.quality.worst, codec.quality.usual);
        }
        table += '\n';
    }
    return table;
}

} // namespace

TopicText AboutDocuments()
{
    return {
        .name = "documents",
        .summary = "The .tessel document, and the commands that make, show and change it",
        .text =
            "A clip is one JSON object in a file that ends in .tessel. It holds settings, not pictures: frame "
            "size, rate, duration, pixel format, colour space, what the picture shows, and the sound. "
            "Every frame and every sample follows from it.\n"
            "\n"
            "  tessel new NEW            make one from options and templates\n"
            "  tessel info CLIP          what the clip is\n"
            "  tessel set CLIP KEY=VALUE change it in scripts\n"
            "  tessel edit CLIP          change it in its dialog\n"
            "  tessel edit -o NEW        make one in its dialog\n"
            "  tessel view CLIP          play it\n"
            "  tessel render CLIP -o OUT make a movie, sound or pictures of it\n"
            "  tessel list SUBJECT       the formats, rates, colour spaces ... to choose from\n"
            "  tessel schema             the keys of documents as JSON Schema, for editors\n"
            "\n"
            "The picture is one of three: field colours, a gradient that moves by one step a frame, or a "
            "chart of colour swatches (1920x1080, 32-bit float BGRA). The frame number is printed into "
            "it unless the document says otherwise. The sound is a steady tone on all channels or a "
            "channel identification of EBU or BLITS.\n"
            "\n"
            "Times are in ticks, 254016000000 to the second, so that every frame rate is exact. Pixel "
            "formats are four-character codes, as a number whose lowest byte is the first character.\n"
            "\n"
            "A document with a mistake opens as the default clip in a host that does not look. This "
            "program refuses it and says which key or line is wrong; --allow-default takes the default "
            "clip all the same.\n"};
}

TopicText AboutCodecs()
{
    return {.name = "codecs",
            .summary = "Which codecs go into which files, and which of them are lossless",
            .text =
                "Without --video-codec the codec is the one that keeps the clip's own samples best in that "
                "file: v210 stays v210, UYVY stays UYVY, float pictures stay float in exr. mkv with FFV1 and "
                "FLAC keeps everything. --dry-run says what would be written, and what of the clip the file "
                "would not say.\n"
                "\n"
                "Files, and what goes into them:\n" +
                ContainerTable() +
                "\n"
                "Codecs:\n" +
                VideoCodecTable() +
                "\n"
                "null renders and encodes and writes nothing, to measure speed.\n"};
}

TopicText AboutColors()
{
    return {.name = "colors",
            .summary = "Code values, ranges and matrices, and who decides them",
            .text =
                "Colours in documents are four 32-bit floats: red, green, blue, alpha. 0 is black, 1 is white; "
                "values outside are allowed and stay what they are in float formats. Integer formats "
                "round to nearest and clamp.\n"
                "\n"
                "The pixel format decides how a colour becomes code values. Y'CbCr formats come in two "
                "kinds: their names end in 601 or 709, or carry no number, which means 601. Limited range: "
                "black is "
                "16 and white is 235 in 8 bits, 64 and 940 in 10 bits.\n"
                "\n"
                "The colour space only says what a file announces: primaries, transfer, matrix and range, "
                "by the codes of ITU-T H.273. It does not change a sample. A document whose format and "
                "colour space name different matrices is wrongly tagged; that is a test signal, too, and "
                "it is kept.\n"
                "\n"
                "Where a file needs another kind of pixels than the clip has, R'G'B' becomes Y'CbCr by the "
                "matrix and range of the clip's colour space, and Y'CbCr becomes R'G'B' by the matrix of the "
                "pixel format.\n"};
}

} // namespace tessel::cli
