/// What the dispatcher reports of requests that threw.
#pragma once

#include "ImportRequest.h"

#include <string_view>

/// The report of each handler of the dispatcher's barrier: to the host's assertion report, and into an
/// attached debugger where the report asks for that. `typeName` is the importer type's run-time name; `what`
/// may be null. Threads: [thread-safe]. Never throws: without memory for the text, nothing is reported.
/// @{
void ReportBadAlloc(std::string_view typeName, const ImportRequest& request) noexcept;
void ReportException(std::string_view typeName, const ImportRequest& request, const char* what) noexcept;
void ReportUnknownException(std::string_view typeName, const ImportRequest& request) noexcept;
/// @}

/// The log line and then the report of an importer whose construction threw `what`, which may be null. The same
/// rules.
void ReportFailedCreation(std::string_view typeName, const char* what) noexcept;
