/// A clip that a window shows.
#pragma once

#include "FieldView.h"
#include "Fitting.h"
#include "FrameNames.h"

#include <tessel/document/OpenClip.h>
#include <tessel/export/AskedSource.h>
#include <tessel/export/SignalSource.h>
#include <tessel/export/convert/PixelKind.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace tessel::view {

/// Opened once, never changed: a document that was edited is opened again. Threads: [thread-safe].
class ViewedClip {
public:
    /// @throws importhost::HostError, exporting::ExportError  where it cannot be opened, or has no frame to
    /// show
    ViewedClip(std::shared_ptr<const importhost::Importer> importer, const std::filesystem::path& file);

    [[nodiscard]] const exporting::SignalSource& Source() const noexcept { return mAsked; }
    [[nodiscard]] const document::ClipFacts& Facts() const { return mAsked.Description(); }
    [[nodiscard]] const std::filesystem::path& File() const noexcept { return mOpened.clip.File(); }
    [[nodiscard]] FrameScale Scale() const;
    [[nodiscard]] PictureSize Size() const;
    [[nodiscard]] FirstField First() const;
    /// The matrix that R'G'B' frames become Y'CbCr by.
    [[nodiscard]] exporting::Matrix Matrix() const;
    /// "L", "R", ... in the order of files; empty without sound.
    [[nodiscard]] const std::vector<std::string>& ChannelNames() const noexcept { return mChannelNames; }
    /// The number of the channel identification in the document; -1: it has none.
    [[nodiscard]] std::int32_t Ident() const noexcept { return mIdent; }
    /// What is shown and how it became a picture for the screen, in one line.
    [[nodiscard]] std::string Description() const;

private:
    document::OpenedClip mOpened;
    exporting::ClipSource mSource;
    exporting::AskedSource mAsked;
    std::vector<std::string> mChannelNames;
    std::int32_t mIdent = -1;
};

} // namespace tessel::view
