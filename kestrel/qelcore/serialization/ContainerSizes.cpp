#include "ContainerSizes.h"

#include <utility>

namespace qelcore::serialization {
namespace {

/// The place of the quotation mark that ends the string which begins at `place`, or of the text's end.
std::size_t EndOfString(std::string_view text, std::size_t place) noexcept
{
    for (++place; place < text.size() && text[place] != '"'; ++place) {
        if (text[place] == '\\') {
            ++place; // what is escaped ends no string
        }
    }
    return place;
}

/// Walks through a text and counts.
class Counter {
public:
    Counter(std::string_view text, std::size_t deepestNesting) : mText(text), mDeepestNesting(deepestNesting) {}

    [[nodiscard]] ContainerSizes Count()
    {
        for (std::size_t place = 0; place < mText.size() && Step(place); ++place) {
        }
        // Where the text ends in an array, its last element is behind no comma and before no bracket.
        if (!mOpen.empty() && !mOpen.back().isObject && mIsValueDone) {
            ++mFound.sizes[mOpen.back().index];
        }
        return std::move(mFound);
    }

private:
    struct Open {
        std::uint32_t index; ///< in the sizes
        bool isObject;
    };

    /// Looks at the letter at `place`, which moves to a string's end. @return whether to go on.
    bool Step(std::size_t& place)
    {
        switch (const char letter = mText[place]; letter) {
        case '[':
        case '{':
            return Begin(place, letter == '{');
        case ':':
            return EndKey();
        case ',':
            return EndElement();
        case ']':
        case '}':
            return End();
        case '"':
            place = EndOfString(mText, place);
            mIsValueDone = true;
            return true;
        case ' ':
        case '\t':
        case '\r':
        case '\n':
            return true;
        default:
            mIsValueDone = true;
            return true;
        }
    }

    // Each returns false where the text is malformed or too deep.

    bool Begin(std::size_t place, bool isObject)
    {
        if (mIsValueDone) {
            return false;
        }
        if (mOpen.size() == mDeepestNesting) {
            mFound.tooDeep = place;
            return false;
        }
        mOpen.push_back({static_cast<std::uint32_t>(mFound.sizes.size()), isObject});
        mFound.sizes.push_back(0);
        return true;
    }

    /// Members are counted by their keys.
    bool EndKey()
    {
        if (!mIsValueDone || mOpen.empty() || !mOpen.back().isObject) {
            return false;
        }
        ++mFound.sizes[mOpen.back().index];
        mIsValueDone = false;
        return true;
    }

    bool EndElement()
    {
        if (!mIsValueDone || mOpen.empty()) {
            return false;
        }
        mFound.sizes[mOpen.back().index] += mOpen.back().isObject ? 0 : 1;
        mIsValueDone = false;
        return true;
    }

    bool End()
    {
        if (mOpen.empty()) {
            return false;
        }
        mFound.sizes[mOpen.back().index] += mIsValueDone && !mOpen.back().isObject ? 1 : 0;
        mOpen.pop_back();
        mIsValueDone = true;
        return true;
    }

    std::string_view mText;
    std::size_t mDeepestNesting;
    ContainerSizes mFound;
    std::vector<Open> mOpen;
    bool mIsValueDone = false; ///< behind a value or a key, where a comma, a colon or a bracket may follow
};

} // namespace

ContainerSizes FindContainerSizes(std::string_view text, std::size_t deepestNesting)
{
    return Counter(text, deepestNesting).Count();
}

} // namespace qelcore::serialization
