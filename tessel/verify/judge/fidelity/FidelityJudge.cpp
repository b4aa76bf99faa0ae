#include "FidelityJudge.h"

#include <tessel/verify/reference/MovieLayout.h>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace tessel::verify::judge {
namespace {

constexpr double kEqualPsnr = 100; // dB

/// A component's samples in a row-by-row array.
std::vector<float> SamplesOf(const read::ComponentView& view)
{
    std::vector<float> samples;
    samples.reserve(static_cast<std::size_t>(view.width) * static_cast<std::size_t>(view.height));
    for (int y = 0; y < view.height; ++y) {
        for (int x = 0; x < view.width; ++x) {
            samples.push_back(static_cast<float>(view.At(x, y)));
        }
    }
    return samples;
}

/// SSIM of one window (Wang et al. 2004), with its two small constants.
double SsimOfWindow(const float* a, const float* b, int width, int size, double fullScale) noexcept
{
    double sumA = 0;
    double sumB = 0;
    double squaresA = 0;
    double squaresB = 0;
    double products = 0;
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const double valueA = a[y * width + x];
            const double valueB = b[y * width + x];
            sumA += valueA;
            sumB += valueB;
            squaresA += valueA * valueA;
            squaresB += valueB * valueB;
            products += valueA * valueB;
        }
    }
    const double count = size * size;
    const double meanA = sumA / count;
    const double meanB = sumB / count;
    const double varianceA = std::max(0.0, squaresA / count - meanA * meanA);
    const double varianceB = std::max(0.0, squaresB / count - meanB * meanB);
    const double covariance = products / count - meanA * meanB;
    const double c1 = 0.01 * fullScale * 0.01 * fullScale;
    const double c2 = 0.03 * fullScale * 0.03 * fullScale;
    return (2 * meanA * meanB + c1) * (2 * covariance + c2) /
           ((meanA * meanA + meanB * meanB + c1) * (varianceA + varianceB + c2));
}

std::string PlaneName(const read::PictureFacts& movie, int plane)
{
    constexpr const char* kRgb[] = {"R'", "G'", "B'", "alpha"};
    constexpr const char* kYCbCr[] = {"Y'", "Cb", "Cr", "alpha"};
    return movie.format.isRgb ? kRgb[plane] : kYCbCr[plane];
}

} // namespace

PlaneLikeness Compare(const read::ComponentView& expected, const read::ComponentView& found)
{
    PlaneLikeness likeness;
    const std::vector<float> a = SamplesOf(expected);
    const std::vector<float> b = SamplesOf(found);
    double squares = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const double off = a[i] - b[i];
        squares += off * off;
    }
    likeness.isEqual = squares == 0;
    const double fullScale = expected.isFloat ? 1.0 : std::exp2(expected.bits) - 1;
    const double mean = squares / static_cast<double>(std::max<std::size_t>(1, a.size()));
    likeness.psnr =
        likeness.isEqual ? kEqualPsnr : std::min(kEqualPsnr, 10 * std::log10(fullScale * fullScale / mean));
    constexpr int kWindow = 8;
    if (likeness.isEqual || expected.width < kWindow || expected.height < kWindow) {
        return likeness;
    }
    double sum = 0;
    std::int64_t windows = 0;
    for (int y = 0; y + kWindow <= expected.height; y += kWindow / 2) {
        for (int x = 0; x + kWindow <= expected.width; x += kWindow / 2) {
            const auto at = static_cast<std::size_t>(y) * static_cast<std::size_t>(expected.width) +
                            static_cast<std::size_t>(x);
            sum += SsimOfWindow(a.data() + at, b.data() + at, expected.width, kWindow, fullScale);
            ++windows;
        }
    }
    likeness.ssim = sum / static_cast<double>(windows);
    return likeness;
}

FidelitySampler::FidelitySampler(const exporting::SignalSource& clip, const reference::ClipFacts& facts,
                                 std::int64_t stride)
    : mClip(clip), mFacts(facts), mStride(std::max<std::int64_t>(1, stride))
{
}

FidelitySampler::Sample FidelitySampler::Measure(const read::Picture& expected, const read::Picture& found,
                                                 std::int64_t frame)
{
    Sample sample;
    sample.frame = frame;
    for (int plane = 0; plane < 4; ++plane) {
        const read::ComponentView& is = found.components[plane];
        const read::ComponentView& was = expected.components[plane];
        if (is && was && is.width == was.width && is.height == was.height) {
            sample.planes[static_cast<std::size_t>(plane)] = Compare(was, is);
            sample.planeCount = plane + 1;
        }
    }
    return sample;
}

void FidelitySampler::Choose(const read::Picture& picture, std::int64_t frame, const read::PictureFacts& movie)
{
    mIsChosen = true;
    const std::optional<exporting::PictureLayout> layout = reference::LayoutFor(picture.format);
    if (!layout || picture.width != mFacts.width || picture.height != mFacts.height) {
        return;
    }
    // Chroma of interlaced pictures may be subsampled by field or by frame; the nearer way is the movie's.
    double best = -1;
    for (const exporting::ChromaRows rows : {exporting::ChromaRows::Frame, exporting::ChromaRows::Field}) {
        auto pictures = std::make_unique<reference::ClipPictures>(mClip, *layout,
                                                                  reference::CodingFor(mFacts, movie), rows);
        const Sample sample = Measure(pictures->Render(frame), picture, frame);
        const double chroma = sample.planeCount > 1 ? sample.planes[1].psnr : sample.planes[0].psnr;
        if (chroma > best) {
            best = chroma;
            mPictures = std::move(pictures);
        }
        if (picture.format.chromaShiftY == 0) {
            break;
        }
    }
}

void FidelitySampler::Take(const read::Picture& picture, std::int64_t frame, const read::PictureFacts& movie)
{
    if (!mIsChosen) {
        Choose(picture, frame, movie);
    }
    if (mPictures && picture.width == mFacts.width && picture.height == mFacts.height) {
        mSamples.push_back(Measure(mPictures->Render(frame), picture, frame));
    }
}

void JudgeFidelity(const FidelitySampler& sampler, const read::PictureFacts& movie, Findings& findings)
{
    const std::vector<FidelitySampler::Sample>& samples = sampler.Samples();
    if (samples.empty()) {
        for (const std::string_view check : {id::kFidelityExact, id::kFidelityPsnr, id::kFidelitySsim}) {
            findings.NotVisible(check,
                                "a movie of the clip's size, in a sample format that tessel render writes");
        }
        return;
    }
    std::vector<std::int64_t> unequal;
    double psnr = kEqualPsnr;
    double ssim = 1;
    std::int64_t worstFrame = samples.front().frame;
    int worstPlane = 0;
    for (const FidelitySampler::Sample& sample : samples) {
        bool isEqual = true;
        for (int plane = 0; plane < sample.planeCount; ++plane) {
            const PlaneLikeness& likeness = sample.planes[static_cast<std::size_t>(plane)];
            isEqual = isEqual && likeness.isEqual;
            ssim = std::min(ssim, likeness.ssim);
            if (likeness.psnr < psnr) {
                psnr = likeness.psnr;
                worstFrame = sample.frame;
                worstPlane = plane;
            }
        }
        if (!isEqual) {
            unequal.push_back(sample.frame);
        }
    }
    const std::string worst = fmt::format("{} of frame {}", PlaneName(movie, worstPlane), worstFrame);
    if (findings.Limits().picture != CodecClass::Lossless) {
        findings.NotVisible(id::kFidelityExact);
    } else if (unequal.empty()) {
        findings.AsExpected(id::kFidelityExact);
    } else {
        std::sort(unequal.begin(), unequal.end());
        Finding& finding = findings.Fault(
            id::kFidelityExact, fmt::format("{} of {} measured pictures are not the clip's to the last sample",
                                            unequal.size(), samples.size()));
        finding.expected = 0.0;
        finding.found = static_cast<double>(unequal.size());
        finding.uncertainty = 0;
        finding.frames = SpansOf(unequal);
    }
    const auto judge = [&](std::string_view check, double found, const std::string& message) {
        const double least = findings.Limits().Of(check);
        if (found >= least) {
            findings.AsExpected(check);
            return;
        }
        Finding& finding = findings.Fault(check, message);
        finding.expected = least;
        finding.found = found;
        finding.uncertainty = 0;
        finding.frames = {{worstFrame, worstFrame}};
    };
    judge(id::kFidelityPsnr, psnr, fmt::format("the PSNR falls to {:.1f} dB, in {}", psnr, worst));
    judge(id::kFidelitySsim, ssim, fmt::format("the SSIM falls to {:.3f}", ssim));
    if (psnr < kEqualPsnr) {
        findings.Note(
            fmt::format("of {} measured pictures the lowest PSNR is {:.1f} dB ({}), the lowest SSIM {:.4f}",
                        samples.size(), psnr, worst, ssim));
    }
}

} // namespace tessel::verify::judge
