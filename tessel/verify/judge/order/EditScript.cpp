#include "EditScript.h"

#include "Cadence.h"

#include <tessel/verify/catalogue/Names.h>

#include <algorithm>
#include <optional>

namespace tessel::verify::judge {
namespace {

using Frames = std::vector<std::int64_t>;

constexpr std::size_t kShortestReversal = 3;

EditStep Step(std::string_view kind, std::size_t picture, std::size_t pictures, std::int64_t frame,
              std::int64_t frames)
{
    return {std::string(kind), static_cast<std::int64_t>(picture), static_cast<std::int64_t>(pictures), frame,
            frames};
}

/// Turns reversed runs back, and says which they were.
void TakeReversals(Frames& shown, EditScript& script)
{
    for (std::size_t start = 0; start < shown.size();) {
        std::size_t end = start + 1;
        while (end < shown.size() && shown[end] >= 0 && shown[end] == shown[end - 1] - 1) {
            ++end;
        }
        if (end - start >= kShortestReversal) {
            script.steps.push_back(Step(id::kOrderReversed, start, end - start, shown[end - 1],
                                        static_cast<std::int64_t>(end - start)));
            std::reverse(shown.begin() + static_cast<std::ptrdiff_t>(start),
                         shown.begin() + static_cast<std::ptrdiff_t>(end));
        }
        start = end;
    }
}

/// Whether frame `value` at place `at` fits between the neighbours there.
bool Fits(const Frames& shown, std::size_t at, std::int64_t value)
{
    const bool fitsLeft = at == 0 ? value == 0 : shown[at - 1] == value - 1;
    const bool fitsRight = at + 1 < shown.size() && shown[at + 1] == value + 1;
    return fitsLeft || fitsRight;
}

/// Puts exchanged pairs back, and says which they were.
void TakeSwaps(Frames& shown, std::int64_t frameCount, EditScript& script)
{
    std::vector<std::size_t> placeOf(static_cast<std::size_t>(std::max<std::int64_t>(frameCount, 0)),
                                     shown.size());
    for (std::size_t i = 0; i < shown.size(); ++i) {
        if (shown[i] >= 0) {
            placeOf[static_cast<std::size_t>(shown[i])] = i;
        }
    }
    for (std::size_t i = 0; i + 1 < shown.size(); ++i) {
        const std::int64_t before = i == 0 ? -1 : shown[i - 1];
        const std::int64_t wanted = before + 1;
        if ((i > 0 && before < 0) || shown[i] <= wanted || wanted >= frameCount) {
            continue;
        }
        const std::size_t other = placeOf[static_cast<std::size_t>(wanted)];
        if (other >= shown.size() || other <= i || placeOf[static_cast<std::size_t>(shown[i])] != i) {
            continue;
        }
        std::swap(shown[i], shown[other]);
        const bool isBetter = Fits(shown, i, shown[i]) && Fits(shown, other, shown[other]);
        if (isBetter) {
            placeOf[static_cast<std::size_t>(shown[i])] = i;
            placeOf[static_cast<std::size_t>(shown[other])] = other;
            script.steps.push_back(Step(id::kOrderSwapped, i, 1, shown[i], 1));
            script.steps.push_back(Step(id::kOrderSwapped, other, 1, shown[other], 1));
        } else {
            std::swap(shown[i], shown[other]);
        }
    }
}

/// Places of a longest strictly rising sequence among the known frames.
std::vector<bool> RisingPlaces(const Frames& shown)
{
    std::vector<std::size_t> tails; // place of the smallest end of a rising sequence of each length
    std::vector<std::size_t> before(shown.size(), shown.size());
    for (std::size_t i = 0; i < shown.size(); ++i) {
        if (shown[i] < 0) {
            continue;
        }
        const auto at =
            std::lower_bound(tails.begin(), tails.end(), shown[i],
                             [&](std::size_t place, std::int64_t frame) { return shown[place] < frame; });
        if (at != tails.begin()) {
            before[i] = *(at - 1);
        }
        if (at == tails.end()) {
            tails.push_back(i);
        } else if (shown[*at] != shown[i]) {
            *at = i;
        }
        // An equal frame keeps the earlier picture, so that the later one counts as the repetition.
    }
    std::vector<bool> rising(shown.size(), false);
    for (std::size_t i = tails.empty() ? shown.size() : tails.back(); i < shown.size(); i = before[i]) {
        rising[i] = true;
    }
    return rising;
}

/// Explains what lies between two pictures in their place.
class GapReader {
public:
    GapReader(const Frames& shown, EditScript& script) : mShown(shown), mScript(script) {}

    /// @param first,last  pictures between, `last` not included
    /// @param before,after  frames in place on both sides; -1 and the clip's length at the ends
    void Explain(std::size_t first, std::size_t last, std::int64_t before, std::int64_t after, bool isHead,
                 bool isTail)
    {
        std::int64_t lacking = after - before - 1;
        std::size_t place = first;
        // Repetitions of the frame before, then everything else.
        while (before >= 0 && place < last && mShown[place] == before) {
            ++place;
        }
        const auto repeats = static_cast<std::int64_t>(place - first);
        std::int64_t next = before + 1;
        if (repeats > 0) {
            const std::int64_t frozen = std::min(repeats, lacking);
            if (frozen > 0) {
                Add(id::kOrderFrozen, first, frozen, next, frozen);
                next += frozen;
                lacking -= frozen;
            }
            if (repeats > frozen) {
                Add(id::kOrderRepeated, first + static_cast<std::size_t>(frozen), repeats - frozen, before, 1);
            }
        }
        ExplainForeign(place, last, next, lacking, isHead);
        if (lacking > 0) {
            Add(isHead ? id::kOrderHead : isTail ? id::kOrderTail : id::kOrderMissing, last, 0, next, lacking);
        }
    }

private:
    void Add(std::string_view kind, std::size_t picture, std::int64_t pictures, std::int64_t frame,
             std::int64_t frames)
    {
        mScript.steps.push_back(Step(kind, picture, static_cast<std::size_t>(pictures), frame, frames));
    }

    /// Pictures without a number take the place of lacking frames; those too many were put in, as were frames
    /// that belong elsewhere.
    void ExplainForeign(std::size_t first, std::size_t last, std::int64_t& next, std::int64_t& lacking,
                        bool isHead)
    {
        for (std::size_t place = first; place < last;) {
            std::size_t end = place + 1;
            const bool isKnown = mShown[place] >= 0;
            while (end < last && (mShown[end] >= 0) == isKnown &&
                   (!isKnown || mShown[end] == mShown[end - 1] + 1)) {
                ++end;
            }
            auto count = static_cast<std::int64_t>(end - place);
            if (!isKnown && lacking > 0) {
                const std::int64_t hidden = std::min(count, lacking);
                // At the head the pictures nearest to the first known frame are the ones before it.
                const std::int64_t start = isHead ? next + lacking - hidden : next;
                Add(id::kOrderUnreadable, place + (isHead ? static_cast<std::size_t>(count - hidden) : 0),
                    hidden, start, hidden);
                lacking -= hidden;
                next += isHead ? 0 : hidden;
                count -= hidden;
                if (!isHead) {
                    place += static_cast<std::size_t>(hidden);
                }
            }
            if (count > 0) {
                Add(id::kOrderInserted, place, count, isKnown ? mShown[place] : -1, isKnown ? count : 0);
            }
            place = end;
        }
    }

    const Frames& mShown;
    EditScript& mScript;
};

} // namespace

EditScript MakeEditScript(const std::vector<std::int64_t>& given, std::int64_t frameCount,
                          double framesPerPicture)
{
    EditScript script;
    Frames shown = given;
    if (shown.empty()) {
        return script;
    }
    TakeReversals(shown, script);
    TakeSwaps(shown, frameCount, script);
    const std::optional<Cadence> cadence = FindCadence(shown, framesPerPicture);
    const bool hasCadence = cadence.has_value();
    if (cadence) {
        const auto [first, last] = cadence->frames;
        script.cadence = cadence->text;
        script.cadenceRatio = cadence->picturesPerFrame;
        script.steps.push_back(Step(id::kOrderCadence, 0, shown.size(), first, last - first + 1));
    }
    const std::vector<bool> rising = RisingPlaces(shown);
    GapReader gaps(shown, script);
    std::int64_t before = -1;
    std::size_t from = 0;
    for (std::size_t i = 0; i <= shown.size(); ++i) {
        if (i < shown.size() && !rising[i]) {
            continue;
        }
        const bool isHead = before < 0;
        const bool isTail = i == shown.size();
        const std::int64_t after = isTail ? frameCount : shown[i];
        // A pattern explains what is repeated and left out inside it.
        if (!hasCadence || isHead ||
            (isTail && static_cast<double>(after - before - 1) > 1.0 / script.cadenceRatio + 1)) {
            gaps.Explain(from, i, before, after, isHead && !isTail, isTail);
        }
        if (!isTail) {
            script.steps.push_back(Step("shown", i, 1, shown[i], 1));
            before = shown[i];
            from = i + 1;
        }
    }
    std::stable_sort(script.steps.begin(), script.steps.end(),
                     [](const EditStep& a, const EditStep& b) { return a.picture < b.picture; });
    // Neighbouring frames in their place are one step.
    std::vector<EditStep> joined;
    for (EditStep& step : script.steps) {
        EditStep* last = joined.empty() ? nullptr : &joined.back();
        if (last != nullptr && step.kind == "shown" && last->kind == "shown" &&
            step.picture == last->picture + last->pictures && step.frame == last->frame + last->frames) {
            ++last->pictures;
            ++last->frames;
        } else {
            joined.push_back(std::move(step));
        }
    }
    script.steps = std::move(joined);
    return script;
}

} // namespace tessel::verify::judge
