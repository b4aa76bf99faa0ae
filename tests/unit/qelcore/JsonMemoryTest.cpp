/// How much memory parsing takes. Apart from the other tests, because it replaces the process's operator new.
#include <kestrel/qelcore/serialization/Json.h>

#include <gtest/gtest.h>
#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <string>
#include <string_view>

namespace {

std::atomic<std::size_t> gInUse{0};
std::atomic<std::size_t> gPeak{0};

void* Allocate(std::size_t bytes)
{
    void* const block = std::malloc(bytes);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    // What the allocator really gave, not what was asked for.
    const std::size_t now = gInUse += malloc_usable_size(block) + sizeof(std::size_t);
    std::size_t peak = gPeak;
    while (now > peak && !gPeak.compare_exchange_weak(peak, now)) {
    }
    return block;
}

void Free(void* block) noexcept
{
    if (block != nullptr) {
        gInUse -= malloc_usable_size(block) + sizeof(std::size_t);
        std::free(block);
    }
}

} // namespace

void* operator new(std::size_t bytes)
{
    return Allocate(bytes);
}
void* operator new[](std::size_t bytes)
{
    return Allocate(bytes);
}
// Sorting takes its scratch memory this way. The standard library's own calls the first one above, a
// sanitizer's does not.
void* operator new(std::size_t bytes, const std::nothrow_t& /*unused*/) noexcept
{
    try {
        return Allocate(bytes);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void operator delete(void* block) noexcept
{
    Free(block);
}
void operator delete[](void* block) noexcept
{
    Free(block);
}
void operator delete(void* block, std::size_t /*bytes*/) noexcept
{
    Free(block);
}
void operator delete[](void* block, std::size_t /*bytes*/) noexcept
{
    Free(block);
}

namespace {

using qelcore::serialization::JSONParse;
using qelcore::serialization::Value;

/// The most that parsing had in use at once for each byte of the text, the text itself not counted.
double BytesPerByte(const std::string& text, bool expectValue)
{
    const std::size_t before = gInUse;
    gPeak = before;
    std::string error;
    const Value value = JSONParse(text, &error);
    EXPECT_EQ(!value.IsNothing(), expectValue) << error;
    return static_cast<double>(gPeak - before) / static_cast<double>(text.size());
}

/// `begin`, then `piece` as often as makes `size` bytes, then `last` and `end`.
std::string Repeated(std::string_view begin, std::string_view piece, std::size_t size, std::string_view last,
                     std::string_view end)
{
    std::string text(begin);
    text.reserve(size + 100'000);
    while (text.size() < size) {
        text += piece;
    }
    return text.append(last).append(end);
}

std::string Nested(std::size_t depth)
{
    return std::string(depth, '[') + "0" + std::string(depth, ']');
}

// One byte of text more or less may double a growing list, hence several sizes.
constexpr std::size_t kSizes[] = {262'130, 262'160, 300'000, 400'000};
constexpr double kMost = 15.0;

} // namespace

TEST(JsonMemory, IsAtMostFifteenTimesTheTextInListsOfAnything)
{
    for (const std::size_t size : kSizes) {
        for (const std::string& piece :
             {std::string("0"), std::string("123"), std::string("0.5"), std::string("null"),
              std::string("\"\""), std::string("\"a\""), std::string("\"twenty letters long\""),
              std::string("[]"), std::string("{}"), std::string("[0]"), std::string("[\"a\"]"),
              std::string("[[0]]"), std::string("[0,0]"), std::string("{\"\":0}"), std::string("{\"a\":{}}"),
              std::string("{\"\":\"\",\"\":[]}"), Nested(50), Nested(9'000)}) {
            EXPECT_LE(BytesPerByte(Repeated("[", piece + ",", size, piece, "]"), true), kMost)
                << piece.substr(0, 20) << " in " << size << " bytes";
        }
    }
}

TEST(JsonMemory, IsAtMostFifteenTimesTheTextInObjects)
{
    for (const std::size_t size : kSizes) {
        EXPECT_LE(BytesPerByte(Repeated("{", "\"\":0,", size, "\"\":0", "}"), true), kMost)
            << "one key again and again";
        std::string text = "{";
        for (int number = 0; text.size() < size; ++number) {
            text += (number == 0 ? "\"" : ",\"") + std::to_string(number * 7919LL % 1'000'003) + "\":0";
        }
        EXPECT_LE(BytesPerByte(text + "}", true), kMost) << "keys in no order";
        text = "{";
        for (char letter = ' '; text.size() < size;
             letter = letter == '}' ? ' ' : static_cast<char>(letter + 1)) {
            text += letter == '"' || letter == '\\' ? "" : std::string("\"") + letter + "\":{\"a\":0},";
        }
        EXPECT_LE(BytesPerByte(text + "\"\":0}", true), kMost) << "few keys";
    }
}

TEST(JsonMemory, IsAtMostFifteenTimesTheTextInLongTexts)
{
    for (const std::size_t size : kSizes) {
        EXPECT_LE(BytesPerByte('"' + std::string(size, 'a') + '"', true), kMost);
        EXPECT_LE(BytesPerByte(Repeated("\"", "\\ud800", size, "", "\""), true), kMost);
        EXPECT_LE(BytesPerByte("{\"" + std::string(size, 'a') + "\":0}", true), kMost);
        EXPECT_LE(BytesPerByte("0." + std::string(size, '1'), true), kMost);
    }
}

TEST(JsonMemory, IsAtMostFifteenTimesAMalformedTextToo)
{
    for (const std::size_t size : kSizes) {
        for (const std::string_view piece : {"[", "{", "[[0],", "{\"\":", "{\"\":[],", "{\"\":\"\":", "[0:",
                                             "{0,", "0,", ",", ":", "\"", "[\"\",", "\"a\":"}) {
            EXPECT_LE(BytesPerByte(Repeated("", piece, size, "", ""), false), kMost) << piece;
            EXPECT_LE(BytesPerByte(Repeated("[", piece, size, "", ""), false), kMost) << piece;
            EXPECT_LE(BytesPerByte(Repeated("{\"a\":", piece, size, "", ""), false), kMost) << piece;
        }
        EXPECT_LE(BytesPerByte('"' + std::string(size, 'a'), false), kMost) << "a text without an end";
        EXPECT_LE(BytesPerByte('"' + std::string(size, 'a') + '\n', false), kMost) << "a line end in a text";
    }
}

TEST(JsonMemory, OfTwentyMegabytesOfBracketsIsUnderThreeHundred)
{
    const std::string text(20'000'000, '[');
    EXPECT_LT(BytesPerByte(text, false) * static_cast<double>(text.size()), 300e6 - 20e6);
}
