#include "CodePoints.h"
#include "ContainerChecks.h"
#include "ContainerReport.h"

#include <fmt/format.h>

#include <cmath>

namespace tessel::verify::judge {
namespace {

using read::PictureFacts;

class ColorTagChecks : public ContainerReport {
public:
    using ContainerReport::ContainerReport;

    void Run()
    {
        const PictureFacts& picture = *mMovie.picture;
        JudgeTags(picture);
        JudgeRange(picture);
        JudgeSiting(picture);
    }

private:
    void JudgeTag(std::string_view id, const std::string& what, int expected, int found, bool isSame,
                  std::string (*name)(int))
    {
        if (expected == 2) {
            mFindings.NotVisible(id, "a clip whose colour space says it");
        } else if (found != 2) {
            FaultUnless(isSame, id, fmt::format("the announced {}", what), name(expected), name(found));
        } else if (!mMovie.sayable.primaries) {
            Unsayable(id, fmt::format("say the {}", what), name(expected));
        } else {
            Fault(id, fmt::format("the {} is not announced; it is {}", what, name(expected)), name(expected),
                  name(found));
        }
    }

    void JudgeTags(const PictureFacts& picture)
    {
        JudgeTag(id::kContainerPrimaries, "set of primaries", mClip.primaries, picture.primaries,
                 mClip.primaries == picture.primaries, PrimariesName);
        // Linear light passes BT.709's curve on its way into integer samples.
        const bool isCurved = mClip.frameKind.linear && mClip.transfer == 8 && !picture.format.isFloat;
        const int transfer = isCurved ? 1 : mClip.transfer;
        JudgeTag(id::kContainerTransfer, "transfer function", transfer, picture.transfer,
                 IsSameTransfer(transfer, picture.transfer), TransferName);
        if (picture.format.isRgb) {
            const bool isFine = picture.matrix == 0 || picture.matrix == 2;
            FaultUnless(isFine, id::kContainerMatrix, "the announced matrix", MatrixName(0),
                        MatrixName(picture.matrix));
        } else if (mClip.matrix == 0 && picture.matrix == 0) {
            FaultUnless(false, id::kContainerMatrix, "the announced matrix", "one of Y'CbCr", MatrixName(0));
        } else if (mClip.matrix == 0) {
            // Any matrix may make Y'CbCr of R'G'B'. The checks of colours find codes that do not follow it.
            JudgeTag(id::kContainerMatrix, "matrix", picture.matrix == 2 ? 1 : picture.matrix, picture.matrix,
                     /*isSame=*/true, MatrixName);
        } else {
            JudgeTag(id::kContainerMatrix, "matrix", mClip.matrix, picture.matrix,
                     IsSameMatrix(mClip.matrix, picture.matrix), MatrixName);
        }
    }

    void JudgeRange(const PictureFacts& picture)
    {
        const auto name = [](bool isFull) { return std::string(isFull ? "full range" : "limited range"); };
        if (picture.format.isRgb) {
            const bool isFine = picture.fullRange.value_or(true);
            FaultUnless(isFine, id::kContainerRange, "the announced range", name(true), name(false));
            return;
        }
        const bool expected = mClip.matrix != 0 && mClip.fullRange;
        if (!picture.fullRange) {
            if (!expected) {
                mFindings.AsExpected(id::kContainerRange); // nothing said is limited
            } else if (!mMovie.sayable.fullRange) {
                Unsayable(id::kContainerRange, "say full range", name(expected));
            } else {
                Fault(id::kContainerRange, "the range is not announced; it is full", name(expected),
                      std::string("not said"));
            }
        } else if (*picture.fullRange != expected && expected && !mMovie.sayable.fullRange) {
            Unsayable(id::kContainerRange, "say full range", name(expected));
        } else {
            FaultUnless(*picture.fullRange == expected, id::kContainerRange, "the announced range",
                        name(expected), name(*picture.fullRange));
        }
    }

    void JudgeSiting(const PictureFacts& picture)
    {
        if (picture.format.isRgb || (picture.format.chromaShiftX == 0 && picture.format.chromaShiftY == 0)) {
            mFindings.NotVisible(id::kContainerSiting, "a movie with subsampled chroma");
            return;
        }
        if (!picture.siting) {
            // Co-sited in width and half way between rows is what readers take for said.
            mFindings.AsExpected(id::kContainerSiting);
            return;
        }
        // Conversions put chroma on even columns and between rows; it may lie elsewhere if the movie says so.
        const bool isVertical = picture.format.chromaShiftY > 0;
        const auto isAt = [&](double x, double y) {
            constexpr double kNear = 0.2;
            return std::abs(picture.siting->x - x) < kNear &&
                   (!isVertical || std::abs(picture.siting->y - y) < kNear);
        };
        const auto text = [&](double x, double y) {
            return isVertical ? fmt::format("{} right and {} below the luma sample", x, y)
                              : fmt::format("{} right of the luma sample", x);
        };
        // DV has a place of its own, which no file could change.
        const bool isFine = isAt(0, 0.5) || picture.codec == "dvvideo" ||
                            isAt(mGiven.chroma.right.value_or(0), 0.5 + mGiven.chroma.down.value_or(0));
        FaultUnless(isFine, id::kContainerSiting, "the announced chroma location", text(0, 0.5),
                    text(picture.siting->x, picture.siting->y));
    }
};

} // namespace

void JudgeColorTags(const ContainerCase& given, Findings& findings)
{
    ColorTagChecks(given, findings).Run();
}

} // namespace tessel::verify::judge
