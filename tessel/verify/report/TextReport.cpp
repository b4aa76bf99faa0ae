#include "Writers.h"

#include <fmt/format.h>

#include <array>
#include <iterator>

namespace tessel::verify {
namespace {

struct Subject {
    std::string_view prefix; ///< of ids
    std::string_view name;
};

constexpr std::array kSubjects{
    Subject{"signal.", "signal"},     Subject{"container.", "container"}, Subject{"order.", "pictures"},
    Subject{"geometry.", "geometry"}, Subject{"fields.", "fields"},       Subject{"color.", "colours"},
    Subject{"fidelity.", "fidelity"}, Subject{"audio.", "sound"},         Subject{"sync.", "sync"}};

bool IsAbout(std::string_view id, const Subject& subject) noexcept
{
    return id.substr(0, subject.prefix.size()) == subject.prefix;
}

/// Ids grouped by what stands before the dot, as in "container.fields, .range".
std::string ShortList(const std::vector<std::string>& ids)
{
    std::string text;
    std::string_view lastHead;
    for (const std::string& id : ids) {
        const std::string_view head = std::string_view(id).substr(0, id.find('.'));
        text += text.empty() ? "" : ", ";
        text += head == lastHead ? id.substr(head.size()) : id;
        lastHead = head;
    }
    return text;
}

class Painter {
public:
    explicit Painter(TextColors colors) : mIsOn(colors == TextColors::Terminal) {}

    [[nodiscard]] std::string Paint(std::string_view text, Verdict verdict) const
    {
        const int color = verdict == Verdict::AsExpected ? 32 : verdict == Verdict::Undecided ? 33 : 31;
        return mIsOn ? fmt::format("\x1b[{}m{}\x1b[0m", color, text) : std::string(text);
    }
    [[nodiscard]] std::string Dim(std::string_view text) const
    {
        return mIsOn ? fmt::format("\x1b[2m{}\x1b[0m", text) : std::string(text);
    }

private:
    bool mIsOn;
};

void AddLine(std::string& text, std::string_view name, std::string_view what)
{
    fmt::format_to(std::back_inserter(text), "  {:<10}{}\n", name, what);
}

std::string LineOf(const Finding& finding, const Painter& painter)
{
    std::string line = finding.message;
    if (finding.verdict == Verdict::Undecided) {
        line = "undecided: " + line;
    }
    std::vector<std::string> follow;
    for (const Finding& consequence : finding.consequences) {
        follow.push_back(consequence.id);
    }
    line = painter.Paint(line, finding.verdict) + "  " + painter.Dim(finding.id);
    return follow.empty() ? line : line + painter.Dim(fmt::format(" (and so {})", ShortList(follow)));
}

} // namespace

std::string ReportAsText(const Report& report, TextColors colors)
{
    const Painter painter(colors);
    std::string text;
    const std::string_view verdict = report.verdict == Verdict::AsExpected      ? "as"
                                     : report.verdict == Verdict::NotAsExpected ? "not as"
                                                                                : "undecided about";
    fmt::format_to(std::back_inserter(text), "{}: {}\n", report.movie,
                   painter.Paint(fmt::format("{} {}", verdict, report.clip), report.verdict));
    for (const Subject& subject : kSubjects) {
        std::string_view name = subject.name;
        for (const Finding& finding : report.findings) {
            if (IsAbout(finding.id, subject)) {
                AddLine(text, name, LineOf(finding, painter));
                name = "";
            }
        }
    }
    for (const std::string& note : report.notes) {
        AddLine(text, "note", note);
    }
    std::vector<std::string> hidden;
    std::string lastUse;
    const auto flush = [&] {
        if (!hidden.empty()) {
            AddLine(text, "not seen", painter.Dim(fmt::format("{} (use {})", ShortList(hidden), lastUse)));
            hidden.clear();
        }
    };
    for (const NotVisible& check : report.notVisible) {
        if (check.use != lastUse) {
            flush();
            lastUse = check.use;
        }
        hidden.push_back(check.id);
    }
    flush();
    if (!report.notChecked.empty()) {
        AddLine(text, "unchecked", painter.Dim(ShortList(report.notChecked)));
    }
    if (report.alignment.method != AlignmentMethod::None) {
        AddLine(text, "compared",
                fmt::format("{} of {} pictures with {} frames, by {}", report.alignment.matched,
                            report.alignment.pictures, report.alignment.frames,
                            NameOf(report.alignment.method)));
    }
    return text;
}

} // namespace tessel::verify
