#include "WrongPlugin.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <new>
#include <optional>
#include <thread>

namespace wrong {

namespace {

/// Lets the right plug-in read `spoil` of the file that `path` names, which lies beside that file, in a folder
/// that the check removes.
template <class Record>
std::int32_t WithSpoiledFile(const Request& request, Record& record,
                             const std::function<std::string(std::string)>& spoil)
{
    const ksUTF16* const path = record.path;
    const std::optional<std::string> content = ContentOf(path);
    if (!content) {
        return Right(request);
    }
    const std::u16string spoiled = std::u16string(path) + u".spoiled";
    std::ofstream(std::filesystem::path(spoiled), std::ios::binary) << spoil(*content);
    record.path = spoiled.c_str();
    const std::int32_t answer = Right(request);
    record.path = path;
    return answer;
}

} // namespace

std::optional<std::string> ContentOf(const ksUTF16* path)
{
    std::error_code ignored;
    if (path == nullptr || !std::filesystem::is_regular_file(path, ignored)) {
        return std::nullopt;
    }
    std::ifstream stream(std::filesystem::path(path), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

void Crash()
{
    static volatile std::int32_t* volatile nothing = nullptr;
    *nothing = 0; // NOLINT(clang-analyzer-core.NullDereference)
    std::abort();
}

Serve AnswersInstead(std::int32_t selector, std::int32_t right, std::int32_t wrong)
{
    return [=](const Request& request) {
        const std::int32_t answer = Right(request);
        return request.selector == selector && answer == right ? wrong : answer;
    };
}

Serve Reads(const std::function<std::string(std::string)>& spoil)
{
    return [=](const Request& request) {
        if (request.selector == ksSelectorSettingsExchange && request.param1 != nullptr) {
            return WithSpoiledFile(request, *request.First<ksFileAccessRec>(), spoil);
        }
        if (request.Is(ksSelectorOpenFile)) {
            return WithSpoiledFile(request, *request.Second<ksOpenRec>(), spoil);
        }
        return Right(request);
    };
}

Serve ReadsAs(const std::string& from, const std::string& to)
{
    return Reads([=](std::string document) {
        for (std::size_t at = document.find(from); at != std::string::npos;
             at = document.find(from, at + to.size())) {
            document.replace(at, from.size(), to);
        }
        return document;
    });
}

Serve GivesText(const std::function<std::string(std::string)>& spoil)
{
    return [=](const Request& request) {
        const std::int32_t answer = Right(request);
        if (request.Is(ksSelectorSettingsExchange) &&
            (answer == ksResultServed || answer == ksResultCancelled)) {
            char* const buffer = request.Second<ksSettingsExchangeRec>()->text;
            const bool hasText = buffer != nullptr && buffer[0] == '{';
            const std::string text = hasText ? spoil(buffer) : std::string();
            text.copy(buffer, text.size());
            if (hasText) {
                buffer[text.size()] = '\0';
            }
        }
        return answer;
    };
}

Serve SpoilsConcurrent(std::int32_t selector, const std::function<std::int32_t(const Request&)>& spoil)
{
    return [=](const Request& request) {
        static std::atomic<int> inside{0};
        if (request.selector != selector) {
            return Right(request);
        }
        const bool wasInside = inside++ > 0;
        std::this_thread::sleep_for(std::chrono::milliseconds(1)); // so that others come meanwhile
        std::int32_t answer = Right(request);
        if (wasInside) {
            answer = spoil(request);
        }
        --inside;
        return answer;
    };
}

Serve MisreportsShortMemory(std::int32_t selector)
{
    return [=](const Request& request) {
        try {
            const auto memory = std::make_unique<volatile char[]>(request.selector == selector ? 64 : 1);
            return Right(request);
        } catch (const std::bad_alloc&) {
            return request.selector == selector ? std::int32_t{ksResultFailed} : Right(request);
        }
    };
}

} // namespace wrong
