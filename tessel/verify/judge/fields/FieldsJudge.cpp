#include "FieldsJudge.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace tessel::verify::judge {
namespace {

// A fault of all pictures shows in nearly all of them.
constexpr double kNearlyAllPictures = 0.8;

/// Codes by which the rows of a fault differ from the right ones at least. What lossy codecs leave out of a
/// picture looks like a faint mixture of its rows.
double LeastApart(CodecClass codec) noexcept
{
    return codec == CodecClass::Lossless ? 0 : codec == CodecClass::Mezzanine ? 0.5 : 1;
}

std::string_view NameOf(FieldKind kind) noexcept
{
    switch (kind) {
    case FieldKind::Right:
        return "the clip's own rows";
    case FieldKind::Moved:
        return "a frame that moved by a part of a row";
    case FieldKind::Swapped:
        return "exchanged fields";
    case FieldKind::OneRowOff:
        return "a frame that moved by one row";
    case FieldKind::Blended:
        return "blended fields";
    case FieldKind::FramesMixed:
        return "mixed frames";
    case FieldKind::Bobbed:
        return "bobbed fields";
    case FieldKind::OneField:
        return "a lost field";
    case FieldKind::Shifted:
        return "fields of two frames";
    }
    return {};
}

/// The check that a kind belongs to; empty for kinds that are no fault of fields.
std::string_view CheckOf(FieldKind kind, bool isInterlaced) noexcept
{
    switch (kind) {
    case FieldKind::Swapped:
    case FieldKind::OneRowOff:
        return isInterlaced ? id::kFieldsSwapped : std::string_view{};
    case FieldKind::Blended:
    case FieldKind::FramesMixed:
        return isInterlaced ? id::kFieldsBlended : std::string_view{};
    case FieldKind::Bobbed:
        return isInterlaced ? id::kFieldsBobbed : id::kFieldsInterlaced;
    case FieldKind::OneField:
        return isInterlaced ? id::kFieldsLost : id::kFieldsInterlaced;
    case FieldKind::Shifted:
        return isInterlaced ? id::kFieldsShifted : id::kFieldsInterlaced;
    case FieldKind::Right:
    case FieldKind::Moved:
        break;
    }
    return {};
}

/// What the numbers on each field's rows say.
struct FieldNumbers {
    std::int64_t read = 0;           ///< pictures in which both fields were read
    std::vector<std::int64_t> apart; ///< pictures whose fields are of two frames
    bool isLowerLater = false;       ///< in most of them
};

FieldNumbers NumbersOf(const align::Alignment& alignment)
{
    FieldNumbers numbers;
    std::size_t lowerLater = 0;
    for (std::size_t i = 0; i < alignment.pictures.size(); ++i) {
        const align::PictureRecord& picture = alignment.pictures[i];
        if (picture.fields[0] >= 0 && picture.fields[1] >= 0) {
            ++numbers.read;
            if (picture.fields[0] != picture.fields[1]) {
                numbers.apart.push_back(static_cast<std::int64_t>(i));
                lowerLater += picture.fields[1] > picture.fields[0] ? 1 : 0;
            }
        }
    }
    numbers.isLowerLater = lowerLater * 2 > numbers.apart.size();
    return numbers;
}

class FieldsJudging {
public:
    FieldsJudging(const FieldsCase& given, Findings& findings)
        : mGiven(given), mFindings(findings), mIsInterlaced(given.clip.fields != read::FieldOrder::Progressive)
    {
    }

    void Run()
    {
        const FieldNumbers numbers = NumbersOf(mGiven.alignment);
        const std::vector<FieldEvidence>& evidence = mGiven.sampler.Evidence();
        if (!evidence.empty()) {
            mDecision = Decide(evidence, LeastApart(mFindings.Limits().picture));
        }
        TellVisibility(numbers);
        if (!evidence.empty() && TellKind()) {
            return;
        }
        // Rows are right in most pictures; numbers were read in all that look odd.
        if (!numbers.apart.empty()) {
            TellWeave(numbers);
        }
    }

private:
    [[nodiscard]] bool Sees(FieldKind kind) const noexcept
    {
        return mDecision.isVisible[static_cast<std::size_t>(kind)];
    }

    void TellVisibility(const FieldNumbers& numbers)
    {
        const bool seesWeave = Sees(FieldKind::Shifted) || numbers.read > 0;
        const auto tell = [this](std::string_view check, bool isSeen) {
            if (isSeen) {
                mFindings.AsExpected(check);
            } else {
                mFindings.NotVisible(check);
            }
        };
        tell(id::kFieldsSwapped, mIsInterlaced && Sees(FieldKind::Swapped));
        tell(id::kFieldsShifted, mIsInterlaced && seesWeave);
        tell(id::kFieldsBlended, mIsInterlaced && Sees(FieldKind::Blended));
        tell(id::kFieldsBobbed, mIsInterlaced && Sees(FieldKind::Bobbed));
        tell(id::kFieldsLost, mIsInterlaced && Sees(FieldKind::OneField));
        tell(id::kFieldsProgressive, mIsInterlaced && Sees(FieldKind::OneField));
        tell(id::kFieldsInterlaced, !mIsInterlaced && seesWeave);
    }

    [[nodiscard]] bool IsAnnouncedInterlaced() const noexcept
    {
        return mGiven.movie.fields == read::FieldOrder::UpperFirst ||
               mGiven.movie.fields == read::FieldOrder::LowerFirst;
    }

    /// A field that is left alone: lost where the movie still says that it has two, else made progressive.
    /// Where the movie does not tag its fields, doubled rows are a loss and interpolated ones are made on
    /// purpose.
    [[nodiscard]] bool IsLoss() const noexcept
    {
        return mGiven.movie.fields == read::FieldOrder::Unknown ? mDecision.best.missing == MissingRows::Doubled
                                                                : IsAnnouncedInterlaced();
    }

    [[nodiscard]] std::string_view Kept() const noexcept
    {
        switch (mDecision.best.even) {
        case FieldModel::LowerDoubled:
        case FieldModel::LowerBetween:
        case FieldModel::LowerAdaptive:
        case FieldModel::LowerStretched:
            return "lower";
        default:
            return "upper";
        }
    }

    [[nodiscard]] std::string Message() const
    {
        const FieldHypothesis& best = mDecision.best;
        const std::string_view made =
            best.missing == MissingRows::Doubled ? "shown twice" : "interpolated to all rows";
        switch (best.kind) {
        case FieldKind::Swapped:
            return "the upper field is on the lower rows and the lower field on the upper rows";
        case FieldKind::OneRowOff:
            return fmt::format("the picture is one row too {}, so that each field is on the other's rows",
                               best.even == FieldModel::OneRowDown ? "low" : "high");
        case FieldKind::Blended:
            return best.even == FieldModel::PairsMixed ? "both fields are mixed into every row"
                                                       : "every row is mixed with the rows above and below it";
        case FieldKind::FramesMixed:
            return "each picture is a mix of two frames";
        case FieldKind::Bobbed:
            return fmt::format("each picture is one field, {}, upper and lower fields in turn", made);
        case FieldKind::OneField:
            if (!mIsInterlaced) {
                return fmt::format("pictures were treated as interlaced: only the {} rows are left, {}", Kept(),
                                   made);
            }
            return IsLoss()
                       ? fmt::format("only the {} field is left, {}", Kept(), made)
                       : fmt::format("pictures are made progressive from the {} field alone, {}", Kept(), made);
        case FieldKind::Shifted: {
            const bool isLowerLater =
                best.even == FieldModel::LowerFromNext || best.even == FieldModel::UpperFromLast;
            return mIsInterlaced
                       ? fmt::format("the {} field of each picture is of a later frame than the other",
                                     isLowerLater ? "lower" : "upper")
                       : fmt::format("pictures are made interlaced: the {} rows of each are of a later frame",
                                     isLowerLater ? "lower" : "upper");
        }
        default:
            return {};
        }
    }

    /// @return whether the rows of all pictures tell a fault
    bool TellKind()
    {
        std::string_view check = CheckOf(mDecision.best.kind, mIsInterlaced);
        if (check == id::kFieldsLost && !IsLoss()) {
            check = id::kFieldsProgressive;
        }
        if (check.empty()) {
            TellRowOffset();
            return mDecision.best.kind != FieldKind::Right;
        }
        const std::string residual =
            fmt::format("residual {:.2g} codes; next best {:.2g}: {}", mDecision.residual,
                        mDecision.secondResidual, NameOf(mDecision.second));
        std::string message = fmt::format("{} ({})", Message(), residual);
        const std::string_view second = CheckOf(mDecision.second, mIsInterlaced);
        if (mDecision.isSecondAsLikely && !second.empty() && second != check) {
            message = fmt::format("one of: {}; or {} ({})", Message(), NameOf(mDecision.second), second);
        }
        Finding& finding = mDecision.isSure ? mFindings.Fault(check, std::move(message))
                                            : mFindings.Undecided(check, std::move(message));
        finding.expected = std::string(NameOf(FieldKind::Right));
        finding.found = std::string(NameOf(mDecision.best.kind));
        if (mDecision.best.kind == FieldKind::OneField) {
            finding.found = fmt::format("{} field", Kept());
        }
        if (mGiven.movie.width == mGiven.clip.width && mGiven.movie.height == mGiven.clip.height) {
            // Rows in the wrong places move and stretch the number that tells where the frame lies.
            for (const std::string_view geometry :
                 {id::kGeometryScaled, id::kGeometryCropped, id::kGeometryPadded, id::kGeometryShifted}) {
                mFindings.Because(check, geometry);
            }
        }
        return true;
    }

    /// Rows are right but lie an odd number of rows away, as cropping leaves them.
    void TellRowOffset()
    {
        if (!mIsInterlaced || mGiven.sampler.Evidence().empty() || mGiven.sampler.RowsDown() % 2 == 0) {
            return;
        }
        Finding& finding = mFindings.Fault(
            id::kFieldsSwapped, "the picture is moved by an odd number of rows, so that each field is on the "
                                "other's rows");
        finding.expected = std::string(NameOf(FieldKind::Right));
        finding.found = fmt::format("{} rows lower", mGiven.sampler.RowsDown());
        for (const std::string_view cause : {id::kGeometryCropped, id::kGeometryPadded, id::kGeometryShifted}) {
            mFindings.Because(cause, id::kFieldsSwapped);
        }
    }

    /// Some pictures, or all of them, have the fields of two frames.
    void TellWeave(const FieldNumbers& numbers)
    {
        const std::string_view check = mIsInterlaced ? id::kFieldsShifted : id::kFieldsInterlaced;
        const std::string_view later = numbers.isLowerLater ? "lower" : "upper";
        Finding& finding = mFindings.Fault(
            check, fmt::format("in {} of {} pictures the {} {} of a later frame than the other{}",
                               numbers.apart.size(), mGiven.alignment.pictures.size(), later,
                               mIsInterlaced ? "field is" : "rows are", mIsInterlaced ? "" : "s"));
        finding.expected = std::string("both fields of one frame");
        finding.found = fmt::format("{} field later", later);
        finding.frames = SpansOf(numbers.apart);
        const auto part = static_cast<double>(numbers.apart.size()) / static_cast<double>(numbers.read);
        if (part < kNearlyAllPictures) {
            // Pulldown: frames are spread over fields in a pattern.
            for (const std::string_view consequence :
                 {check, id::kFidelityExact, id::kFidelityPsnr, id::kFidelitySsim}) {
                mFindings.Because(id::kOrderCadence, consequence);
            }
        }
    }

    const FieldsCase& mGiven;
    Findings& mFindings;
    bool mIsInterlaced;
    FieldDecision mDecision;
};

} // namespace

void JudgeFields(const FieldsCase& given, Findings& findings)
{
    FieldsJudging(given, findings).Run();
}

} // namespace tessel::verify::judge
