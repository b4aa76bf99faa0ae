#include "Findings.h"

#include <fmt/format.h>

#include <algorithm>
#include <cassert>
#include <cmath>
#include <iterator>
#include <variant>

namespace tessel::verify {
namespace {

std::size_t PlaceOf(std::string_view name) noexcept
{
    return static_cast<std::size_t>(std::find(id::kAll.begin(), id::kAll.end(), name) - id::kAll.begin());
}

/// Whether a cause accounts for how bad its consequence is. Samples that are cut to n bits keep a PSNR of 6.02
/// n + 4.8 dB (6.02 n + 10.8 where they are rounded): what is clearly lower has another cause, be it in one
/// picture.
bool AccountsFor(const Finding& cause, const Finding& consequence)
{
    const bool isDepth = cause.id == id::kContainerDepth || cause.id == id::kColorDepth;
    const double* const bits = std::get_if<double>(&cause.found);
    const double* const psnr = std::get_if<double>(&consequence.found);
    if (!isDepth || consequence.id != id::kFidelityPsnr || bits == nullptr || psnr == nullptr) {
        return true;
    }
    constexpr double kMargin = 6; // dB: a bit, for the roundings of conversions
    return *psnr >= 6.02 * *bits + 4.8 - kMargin;
}

/// Puts findings that follow from others inside those. A finding that several causes explain goes to the first.
/// @param because  further pairs of cause and consequence
std::vector<Finding> Nested(std::vector<Finding> flat,
                            const std::set<std::pair<std::string, std::string>>& because)
{
    const auto index = [&](std::string_view name) {
        return static_cast<std::size_t>(
            std::find_if(flat.begin(), flat.end(), [&](const Finding& f) { return f.id == name; }) -
            flat.begin());
    };
    std::vector<std::size_t> parent(flat.size(), flat.size());
    for (std::size_t cause = 0; cause < flat.size(); ++cause) {
        if (flat[cause].verdict != Verdict::NotAsExpected) {
            continue;
        }
        const std::span<const std::string_view> always = ConsequencesOf(flat[cause].id);
        std::vector<std::string_view> consequences(always.begin(), always.end());
        for (const auto& [reason, consequence] : because) {
            if (reason == flat[cause].id) {
                consequences.emplace_back(consequence);
            }
        }
        for (const std::string_view name : consequences) {
            const std::size_t child = index(name);
            // Two faults that each explain the other: the first one is the cause.
            bool isCircle = false;
            for (std::size_t above = cause; above < flat.size(); above = parent[above]) {
                isCircle = isCircle || above == child;
            }
            if (child < flat.size() && parent[child] == flat.size() && !isCircle &&
                AccountsFor(flat[cause], flat[child])) {
                parent[child] = cause;
            }
        }
    }
    // Consequences of consequences stand beside them, inside the first cause.
    std::vector<Finding> roots;
    std::vector<std::size_t> rootAt(flat.size(), 0);
    for (std::size_t i = 0; i < flat.size(); ++i) {
        if (parent[i] == flat.size()) {
            rootAt[i] = roots.size();
            roots.push_back(flat[i]);
        }
    }
    for (std::size_t i = 0; i < flat.size(); ++i) {
        std::size_t above = i;
        while (parent[above] != flat.size()) {
            above = parent[above];
        }
        if (above != i) {
            roots[rootAt[above]].consequences.push_back(std::move(flat[i]));
        }
    }
    return roots;
}

} // namespace

double Tolerances::Of(std::string_view name) const
{
    if (const auto found = chosen.find(name); found != chosen.end()) {
        return found->second;
    }
    const CheckInfo* check = FindCheck(name);
    const bool isSound = name.substr(0, 6) == "audio." || name.substr(0, 5) == "sync.";
    return check != nullptr && check->tolerance ? check->tolerance->For(isSound ? sound : picture) : 0.0;
}

Finding& Findings::Put(std::string_view name, Verdict verdict, std::string message)
{
    const CheckInfo* check = FindCheck(name);
    assert(check != nullptr);
    Finding finding;
    finding.id = name;
    finding.verdict = verdict;
    finding.severity = check->severity;
    finding.unit = check->unit;
    finding.message = std::move(message);
    Finding& known = mEntries[std::string(name)];
    const bool isWorse = verdict == Verdict::NotAsExpected ||
                         (verdict == Verdict::Undecided && known.verdict == Verdict::AsExpected);
    if (known.id.empty() || isWorse) {
        known = std::move(finding);
    }
    return known;
}

void Findings::AsExpected(std::string_view name)
{
    static_cast<void>(Put(name, Verdict::AsExpected, {}));
}

Finding& Findings::Fault(std::string_view name, std::string message)
{
    return Put(name, Verdict::NotAsExpected, std::move(message));
}

Finding& Findings::Undecided(std::string_view name, std::string message)
{
    return Put(name, Verdict::Undecided, std::move(message));
}

Finding* Findings::Judge(std::string_view name, const Measured& value, std::string message)
{
    const double off = std::abs(value.found - value.expected);
    const double tolerance = mTolerances.Of(name);
    if (off <= tolerance - value.uncertainty || off == 0) {
        AsExpected(name);
        return nullptr;
    }
    Finding& finding = off > tolerance + value.uncertainty
                           ? Fault(name, std::move(message))
                           : Undecided(name, message + ", within the uncertainty of the tolerance");
    finding.expected = value.expected;
    finding.found = value.found;
    finding.uncertainty = value.uncertainty;
    return &finding;
}

void Findings::NotVisible(std::string_view name, std::string use)
{
    const CheckInfo* check = FindCheck(name);
    assert(check != nullptr);
    mNotVisible.emplace(name, use.empty() ? std::string(check->use) : std::move(use));
}

void Findings::Because(std::string_view cause, std::string_view consequence)
{
    mBecause.emplace(cause, consequence);
}

void Findings::Note(std::string text)
{
    if (std::find(mNotes.begin(), mNotes.end(), text) == mNotes.end()) {
        mNotes.push_back(std::move(text));
    }
}

void Findings::KeepOnly(std::string_view name)
{
    for (auto entry = mEntries.begin(); entry != mEntries.end();) {
        entry = entry->first == name ? std::next(entry) : mEntries.erase(entry);
    }
    mNotVisible.clear();
}

bool Findings::HasFault(std::string_view name) const
{
    const auto found = mEntries.find(name);
    return found != mEntries.end() && found->second.verdict == Verdict::NotAsExpected;
}

void Findings::Conclude(const Choice& choice, Report& report) const
{
    const auto counts = [&](std::string_view name) {
        return choice.only.empty() || choice.only.count(name) != 0;
    };
    report.notes.insert(report.notes.end(), mNotes.begin(), mNotes.end());
    std::vector<Finding> flat;
    for (const CheckInfo& check : Catalogue()) {
        if (!counts(check.id)) {
            continue;
        }
        const auto entry = mEntries.find(check.id);
        const auto hidden = mNotVisible.find(check.id);
        if (entry != mEntries.end()) {
            if (entry->second.verdict == Verdict::AsExpected) {
                report.asExpected.emplace_back(check.id);
            } else {
                flat.push_back(entry->second);
            }
        } else if (hidden != mNotVisible.end()) {
            report.notVisible.push_back({hidden->first, hidden->second});
        } else {
            report.notChecked.emplace_back(check.id);
        }
    }
    for (Finding& finding : Nested(std::move(flat), mBecause)) {
        if (choice.accept.count(finding.id) != 0) {
            report.notes.push_back(fmt::format("accepted: {} ({})", finding.message, finding.id));
        } else {
            report.findings.push_back(std::move(finding));
        }
    }
    std::stable_sort(report.findings.begin(), report.findings.end(), [](const Finding& a, const Finding& b) {
        if (a.verdict != b.verdict) {
            return a.verdict == Verdict::NotAsExpected;
        }
        return a.severity != b.severity ? a.severity > b.severity : PlaceOf(a.id) < PlaceOf(b.id);
    });
    if (!report.findings.empty()) {
        report.verdict = report.findings.front().verdict;
    } else {
        report.verdict = report.asExpected.empty() ? Verdict::Undecided : Verdict::AsExpected;
    }
}

} // namespace tessel::verify
