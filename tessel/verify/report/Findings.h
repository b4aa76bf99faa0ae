/// Where judges put what they found.
#pragma once

#include <tessel/verify/report/Report.h>

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessel::verify {

/// Which codec classes a movie has, and what a person said of tolerances.
struct Tolerances {
    CodecClass picture = CodecClass::Lossless;
    CodecClass sound = CodecClass::Lossless;
    std::map<std::string, double, std::less<>> chosen; ///< by id, instead of the default

    /// Of a check that has one. Ids that begin with "audio." or "sync." go by the sound's class.
    [[nodiscard]] double Of(std::string_view id) const;
};

/// A number that was measured, and how well.
struct Measured {
    double expected = 0;
    double found = 0;
    double uncertainty = 0;
};

/// Collects what judges say. Every check gets at most one verdict: the worse one stays. A check that nobody
/// mentions ends up as not checked, never as passed. Threads: one object, one thread at a time.
class Findings {
public:
    explicit Findings(Tolerances tolerances) : mTolerances(std::move(tolerances)) {}

    [[nodiscard]] const Tolerances& Limits() const noexcept { return mTolerances; }

    void AsExpected(std::string_view id);

    /// Severity and unit come from the catalogue. @return the finding, to be filled in further; valid until
    /// the next call. @{
    Finding& Fault(std::string_view id, std::string message);
    Finding& Undecided(std::string_view id, std::string message);
    /// @}

    /// Decides by |found - expected| against tolerance and uncertainty: a fault beyond tolerance +
    /// uncertainty, fine up to tolerance - uncertainty, else undecided.
    /// @param message  for a fault
    /// @return the finding, or null where all is as expected
    Finding* Judge(std::string_view id, const Measured& value, std::string message);

    /// @param use  instead of the catalogue's advice where that is too general
    void NotVisible(std::string_view id, std::string use = {});

    /// In this movie `consequence` follows from `cause`, though it does not of necessity. Says nothing where
    /// either is no fault.
    void Because(std::string_view cause, std::string_view consequence);

    void Note(std::string text);

    /// Forgets all verdicts but that of `id`: where it is a movie of something else, the others say nothing.
    void KeepOnly(std::string_view id);

    [[nodiscard]] bool HasFault(std::string_view id) const;

    /// For `Conclude`, which adds the checks without a verdict, orders the findings, and decides.
    struct Choice {
        std::set<std::string, std::less<>> only;   ///< ids that count; empty: all
        std::set<std::string, std::less<>> accept; ///< ids whose faults are fine
    };
    void Conclude(const Choice& choice, Report& report) const;

private:
    Finding& Put(std::string_view id, Verdict verdict, std::string message);

    Tolerances mTolerances;
    std::map<std::string, Finding, std::less<>> mEntries;
    std::map<std::string, std::string, std::less<>> mNotVisible;
    std::set<std::pair<std::string, std::string>> mBecause; ///< cause, consequence
    std::vector<std::string> mNotes;
};

} // namespace tessel::verify
