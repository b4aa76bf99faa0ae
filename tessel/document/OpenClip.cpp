#include "OpenClip.h"

#include "Coverage.h"
#include "DocumentFacts.h"
#include "FailureText.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/PathText.h>
#include <kestrel/orb/File.h>
#include <kestrel/qelcore/FourCharacterCode.h>

#include <optional>
#include <utility>

namespace tessel::document {
namespace {

using importhost::ClipDescription;
using importhost::HostError;

/// The type of files that are `.tessel` documents.
constexpr std::uint32_t kTesselDocument = qelcore::FourCharacterCode("TSSL");

[[noreturn]] void Refuse(const std::filesystem::path& file, const std::string& why)
{
    throw HostError(importhost::DisplayName(file) + ": " + why);
}

/// Whether a clip looks like that of default settings.
bool LooksLikeDefault(const ClipDescription& description) noexcept
{
    return description.width == 720 && description.height == 480 && description.timeScale == 30 &&
           description.sampleSize == 1 && description.frameCount == 1800;
}

/// The plug-in answers a document that it cannot read with its default clip.
void RequireWellFormed(const importhost::Clip& clip)
{
    if (!clip.Messages().empty()) {
        // Of broken JSON the place says more than the plug-in does.
        Refuse(clip.File(), DocumentProblem(clip.File()).value_or(clip.Messages().front()));
    }
    // The plug-in accepts a document that is not a JSON object: it reads nothing from it and logs nothing.
    // Only then is the document opened again.
    if (LooksLikeDefault(clip.Description())) {
        if (const auto problem = DocumentProblem(clip.File())) {
            Refuse(clip.File(), *problem);
        }
    }
}

DocumentFacts AskFacts(const importhost::Clip& clip)
{
    const std::optional<std::string> text = clip.AskSettingsText();
    const auto facts = text ? ReadFacts(*text) : ReadFactsFromFile(clip.File());
    if (facts) {
        return *facts;
    }
    if (!clip.Messages().empty() || LooksLikeDefault(clip.Description())) {
        return {};
    }
    Refuse(clip.File(), "its settings cannot be read");
}

std::string Joined(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines) {
        text += (text.empty() ? "" : "\n") + line;
    }
    return text;
}

} // namespace

bool IsTesselDocument(const importhost::FileType& type) noexcept
{
    return type.code == kTesselDocument;
}

OpenedClip OpenClip(std::shared_ptr<const importhost::Importer> importer, const std::filesystem::path& file,
                    const OpenOptions& options)
{
    // The plug-in reads the file once for the clip and once for its settings text: the same file, opened once.
    const ORB::ScopedReading once;
    const auto plugin = importer;
    OpenedClip opened{importhost::Clip::Open(std::move(importer), file, options.filling), {}, {}, false};
    importhost::Clip& clip = opened.clip;
    static_cast<ClipDescription&>(opened.facts) = clip.Description();
    opened.warning = Joined(clip.Messages());
    if (!IsTesselDocument(importhost::FileTypeOf(*plugin, file))) {
        return opened;
    }
    opened.facts.isTesselDocument = true;
    if (!options.allowDefault) {
        RequireWellFormed(clip);
    }
    opened.isDefault = !opened.warning.empty();

    const DocumentFacts document = AskFacts(clip);
    const ClipDescription description = clip.Description();
    clip.Learn({.paintsWholeFrames = PaintsWholeFrame(description, document),
                .ticksPerFrame = document.ticksPerFrame,
                .explain = [description, document](const importhost::ClipFailure& failure) {
                    return FailureText(failure, description, document);
                }});
    opened.facts.rate = clip.Rate();
    opened.facts.isStill = IsStill(document);
    opened.facts.channelType = document.channelType;
    opened.facts.pixelFormatCode = document.pixelFormatCode;
    opened.facts.pixelFormat = BR::SDKToBEPixelFormat(document.pixelFormatCode);
    return opened;
}

} // namespace tessel::document
