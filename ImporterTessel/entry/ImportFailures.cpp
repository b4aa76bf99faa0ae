#include "ImportFailures.h"

#include <kestrel/qelcore/debug/Assert.h>
#include <kestrel/qelcore/logging/Log.h>
#include <kestrel/qelcore/text/UTF8StringStream.h>

#include <string>

using qelcore::oUTF8StringStream;

namespace {

constexpr std::string_view kLogCategory = "plugin.KsImportModule";

/// The host's module template: its file, and the lines that its reports name.
constexpr std::string_view kModuleFile = "Importers\\Inc\\KsImportModule";
enum ReportLine : int { kCreationLine = 315, kBadAllocLine = 1320, kExceptionLine = 1329, kUnknownLine = 1337 };

void Report(std::string_view typeName, std::string_view function, ReportLine line, std::string_view message)
{
    const std::string fullName = "KsImportModule<" + std::string(typeName) + ">::" + std::string(function);
    const bool breakWanted = qelcore::debug::DoSimpleAssert(kModuleFile, line, fullName, "false", message);
    if (breakWanted && qelcore::debug::IsDebuggerAttached()) {
        qelcore::debug::BreakIntoDebugger();
    }
}

/// Reports a request that threw. `happened` says what, `textMark` and `what` are the exception's text with what
/// leads to it.
void ReportRequest(std::string_view typeName, const ImportRequest& request, ReportLine line,
                   std::string_view happened, std::string_view textMark = {},
                   const char* what = nullptr) noexcept
{
    try {
        oUTF8StringStream text;
        text << "plugin.KsImportModule "
             << " importmod"
             << ":"
             << "0x" << oUTF8StringStream::Base::Hexadecimal << request.currentImporter << happened
             << oUTF8StringStream::Base::Decimal << " selector"
             << ":" << request.selector << textMark << what;
        Report(typeName, "ImportEntry", line, text.Str());
    } catch (...) {
        // The request is answered all the same: a report that cannot be composed must not stop that.
        return;
    }
}

} // namespace

void ReportBadAlloc(std::string_view typeName, const ImportRequest& request) noexcept
{
    ReportRequest(typeName, request, kBadAllocLine, " Threw a bad_alloc during ");
}

void ReportException(std::string_view typeName, const ImportRequest& request, const char* what) noexcept
{
    ReportRequest(typeName, request, kExceptionLine, " Threw an EXCEPTION during ", ". what() returned ", what);
}

void ReportUnknownException(std::string_view typeName, const ImportRequest& request) noexcept
{
    ReportRequest(typeName, request, kUnknownLine, " Threw an unknown EXCEPTION during ");
}

void ReportFailedCreation(std::string_view typeName, const char* what) noexcept
{
    try {
        oUTF8StringStream text;
        // "occured" is how the host spells it, and what its logs are searched for.
        text << "<plugin.KsImportModule> An exception occured creating ImportModule " << typeName
             << " what() returned " << what;
        qelcore::logging::Log(kLogCategory, text.Str());
        Report(typeName, "CreateImportModuleInstance", kCreationLine, text.Str());
    } catch (...) {
        return;
    }
}
