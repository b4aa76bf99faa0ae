#include "Reports.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <sstream>

namespace conformance {

namespace {

const char* SuiteName(Suite suite)
{
    return suite == Suite::Tessel ? "tessel" : "general";
}

const char* VerdictName(Verdict verdict)
{
    constexpr std::array<const char*, 3> kNames = {"passed", "failed", "skipped"};
    return kNames.at(static_cast<std::size_t>(verdict));
}

std::size_t Count(const std::vector<Result>& results, Verdict verdict)
{
    return static_cast<std::size_t>(
        std::count_if(results.begin(), results.end(),
                      [verdict](const Result& result) { return result.outcome.verdict == verdict; }));
}

/// Bytes of the UTF-8 character at `at`, or 0 where none begins there.
std::size_t CharacterLength(const std::string& text, std::size_t at)
{
    const auto byte = [&](std::size_t index) {
        return index < text.size() ? static_cast<unsigned char>(text[index]) : 0U;
    };
    const unsigned first = byte(at);
    const std::size_t length = first < 0x80                     ? 1
                               : first >= 0xC2 && first <= 0xDF ? 2
                               : first >= 0xE0 && first <= 0xEF ? 3
                               : first >= 0xF0 && first <= 0xF4 ? 4
                                                                : 0;
    for (std::size_t next = 1; next < length; ++next) {
        if ((byte(at + next) & 0xC0U) != 0x80U) {
            return 0;
        }
    }
    return length;
}

/// `text` with `escape` applied to every ASCII character. Reasons may hold any bytes that a plug-in gave:
/// what is not UTF-8 becomes a question mark.
template <class Escape>
std::string Escaped(const std::string& text, const Escape& escape)
{
    std::string escaped;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = CharacterLength(text, at);
        if (length == 1) {
            escaped += escape(text[at]);
        } else if (length > 1) {
            escaped += text.substr(at, length);
        } else {
            escaped += '?';
        }
        at += std::max<std::size_t>(length, 1);
    }
    return escaped;
}

std::string Quoted(const std::string& text)
{
    return '"' +
           Escaped(text,
                   [](char c) -> std::string {
                       if (c == '"' || c == '\\') {
                           return {'\\', c};
                       }
                       return c == '\n' ? "\\n"
                                        : std::string(1, static_cast<unsigned char>(c) < 0x20 ? ' ' : c);
                   }) +
           '"';
}

std::string Attribute(const std::string& text)
{
    return '"' +
           Escaped(text,
                   [](char c) -> std::string {
                       switch (c) {
                       case '&':
                           return "&amp;";
                       case '<':
                           return "&lt;";
                       case '"':
                           return "&quot;";
                       default:
                           return std::string(1, static_cast<unsigned char>(c) < 0x20 ? ' ' : c);
                       }
                   }) +
           '"';
}

std::string Seconds(double seconds)
{
    const auto milliseconds = static_cast<long>(seconds * 1000.0);
    const std::string fraction = std::to_string(milliseconds % 1000);
    return std::to_string(milliseconds / 1000) + "." + std::string(3 - fraction.size(), '0') + fraction;
}

} // namespace

void PrintLine(const Result& result)
{
    const char* id = result.check.id.c_str();
    switch (result.outcome.verdict) {
    case Verdict::Passed:
        std::printf("ok    %s\n", id);
        break;
    case Verdict::Skipped:
        std::printf("skip  %s: %s\n", id, result.outcome.reason.c_str());
        break;
    case Verdict::Failed:
        std::printf("FAIL  %s: %s\n      %s\n", id, result.check.sentence.c_str(),
                    result.outcome.reason.c_str());
        break;
    }
    std::fflush(stdout);
}

void PrintCounts(const std::vector<Result>& results, const Options& options)
{
    std::printf("%zu passed, %zu failed, %zu skipped (seed %llu)\n", Count(results, Verdict::Passed),
                Count(results, Verdict::Failed), Count(results, Verdict::Skipped),
                static_cast<unsigned long long>(options.seed));
}

void PrintList(const std::vector<Check>& checks, Format format)
{
    if (format == Format::Text) {
        for (const Check& check : checks) {
            std::printf("%-34s %s\n", check.id.c_str(), check.sentence.c_str());
        }
        return;
    }
    const char* separator = "[\n";
    for (const Check& check : checks) {
        std::printf("%s{\"id\": %s, \"suite\": \"%s\", \"sentence\": %s}", separator, Quoted(check.id).c_str(),
                    SuiteName(check.InSuite()), Quoted(check.sentence).c_str());
        separator = ",\n";
    }
    std::puts("\n]");
}

std::string Json(const std::vector<Result>& results, const Options& options)
{
    std::ostringstream text;
    text << "{\n\"plugin\": " << Quoted(options.plugin.string())
         << ",\n\"document\": " << (options.document.empty() ? "null" : Quoted(options.document.string()))
         << ",\n\"seed\": " << options.seed << ",\n\"passed\": " << Count(results, Verdict::Passed)
         << ",\n\"failed\": " << Count(results, Verdict::Failed)
         << ",\n\"skipped\": " << Count(results, Verdict::Skipped) << ",\n\"checks\": [";
    const char* separator = "\n";
    for (const auto& [check, outcome] : results) {
        text << separator << "{\"id\": " << Quoted(check.id) << ", \"suite\": \"" << SuiteName(check.InSuite())
             << "\", \"sentence\": " << Quoted(check.sentence) << ", \"verdict\": \""
             << VerdictName(outcome.verdict) << "\", \"reason\": " << Quoted(outcome.reason)
             << ", \"seconds\": " << Seconds(outcome.seconds) << "}";
        separator = ",\n";
    }
    text << "\n]\n}\n";
    return text.str();
}

std::string JUnit(const std::vector<Result>& results, const Options& options)
{
    std::ostringstream text;
    text << R"(<?xml version="1.0" encoding="UTF-8"?>)"
         << "\n<testsuite name=" << Attribute("conformance of " + options.plugin.filename().string())
         << " tests=\"" << results.size() << "\" failures=\"" << Count(results, Verdict::Failed)
         << "\" skipped=\"" << Count(results, Verdict::Skipped) << "\">\n";
    for (const auto& [check, outcome] : results) {
        text << "  <testcase classname=\"" << SuiteName(check.InSuite()) << "\" name=" << Attribute(check.id)
             << " time=\"" << Seconds(outcome.seconds) << "\">";
        if (outcome.verdict == Verdict::Failed) {
            text << "<failure message=" << Attribute(check.sentence + ": " + outcome.reason) << "/>";
        } else if (outcome.verdict == Verdict::Skipped) {
            text << "<skipped message=" << Attribute(outcome.reason) << "/>";
        }
        text << "</testcase>\n";
    }
    text << "</testsuite>\n";
    return text.str();
}

} // namespace conformance
