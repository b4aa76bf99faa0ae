#include "Report.h"

#include <fmt/format.h>

#include <iterator>

namespace tessel::verify {

std::string_view NameOf(Verdict verdict) noexcept
{
    switch (verdict) {
    case Verdict::AsExpected:
        return "as expected";
    case Verdict::NotAsExpected:
        return "not as expected";
    case Verdict::Undecided:
        break;
    }
    return "undecided";
}

std::string_view NameOf(AlignmentMethod method) noexcept
{
    switch (method) {
    case AlignmentMethod::Number:
        return "number";
    case AlignmentMethod::Color:
        return "color";
    case AlignmentMethod::Time:
        return "time";
    case AlignmentMethod::None:
        break;
    }
    return "none";
}

std::string TextOf(const Quantity& quantity)
{
    if (const double* number = std::get_if<double>(&quantity)) {
        return fmt::format("{:.6g}", *number);
    }
    if (const std::string* text = std::get_if<std::string>(&quantity)) {
        return *text;
    }
    return "-";
}

std::string NumbersOf(const Finding& finding)
{
    std::string text;
    if (finding.expected.index() != 0 || finding.found.index() != 0) {
        text = fmt::format("expected {}, found {}", TextOf(finding.expected), TextOf(finding.found));
        if (finding.uncertainty.value_or(0) > 0) {
            fmt::format_to(std::back_inserter(text), " ± {:.3g}", *finding.uncertainty);
        }
        if (std::holds_alternative<double>(finding.found) && finding.unit != "ratio" && !finding.unit.empty()) {
            text += " " + finding.unit;
        }
    }
    const auto add = [&](std::string_view noun, const std::vector<Span>& spans) {
        if (!spans.empty()) {
            const bool isOne = spans.size() == 1 && spans.front().first == spans.front().last;
            fmt::format_to(std::back_inserter(text), "{}{}{} {}", text.empty() ? "" : "; ", noun,
                           isOne ? "" : "s", TextOf(spans));
        }
    };
    add("frame", finding.frames);
    add("sample", finding.samples);
    return text;
}

std::vector<Span> SpansOf(const std::vector<std::int64_t>& numbers)
{
    std::vector<Span> spans;
    for (const std::int64_t number : numbers) {
        if (!spans.empty() && number <= spans.back().last + 1) {
            spans.back().last = number;
        } else {
            spans.push_back({number, number});
        }
    }
    return spans;
}

std::string TextOf(const std::vector<Span>& spans)
{
    constexpr std::size_t kMost = 6;
    std::string text;
    const std::size_t shown = spans.size() > kMost ? kMost - 1 : spans.size();
    for (std::size_t i = 0; i < shown; ++i) {
        const bool isLast = i + 1 == spans.size();
        text += i == 0 ? "" : isLast ? " and " : ", ";
        const Span& span = spans[i];
        text += span.first == span.last ? fmt::format("{}", span.first)
                : span.first + 1 == span.last
                    ? fmt::format("{}{}{}", span.first, spans.size() == 1 ? " and " : ", ", span.last)
                    : fmt::format("{} to {}", span.first, span.last);
    }
    if (shown < spans.size()) {
        fmt::format_to(std::back_inserter(text), " and {} more", spans.size() - shown);
    }
    return text;
}

} // namespace tessel::verify
