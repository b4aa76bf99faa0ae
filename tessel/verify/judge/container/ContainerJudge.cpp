#include "ContainerJudge.h"

#include "CodePoints.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <vector>

namespace tessel::verify::judge {
namespace {

using read::FieldOrder;
using read::PictureFacts;
using read::Rational;

// Containers round rates to nanoseconds a frame: 1e-9 s × 240 frames per second. 29.97 and 30000/1001 differ by
// 1e-6.
constexpr double kRatePrecision = 3e-7;

constexpr std::initializer_list<std::string_view> kPictureChecks = {
    id::kContainerSize,   id::kContainerRate,      id::kContainerConstantRate, id::kContainerAspect,
    id::kContainerFields, id::kContainerPrimaries, id::kContainerTransfer,     id::kContainerMatrix,
    id::kContainerRange,  id::kContainerSiting,    id::kContainerDepth,        id::kContainerAlpha};
constexpr std::initializer_list<std::string_view> kSoundChecks = {id::kContainerChannels, id::kContainerLayout,
                                                                  id::kContainerSampleRate};

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

/// All checks of one movie.
class Judging {
public:
    Judging(const ContainerCase& given, Findings& findings)
        : mClip(given.clip), mMovie(given.movie), mGiven(given), mFindings(findings)
    {
    }

    void Run()
    {
        if (mMovie.picture && mClip.hasPicture) {
            JudgePictures(*mMovie.picture);
        } else {
            JudgeMissingPictures();
        }
        if (mMovie.sound && mClip.channels > 0) {
            JudgeSound();
        } else {
            JudgeMissingSound();
        }
        JudgeDuration();
        JudgeStart();
    }

private:
    void Fault(std::string_view id, std::string message, Quantity expected, Quantity found)
    {
        Finding& finding = mFindings.Fault(id, std::move(message));
        finding.expected = std::move(expected);
        finding.found = std::move(found);
        if (std::holds_alternative<double>(finding.found)) {
            finding.uncertainty = 0;
        }
    }

    void FaultUnless(bool isFine, std::string_view id, const std::string& what, const std::string& expected,
                     const std::string& found)
    {
        if (isFine) {
            mFindings.AsExpected(id);
        } else {
            Fault(id, fmt::format("{} is {}, not {}", what, found, expected), expected, found);
        }
    }

    /// What the movie cannot say: a note, or a fault for the strict.
    void Unsayable(std::string_view id, const std::string& what, const std::string& expected)
    {
        const bool isSound = !mMovie.picture || id == id::kContainerLayout;
        const std::string line =
            fmt::format("{} with {} cannot {} ({})", mMovie.container.substr(0, mMovie.container.find(',')),
                        isSound ? mMovie.sound->codec : mMovie.picture->codec, what, expected);
        if (mGiven.isStrict) {
            Fault(id, line, expected, std::string("cannot be said"));
        } else {
            mFindings.Note(fmt::format("{} [{}]", line, id));
            mFindings.NotVisible(id);
        }
    }

    void JudgePictures(const PictureFacts& picture)
    {
        const bool isSize = picture.width == mClip.width && picture.height == mClip.height;
        FaultUnless(isSize, id::kContainerSize, "the picture's size",
                    fmt::format("{}x{}", mClip.width, mClip.height),
                    fmt::format("{}x{}", picture.width, picture.height));
        JudgeRate(picture);
        JudgeConstantRate();
        JudgeAspect(picture);
        JudgeFields(picture);
        JudgeColorTags(picture);
        JudgeRange(picture);
        JudgeSiting(picture);
        JudgeSamples(picture);
    }

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

    void JudgeColorTags(const PictureFacts& picture)
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
        } else if (mClip.matrix == 0) {
            // Which matrix makes Y'CbCr of R'G'B' is free; whether the codes follow it, colour is asked.
            JudgeTag(id::kContainerMatrix, "matrix", picture.matrix == 2 ? 1 : picture.matrix, picture.matrix,
                     picture.matrix != 0, MatrixName);
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

    void JudgeSamples(const PictureFacts& picture)
    {
        const read::Sayable& can = mMovie.sayable;
        const int bits = picture.format.isFloat ? 16 : picture.format.bits;
        if (bits >= mClip.bits) {
            mFindings.AsExpected(id::kContainerDepth);
        } else if (bits >= can.bits || mClip.bits == 16) {
            Unsayable(id::kContainerDepth, fmt::format("carry more than {} bits", bits),
                      mClip.bits == 16 ? "float" : fmt::format("{}", mClip.bits));
        } else {
            Fault(id::kContainerDepth, fmt::format("samples have {} bits, not {}", bits, mClip.bits),
                  static_cast<double>(mClip.bits), static_cast<double>(bits));
        }
        if (!mClip.fileKind.HasAlpha()) {
            mFindings.NotVisible(id::kContainerAlpha);
        } else if (picture.format.hasAlpha) {
            mFindings.AsExpected(id::kContainerAlpha);
        } else if (!can.alpha) {
            Unsayable(id::kContainerAlpha, "carry alpha", "alpha");
        } else {
            Fault(id::kContainerAlpha, "the clip's alpha is not in the movie", std::string("alpha"),
                  std::string("none"));
        }
    }

    void JudgeMissingPictures()
    {
        for (const std::string_view check : kPictureChecks) {
            mFindings.NotVisible(check, "a movie and a clip with pictures");
        }
        if (mClip.hasPicture && !mMovie.picture) {
            if (mMovie.carriesPictures) {
                Fault(id::kContainerSize, "the movie has no pictures",
                      fmt::format("{}x{}", mClip.width, mClip.height), std::string("none"));
            } else {
                mFindings.Note("the movie is of a kind without pictures: only its sound is compared");
            }
        }
    }

    void JudgeMissingSound()
    {
        for (const std::string_view check : kSoundChecks) {
            mFindings.NotVisible(check, "a movie and a clip with sound");
        }
        if (mClip.channels > 0 && !mMovie.sound) {
            if (mMovie.carriesSound) {
                Fault(id::kContainerChannels, "the movie has no sound", static_cast<double>(mClip.channels),
                      0.0);
            } else {
                mFindings.Note("the movie is of a kind without sound: only its pictures are compared");
            }
        }
    }

    void JudgeSound()
    {
        const read::SoundFacts& sound = *mMovie.sound;
        if (sound.channels == mClip.channels) {
            mFindings.AsExpected(id::kContainerChannels);
        } else {
            Fault(id::kContainerChannels,
                  fmt::format("the sound has {} channels, not {}", sound.channels, mClip.channels),
                  static_cast<double>(mClip.channels), static_cast<double>(sound.channels));
        }
        if (sound.sampleRate == mClip.sampleRate) {
            mFindings.AsExpected(id::kContainerSampleRate);
        } else {
            Fault(id::kContainerSampleRate,
                  fmt::format("the sample rate is {} Hz, not {} Hz", sound.sampleRate, mClip.sampleRate),
                  static_cast<double>(mClip.sampleRate), static_cast<double>(sound.sampleRate));
        }
        JudgeLayout(sound);
        JudgeSoundDepth(sound);
    }

    /// The clip's samples are floats: 24 bits of them are what sound files of whole numbers have at best.
    void JudgeSoundDepth(const read::SoundFacts& sound)
    {
        constexpr int kBits = 24;
        if (sound.bits == 0 || sound.bits >= kBits) {
            mFindings.AsExpected(id::kContainerDepth); // lossy codecs have no bits to speak of
        } else {
            Fault(id::kContainerDepth,
                  fmt::format("samples of the sound have {} bits, not {}", sound.bits, kBits),
                  static_cast<double>(kBits), static_cast<double>(sound.bits));
        }
    }

    void JudgeLayout(const read::SoundFacts& sound)
    {
        const std::string expected = mClip.channels == 1   ? "mono"
                                     : mClip.channels == 2 ? "stereo"
                                     : mClip.channels == 6 ? "5.1"
                                                           : "";
        if (expected.empty() || sound.channels != mClip.channels || mMovie.soundStreams > 1) {
            mFindings.NotVisible(id::kContainerLayout);
            return;
        }
        if (sound.layout.empty()) {
            if (mClip.channels <= 2) {
                mFindings.AsExpected(id::kContainerLayout); // readers take it for mono or stereo
            } else if (sound.codecClass != CodecClass::Lossless) {
                mFindings.AsExpected(id::kContainerLayout); // these codecs have one order for six channels
            } else if (!mMovie.sayable.layout) {
                Unsayable(id::kContainerLayout, "say the channel layout", expected);
            } else {
                Fault(id::kContainerLayout, fmt::format("the channel layout is not said; it is {}", expected),
                      expected, std::string("not said"));
            }
            return;
        }
        FaultUnless(sound.layout.substr(0, expected.size()) == expected, id::kContainerLayout,
                    "the announced channel layout", expected, sound.layout);
    }

    void JudgeDuration()
    {
        const auto& pictures = mGiven.alignment.pictures;
        const double frame = mClip.rate.numerator > 0 ? 1 / mClip.rate.Value() : 0.04;
        const double expected = mClip.SecondsOf(mClip.frameCount);
        double found = 0;
        double uncertainty = frame / 2;
        if (!pictures.empty() && mClip.hasPicture) {
            const auto count = static_cast<double>(pictures.size());
            const auto& first = pictures.front().seconds;
            const auto& last = pictures.back().seconds;
            const Rational rate =
                mMovie.picture->averageRate.numerator > 0 ? mMovie.picture->averageRate : mClip.rate;
            // The last picture lasts as long as the others.
            found = first && last && pictures.size() > 1 ? (*last - *first) * count / (count - 1)
                                                         : count / rate.Value();
        } else if (mMovie.sound && mMovie.sound->sampleRate > 0) {
            found = static_cast<double>(mGiven.soundSamples) / mMovie.sound->sampleRate;
            // Codecs with blocks fill up the last one, and some keep what they start with.
            uncertainty = mMovie.sound->codecClass == CodecClass::Lossless ? frame / 2 : 0.15;
        } else {
            mFindings.NotVisible(id::kContainerDuration);
            return;
        }
        if (std::abs(found - expected) <= uncertainty) {
            JudgeSoundDuration(expected, frame);
            return;
        }
        Finding& finding = mFindings.Fault(
            id::kContainerDuration, fmt::format("the movie lasts {:.3f} s, not {:.3f} s", found, expected));
        finding.expected = expected;
        finding.found = found;
        finding.uncertainty = uncertainty;
    }

    /// The pictures are all there: the sound shall be as long.
    void JudgeSoundDuration(double expected, double frame)
    {
        const bool hasSound = mMovie.sound && mMovie.sound->sampleRate > 0 && mClip.channels > 0;
        const double found =
            hasSound ? static_cast<double>(mGiven.soundSamples) / mMovie.sound->sampleRate : expected;
        const double uncertainty =
            hasSound && mMovie.sound->codecClass != CodecClass::Lossless ? 0.15 : frame / 2;
        if (std::abs(found - expected) <= uncertainty) {
            mFindings.AsExpected(id::kContainerDuration);
            return;
        }
        Finding& finding =
            mFindings.Fault(id::kContainerDuration,
                            fmt::format("the sound lasts {:.3f} s, the pictures {:.3f} s", found, expected));
        finding.expected = expected;
        finding.found = found;
        finding.uncertainty = uncertainty;
    }

    void JudgeStart()
    {
        // Transport streams start anywhere; elsewhere times count from 0.
        const std::string kind = mMovie.container.substr(0, mMovie.container.find(','));
        const bool isFree = kind == "mpegts" || kind == "mpeg" || kind == "rtp" || kind == "rtsp";
        const double base = isFree ? mMovie.startSeconds.value_or(0.0) : 0.0;
        const double pictureStart = mMovie.picture && !mGiven.alignment.pictures.empty()
                                        ? mGiven.alignment.pictures.front().seconds.value_or(base) - base
                                        : 0.0;
        const double soundStart = mMovie.sound ? mMovie.sound->startSeconds.value_or(base) - base : 0.0;
        const double limit = mFindings.Limits().Of(id::kContainerStart) / 1000;
        // Lossy sound codecs begin with a block of their own.
        const bool isPrimed = mMovie.sound && mMovie.sound->codecClass != CodecClass::Lossless;
        const double soundLimit = isPrimed ? 0.12 : limit;
        const bool isPictureLate = std::abs(pictureStart) > limit + (isFree ? 0.12 : 0.0);
        if (!isPictureLate && std::abs(soundStart) <= soundLimit + (isFree ? 0.12 : 0.0)) {
            mFindings.AsExpected(id::kContainerStart);
            return;
        }
        const double found = isPictureLate ? pictureStart : soundStart;
        Fault(id::kContainerStart,
              fmt::format("the {} starts at {:.1f} ms, not at 0", isPictureLate ? "picture" : "sound",
                          found * 1000),
              0.0, found * 1000);
    }

    const reference::ClipFacts& mClip;
    const read::MovieFacts& mMovie;
    const ContainerCase& mGiven;
    Findings& mFindings;
};

} // namespace

void JudgeContainer(const ContainerCase& given, Findings& findings)
{
    Judging(given, findings).Run();
}

} // namespace tessel::verify::judge
