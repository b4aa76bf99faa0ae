/// Opening a clip as the program does: what the plug-in reports of it, and what its document adds.
///
/// The document is looked into for the plug-in's file type `TSSL` alone. Any other importer's files are opened
/// all the same; the program then knows what the importer reports.
#pragma once

#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/importhost/Clip.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace tessel::document {

/// The file name of the plug-in whose documents these are, without its ending.
inline constexpr char kPluginStem[] = "ImporterTessel";

/// Whether files of this type are `.tessel` documents.
[[nodiscard]] bool IsTesselDocument(const importhost::FileType& type) noexcept;

/// Everything that the program knows about a clip.
struct ClipFacts : importhost::ClipDescription {
    /// The clip's file is a `.tessel` document, whose keys a message may name.
    bool isTesselDocument = false;
    /// The host's layout code: 2 stereo, 3 5.1; 0 where no document says it.
    std::int32_t channelType = 0;
    /// The format that the document names, as the host's four-character code; 0 where no document says it.
    /// The frames of a planar or DV clip come in another format.
    std::uint32_t pixelFormatCode = 0;
    BR::PixelFormat pixelFormat =
        BR::PixelFormat::Unknown; ///< the same; `Unknown` where the code is not a pixel format's
    /// Every frame shows the same picture, says the document.
    bool isStill = false;
    /// The format in which frames come, once a frame was asked for it.
    BR::PixelFormat frameFormat = BR::PixelFormat::Unknown;
};

struct OpenedClip {
    importhost::Clip clip;
    ClipFacts facts; ///< `rate` is exact
    /// What the plug-in logged while the clip opened, a line each.
    std::string warning;
    /// The plug-in could not read the document and shows its default clip; `warning` says why.
    bool isDefault = false;
};

struct OpenOptions {
    /// Take a document that the plug-in could not read as the default clip, instead of refusing it.
    bool allowDefault = false;
    importhost::FrameFilling filling = importhost::FrameFilling::Zero;
};

/// Opens a clip's file.
/// @throws importhost::HostError  as `importhost::Clip::Open`; for a document that the plug-in could not read
///                                also with the key or place and what was expected.
[[nodiscard]] OpenedClip OpenClip(std::shared_ptr<const importhost::Importer> importer,
                                  const std::filesystem::path& file, const OpenOptions& options = {});

} // namespace tessel::document
