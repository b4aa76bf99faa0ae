#include "ContainerChecks.h"
#include "ContainerReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace tessel::verify::judge {
namespace {

using read::FieldOrder;
using read::PictureFacts;
using read::Rational;

// Containers round rates to nanoseconds a frame: 1e-9 s × 240 frames per second. 29.97 and 30000/1001 differ by
// 1e-6.
constexpr double kRatePrecision = 3e-7;

std::string RatioText(const Rational& ratio)
{
    return ratio.denominator == 1 ? fmt::format("{}", ratio.numerator)
                                  : fmt::format("{}/{}", ratio.numerator, ratio.denominator);
}

bool IsSame(const Rational& a, const Rational& b) noexcept
{
    return a.numerator != 0 && b.numerator != 0 && std::abs(a.Value() / b.Value() - 1) < kRatePrecision;
}

std::string_view NameOf(FieldOrder order) noexcept
{
    switch (order) {
    case FieldOrder::Progressive:
        return "progressive";
    case FieldOrder::UpperFirst:
        return "upper field first";
    case FieldOrder::LowerFirst:
        return "lower field first";
    case FieldOrder::Unknown:
        break;
    }
    return "not said";
}

class PictureFormatChecks : public ContainerReport {
public:
    using ContainerReport::ContainerReport;

    void Run()
    {
        const PictureFacts& picture = *mMovie.picture;
        const bool isSize = picture.width == mClip.width && picture.height == mClip.height;
        FaultUnless(isSize, id::kContainerSize, "the picture's size",
                    fmt::format("{}x{}", mClip.width, mClip.height),
                    fmt::format("{}x{}", picture.width, picture.height));
        JudgeRate(picture);
        JudgeConstantRate();
        JudgeAspect(picture);
        JudgeFields(picture);
    }

private:
    void JudgeRate(const PictureFacts& picture)
    {
        if (picture.isSequence) {
            mFindings.NotVisible(id::kContainerRate, "a movie: picture files do not say their rate");
            return;
        }
        const bool isSame = IsSame(picture.averageRate, mClip.rate) || IsSame(picture.rate, mClip.rate);
        FaultUnless(isSame, id::kContainerRate, "the frame rate", RatioText(mClip.rate),
                    RatioText(picture.averageRate.numerator != 0 ? picture.averageRate : picture.rate));
    }

    void JudgeConstantRate()
    {
        const auto& pictures = mGiven.alignment.pictures;
        const PictureFacts& facts = *mMovie.picture;
        if (facts.isSequence || pictures.size() < 3) {
            mFindings.NotVisible(id::kContainerConstantRate);
            return;
        }
        std::vector<double> steps;
        std::vector<std::int64_t> places;
        for (std::size_t i = 1; i < pictures.size(); ++i) {
            if (pictures[i].seconds && pictures[i - 1].seconds) {
                steps.push_back(*pictures[i].seconds - *pictures[i - 1].seconds);
                places.push_back(static_cast<std::int64_t>(i - 1));
            }
        }
        if (steps.size() < 2) {
            mFindings.NotVisible(id::kContainerConstantRate);
            return;
        }
        std::vector<double> sorted = steps;
        std::nth_element(sorted.begin(), sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2),
                         sorted.end());
        const double usual = sorted[sorted.size() / 2];
        // Times are rounded to the stream's unit, so steps err by up to one unit, and the usual one as well.
        const double unit = 2 * facts.timeUnitSeconds + 1e-9;
        double worst = 0;
        std::vector<std::int64_t> uneven;
        for (std::size_t i = 0; i < steps.size(); ++i) {
            worst = std::max(worst, std::abs(steps[i] - usual));
            if (std::abs(steps[i] - usual) > unit + mFindings.Limits().Of(id::kContainerConstantRate) / 1000) {
                uneven.push_back(places[i]);
            }
        }
        if (uneven.empty()) {
            mFindings.AsExpected(id::kContainerConstantRate);
            return;
        }
        Finding& finding = mFindings.Fault(
            id::kContainerConstantRate,
            fmt::format("{} of {} pictures last longer or shorter than the others, by up to {:.1f} ms",
                        uneven.size(), steps.size(), worst * 1000));
        finding.expected = 0.0;
        finding.found = worst * 1000;
        finding.uncertainty = unit * 1000;
        finding.frames = SpansOf(uneven);
    }

    void JudgeAspect(const PictureFacts& picture)
    {
        const Rational expected = mClip.pixelAspect;
        const bool isClipSquare = expected.numerator == expected.denominator;
        if (expected.numerator == 0 || expected.denominator == 0) {
            mFindings.NotVisible(id::kContainerAspect, "a clip with a pixel aspect ratio");
            return;
        }
        if (picture.pixelAspect.numerator == 0) {
            if (isClipSquare) {
                mFindings.AsExpected(id::kContainerAspect); // nothing said is square
            } else if (!mMovie.sayable.aspect) {
                Unsayable(id::kContainerAspect, "say the pixel aspect", RatioText(expected));
            } else {
                Fault(id::kContainerAspect,
                      fmt::format("the pixel aspect is not said; it is {}", RatioText(expected)),
                      RatioText(expected), std::string("not said"));
            }
            return;
        }
        const double ratio = picture.pixelAspect.Value() / expected.Value();
        // MPEG-2 has three display aspects, which do not hit every pixel aspect.
        const bool isDisplayAspect = picture.codec == "mpeg2video" || picture.codec == "dvvideo";
        const bool isSame = std::abs(ratio - 1) < 1e-4;
        if (!isSame && isDisplayAspect) {
            Unsayable(id::kContainerAspect,
                      fmt::format("say the pixel aspect exactly and says {}", RatioText(picture.pixelAspect)),
                      RatioText(expected));
            return;
        }
        FaultUnless(isSame, id::kContainerAspect, "the pixel aspect", RatioText(expected),
                    RatioText(picture.pixelAspect));
    }

    void JudgeFields(const PictureFacts& picture)
    {
        const FieldOrder found = picture.fields;
        if (found == FieldOrder::Unknown || (!mMovie.sayable.fields && found == FieldOrder::Progressive)) {
            if (mClip.fields == FieldOrder::Progressive) {
                mFindings.AsExpected(id::kContainerFields); // nothing said is progressive
            } else if (!mMovie.sayable.fields) {
                Unsayable(id::kContainerFields, "say the field order", std::string(NameOf(mClip.fields)));
            } else {
                Fault(id::kContainerFields,
                      fmt::format("the field order is not said; it is {}", NameOf(mClip.fields)),
                      std::string(NameOf(mClip.fields)), std::string("not said"));
            }
            return;
        }
        FaultUnless(found == mClip.fields, id::kContainerFields, "the announced field order",
                    std::string(NameOf(mClip.fields)), std::string(NameOf(found)));
    }
};

} // namespace

void JudgePictureFormat(const ContainerCase& given, Findings& findings)
{
    PictureFormatChecks(given, findings).Run();
}

} // namespace tessel::verify::judge
