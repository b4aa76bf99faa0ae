/// Which of all explanations of rows holds over several pictures.
#pragma once

#include "FieldModels.h"

#include <cstdint>
#include <span>
#include <vector>

namespace tessel::verify::judge {

/// The kinds of explanation. Several models may make up one.
enum class FieldKind : std::uint8_t {
    Right,
    Moved,       ///< no fault of fields: geometry tells
    Swapped,     ///< rows of each pair exchanged
    OneRowOff,   ///< each field on the other's rows, because the frame moved by one row
    Blended,     ///< fields mixed into each other
    FramesMixed, ///< neighbouring frames mixed
    Bobbed,      ///< each picture shows one field, upper and lower in turn
    OneField,    ///< upper rows alone or lower rows alone are left
    Shifted,     ///< the fields are of different frames
};
inline constexpr std::size_t kFieldKinds = 9;

/// How the rows of a missing field were made.
enum class MissingRows : std::uint8_t { None, Doubled, Interpolated };

/// Explains every picture: `even` those with an even index in the movie, `odd` the others.
struct FieldHypothesis {
    FieldKind kind = FieldKind::Right;
    FieldModel even = FieldModel::Right;
    FieldModel odd = FieldModel::Right;
    MissingRows missing = MissingRows::None;
};

/// What one picture said.
struct FieldEvidence {
    std::int64_t picture = 0; ///< index in the movie
    FieldProducts products;
};

struct FieldDecision {
    FieldHypothesis best;
    double residual = 0;                 ///< root of the mean square, in the samples' unit
    FieldKind second = FieldKind::Right; ///< the best explanation of another kind
    double secondResidual = 0;
    bool isSure = true;            ///< false: `best` and `Right` are equally likely
    bool isSecondAsLikely = false; ///< these samples cannot tell `best` from `second`
    /// Whether each kind, had it happened, would have been told from `Right`.
    std::array<bool, kFieldKinds> isVisible{};
};

/// The least residual wins; `Right` against another by more than the noise that is left.
/// @param evidence    not empty
/// @param leastApart  root of the mean square, in codes, by which an explanation's rows must differ from the
///                    right ones. What a lossy codec leaves out of a picture is like a fault that is smaller;
///                    where more than a code is left unexplained, so many times that.
[[nodiscard]] FieldDecision Decide(std::span<const FieldEvidence> evidence, double leastApart = 0);

} // namespace tessel::verify::judge
