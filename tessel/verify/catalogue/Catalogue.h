/// What is checked: the one place that defines every check. Reports, the JSON documents, `--list` and
/// docs/verify.md are made from it.
#pragma once

#include <tessel/verify/catalogue/Names.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tessel::verify {

/// How much a fault matters to who watches or listens.
enum class Severity : std::uint8_t {
    Minor,    ///< announced or measured wrongly; what is seen or heard is (nearly) right
    Major,    ///< seen or heard by who knows the clip
    Critical, ///< not the clip any more
};

/// What codecs promise, from least to most loss. Tolerances go by it.
enum class CodecClass : std::uint8_t {
    Lossless,  ///< every sample comes back: FFV1, v210, PCM, FLAC
    Mezzanine, ///< made for editing, high rates, pictures apart: ProRes, DV
    Delivery,  ///< made for viewers: H.264, MPEG-2, AAC
};

/// What is still fine, by codec class, in the check's unit.
struct Tolerance {
    double lossless = 0;
    double mezzanine = 0;
    double delivery = 0;

    [[nodiscard]] double For(CodecClass codec) const noexcept
    {
        return codec == CodecClass::Lossless ? lossless : codec == CodecClass::Mezzanine ? mezzanine : delivery;
    }
};

struct CheckInfo {
    std::string_view id;
    Severity severity = Severity::Major;
    std::string_view sentence;          ///< what the check asks, as a claim that holds where all is well
    std::string_view visibleBy;         ///< what of a clip or movie makes a fault visible
    std::string_view use;               ///< what to use instead of a clip that cannot show it
    std::string_view unit;              ///< of expected, found and uncertainty; empty where they are texts
    std::optional<Tolerance> tolerance; ///< for checks that compare a number
};

/// All checks, in the order of `id::kAll`.
[[nodiscard]] std::span<const CheckInfo> Catalogue() noexcept;

/// @return null for an unknown name.
[[nodiscard]] const CheckInfo* FindCheck(std::string_view id) noexcept;

/// What follows of necessity from a fault: where `cause` is reported, findings of these ids are part of it and
/// stand inside it.
[[nodiscard]] std::span<const std::string_view> ConsequencesOf(std::string_view cause) noexcept;

/// The name as reports write it. @{
[[nodiscard]] std::string_view NameOf(Severity severity) noexcept;
[[nodiscard]] std::string_view NameOf(CodecClass codec) noexcept;
/// @}

/// The catalogue as the text of `--list`, as its JSON document, and as the Markdown table of docs/verify.md. @{
[[nodiscard]] std::string CatalogueAsText();
[[nodiscard]] std::string CatalogueAsJson();
[[nodiscard]] std::string CatalogueAsMarkdown();
/// @}

} // namespace tessel::verify
