#include "MoviePictures.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace tessel::view {
namespace {

constexpr std::size_t kMostKeptBytes = 256U << 20U;

std::size_t BytesOf(const verify::read::Picture& picture)
{
    std::size_t bytes = 0;
    for (const verify::read::ComponentView& component : picture.components) {
        bytes += static_cast<std::size_t>(component.width) * static_cast<std::size_t>(component.height) *
                 static_cast<std::size_t>(component.sampleBytes);
    }
    return bytes;
}

} // namespace

MoviePictures::MoviePictures(std::string name, const verify::read::ReadOptions& options)
    : mName(std::move(name)), mOptions(options), mMovie(std::make_unique<verify::read::Movie>(mName, mOptions))
{
}

std::optional<verify::read::Picture> MoviePictures::Get(std::int64_t index)
{
    const std::int64_t firstKept = mNext - static_cast<std::int64_t>(mKept.size());
    if (index < firstKept) {
        mMovie = std::make_unique<verify::read::Movie>(mName, mOptions);
        mKept.clear();
        mNext = 0;
        mIsAtEnd = false;
    }
    while (mNext <= index && !mIsAtEnd) {
        auto item = mMovie->Next();
        if (auto* const picture = std::get_if<verify::read::Picture>(&item)) {
            mMostKept = std::max<std::size_t>(2, kMostKeptBytes / std::max<std::size_t>(BytesOf(*picture), 1));
            mKept.push_back(std::move(*picture));
            ++mNext;
            if (mKept.size() > mMostKept) {
                mKept.pop_front();
            }
        } else {
            mIsAtEnd = std::holds_alternative<std::monostate>(item);
        }
    }
    const std::int64_t back = mNext - index;
    if (back < 1 || back > static_cast<std::int64_t>(mKept.size())) {
        return std::nullopt;
    }
    return mKept[mKept.size() - static_cast<std::size_t>(back)];
}

} // namespace tessel::view
