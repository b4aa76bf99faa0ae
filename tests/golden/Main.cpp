// Renders every case through the built plug-in and compares hashes and pictures with the committed ones.
#include "Cases.h"
#include "Pictures.h"

#include <kestrel/importhost/Clip.h>
#include <kestrel/importhost/Importer.h>

#include <support/PaintableFormats.h>
#include <support/Process.h>
#include <support/Sha256.h>

#include <cmath>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace golden {

namespace {

namespace fs = std::filesystem;
using Manifest = std::map<std::string, std::string>; // name to hash

struct Options {
    fs::path folder; ///< manifest.txt and pictures/
    fs::path output; ///< where misses go
    bool update = false;
};

Manifest ReadManifest(const fs::path& file)
{
    Manifest manifest;
    std::ifstream in(file);
    for (std::string hash, name; in >> hash >> name;) {
        manifest[name] = hash;
    }
    return manifest;
}

void WriteManifest(const fs::path& file, const Manifest& manifest)
{
    std::ofstream out(file);
    for (const auto& [name, hash] : manifest) {
        out << hash << "  " << name << '\n';
    }
    if (!out.flush()) {
        throw std::runtime_error("cannot write " + file.string());
    }
}

/// The picture's rows from the top, without padding.
std::string HashOf(const importhost::Frame& frame)
{
    const std::uint32_t code = PM_QELPixelFormatToPMPixelFormat(frame.Format());
    const std::size_t length = testsupport::RowLength(code, static_cast<std::uint32_t>(frame.Width()));
    testsupport::Sha256 hash;
    for (std::int32_t row = 0; row < frame.Height(); ++row) {
        hash.Add({frame.Row(row), length});
    }
    return hash.Finish();
}

/// Samples to 16 bits, channel after channel, so that the last bits of the C library's sine do not matter.
std::string HashOf(const importhost::Clip& clip, const SoundCase& sound)
{
    constexpr std::uint32_t kBlock = 4800; // 0.1 s
    std::vector<std::vector<float>> buffers(static_cast<std::size_t>(sound.channels),
                                            std::vector<float>(kBlock));
    std::vector<float*> channels;
    for (auto& buffer : buffers) {
        channels.push_back(buffer.data());
    }
    testsupport::Sha256 hash;
    for (std::int32_t block = 0; block < sound.blocks; ++block) {
        clip.RenderAudio(std::int64_t{block} * kBlock, kBlock, channels);
        for (const auto& buffer : buffers) {
            std::vector<std::int16_t> coarse;
            for (const float sample : buffer) {
                coarse.push_back(static_cast<std::int16_t>(std::lround(sample * 32767.0F)));
            }
            hash.Add(std::as_bytes(std::span(coarse)));
        }
    }
    return hash.Finish();
}

class Run {
public:
    explicit Run(Options options)
        : mOptions(std::move(options)), mExpected(ReadManifest(mOptions.folder / "manifest.txt")),
          mImporter(importhost::Importer::Load(importhost::FindPlugin({.stem = "ImporterTessel"}),
                                               importhost::TestingPlugins::Allowed)),
          mHasFFmpeg(testsupport::IsInstalled("ffmpeg"))
    {
        fs::remove_all(mOptions.output);
        fs::create_directories(mOptions.output);
        fs::create_directories(PictureFolder());
        if (!mHasFFmpeg) {
            std::cerr << "ffmpeg is not installed: hashes are compared, pictures are not\n";
        }
    }

    /// @return how many cases miss; with updates, how many changed.
    int All()
    {
        for (const FrameCase& frameCase : FrameCases(mOptions.folder / "../../samples")) {
            const importhost::Frame frame = Open(frameCase.document).RenderFrame(frameCase.frame);
            const bool hashMisses = Misses(frameCase.name, HashOf(frame));
            if (frameCase.keep == Keep::HashAndPicture || hashMisses) {
                Compare(frameCase, PictureOf(frame), hashMisses);
            }
        }
        for (const SoundCase& sound : SoundCases()) {
            (void)Misses(sound.name, HashOf(Open(sound.document), sound));
        }
        for (const auto& [name, hash] : mExpected) {
            if (!mActual.contains(name)) {
                ++mMisses;
                std::cerr << name << ": in the manifest, but no longer a case\n";
            }
        }
        if (mOptions.update) {
            WriteManifest(mOptions.folder / "manifest.txt", mActual);
        }
        return mMisses;
    }

private:
    [[nodiscard]] fs::path PictureFolder() const { return mOptions.folder / "pictures"; }

    importhost::Clip Open(const std::string& document)
    {
        const fs::path file = mOptions.output / "case.tessel";
        std::ofstream(file, std::ios::binary) << document;
        importhost::Clip clip = importhost::Clip::Open(mImporter, file);
        fs::remove(file);
        return clip;
    }

    bool Misses(const std::string& name, const std::string& hash)
    {
        mActual[name] = hash;
        const auto expected = mExpected.find(name);
        if (expected != mExpected.end() && expected->second == hash) {
            return false;
        }
        ++mMisses;
        std::cerr << name << ": " << hash
                  << (expected == mExpected.end() ? ", which is new" : ", expected " + expected->second)
                  << '\n';
        return true;
    }

    void Compare(const FrameCase& frameCase, const Picture& actual, bool hashMisses)
    {
        if (!mHasFFmpeg) {
            return;
        }
        const fs::path kept = PictureFolder() / (frameCase.name + ".png");
        const fs::path output = mOptions.output / frameCase.name;
        const bool isKept = frameCase.keep == Keep::HashAndPicture;
        const auto expected =
            isKept && fs::exists(kept) ? ReadPng(kept, actual.width, actual.height) : std::nullopt;
        if (isKept && expected == actual && !hashMisses) {
            return;
        }
        if (!isKept && ++mPicturesOfHashes > kMostPicturesOfHashes) {
            return; // a mistake that spoils one format spoils many frames alike
        }
        if (isKept && expected != actual && !hashMisses) {
            ++mMisses;
            std::cerr << frameCase.name << ": the frame is right, the kept picture is not\n";
        }
        (void)WritePng(output.string() + "-actual.png", actual);
        if (expected) {
            (void)WritePng(output.string() + "-expected.png", *expected);
            (void)WritePng(output.string() + "-difference.png", Difference(actual, *expected));
        }
        if (isKept && mOptions.update && expected != actual && !WritePng(kept, actual)) {
            throw std::runtime_error("cannot write " + kept.string());
        }
    }

    static constexpr int kMostPicturesOfHashes = 24;

    Options mOptions;
    Manifest mExpected;
    Manifest mActual;
    std::shared_ptr<const importhost::Importer> mImporter;
    bool mHasFFmpeg;
    int mMisses = 0;
    int mPicturesOfHashes = 0;
};

Options Parse(std::span<char*> arguments)
{
    Options options;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string argument = arguments[i];
        if (argument == "--update") {
            options.update = true;
        } else if (argument == "--folder" && i + 1 < arguments.size()) {
            options.folder = arguments[++i];
        } else if (argument == "--output" && i + 1 < arguments.size()) {
            options.output = fs::weakly_canonical(arguments[++i]);
        } else {
            throw std::invalid_argument("'" + argument + "' is not --folder DIR, --output DIR or --update");
        }
    }
    if (options.folder.empty() || options.output.empty()) {
        throw std::invalid_argument("--folder and --output are needed");
    }
    return options;
}

} // namespace

} // namespace golden

int main(int argc, char** argv)
{
    try {
        const golden::Options options = golden::Parse({argv, static_cast<std::size_t>(argc)});
        const int misses = golden::Run(options).All();
        if (misses == 0) {
            std::cout << "All frames and sounds are those of the manifest.\n";
            return 0;
        }
        if (options.update) {
            std::cout << misses
                      << " changed. Before and after, where there are pictures: " << options.output.string()
                      << "\nLook at them and at `git diff --stat tests/golden`.\n";
            return 0;
        }
        std::cerr << misses
                  << " differ. What was made, what was expected and the difference: " << options.output.string()
                  << "\nIf the change is meant: ./dev golden --update\n";
        return 1;
    } catch (const std::invalid_argument& error) {
        std::cerr << "golden: " << error.what() << '\n';
        return 2;
    } catch (const std::exception& error) {
        std::cerr << "golden: " << error.what() << '\n';
        return 1;
    }
}
