#include "TextCard.h"

#include "Letters.h"

#include <algorithm>

namespace tessel::thumbnail {
namespace {

constexpr Pixel kPaper{32, 36, 43};
constexpr Pixel kHeading{255, 140, 26};
constexpr Pixel kText{235, 235, 235};
constexpr int kMargin = 4;     // pixels
constexpr int kLargestDot = 8; // pixels; larger letters say no more
constexpr char kMore[] = "...";

void Draw(Image& image, const std::string& line, int left, int top, int dot, Pixel color)
{
    for (const char letter : line) {
        const auto rows = LetterRows(letter);
        for (int y = 0; y < kLetterHeight * dot; ++y) {
            for (int x = 0; x < kLetterWidth * dot; ++x) {
                const bool isSet =
                    ((rows[static_cast<std::size_t>(y / dot)] >> (kLetterWidth - 1 - x / dot)) & 1) != 0;
                if (isSet && left + x < image.width && top + y < image.height) {
                    image.At(left + x, top + y) = color;
                }
            }
        }
        left += kLetterAdvance * dot;
    }
}

} // namespace

std::vector<std::string> BreakLines(std::string_view text, int columns)
{
    const auto longest = static_cast<std::size_t>(std::max(columns, 1));
    std::vector<std::string> lines;
    while (!text.empty()) {
        std::size_t end = std::min(text.size(), longest);
        std::size_t next = end;
        if (end < text.size()) {
            if (const std::size_t space = text.substr(0, end + 1).rfind(' ');
                space != std::string_view::npos && space > 0) {
                end = space;
                next = space + 1;
            }
        }
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(next);
    }
    return lines;
}

Image TextCard(std::string_view heading, std::string_view text, int size)
{
    Image image(size, size, kPaper);
    const int room = size - 2 * kMargin;
    for (int dot = kLargestDot; dot >= 1; --dot) {
        const int columns = room / (kLetterAdvance * dot);
        const int rows = room / (kLineAdvance * dot);
        const std::vector<std::string> head = BreakLines(heading, columns);
        std::vector<std::string> body = BreakLines(text, columns);
        const auto bodyRoom = static_cast<std::ptrdiff_t>(rows) - std::ssize(head) - 1;
        if (dot > 1 && (columns < std::ssize(heading) || std::ssize(body) > bodyRoom)) {
            continue;
        }
        if (std::ssize(body) > bodyRoom) {
            body.resize(static_cast<std::size_t>(std::max<std::ptrdiff_t>(bodyRoom, 0)));
            if (!body.empty()) {
                std::string& last = body.back();
                last.resize(std::min(last.size(), static_cast<std::size_t>(std::max(columns - 3, 0))));
                last += kMore;
            }
        }
        int top = kMargin;
        for (const std::string& line : head) {
            Draw(image, line, kMargin, top, dot, kHeading);
            top += kLineAdvance * dot;
        }
        top += kLineAdvance * dot;
        for (const std::string& line : body) {
            Draw(image, line, kMargin, top, dot, kText);
            top += kLineAdvance * dot;
        }
        break;
    }
    return image;
}

} // namespace tessel::thumbnail
