#include "Comparison.h"

#include "MoviePictures.h"

#include <kestrel/importhost/PathText.h>
#include <kestrel/qelcore/text/PathText.h>
#include <tessel/verify/Verify.h>

#include <exception>
#include <utility>

namespace tessel::view {
namespace {

/// Thrown through the verification to break it off.
struct BrokenOff {};

verify::read::ReadOptions OptionsFor(const ViewedClip& clip, int threads)
{
    const FrameScale scale = clip.Scale();
    return {threads, {scale.rateNumerator, scale.rateDenominator}};
}

} // namespace

Comparison::Comparison(std::shared_ptr<const ViewedClip> clip, std::string movie, std::function<void()> onReady)
    : mClip(std::move(clip)), mMovie(std::move(movie)), mOnReady(std::move(onReady))
{
    // What cannot be opened is told at once.
    static_cast<void>(verify::read::Movie(mMovie, OptionsFor(*mClip, 1)));
    mVerification = std::thread([this] { RunVerification(); });
    mPictures = std::thread([this] { RunPictures(); });
}

Comparison::~Comparison()
{
    {
        const std::lock_guard lock(mMutex);
        mStops = true;
    }
    mChanged.notify_all();
    mVerification.join();
    mPictures.join();
}

void Comparison::RunVerification()
{
    verify::VerifyJob job;
    job.clipName = qelcore::text::UTF8Text(mClip->File());
    job.movieName = mMovie;
    job.progress = [this](std::int64_t pictures) {
        if (mStops) {
            throw BrokenOff();
        }
        const std::lock_guard lock(mMutex);
        mVerifiedPictures = pictures;
    };
    std::shared_ptr<const verify::Report> report;
    std::string failure;
    try {
        report = std::make_shared<const verify::Report>(verify::Verify(mClip->Source(), job));
    } catch (const BrokenOff&) {
        return;
    } catch (const std::exception& error) {
        failure = error.what();
    }
    {
        const std::lock_guard lock(mMutex);
        mReport = report;
        mFailure = failure;
        if (report) {
            mMap = MapOf(report->alignment);
        }
        mIsVerified = true;
        mNewest = nullptr; // it was not aligned
    }
    mChanged.notify_all();
    mOnReady();
}

void Comparison::RunPictures()
{
    std::unique_ptr<MoviePictures> movie;
    std::unique_ptr<PictureComparer> comparer;
    std::unique_lock lock(mMutex);
    for (;;) {
        const auto isDone = [this] {
            return !mWanted || (mNewest && mNewest->frame == *mWanted && mNewest->gain == mGain);
        };
        mChanged.wait(lock, [&] { return mStops || !isDone(); });
        if (mStops) {
            return;
        }
        auto made = std::make_shared<ComparedFrame>();
        made->frame = *mWanted;
        made->gain = mGain;
        made->isAligned = mReport != nullptr;
        const bool isVerified = mIsVerified;
        const auto index = static_cast<std::size_t>(made->frame);
        made->picture = !made->isAligned ? made->frame : index < mMap.size() ? mMap[index] : -1;
        lock.unlock();
        try {
            if (!movie) {
                movie = std::make_unique<MoviePictures>(mMovie, OptionsFor(*mClip, 2));
                comparer = std::make_unique<PictureComparer>(mClip->Source());
            }
            const auto picture = made->picture < 0 ? std::nullopt : movie->Get(made->picture);
            if (picture && movie->Facts().picture) {
                made->pictures = comparer->Compare(*picture, *movie->Facts().picture, made->frame, made->gain);
            } else {
                made->picture = -1;
                made->trouble = "no picture of the movie shows frame " + std::to_string(made->frame);
            }
        } catch (const std::exception& error) {
            made->picture = -1;
            made->trouble = error.what();
        }
        lock.lock();
        if (isVerified == mIsVerified) {
            mNewest = std::move(made);
            lock.unlock();
            mOnReady();
            lock.lock();
        }
    }
}

void Comparison::Want(std::int64_t frame, int gain)
{
    {
        const std::lock_guard lock(mMutex);
        mWanted = frame;
        mGain = gain;
    }
    mChanged.notify_all();
}

std::shared_ptr<const ComparedFrame> Comparison::Newest() const
{
    const std::lock_guard lock(mMutex);
    return mNewest;
}

std::shared_ptr<const verify::Report> Comparison::Report() const
{
    const std::lock_guard lock(mMutex);
    return mReport;
}

bool Comparison::IsVerified() const
{
    const std::lock_guard lock(mMutex);
    return mIsVerified;
}

std::string Comparison::State() const
{
    const std::lock_guard lock(mMutex);
    const std::string name = importhost::DisplayName(qelcore::text::PathOf(mMovie).filename());
    if (mReport) {
        const std::size_t count = mReport->findings.size();
        return name + ": " + std::string(verify::NameOf(mReport->verdict)) +
               (count == 0 ? "" : ", " + std::to_string(count) + (count == 1 ? " finding" : " findings"));
    }
    return mIsVerified ? name + " cannot be verified: " + mFailure
                       : name + ": verifying, " + std::to_string(mVerifiedPictures) + " pictures";
}

} // namespace tessel::view
