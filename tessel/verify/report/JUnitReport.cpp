#include "Markup.h"
#include "Writers.h"

#include <fmt/format.h>

#include <iterator>

namespace tessel::verify {
namespace {

class Suite {
public:
    void Passed(std::string_view id) { Add(id, ""); }
    void Skipped(std::string_view id, std::string_view reason)
    {
        ++mSkipped;
        Add(id, fmt::format(R"(<skipped message="{}"/>)", Escaped(reason)));
    }
    void Found(const Finding& finding)
    {
        const bool isFailure = finding.verdict == Verdict::NotAsExpected;
        ++(isFailure ? mFailures : mErrors);
        std::string details = NumbersOf(finding);
        for (const Finding& consequence : finding.consequences) {
            fmt::format_to(std::back_inserter(details), "\nand so: {} ({})", consequence.message,
                           consequence.id);
        }
        const std::string_view tag = isFailure ? "failure" : "error";
        Add(finding.id, fmt::format(R"(<{0} type="{1}" message="{2}">{3}</{0}>)", tag, NameOf(finding.severity),
                                    Escaped(finding.message), Escaped(details)));
        for (const Finding& consequence : finding.consequences) {
            Skipped(consequence.id, "follows from " + finding.id);
        }
    }
    [[nodiscard]] std::string Write(std::string_view movie) const
    {
        return fmt::format("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                           "<testsuites>\n"
                           "<testsuite name=\"tessel verify {}\" tests=\"{}\" failures=\"{}\" errors=\"{}\" "
                           "skipped=\"{}\">\n{}</testsuite>\n</testsuites>\n",
                           Escaped(movie), mTests, mFailures, mErrors, mSkipped, mCases);
    }

private:
    void Add(std::string_view id, std::string_view result)
    {
        ++mTests;
        const std::string_view subject = id.substr(0, id.find('.'));
        const std::string name = fmt::format(R"(<testcase classname="tessel.{}" name="{}")", subject, id);
        mCases += result.empty() ? name + "/>\n" : fmt::format("{}>{}</testcase>\n", name, result);
    }

    int mTests = 0;
    int mFailures = 0;
    int mErrors = 0;
    int mSkipped = 0;
    std::string mCases;
};

} // namespace

std::string ReportAsJUnit(const Report& report)
{
    Suite suite;
    for (const Finding& finding : report.findings) {
        suite.Found(finding);
    }
    for (const std::string& id : report.asExpected) {
        suite.Passed(id);
    }
    for (const NotVisible& check : report.notVisible) {
        suite.Skipped(check.id, "not visible with this clip and movie: use " + check.use);
    }
    for (const std::string& id : report.notChecked) {
        suite.Skipped(id, "not checked");
    }
    return suite.Write(report.movie);
}

} // namespace tessel::verify
