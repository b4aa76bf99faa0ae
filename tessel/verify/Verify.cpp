#include "Verify.h"

#include <tessel/verify/align/Aligner.h>
#include <tessel/verify/judge/color/ColorJudge.h>
#include <tessel/verify/judge/color/Resemblance.h>
#include <tessel/verify/judge/color/RightCodings.h>
#include <tessel/verify/judge/color/detail/DetailJudge.h>
#include <tessel/verify/judge/container/ContainerJudge.h>
#include <tessel/verify/judge/fidelity/FidelityJudge.h>
#include <tessel/verify/judge/fidelity/FrameWatch.h>
#include <tessel/verify/judge/fidelity/TellingFrames.h>
#include <tessel/verify/judge/fields/FieldsJudge.h>
#include <tessel/verify/judge/geometry/GeometryJudge.h>
#include <tessel/verify/judge/order/OrderJudge.h>
#include <tessel/verify/judge/sound/SoundJudge.h>
#include <tessel/verify/judge/sound/SoundSampler.h>
#include <tessel/verify/judge/sync/SyncJudge.h>
#include <tessel/verify/read/Movie.h>
#include <tessel/verify/read/MovieAhead.h>
#include <tessel/verify/reference/ClipPictures.h>
#include <tessel/verify/reference/ClipSound.h>

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
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

/// Of every so many pictures one is measured, unless all are asked for.
constexpr std::int64_t kMeasuredEvery = 25;

/// What the closed list knows to be done to colours, as aligners use it.
std::vector<align::ColorChange> ColorChangesOf(const reference::ClipFacts& clip,
                                               const read::PictureFacts& movie)
{
    std::vector<align::ColorChange> changes;
    for (const judge::Coding& coding : judge::RightCodings(clip, movie)) {
        for (const judge::Hypothesis& hypothesis : judge::Hypotheses(coding)) {
            changes.emplace_back([coding, predict = hypothesis.predict](const judge::Triple& codes) {
                judge::ColorPair pair;
                pair.rgb = pair.otherField = judge::Decode(coding, codes);
                return predict(pair);
            });
        }
    }
    return changes;
}

/// Of a movie or a clip without pictures. The container's and the order's judges tell their own part.
void TellPicturesNotVisible(Findings& findings)
{
    for (const CheckInfo& check : Catalogue()) {
        const std::string_view subject = check.id.substr(0, check.id.find('.'));
        if (subject == "geometry" || subject == "fields" || subject == "color" || subject == "fidelity") {
            findings.NotVisible(check.id, "a movie and a clip with pictures");
        }
    }
    findings.NotVisible(id::kSignalOther, "a movie with the clip's pictures or its sound");
}

/// One movie on its way through the judges: `Take` what is decoded, then `Finish`.
class Inspection {
public:
    /// @param movie  facts, which may be completed while pictures are taken
    Inspection(const exporting::SignalSource& clip, const read::MovieFacts& movie, const VerifyJob& job)
        : mJob(job), mMovie(movie), mClip(reference::FactsOf(clip)),
          mPrintsNumbers(align::PrintsNumbers(clip, mClip)), mAligner(clip, mClip, mPrintsNumbers),
          mColors(clip, mClip, mAligner.Numbers()), mGuessed(clip, mClip, mAligner.Numbers()),
          mDetail(clip, mClip), mGeometry(mAligner.Numbers()),
          mFields(clip, mClip, mPrintsNumbers ? &mAligner.Numbers() : nullptr), mTelling(clip, mClip),
          mWatch(clip, mClip), mFidelity(clip, mClip, job.measuresAll ? 1 : kMeasuredEvery, job.threadCount),
          mSound(clip)
    {
    }

    void Take(const read::Picture& picture)
    {
        ++mPictureCount;
        const align::PictureRecord& record = mAligner.Take(picture, mMovie.picture);
        if (mClip.hasPicture && record.frame >= 0) {
            TakeAligned(picture, record.frame);
        } else if (mClip.hasPicture && !mHasMatch && picture.index < mClip.frameCount &&
                   mColors.Wants(picture.index)) {
            // Should no number be read at all, these tell whether it is the clip nevertheless.
            mGuessed.Take(picture, picture.index, mAligner.PlacementFor(picture));
        }
        if (mJob.progress) {
            mJob.progress(picture.index + 1);
        }
    }

    void Take(const read::Sound& sound)
    {
        mSound.Take(sound);
        mSoundSamples += sound.channels.empty() ? 0 : static_cast<std::int64_t>(sound.channels.front().size());
    }

    [[nodiscard]] Report Finish()
    {
        if (mMovie.picture && mClip.hasPicture && !mPrintsNumbers) {
            mAligner.SetColorChanges(ColorChangesOf(mClip, *mMovie.picture));
        }
        const align::Alignment alignment = mAligner.Result();
        mFidelity.Finish();
        Findings findings(TolerancesOf(mMovie, mJob));
        Report report;
        if (ShowsSomethingElse()) {
            Finding& finding = findings.Fault(id::kSignalOther, "the movie does not show this clip");
            finding.expected = mJob.clipName;
            finding.found = std::string("something else");
            report.alignment.pictures = static_cast<std::int64_t>(alignment.pictures.size());
            report.alignment.frames = mClip.frameCount;
        } else {
            JudgeAll(alignment, findings, report);
            if (!mMovie.picture && findings.HasFault(id::kSignalOther)) {
                findings.KeepOnly(id::kSignalOther); // its length or its depth tell nothing of the clip
            }
        }
        Conclude(findings, report);
        report.telling = mTelling.Result();
        return report;
    }

    /// "picture" or "sound" where the movie has such a stream and none of it could be decoded; else
    /// empty.
    [[nodiscard]] std::string_view Undecoded() const
    {
        if (mMovie.picture && mClip.hasPicture) {
            return mPictureCount == 0 ? "picture" : "";
        }
        return mMovie.sound && mClip.channels > 0 && mSoundSamples == 0 ? "sound" : "";
    }

    /// A report that says that there was nothing to compare.
    [[nodiscard]] Report FinishUndecoded(std::string_view kind)
    {
        Findings findings(TolerancesOf(mMovie, mJob));
        Report report;
        findings.Undecided(id::kSignalOther,
                           fmt::format("no {} can be decoded, so nothing can be compared", kind));
        report.alignment.frames = mClip.frameCount;
        Conclude(findings, report);
        return report;
    }

private:
    void Conclude(Findings& findings, Report& report) const
    {
        report.clip = mJob.clipName;
        report.movie = mJob.movieName;
        for (const std::string& warning : mMovie.warnings) {
            findings.Note(warning);
        }
        findings.Conclude(mJob.choice, report);
    }

    void TakeAligned(const read::Picture& picture, std::int64_t frame)
    {
        mHasMatch = true;
        const align::Placement placement = mAligner.PlacementFor(picture);
        const bool isTelling = mColors.Wants(frame);
        if (isTelling) {
            mColors.Take(picture, frame, placement);
        }
        if (mDetail.Wants(frame)) {
            mDetail.Take(picture, frame, placement, *mMovie.picture);
        }
        if (mPrintsNumbers && mGeometry.WantsMore()) {
            mGeometry.Take(picture, frame, placement);
        }
        if (mFields.Wants(picture.index)) {
            const bool isExact = !mGeometry.Placements().empty();
            mFields.Take(picture, frame, isExact ? mGeometry.Placements().back() : placement, *mMovie.picture);
        }
        // Every picture is compared with its frame, though most of them on a few rows only.
        using Rows = judge::FidelitySampler::Rows;
        const bool isLossless = mMovie.picture->codecClass == CodecClass::Lossless;
        const bool isSuspicious = mWatch.IsSuspicious(picture, frame, *mMovie.picture);
        if (mJob.keepsPictures && (isSuspicious || isTelling)) {
            mTelling.Take(picture, frame, *mMovie.picture);
        }
        if (isSuspicious || mFidelity.Wants(frame)) {
            mFidelity.Take(picture, frame, *mMovie.picture,
                           isSuspicious || isLossless ? Rows::All : Rows::InTurns);
        }
    }

    [[nodiscard]] bool ShowsSomethingElse() const
    {
        if (!mMovie.picture || !mClip.hasPicture) {
            return false;
        }
        const bool isRead = mPrintsNumbers && mHasMatch;
        const judge::ColorSampler& sampler = mPrintsNumbers && !mHasMatch ? mGuessed : mColors;
        return judge::ShowsOtherColors({mClip, *mMovie.picture, sampler},
                                       isRead ? judge::FrameSource::Numbers : judge::FrameSource::Guess);
    }

    void JudgeAll(const align::Alignment& alignment, Findings& findings, Report& report)
    {
        judge::DetailResult detail;
        if (mMovie.picture && mClip.hasPicture) {
            detail = judge::JudgeDetail(mDetail, *mMovie.picture, findings);
        }
        judge::JudgeContainer({mClip, mMovie, alignment, mSoundSamples, mJob.isStrict, detail.chroma},
                              findings);
        judge::JudgeOrder(alignment, FramesPerPicture(), findings, report.alignment);
        if (mMovie.picture && mClip.hasPicture) {
            findings.AsExpected(id::kSignalOther);
            judge::JudgeGeometry(mGeometry, alignment, mAligner.Numbers(), *mMovie.picture, findings);
            judge::JudgeFields({mFields, mClip, *mMovie.picture, alignment}, findings);
            judge::JudgeColor({mClip, *mMovie.picture, mColors, detail.lostStep, detail.chromaOff}, findings);
            judge::JudgeFidelity(mFidelity, *mMovie.picture, findings);
        } else {
            TellPicturesNotVisible(findings);
        }
        JudgeSound(alignment, findings, report);
    }

    /// Frames of the clip in the time of one of the movie's pictures; 1 where the movie states no rate.
    [[nodiscard]] double FramesPerPicture() const
    {
        if (!mMovie.picture || mClip.rate.numerator <= 0) {
            return 1;
        }
        const read::PictureFacts& movie = *mMovie.picture;
        const read::Rational& rate = movie.averageRate.numerator > 0 ? movie.averageRate : movie.rate;
        return rate.numerator > 0 ? mClip.rate.Value() / rate.Value() : 1;
    }

    void JudgeSound(const align::Alignment& alignment, Findings& findings, Report& report)
    {
        const read::SoundFacts facts = mMovie.sound.value_or(read::SoundFacts{});
        const double leastSamples = findings.Limits().Of(id::kAudioLost);
        const judge::SoundEvidence sound = mSound.Finish(facts, leastSamples);
        judge::JudgeSound(sound, facts, mJob.isStrict ? judge::Uncarried::Fault : judge::Uncarried::Note,
                          findings);
        judge::JudgeSync({mClip, mMovie, alignment, sound}, findings);
        if (mJob.keepsPictures && sound.trouble == judge::SoundTrouble::None) {
            report.sounds = mSound.Waveforms(sound);
        }
    }

    const VerifyJob& mJob;
    const read::MovieFacts& mMovie;
    reference::ClipFacts mClip;
    bool mPrintsNumbers;
    bool mHasMatch = false;
    align::Aligner mAligner;
    judge::ColorSampler mColors;
    judge::ColorSampler mGuessed; ///< by place in the movie, for pictures whose number was not read
    judge::DetailSampler mDetail;
    judge::GeometrySampler mGeometry;
    judge::FieldSampler mFields;
    judge::TellingFrames mTelling;
    judge::FrameWatch mWatch;
    judge::FidelitySampler mFidelity;
    judge::SoundSampler mSound;
    std::int64_t mPictureCount = 0;
    std::int64_t mSoundSamples = 0;
};

/// The clip's own sound, as long as the longest identification takes twice: what comes later is the same again.
void TakeBeginning(reference::ClipSound clip, Inspection& inspection)
{
    const std::int64_t length = std::min<std::int64_t>(clip.Length(), 30 * std::int64_t{clip.SampleRate()});
    for (std::int64_t at = 0; at < length; at += clip.SampleRate()) {
        read::Sound sound;
        sound.position = at;
        sound.seconds = static_cast<double>(at) / clip.SampleRate();
        sound.sampleRate = clip.SampleRate();
        clip.Read(at, std::min<std::int64_t>(clip.SampleRate(), length - at), sound.channels);
        inspection.Take(sound);
    }
}

/// The note on a movie whose codec loses nothing.
read::MovieFacts PerfectMovie(const reference::ClipFacts& clip)
{
    read::MovieFacts movie;
    movie.container = "matroska";
    movie.kind = "Matroska";
    if (clip.hasPicture) {
        read::PictureFacts& picture = movie.picture.emplace();
        picture.codec = "ffv1";
        picture.codecClass = CodecClass::Lossless;
        picture.format.isRgb = true;
        picture.format.hasAlpha = true;
        picture.format.isFloat = true;
        picture.format.bits = 32;
        picture.width = clip.width;
        picture.height = clip.height;
        picture.rate = picture.averageRate = clip.rate;
        picture.pixelAspect = clip.pixelAspect;
        picture.fields = clip.fields;
        picture.primaries = clip.primaries;
        picture.transfer = clip.transfer;
        picture.matrix = 0;
        picture.fullRange = true;
    }
    if (clip.channels > 0) {
        read::SoundFacts& sound = movie.sound.emplace();
        sound.codec = "flac";
        sound.codecClass = CodecClass::Lossless;
        sound.sampleRate = clip.sampleRate;
        sound.channels = clip.channels;
        sound.bits = 24;
    }
    return movie;
}

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
    Inspection inspection(clip, movie.Facts(), job);
    read::MovieAhead ahead(movie);
    for (;;) {
        const read::MovieAhead::Item next = ahead.Next();
        if (const auto* picture = std::get_if<read::Picture>(&next)) {
            inspection.Take(*picture);
        } else if (const auto* sound = std::get_if<read::Sound>(&next)) {
            inspection.Take(*sound);
        } else {
            break;
        }
    }
    const std::string_view undecoded = inspection.Undecoded();
    return undecoded.empty() ? inspection.Finish() : inspection.FinishUndecoded(undecoded);
}

Report TellVisible(const exporting::SignalSource& clip, const std::string& clipName)
{
    const reference::ClipFacts facts = reference::FactsOf(clip);
    const read::MovieFacts movie = PerfectMovie(facts);
    VerifyJob job;
    job.clipName = clipName;
    Inspection inspection(clip, movie, job);
    if (facts.hasPicture) {
        // A dozen frames show what all of them do.
        reference::ClipPictures pictures(clip, exporting::PictureLayout::Gbrapf32, {},
                                         exporting::ChromaRows::Frame);
        const std::int64_t stride = std::max<std::int64_t>(1, facts.frameCount / 12);
        std::int64_t index = 0;
        for (std::int64_t frame = 0; frame < facts.frameCount; frame += stride) {
            read::Picture picture = pictures.Render(frame);
            picture.index = index++;
            picture.seconds = facts.SecondsOf(frame);
            inspection.Take(picture);
        }
    }
    if (facts.channels > 0) {
        TakeBeginning(reference::ClipSound(clip), inspection);
    }
    Report report = inspection.Finish();
    // What the frames between would have told is visible, too.
    for (const Finding& finding : report.findings) {
        report.asExpected.push_back(finding.id);
        for (const Finding& consequence : finding.consequences) {
            report.asExpected.push_back(consequence.id);
        }
    }
    report.findings.clear();
    report.verdict = Verdict::AsExpected;
    return report;
}

} // namespace tessel::verify
