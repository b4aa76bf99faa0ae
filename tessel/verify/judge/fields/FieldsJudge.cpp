#include "FieldsJudge.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace tessel::verify::judge {
namespace {

constexpr std::array kMixChecks{id::kFieldsSwapped, id::kFieldsBlended, id::kFieldsBobbed, id::kFieldsLost,
                                id::kFieldsProgressive};
constexpr std::int64_t kPairs = 8; // of neighbouring pictures that are looked at, spread over the clip
constexpr double kAlike = 0.08;    // fields nearer than this in luma do not tell
constexpr double kNear = 0.2;      // of a mix to a plain share

bool IsNear(double share, double to) noexcept
{
    return std::abs(share - to) < kNear;
}

/// How many pictures' mixes are of each kind.
struct Kinds {
    int right = 0;
    int swapped = 0;
    int blended = 0;
    int upperOnly = 0;
    int lowerOnly = 0;
    int all = 0;
};

Kinds CountKinds(const std::vector<FieldSampler::Sample>& samples, bool isFull)
{
    Kinds kinds;
    for (const FieldSampler::Sample& sample : samples) {
        const std::optional<FieldMix> mix = MixOf(sample, isFull);
        if (!mix) {
            continue;
        }
        ++kinds.all;
        const double upper = mix->inUpper;
        const double lower = mix->inLower;
        kinds.right += IsNear(upper, 1) && IsNear(lower, 0) ? 1 : 0;
        kinds.swapped += IsNear(upper, 0) && IsNear(lower, 1) ? 1 : 0;
        kinds.blended += IsNear(upper, 0.5) && IsNear(lower, 0.5) ? 1 : 0;
        kinds.upperOnly += IsNear(upper, 1) && IsNear(lower, 1) ? 1 : 0;
        kinds.lowerOnly += IsNear(upper, 0) && IsNear(lower, 0) ? 1 : 0;
    }
    return kinds;
}

void TellMix(const FieldsCase& given, const Kinds& kinds, Findings& findings)
{
    const auto most = [&](int count) { return count * 10 >= kinds.all * 8; };
    for (const std::string_view check : kMixChecks) {
        findings.AsExpected(check);
    }
    if (most(kinds.right)) {
        return;
    }
    const auto fault = [&](std::string_view check, std::string message, std::string found) {
        Finding& finding = findings.Fault(check, std::move(message));
        finding.expected = std::string("upper field on upper rows, lower field on lower rows");
        finding.found = std::move(found);
    };
    const bool isAnnouncedInterlaced = given.movie.fields == read::FieldOrder::UpperFirst ||
                                       given.movie.fields == read::FieldOrder::LowerFirst;
    if (most(kinds.swapped)) {
        fault(id::kFieldsSwapped, "the upper field is on the lower rows and the lower field on the upper rows",
              "exchanged");
    } else if (most(kinds.blended)) {
        fault(id::kFieldsBlended, "both fields are mixed into every row", "mixed");
    } else if (kinds.upperOnly > 0 && kinds.lowerOnly > 0 && most(kinds.upperOnly + kinds.lowerOnly)) {
        fault(id::kFieldsBobbed, "each picture is one field, stretched to all rows", "a field a picture");
    } else if (most(kinds.upperOnly) || most(kinds.lowerOnly)) {
        const std::string kept = kinds.upperOnly > kinds.lowerOnly ? "upper" : "lower";
        fault(isAnnouncedInterlaced ? id::kFieldsLost : id::kFieldsProgressive,
              isAnnouncedInterlaced
                  ? fmt::format("only the {} field is left, on all rows", kept)
                  : fmt::format("pictures are made progressive from the {} field alone", kept),
              fmt::format("the {} field alone", kept));
    } else {
        Finding& finding =
            findings.Undecided(id::kFieldsBlended, "the rows show neither the clip's fields nor a plain "
                                                   "mix of them");
        finding.found = std::string("unclear");
    }
}

/// What the numbers on each field's rows say.
void TellNumbers(const FieldsCase& given, Findings& findings)
{
    const bool isInterlaced = given.clip.fields != read::FieldOrder::Progressive;
    const std::string_view check = isInterlaced ? id::kFieldsShifted : id::kFieldsInterlaced;
    findings.NotVisible(isInterlaced ? id::kFieldsInterlaced : id::kFieldsShifted);
    if (given.alignment.method != AlignmentMethod::Number) {
        findings.NotVisible(check);
        return;
    }
    std::vector<std::int64_t> apart;
    std::int64_t lowerLater = 0;
    std::int64_t read = 0;
    for (std::size_t i = 0; i < given.alignment.pictures.size(); ++i) {
        const align::PictureRecord& picture = given.alignment.pictures[i];
        if (picture.fields[0] >= 0 && picture.fields[1] >= 0) {
            ++read;
            if (picture.fields[0] != picture.fields[1]) {
                apart.push_back(static_cast<std::int64_t>(i));
                lowerLater += picture.fields[1] > picture.fields[0] ? 1 : 0;
            }
        }
    }
    if (read == 0) {
        findings.NotVisible(check, "a larger picture, in which numbers can be read on the rows of one field");
        return;
    }
    if (apart.empty()) {
        findings.AsExpected(check);
        return;
    }
    const std::string_view later = lowerLater * 2 > static_cast<std::int64_t>(apart.size()) ? "lower" : "upper";
    Finding& finding = findings.Fault(
        check, fmt::format("in {} of {} pictures the {} field is of a later frame than the other", apart.size(),
                           read, later));
    finding.expected = std::string("both fields of one frame");
    finding.found = fmt::format("{} field later", later);
    finding.frames = SpansOf(apart);
}

} // namespace

FieldSampler::FieldSampler(const exporting::SignalSource& clip, const reference::ClipFacts& facts)
    : mPictures(clip, exporting::PictureLayout::Gbrapf32, {}, exporting::ChromaRows::Frame), mFacts(facts),
      mIsInterlaced(facts.hasPicture && facts.fields != read::FieldOrder::Progressive && facts.height > 8),
      mStride(std::max<std::int64_t>(2, facts.frameCount / kPairs))
{
}

void FieldSampler::Take(const read::Picture& picture, std::int64_t frame, const align::Placement& placement)
{
    const bool keepsRows = placement.orientation == align::Orientation::Upright &&
                           picture.height == mFacts.height && std::abs(placement.scaleY - 1) < 0.01;
    if (!keepsRows) {
        return;
    }
    const read::Picture clip = mPictures.Render(frame);
    const read::ComponentView& luma = picture.components[0];
    const double full = luma.isFloat ? 1.0 : std::exp2(luma.bits) - 1;
    const bool isRgb = picture.format.isRgb;
    Sample sample;
    // The lower part of the picture is free of numbers.
    const int first = mFacts.height / 2 / 2 * 2;
    const int last = (mFacts.height - 2) / 2 * 2;
    constexpr int kAcross = 16;
    int count = 0;
    for (int row = first; row + 1 < last; row += 2) {
        for (int i = 0; i < kAcross; ++i) {
            const int x = mFacts.width * (2 * i + 1) / (2 * kAcross);
            const int foundX = std::min(picture.width - 1, picture.width * (2 * i + 1) / (2 * kAcross));
            const auto lumaOf = [&](const read::Picture& from, int column, int y, double scale) {
                return (0.2126 * from.components[0].At(column, y) + 0.7152 * from.components[1].At(column, y) +
                        0.0722 * from.components[2].At(column, y)) /
                       scale;
            };
            sample.clipUpper += lumaOf(clip, x, row, 1);
            sample.clipLower += lumaOf(clip, x, row + 1, 1);
            sample.movieUpper += isRgb ? lumaOf(picture, foundX, row, full) : luma.At(foundX, row) / full;
            sample.movieLower +=
                isRgb ? lumaOf(picture, foundX, row + 1, full) : luma.At(foundX, row + 1) / full;
            ++count;
        }
    }
    if (count > 0) {
        for (double* sum : {&sample.clipUpper, &sample.clipLower, &sample.movieUpper, &sample.movieLower}) {
            *sum /= count;
        }
        mSamples.push_back(sample);
    }
}

std::optional<FieldMix> MixOf(const FieldSampler::Sample& sample, bool isFull) noexcept
{
    const double apart = sample.clipUpper - sample.clipLower;
    if (std::abs(apart) < kAlike) {
        return std::nullopt;
    }
    const auto share = [&](double code) {
        const double level = isFull ? code : (code * 255 - 16) / 219;
        return (level - sample.clipLower) / apart;
    };
    return FieldMix{share(sample.movieUpper), share(sample.movieLower)};
}

void JudgeFields(const FieldsCase& given, Findings& findings)
{
    const bool isFull = given.movie.format.isRgb || given.movie.fullRange.value_or(false);
    const Kinds kinds = CountKinds(given.sampler.Samples(), isFull);
    if (kinds.all == 0) {
        for (const std::string_view check : kMixChecks) {
            findings.NotVisible(check);
        }
    } else {
        TellMix(given, kinds, findings);
    }
    TellNumbers(given, findings);
}

} // namespace tessel::verify::judge
