#include "FidelityJudge.h"

#include <tessel/verify/reference/MovieLayout.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <system_error>
#include <utility>

namespace tessel::verify::judge {
namespace {

constexpr int kBandRows = 16;
constexpr int kTurns = 8;                              // frames until every band was measured
constexpr int kLeastForTurns = 2 * kBandRows * kTurns; // rows; lower pictures are measured as a whole

/// Some rows of a component.
read::ComponentView RowsOf(const read::ComponentView& view, int first, int count) noexcept
{
    read::ComponentView rows = view;
    rows.first += first * view.rowBytes;
    rows.height = count;
    return rows;
}

std::string PlaneName(const read::PictureFacts& movie, int plane)
{
    constexpr const char* kRgb[] = {"R'", "G'", "B'", "alpha"};
    constexpr const char* kYCbCr[] = {"Y'", "Cb", "Cr", "alpha"};
    return movie.format.isRgb ? kRgb[plane] : kYCbCr[plane];
}

} // namespace

FidelitySampler::FidelitySampler(const exporting::SignalSource& clip, const reference::ClipFacts& facts,
                                 std::int64_t stride, int threads)
    : mClip(clip), mFacts(facts), mStride(std::max<std::int64_t>(1, stride)),
      mThreads(static_cast<std::size_t>(std::max(1, threads)))
{
}

FidelitySampler::Sample FidelitySampler::Measure(reference::ClipPictures& clip, const read::Picture& found,
                                                 std::int64_t frame, Rows rows)
{
    reference::ClipPictures::Bands bands{0, kBandRows, kBandRows * kTurns};
    std::vector<read::Picture> expected;
    if (rows == Rows::InTurns && found.height >= kLeastForTurns) {
        bands.first = static_cast<int>(frame % kTurns) * kBandRows;
        expected = clip.RenderBands(frame, bands);
    } else {
        expected.push_back(clip.Render(frame));
    }
    Sample sample;
    sample.frame = frame;
    const int telling = found.format.isRgb ? 1 : 0;
    for (int plane = 0; plane < 4; ++plane) {
        PlaneComparison comparison;
        bool isCompared = false;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            const read::ComponentView& was = expected[i].components[plane];
            const read::ComponentView& whole = found.components[plane];
            if (!was || !whole || was.width != whole.width) {
                continue;
            }
            // Chroma planes are lower, and the bands in them likewise.
            const int top =
                (bands.first + static_cast<int>(i) * bands.distance) * was.height / expected[i].height;
            const read::ComponentView is = RowsOf(whole, top, was.height);
            comparison.Add(was, is, top);
            isCompared = true;
            if (plane == telling) {
                sample.artefacts += MeasureArtefacts(was, is);
            }
        }
        if (isCompared) {
            sample.planes[static_cast<std::size_t>(plane)] = comparison.Result();
            sample.planeCount = plane + 1;
        }
    }
    return sample;
}

FidelitySampler::Renderer FidelitySampler::MakeRenderer(exporting::ChromaRows rows) const
{
    return std::make_unique<reference::ClipPictures>(mClip, *mLayout, mCoding, rows);
}

void FidelitySampler::Choose(const read::Picture& picture, std::int64_t frame, const read::PictureFacts& movie)
{
    mIsChosen = true;
    if (picture.width != mFacts.width || picture.height != mFacts.height) {
        return;
    }
    mLayout = reference::LayoutFor(picture.format);
    mCoding = reference::CodingFor(mFacts, movie);
    if (!mLayout || picture.format.chromaShiftY == 0) {
        return;
    }
    // Chroma of interlaced pictures may be subsampled by field or by frame; the nearer way is the movie's.
    double best = -1;
    for (const exporting::ChromaRows rows : {exporting::ChromaRows::Frame, exporting::ChromaRows::Field}) {
        const Sample sample = Measure(*MakeRenderer(rows), picture, frame, Rows::InTurns);
        const double chroma = sample.planeCount > 1 ? sample.planes[1].psnr : 0;
        if (chroma > best) {
            best = chroma;
            mChromaRows = rows;
        }
    }
}

FidelitySampler::Sample FidelitySampler::MeasureFrame(const read::Picture& picture, std::int64_t frame,
                                                      Rows rows)
{
    Renderer renderer;
    {
        const std::lock_guard lock(mIdleMutex);
        if (!mIdle.empty()) {
            renderer = std::move(mIdle.back());
            mIdle.pop_back();
        }
    }
    if (!renderer) {
        renderer = MakeRenderer(mChromaRows);
    }
    const Sample sample = Measure(*renderer, picture, frame, rows);
    const std::lock_guard lock(mIdleMutex);
    mIdle.push_back(std::move(renderer));
    return sample;
}

void FidelitySampler::Take(const read::Picture& picture, std::int64_t frame, const read::PictureFacts& movie,
                           Rows rows)
{
    if (!mIsChosen) {
        Choose(picture, frame, movie);
    }
    if (!mLayout || picture.width != mFacts.width || picture.height != mFacts.height) {
        return;
    }
    while (!mRunning.empty() &&
           mRunning.front().wait_for(std::chrono::seconds(0)) == std::future_status::ready) {
        mSamples.push_back(mRunning.front().get());
        mRunning.pop_front();
    }
    const auto measure = [this, picture, frame, rows] { return MeasureFrame(picture, frame, rows); };
    // With no thread to spare the caller waits for its own picture, so that no more than a few are held.
    if (mRunning.size() + 1 < mThreads) {
        try {
            mRunning.push_back(std::async(std::launch::async, measure));
            return;
        } catch (const std::system_error&) { // the system starts no more threads
        }
    }
    mRunning.push_back(std::async(std::launch::deferred, measure));
    mRunning.back().wait();
}

void FidelitySampler::Finish()
{
    for (std::future<Sample>& running : mRunning) {
        mSamples.push_back(running.get());
    }
    mRunning.clear();
}

namespace {

/// The lowest of each plane over all samples, and where.
struct Lowest {
    int planes = 0;
    std::array<double, 4> psnr{kEqualPsnr, kEqualPsnr, kEqualPsnr, kEqualPsnr};
    std::array<double, 4> ssim{1, 1, 1, 1};
    const FidelitySampler::Sample* worstPsnr = nullptr;
    const FidelitySampler::Sample* worstSsim = nullptr;
    int worstPsnrPlane = 0;
    int worstSsimPlane = 0;
};

Lowest LowestOf(const std::vector<FidelitySampler::Sample>& samples)
{
    Lowest lowest;
    double psnr = kEqualPsnr;
    double ssim = 1;
    lowest.worstPsnr = lowest.worstSsim = &samples.front();
    for (const FidelitySampler::Sample& sample : samples) {
        lowest.planes = std::max(lowest.planes, sample.planeCount);
        for (int plane = 0; plane < sample.planeCount; ++plane) {
            const auto at = static_cast<std::size_t>(plane);
            const PlaneLikeness& likeness = sample.planes[at];
            lowest.psnr[at] = std::min(lowest.psnr[at], likeness.psnr);
            lowest.ssim[at] = std::min(lowest.ssim[at], likeness.ssim);
            if (likeness.psnr < psnr) {
                psnr = likeness.psnr;
                lowest.worstPsnr = &sample;
                lowest.worstPsnrPlane = plane;
            }
            if (likeness.ssim < ssim) {
                ssim = likeness.ssim;
                lowest.worstSsim = &sample;
                lowest.worstSsimPlane = plane;
            }
        }
    }
    return lowest;
}

/// "column 320, row 64" of the picture: the middle of the worst window of a plane.
std::string PlaceText(const FidelitySampler::Sample& sample, int plane, const read::PictureFacts& movie)
{
    constexpr int kHalfWindow = 4;
    const PlaneLikeness& likeness = sample.planes[static_cast<std::size_t>(plane)];
    const bool isChroma = !movie.format.isRgb && (plane == 1 || plane == 2);
    return fmt::format("column {}, row {}",
                       (likeness.worstX + kHalfWindow) << (isChroma ? movie.format.chromaShiftX : 0),
                       (likeness.worstY + kHalfWindow) << (isChroma ? movie.format.chromaShiftY : 0));
}

void TellExact(const std::vector<FidelitySampler::Sample>& samples, Findings& findings)
{
    if (findings.Limits().picture != CodecClass::Lossless) {
        findings.NotVisible(id::kFidelityExact);
        return;
    }
    std::vector<std::int64_t> unequal;
    for (const FidelitySampler::Sample& sample : samples) {
        const auto end = sample.planes.begin() + sample.planeCount;
        if (!std::all_of(sample.planes.begin(), end,
                         [](const PlaneLikeness& plane) { return plane.isEqual; })) {
            unequal.push_back(sample.frame);
        }
    }
    if (unequal.empty()) {
        findings.AsExpected(id::kFidelityExact);
        return;
    }
    std::sort(unequal.begin(), unequal.end());
    Finding& finding = findings.Fault(
        id::kFidelityExact, fmt::format("{} of {} measured pictures are not the clip's to the last sample",
                                        unequal.size(), samples.size()));
    finding.expected = 0.0;
    finding.found = static_cast<double>(unequal.size());
    finding.uncertainty = 0;
    finding.frames = SpansOf(unequal);
}

/// The numbers, whatever the verdict.
void NoteNumbers(const std::vector<FidelitySampler::Sample>& samples, const Lowest& lowest,
                 const read::PictureFacts& movie, Findings& findings)
{
    std::string psnr;
    std::string ssim;
    for (int plane = 0; plane < lowest.planes; ++plane) {
        const auto at = static_cast<std::size_t>(plane);
        const std::string_view comma = plane == 0 ? "" : ", ";
        psnr += fmt::format("{}{} {:.1f}", comma, PlaneName(movie, plane), lowest.psnr[at]);
        ssim += fmt::format("{}{} {:.4f}", comma, PlaneName(movie, plane), lowest.ssim[at]);
    }
    findings.Note(fmt::format("lowest PSNR of {} measured pictures: {} dB (worst: frame {})", samples.size(),
                              psnr, lowest.worstPsnr->frame));
    findings.Note(fmt::format("lowest SSIM of {} measured pictures: {} (worst: frame {}, near {})",
                              samples.size(), ssim, lowest.worstSsim->frame,
                              PlaceText(*lowest.worstSsim, lowest.worstSsimPlane, movie)));
    Artefacts artefacts;
    for (const FidelitySampler::Sample& sample : samples) {
        artefacts += sample.artefacts;
    }
    findings.Note(fmt::format(
        "errors change {:.2f} times as much at the edges of 8 x 8 blocks as inside them; {:.0f} % of "
        "the clip's steps from row to row are lost",
        artefacts.Blocking(), artefacts.Banding() * 100));
}

} // namespace

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
    TellExact(samples, findings);
    const Lowest lowest = LowestOf(samples);
    const auto judge = [&](std::string_view check, double found, const FidelitySampler::Sample& sample,
                           const std::string& message) {
        const double least = findings.Limits().Of(check);
        if (found >= least) {
            findings.AsExpected(check);
            return;
        }
        Finding& finding = findings.Fault(check, message);
        finding.expected = least;
        finding.found = found;
        finding.uncertainty = 0;
        finding.frames = {{sample.frame, sample.frame}};
    };
    const double psnr = *std::min_element(lowest.psnr.begin(), lowest.psnr.end());
    const double ssim = *std::min_element(lowest.ssim.begin(), lowest.ssim.end());
    judge(id::kFidelityPsnr, psnr, *lowest.worstPsnr,
          fmt::format("the PSNR of {} falls to {:.1f} dB in frame {}", PlaneName(movie, lowest.worstPsnrPlane),
                      psnr, lowest.worstPsnr->frame));
    judge(id::kFidelitySsim, ssim, *lowest.worstSsim,
          fmt::format("the SSIM of {} falls to {:.3f} in frame {}, most of all near {}",
                      PlaneName(movie, lowest.worstSsimPlane), ssim, lowest.worstSsim->frame,
                      PlaceText(*lowest.worstSsim, lowest.worstSsimPlane, movie)));
    if (psnr < kEqualPsnr) {
        NoteNumbers(samples, lowest, movie, findings);
    }
}

} // namespace tessel::verify::judge
