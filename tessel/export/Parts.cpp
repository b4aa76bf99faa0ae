#include "Parts.h"

#include <tessel/export/ExportError.h>
#include <tessel/export/plan/PlanText.h>

#include <fmt/format.h>

#include <charconv>
#include <system_error>

namespace tessel::exporting {
namespace {

/// Takes texts apart from the front. Every function returns whether it found what it takes.
class Cursor {
public:
    explicit Cursor(std::string_view text) noexcept : mRest(text) {}

    [[nodiscard]] bool Take(std::string_view word) noexcept
    {
        if (!mRest.starts_with(word)) {
            return false;
        }
        mRest.remove_prefix(word.size());
        return true;
    }

    /// Digits alone: no sign, no blank.
    [[nodiscard]] bool TakeNumber(std::int64_t& number) noexcept
    {
        if (mRest.empty() || mRest.front() < '0' || mRest.front() > '9') {
            return false;
        }
        const auto [stop, error] = std::from_chars(mRest.data(), mRest.data() + mRest.size(), number);
        mRest.remove_prefix(static_cast<std::size_t>(stop - mRest.data()));
        return error == std::errc();
    }

    [[nodiscard]] bool TakePart(PartNumber& part) noexcept
    {
        return TakeNumber(part.number) && Take("/") && TakeNumber(part.count) && part.number >= 1 &&
               part.number <= part.count && part.count <= PartNumber::kMost;
    }

    [[nodiscard]] bool TakeUntil(char end, std::string& text)
    {
        const std::size_t length = mRest.find(end);
        if (length == std::string_view::npos) {
            return false;
        }
        text = mRest.substr(0, length);
        mRest.remove_prefix(length);
        return true;
    }

    [[nodiscard]] std::string_view Rest() const noexcept { return mRest; }

private:
    std::string_view mRest;
};

/// Where part `number` ends: floor(number * F / N), without the product of two large numbers.
std::int64_t EndOfPart(std::int64_t frames, std::int64_t number, std::int64_t count) noexcept
{
    return number * (frames / count) + number * (frames % count) / count;
}

} // namespace

std::string PartNumber::Text() const
{
    return fmt::format("{}/{}", number, count);
}

std::optional<PartNumber> PartNumber::Parse(std::string_view text)
{
    PartNumber part;
    Cursor cursor(text);
    return cursor.TakePart(part) && cursor.Rest().empty() ? std::optional(part) : std::nullopt;
}

FrameRange FramesOfPart(const FrameRange& whole, const PartNumber& part)
{
    if (part.count > whole.count) {
        throw RequestError(fmt::format("{} {} cannot be divided into {} parts: use at most {}", whole.count,
                                       whole.count == 1 ? "frame" : "frames", part.count, whole.count));
    }
    const std::int64_t begin = EndOfPart(whole.count, part.number - 1, part.count);
    return {whole.first + begin, EndOfPart(whole.count, part.number, part.count) - begin};
}

std::string PartLabel::Text() const
{
    return fmt::format("tessel part {}; frames {}-{}; document {}; {}", part.Text(), frames.first,
                       frames.Last(), document, picture);
}

std::optional<PartLabel> PartLabel::Parse(std::string_view text)
{
    PartLabel label;
    std::int64_t last = 0;
    Cursor cursor(text);
    if (!cursor.Take("tessel part ") || !cursor.TakePart(label.part) || !cursor.Take("; frames ") ||
        !cursor.TakeNumber(label.frames.first) || !cursor.Take("-") || !cursor.TakeNumber(last) ||
        !cursor.Take("; document ") || !cursor.TakeUntil(';', label.document) || !cursor.Take("; ") ||
        last < label.frames.first) {
        return std::nullopt;
    }
    label.frames.count = last - label.frames.first + 1;
    label.picture = cursor.Rest();
    return label;
}

std::string CodedPictureText(const VideoPlan& plan)
{
    return fmt::format("{}, {}{}", DescribeVideo(plan), DescribeTags(plan),
                       plan.quality ? fmt::format(", quality {}", *plan.quality) : "");
}

void RequireJoinable(const OutputPlan& plan)
{
    if (!plan.video->codec->refersToOthers) {
        return;
    }
    std::string others;
    for (const VideoCodec& codec : AllVideoCodecs()) {
        if (!codec.refersToOthers && codec.GoesInto(*plan.container)) {
            others += (others.empty() ? "" : ", ") + std::string(codec.name);
        }
    }
    throw RequestError(
        fmt::format("{} codes pictures from their neighbours, so its parts do not join without a "
                    "seam: render it in one piece, or use a codec that codes each by itself: {}",
                    plan.video->codec->name, others));
}

} // namespace tessel::exporting
