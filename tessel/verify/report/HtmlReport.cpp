#include "HtmlWaveforms.h"
#include "Markup.h"
#include "Writers.h"

#include <kestrel/qelcore/serialization/Json.h>

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <span>

namespace tessel::verify {
namespace {

void Put(std::vector<std::uint8_t>& bytes, std::uint32_t number, int count)
{
    for (int i = 0; i < count; ++i) {
        bytes.push_back(static_cast<std::uint8_t>(number >> (8 * i)));
    }
}

/// The picture inside the page, as a Windows bitmap: every browser shows it, and it needs no compressor.
std::string ImageOf(const std::vector<std::uint8_t>& rgb, int width, int height, std::string_view title)
{
    const auto rowBytes = (static_cast<std::uint32_t>(width) * 3 + 3) / 4 * 4;
    const std::uint32_t size = rowBytes * static_cast<std::uint32_t>(height);
    std::vector<std::uint8_t> bytes{'B', 'M'};
    Put(bytes, 54 + size, 4);
    Put(bytes, 0, 4);
    Put(bytes, 54, 4); // where the pixels begin
    Put(bytes, 40, 4); // length of the second header
    Put(bytes, static_cast<std::uint32_t>(width), 4);
    Put(bytes, static_cast<std::uint32_t>(height), 4);
    Put(bytes, 1, 2);  // planes
    Put(bytes, 24, 2); // bits per pixel
    Put(bytes, 0, 4);  // not compressed
    Put(bytes, size, 4);
    Put(bytes, 2835, 4); // pixels per metre
    Put(bytes, 2835, 4);
    Put(bytes, 0, 4);
    Put(bytes, 0, 4);
    for (int y = height - 1; y >= 0; --y) {
        for (int x = 0; x < width; ++x) {
            const auto at =
                (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) *
                3;
            bytes.insert(bytes.end(), {rgb[at + 2], rgb[at + 1], rgb[at]});
        }
        bytes.resize(bytes.size() + rowBytes - static_cast<std::size_t>(width) * 3);
    }
    return fmt::format(
        "<figure><img alt=\"{0}\" width=\"{1}\" height=\"{2}\" src=\"data:image/bmp;base64,{3}\">"
        "<figcaption>{0}</figcaption></figure>\n",
        Escaped(title), width, height,
        qelcore::serialization::EncodeBinaryDataToUTF8String(std::span<const std::uint8_t>(bytes)));
}

std::string FindingAsHtml(const Finding& finding)
{
    const bool isFault = finding.verdict == Verdict::NotAsExpected;
    const std::string numbers = NumbersOf(finding);
    std::string text =
        fmt::format("<li class=\"{}\"><b>{}{}</b> <code>{}</code> <small>{}{}{}</small>",
                    isFault ? "bad" : "unsure", isFault ? "" : "undecided: ", Escaped(finding.message),
                    finding.id, NameOf(finding.severity), numbers.empty() ? "" : "; ", Escaped(numbers));
    if (!finding.consequences.empty()) {
        text += "<ul>\n";
        for (const Finding& consequence : finding.consequences) {
            text += FindingAsHtml(consequence);
        }
        text += "</ul>";
    }
    return text + "</li>\n";
}

/// The movie from left to right: what is in its place, and each step that is not. Colours have names below it.
std::string TimelineOf(const AlignmentReport& alignment)
{
    if (alignment.pictures == 0 || alignment.steps.empty()) {
        return {};
    }
    constexpr double kWidth = 960;
    constexpr const char* kInPlace = "#4a8";
    constexpr const char* kMissing = "#c33";
    constexpr const char* kOutOfPlace = "#d93";
    std::string svg = fmt::format("<h2>Pictures</h2>\n<svg viewBox=\"0 0 {0} 60\" width=\"{0}\" role=\"img\" "
                                  "aria-label=\"timeline of the movie's pictures\">\n",
                                  kWidth);
    const double unit = kWidth / static_cast<double>(alignment.pictures);
    for (const EditStep& step : alignment.steps) {
        const double width = step.pictures > 0 ? unit * static_cast<double>(step.pictures) : 3;
        const std::string_view kind = step.kind;
        const char* color = kind == "shown" ? kInPlace : step.pictures == 0 ? kMissing : kOutOfPlace;
        fmt::format_to(
            std::back_inserter(svg),
            "<rect x=\"{:.2f}\" y=\"{}\" width=\"{:.2f}\" height=\"{}\" fill=\"{}\"><title>{}: picture {}, "
            "frame {}, {} frames</title></rect>\n",
            std::min(unit * static_cast<double>(step.picture), kWidth - width), kind == "shown" ? 10 : 4, width,
            kind == "shown" ? 20 : 32, color, kind, step.picture, step.frame, step.frames);
    }
    fmt::format_to(std::back_inserter(svg),
                   "<text x=\"0\" y=\"54\">picture 0</text><text x=\"{}\" y=\"54\" "
                   "text-anchor=\"end\">picture {}</text></svg>\n",
                   kWidth, alignment.pictures - 1);
    return svg + fmt::format("<p><small><span style=\"color:{}\">&#9632;</span> in place "
                             "<span style=\"color:{}\">&#9632;</span> not in place "
                             "<span style=\"color:{}\">&#9632;</span> frames are missing here</small></p>\n",
                             kInPlace, kOutOfPlace, kMissing);
}

std::string ListOf(std::string_view title, const std::vector<std::string>& lines)
{
    if (lines.empty()) {
        return {};
    }
    std::string text = fmt::format("<h2>{}</h2>\n<ul>\n", title);
    for (const std::string& line : lines) {
        fmt::format_to(std::back_inserter(text), "<li>{}</li>\n", Escaped(line));
    }
    return text + "</ul>\n";
}

/// Names of checks, one behind the other: a report has some fifty of them.
std::string NamesOf(std::string_view title, const std::vector<std::string>& ids)
{
    if (ids.empty()) {
        return {};
    }
    std::string text = fmt::format("<h2>{}</h2>\n<p class=\"names\">", title);
    for (const std::string& id : ids) {
        fmt::format_to(std::back_inserter(text), "<code>{}</code>\n", id);
    }
    return text + "</p>\n";
}

std::string HeadOf(const Report& report)
{
    std::string text = fmt::format("<h1>{}</h1>\n<p>Compared with <b>{}</b>: <b class=\"{}\">{}</b>.",
                                   Escaped(report.movie), Escaped(report.clip),
                                   report.verdict == Verdict::AsExpected      ? "fine"
                                   : report.verdict == Verdict::NotAsExpected ? "bad"
                                                                              : "unsure",
                                   NameOf(report.verdict));
    const AlignmentReport& alignment = report.alignment;
    if (alignment.method != AlignmentMethod::None) {
        fmt::format_to(std::back_inserter(text), " {} of {} pictures were matched with {} frames, by {}.",
                       alignment.matched, alignment.pictures, alignment.frames, NameOf(alignment.method));
    }
    return text + "</p>\n";
}

constexpr std::string_view kStyle =
    "body{font:15px/1.45 system-ui,sans-serif;max-width:1000px;margin:2em auto;padding:0 1em;color:#222;"
    "background:#fff}h1{overflow-wrap:anywhere}figure{margin:0 0 1em}"
    ".frame{display:flex;flex-wrap:wrap;gap:0 16px}img{image-rendering:pixelated}"
    "b.fine{color:#274}b.bad{color:#a11}b.unsure{color:#850}.names{line-height:1.9}"
    "svg{max-width:100%}svg text{font-size:13px;fill:#555}figcaption,small{color:#555}.bad>b{color:#a11}"
    ".unsure>b{color:#850}code{background:#eee;padding:0 .3em}";

} // namespace

std::string ReportAsHtml(const Report& report)
{
    std::string page = fmt::format("<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
                                   "<title>{0}: {1}</title>\n<style>{2}</style></head><body>\n"
                                   "{3}",
                                   Escaped(report.movie), NameOf(report.verdict), kStyle, HeadOf(report));
    if (!report.findings.empty()) {
        page += "<h2>Findings</h2>\n<ul>\n";
        for (const Finding& finding : report.findings) {
            page += FindingAsHtml(finding);
        }
        page += "</ul>\n";
    }
    page += TimelineOf(report.alignment);
    for (const TellingFrame& telling : report.telling) {
        fmt::format_to(std::back_inserter(page), "<h2>Frame {} (picture {})</h2>\n<div class=\"frame\">\n",
                       telling.frame, telling.picture);
        page += ImageOf(telling.expected, telling.width, telling.height, "expected");
        page += ImageOf(telling.actual, telling.width, telling.height, "actual");
        page += ImageOf(telling.difference, telling.width, telling.height, "difference, four times enlarged");
        page += "</div>\n";
    }
    page += WaveformsAsHtml(report.sounds);
    page += ListOf("Notes", report.notes);
    page += NamesOf("As expected", report.asExpected);
    std::vector<std::string> hidden;
    for (const NotVisible& check : report.notVisible) {
        hidden.push_back(fmt::format("{}: use {}", check.id, check.use));
    }
    page += ListOf("Not visible with this clip and movie", hidden);
    page += NamesOf("Not checked", report.notChecked);
    return page + "</body></html>\n";
}

} // namespace tessel::verify
