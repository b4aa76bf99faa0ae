/// usage: plugin-signal CLIP FRAMES SAMPLES OUT
/// Writes what the plug-in makes, before anything is converted or encoded: the first FRAMES frames, upright
/// rows without padding, into OUT.frames; the first SAMPLES samples, 32-bit floats, channel after channel, into
/// OUT.samples. Sound is asked for in blocks of 0.1 s, as files hold it.
#include <kestrel/importhost/Clip.h>
#include <kestrel/importhost/Importer.h>
#include <kestrel/pixmill/PixelFormatCodes.h>

#include <support/PaintableFormats.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace {

void WriteFrames(const importhost::Clip& clip, std::int64_t count, const std::string& name)
{
    std::ofstream file(name, std::ios::binary);
    for (std::int64_t number = 0; number < count; ++number) {
        const importhost::Frame frame = clip.RenderFrame(number);
        const std::uint32_t code = PM_QELPixelFormatToPMPixelFormat(frame.Format());
        const std::size_t length = testsupport::RowLength(code, static_cast<std::uint32_t>(frame.Width()));
        for (std::int32_t row = 0; row < frame.Height(); ++row) {
            file.write(reinterpret_cast<const char*>(frame.Row(row)), static_cast<std::streamsize>(length));
        }
    }
}

void WriteSamples(const importhost::Clip& clip, std::int64_t count, const std::string& name)
{
    const auto channelCount = static_cast<std::size_t>(clip.Description().channelCount);
    const auto block = static_cast<std::int64_t>(std::lround(clip.Description().sampleRate / 10.0F));
    std::vector<std::vector<float>> channels(channelCount,
                                             std::vector<float>(static_cast<std::size_t>(count + block)));
    for (std::int64_t position = 0; position < count; position += block) {
        std::vector<float*> at;
        for (auto& channel : channels) {
            at.push_back(channel.data() + position);
        }
        clip.RenderAudio(position, static_cast<std::uint32_t>(block), at);
    }
    std::ofstream file(name, std::ios::binary);
    for (const auto& channel : channels) {
        file.write(reinterpret_cast<const char*>(channel.data()),
                   static_cast<std::streamsize>(static_cast<std::size_t>(count) * sizeof(float)));
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 5) {
        std::cerr << "usage: plugin-signal CLIP FRAMES SAMPLES OUT\n";
        return 2;
    }
    try {
        const auto importer = importhost::Importer::Load(importhost::FindPlugin({.stem = "ImporterTessel"}),
                                                         importhost::TestingPlugins::Allowed);
        const importhost::Clip clip = importhost::Clip::Open(importer, argv[1]);
        WriteFrames(clip, std::atoll(argv[2]), std::string(argv[4]) + ".frames");
        WriteSamples(clip, std::atoll(argv[3]), std::string(argv[4]) + ".samples");
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
    return 0;
}
