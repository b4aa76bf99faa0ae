/// The per-file importer instance: one clip's settings, and what the host asks of them.
#pragma once

#include "KsImportModule.h"

#include <ImporterTessel/settings/TesselInfo.h>

#include <string_view>

namespace ImporterTessel {

/// Made by selectors 37, 39 and 81, carried by the host, deleted by selector 9. The settings are all its
/// state; every answer is a pure function of them and of the request. The operations return a `ksResult`.
/// Threads: [any-thread]; once the settings are loaded, pictures and sound also at once on one instance.
class ImporterTessel final : public KsImportModule<ImporterTessel> {
public:
    /// The name that the logs carry.
    static constexpr std::string_view kTypeName = "class ImporterTessel::ImporterTessel";

    [[nodiscard]] static std::int32_t StartUp(ksStartUpRec* record);
    [[nodiscard]] static std::int32_t DescribeFileType(ksFileTypeRec& record) noexcept;
    [[nodiscard]] static std::int32_t ExchangeSettings(const ksStdParms* stdParms, ksFileAccessRec& file,
                                                       ksSettingsExchangeRec& exchange);

    [[nodiscard]] std::int32_t OpenFile(const ksOpenRec& open);
    [[nodiscard]] std::int32_t DescribeClip(const ksFileAccessRec& file, ksFileInfoRec& record);

    /// Writes the width and height in pixels.
    [[nodiscard]] std::int32_t GetFrameSize(ksFrameSizeRec& record) const noexcept;

    [[nodiscard]] std::int32_t SynthesizeFrame(ksFrameRec& record, const ksStdParms* stdParms) const;

    /// Fails only where a sample is to be written and there is no array of buffers.
    [[nodiscard]] std::int32_t SynthesizeAudio(const ksAudioRec& record) const noexcept;

    /// Writes the colour codes of the settings' colour space; a space without codes is unspecified.
    [[nodiscard]] std::int32_t GetColorInformation(ksColorRec& record) const noexcept;

private:
    TesselInfo mSettings;
};

} // namespace ImporterTessel
