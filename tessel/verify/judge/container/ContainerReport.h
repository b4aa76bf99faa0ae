/// How checks of a container report: one wording for what is otherwise, and for what a movie cannot say.
#pragma once

#include "ContainerJudge.h"

#include <string>
#include <string_view>

namespace tessel::verify::judge {

/// What a group of checks works with and how it reports. Threads: [any-thread].
class ContainerReport {
public:
    ContainerReport(const ContainerCase& given, Findings& findings)
        : mClip(given.clip), mMovie(given.movie), mGiven(given), mFindings(findings)
    {
    }

protected:
    /// A fault with both values; a number that the container states is exact.
    void Fault(std::string_view id, std::string message, Quantity expected, Quantity found);

    /// "WHAT is FOUND, not EXPECTED", or as expected.
    void FaultUnless(bool isFine, std::string_view id, const std::string& what, const std::string& expected,
                     const std::string& found);

    /// What the movie cannot say: a note, or a fault for the strict.
    /// @param what  follows "cannot"
    void Unsayable(std::string_view id, const std::string& what, const std::string& expected);

    const reference::ClipFacts& mClip;
    const read::MovieFacts& mMovie;
    const ContainerCase& mGiven;
    Findings& mFindings;
};

} // namespace tessel::verify::judge
