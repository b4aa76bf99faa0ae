#include "Verify.h"

#include <tessel/verify/align/Aligner.h>
#include <tessel/verify/judge/container/ContainerJudge.h>
#include <tessel/verify/judge/order/OrderJudge.h>
#include <tessel/verify/read/Movie.h>
#include <tessel/verify/reference/ClipPictures.h>

#include <algorithm>
#include <utility>
#include <variant>

namespace tessel::verify {
namespace {

Tolerances TolerancesOf(const read::MovieFacts& movie, const VerifyJob& job)
{
    Tolerances tolerances;
    tolerances.picture = movie.picture ? movie.picture->codecClass : CodecClass::Lossless;
    tolerances.sound = movie.sound ? movie.sound->codecClass : CodecClass::Lossless;
    tolerances.chosen = job.tolerances;
    return tolerances;
}

/// One movie on its way through the judges: `Take` what is decoded, then `Finish`.
class Inspection {
public:
    Inspection(const exporting::SignalSource& clip, const read::Movie& movie, const VerifyJob& job)
        : mJob(job), mMovie(movie), mClip(reference::FactsOf(clip)),
          mAligner(mClip, align::PrintsNumbers(clip, mClip))
    {
    }

    void Take(const read::Picture& picture)
    {
        static_cast<void>(mAligner.Take(picture));
        if (mJob.progress) {
            mJob.progress(picture.index + 1);
        }
    }

    void Take(const read::Sound& sound)
    {
        mSoundSamples += sound.channels.empty() ? 0 : static_cast<std::int64_t>(sound.channels.front().size());
    }

    [[nodiscard]] Report Finish()
    {
        const read::MovieFacts& movie = mMovie.Facts();
        const align::Alignment alignment = mAligner.Result();
        Findings findings(TolerancesOf(movie, mJob));
        Report report;
        report.clip = mJob.clipName;
        report.movie = mJob.movieName;
        judge::JudgeContainer({mClip, movie, alignment, mSoundSamples, mJob.isStrict}, findings);
        judge::JudgeOrder(alignment, findings, report.alignment);
        for (const std::string& warning : movie.warnings) {
            findings.Note(warning);
        }
        findings.Conclude(mJob.choice, report);
        return report;
    }

private:
    const VerifyJob& mJob;
    const read::Movie& mMovie;
    reference::ClipFacts mClip;
    align::Aligner mAligner;
    std::int64_t mSoundSamples = 0;
};

} // namespace

Report Verify(const exporting::SignalSource& clip, const VerifyJob& job)
{
    const importhost::ClipDescription& description = clip.Description();
    read::ReadOptions options;
    options.threads = job.threadCount;
    if (description.timeScale > 0 && description.sampleSize > 0) {
        options.sequenceRate = {description.timeScale, description.sampleSize};
    }
    read::Movie movie(job.movieName, options);
    Inspection inspection(clip, movie, job);
    for (;;) {
        const std::variant<std::monostate, read::Picture, read::Sound> next = movie.Next();
        if (const auto* picture = std::get_if<read::Picture>(&next)) {
            inspection.Take(*picture);
        } else if (const auto* sound = std::get_if<read::Sound>(&next)) {
            inspection.Take(*sound);
        } else {
            break;
        }
    }
    return inspection.Finish();
}

} // namespace tessel::verify
