/// What became of a signal, as reports tell it.
#pragma once

#include "TellingFrame.h"
#include "TellingSound.h"

#include <tessel/verify/catalogue/Catalogue.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tessel::verify {

enum class Verdict : std::uint8_t {
    AsExpected,
    NotAsExpected,
    Undecided, ///< the uncertainty does not let the check tell
};

/// As reports write it: "as expected", ...
[[nodiscard]] std::string_view NameOf(Verdict verdict) noexcept;

/// A value of a check: a number in the check's unit, a text, or nothing to say.
using Quantity = std::variant<std::monostate, double, std::string>;

/// "12.5", "bt709", or "-".
[[nodiscard]] std::string TextOf(const Quantity& quantity);

/// Frames or samples, first and last included.
struct Span {
    std::int64_t first = 0;
    std::int64_t last = 0;

    bool operator==(const Span&) const = default;
};

/// Numbers gathered into spans. @param numbers  ascending
[[nodiscard]] std::vector<Span> SpansOf(const std::vector<std::int64_t>& numbers);

/// "112", "200 to 205", "3, 7 and 12"; long lists end with "and 17 more".
[[nodiscard]] std::string TextOf(const std::vector<Span>& spans);

/// One check's result that is not plainly as expected.
struct Finding {
    std::string id; ///< of the catalogue
    Verdict verdict = Verdict::NotAsExpected;
    Severity severity = Severity::Major;
    std::string message; ///< one sentence without its full stop: what is wrong, for a person
    Quantity expected;
    Quantity found;
    std::optional<double> uncertainty; ///< of `found`, in its unit
    std::string unit;
    std::vector<Span> frames;  ///< of the clip where they can be told, else pictures of the movie
    std::vector<Span> samples; ///< of the clip's sound
    std::vector<Finding> consequences;
};

/// "expected 1, found 0.9 ± 0.003 dB; frames 3 to 7": the numbers behind the message. Empty where it has none.
[[nodiscard]] std::string NumbersOf(const Finding& finding);

/// A check that this clip or this movie cannot serve.
struct NotVisible {
    std::string id;
    std::string use; ///< what would show it
};

/// How pictures were matched with frames.
enum class AlignmentMethod : std::uint8_t {
    None, ///< no pictures, or nothing to go by
    Number,
    Color,
    Time,
};
[[nodiscard]] std::string_view NameOf(AlignmentMethod method) noexcept;

/// One step from the clip's frames to the movie's pictures.
struct EditStep {
    std::string kind;          ///< the id that it belongs to, or "shown" for frames in their place
    std::int64_t picture = 0;  ///< of the movie, counted from 0 in presentation order
    std::int64_t pictures = 0; ///< how many pictures of the movie this covers; 0 for missing frames
    std::int64_t frame = -1;   ///< first frame of the clip; -1 where none can be told
    std::int64_t frames = 0;   ///< how many frames of the clip
};

struct AlignmentReport {
    AlignmentMethod method = AlignmentMethod::None;
    std::int64_t pictures = 0;   ///< in the movie
    std::int64_t frames = 0;     ///< in the clip
    std::int64_t matched = 0;    ///< pictures whose frame is known
    double confidence = 0;       ///< least of all matched pictures, 0..1
    std::vector<EditStep> steps; ///< the edit script
};

struct Report {
    static constexpr int kVersion = 1;

    std::string clip;  ///< as it was named
    std::string movie; ///< as it was named
    Verdict verdict = Verdict::Undecided;
    AlignmentReport alignment;
    std::vector<Finding> findings; ///< not as expected and undecided, most severe first
    std::vector<std::string> asExpected;
    std::vector<NotVisible> notVisible;
    std::vector<std::string> notChecked; ///< ids that nothing was asked about, so nothing is known
    std::vector<std::string> notes;
    std::vector<TellingFrame> telling; ///< for the page alone; empty unless asked for
    std::vector<TellingSound> sounds;  ///< the same of the sound
};

} // namespace tessel::verify
