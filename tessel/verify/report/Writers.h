/// Reports as people and programs take them.
#pragma once

#include "Report.h"

#include <string>

namespace tessel::verify {

enum class TextColors { Plain, Terminal };

/// The text that `tessel verify` prints: the verdict's line, then a line for each subject. Ends with a line
/// feed.
[[nodiscard]] std::string ReportAsText(const Report& report, TextColors colors);

/// A JSON document by `ReportSchema`.
[[nodiscard]] std::string ReportAsJson(const Report& report);

/// The JSON schema (draft 2020-12) of `ReportAsJson`.
[[nodiscard]] std::string ReportSchema();

/// JUnit's XML: a case per check. Not as expected is a failure, undecided an error, not visible and not checked
/// are skipped with their reason.
[[nodiscard]] std::string ReportAsJUnit(const Report& report);

/// One page that needs nothing else: findings, a timeline of the pictures, and the telling frames as expected,
/// actual and difference.
[[nodiscard]] std::string ReportAsHtml(const Report& report);

} // namespace tessel::verify
