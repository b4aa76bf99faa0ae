#include "NearMisses.h"

#include <kestrel/qelcore/text/LetterCase.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace tessel::typed {
namespace {

using qelcore::text::LowerCase;

/// Insertions, deletions, replacements and swaps of neighbours that turn one word into the other.
std::size_t Distance(std::string_view from, std::string_view to)
{
    std::array<std::vector<std::size_t>, 3> rows; // two back, the last, this one
    rows.fill(std::vector<std::size_t>(to.size() + 1));
    for (std::size_t column = 0; column <= to.size(); ++column) {
        rows[1][column] = column;
    }
    for (std::size_t i = 1; i <= from.size(); ++i) {
        rows[2][0] = i;
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const std::size_t replaced = rows[1][j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
            rows[2][j] = std::min({rows[1][j] + 1, rows[2][j - 1] + 1, replaced});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1]) {
                rows[2][j] = std::min(rows[2][j], rows[0][j - 2] + 1);
            }
        }
        std::rotate(rows.begin(), rows.begin() + 1, rows.end());
    }
    return rows[1][to.size()];
}

} // namespace

std::string NearestTo(std::string_view word, std::span<const std::string> candidates)
{
    constexpr std::size_t kShortestStart = 2;
    constexpr std::size_t kLongest = 100; // what is longer was no slip of a finger
    const std::string typed = LowerCase(word.substr(0, kLongest));
    // Letters that are missing at the end are likelier than wrong ones: "rec601" is nearer to "rec601-pal" than
    // to "rec709".
    if (typed.size() >= kShortestStart) {
        const auto begun =
            std::find_if(candidates.begin(), candidates.end(),
                         [&typed](const std::string& name) { return LowerCase(name).starts_with(typed); });
        if (begun != candidates.end()) {
            return *begun;
        }
    }
    const std::size_t most = std::max<std::size_t>(1, typed.size() / 3);
    std::string nearest;
    std::size_t least = most + 1;
    for (const std::string& candidate : candidates) {
        const std::string name = LowerCase(candidate);
        const std::size_t distance = Distance(typed, name);
        // Of single letters everything is one step away.
        if (distance < least && distance < name.size() && distance < typed.size()) {
            least = distance;
            nearest = candidate;
        }
    }
    return nearest;
}

std::string DidYouMean(std::string_view word, std::span<const std::string> candidates)
{
    const std::string nearest = NearestTo(word, candidates);
    return nearest.empty() ? nearest : "; did you mean '" + nearest + "'?";
}

} // namespace tessel::typed
