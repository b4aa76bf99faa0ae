#include <kestrel/qelcore/serialization/Json.h>

#include <gtest/gtest.h>
#include <pthread.h>

#include <string>
#include <utility>

namespace {

using namespace qelcore::serialization;
using namespace std::string_literals;

/// The document parsed and printed again; the reason in brackets where it is malformed.
std::string Reprinted(std::string_view text)
{
    std::string error;
    const Value value = JSONParse(text, &error);
    return value.IsNothing() ? "<" + error + ">" : GetJSONUTF8String(value, false);
}

std::string Repeated(std::string_view piece, std::size_t count)
{
    std::string text;
    text.reserve(piece.size() * count);
    for (std::size_t i = 0; i < count; ++i) {
        text += piece;
    }
    return text;
}

TEST(JSONParse, ReadsEveryKindOfValue)
{
    const Value root =
        JSONParse(R"( {"n":null,"t":true,"f":false,"i":-1,"d":0.5,"s":"x","a":[1,[]],"o":{"k":{}}} )");
    ASSERT_FALSE(root.IsNothing());
    const Members object = AsObject(root, "");
    EXPECT_EQ(object.size(), 8U);
    EXPECT_EQ(object.Find("n").GetKind(), Value::Kind::Null);
    EXPECT_TRUE(AsBoolean(object.Find("t"), "t"));
    EXPECT_FALSE(AsBoolean(object.Find("f"), "f"));
    EXPECT_EQ(AsInteger(object.Find("i"), "i"), -1);
    EXPECT_EQ(AsNumber(object.Find("d"), "d"), 0.5);
    const Value text = object.Find("s");
    EXPECT_EQ(AsText(text, "s"), "x");
    EXPECT_EQ(AsArray(object.Find("a"), "a").size(), 2U);
    EXPECT_TRUE(GetVariantInObject(object.Find("o"), "k").IsObject());
}

TEST(JSONParse, EveryValueMayBeTheDocument)
{
    for (const char* text : {"null", "true", "false", "1", "0.5", "\"x\"", "[]", "{}"}) {
        EXPECT_EQ(Reprinted(text), text);
        EXPECT_EQ(Reprinted(" \t\r\n" + std::string(text) + " \t\r\n"), text);
    }
}

TEST(JSONParse, LastOfDuplicateKeysWins)
{
    EXPECT_EQ(Reprinted(R"({"a":1,"b":2,"a":{"c":3}})"), R"({"a":{"c":3},"b":2})");
    EXPECT_EQ(Reprinted(R"({"a":1,"\u0061":2})"), R"({"a":2})");
}

TEST(JSONParse, FirstNulEndsTheText)
{
    EXPECT_EQ(Reprinted("[1]\0garbage"s), "[1]");
    EXPECT_EQ(Reprinted("[1]\0"s), "[1]");
    EXPECT_TRUE(JSONParse("[1\0]"s).IsNothing());
    EXPECT_TRUE(JSONParse("\0[1]"s).IsNothing());
    EXPECT_EQ(Reprinted(R"(["\u0000"])"), R"(["\u0000"])");
}

TEST(JSONParse, MalformedTextsGiveNothingAndOneLineThatSaysWhy)
{
    for (const char* text : {"",
                             " ",
                             "{",
                             "[",
                             "]",
                             "[1",
                             "[1,",
                             "[1,]",
                             "[,1]",
                             "{\"a\"}",
                             "{\"a\":}",
                             "{\"a\":1,}",
                             "{a:1}",
                             "{1:1}",
                             "[1] []",
                             "[1]x",
                             "{}}",
                             "nul",
                             "nulll",
                             "True",
                             "+1",
                             "01",
                             "1.",
                             ".5",
                             "1e",
                             "1e+",
                             "-",
                             "0x10",
                             "NaN",
                             "Infinity",
                             "'a'",
                             "\"a",
                             "\"a\nb\"",
                             "\"\\x\"",
                             "\"\\u12\"",
                             "\"\\u12G4\"",
                             "\"\\uD800\\u12\"",
                             "[1] // c",
                             "/**/1",
                             "\"\\",
                             "\"\\u",
                             "\\uD800",
                             "[\"a\" \"b\"]",
                             "\xEF\xBB[1]"}) {
        std::string error;
        EXPECT_TRUE(JSONParse(text, &error).IsNothing()) << text;
        EXPECT_EQ(error.substr(0, 5), "line ") << text;
        EXPECT_EQ(error.find('\n'), std::string::npos) << text;
        EXPECT_GT(error.size(), 20U) << error;
    }
}

TEST(JSONParse, MalformedTextSaysWhere)
{
    std::string error;
    EXPECT_TRUE(JSONParse("{\n  \"a\": 1,\n  \"b\" 2\n}", &error).IsNothing());
    EXPECT_EQ(error.substr(0, 18), "line 3, column 7: "); // the digit 2
    EXPECT_TRUE(JSONParse("[1e999]", &error).IsNothing());
    EXPECT_EQ(error, "line 1, column 6: a number is too large for a double");
}

TEST(JSONParse, ColumnsAreInCharacters)
{
    // Two, three and four bytes; the missing comma shows at the digit 2, the eleventh character.
    std::string error;
    EXPECT_TRUE(JSONParse("[\"\u00E4\u20AC\U0001F600\", 1 2]", &error).IsNothing());
    EXPECT_EQ(error.substr(0, 19), "line 1, column 11: ") << error;
    EXPECT_TRUE(JSONParse("\xEF\xBB\xBF[1 2]", &error).IsNothing());
    EXPECT_EQ(error.substr(0, 18), "line 1, column 4: ") << "a byte order mark is no character: " << error;
}

TEST(JSONParse, ReasonsDoNotRepeatTheText)
{
    std::string error;
    EXPECT_TRUE(JSONParse("[" + std::string(100'000, ' ') + "\"\xFF\"]", &error).IsNothing());
    EXPECT_LT(error.size(), 200U);
    EXPECT_EQ(error.find('\xFF'), std::string::npos);
}

TEST(JSONParse, RefusesInvalidUTF8)
{
    for (const char* bytes :
         {"\xFF", "\xC3", "\xC3(", "\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\x80"}) {
        EXPECT_TRUE(JSONParse("[\"" + std::string(bytes) + "\"]").IsNothing());
        EXPECT_TRUE(JSONParse("{\"" + std::string(bytes) + "\":1}").IsNothing());
        EXPECT_TRUE(JSONParse("[1]" + std::string(bytes)).IsNothing());
    }
    EXPECT_EQ(Reprinted("[\"\u00E4\u20AC\U0001F600\U0010FFFF\"]"), "[\"\u00E4\u20AC\U0001F600\U0010FFFF\"]");
}

TEST(JSONParse, UnpairedSurrogateEscapesBecomeReplacementCharacters)
{
    EXPECT_EQ(Reprinted(R"("\ud83d\ude00")"), "\"\U0001F600\"");
    EXPECT_EQ(Reprinted(R"("\uD83D\uDE00\uD83D\uDE00")"), "\"\U0001F600\U0001F600\"");
    EXPECT_EQ(Reprinted(R"("\ud800")"), "\"\uFFFD\"");
    EXPECT_EQ(Reprinted(R"("\udfff")"), "\"\uFFFD\"");
    EXPECT_EQ(Reprinted(R"("a\ud800b\udc00c")"), "\"a\uFFFDb\uFFFDc\"");
    EXPECT_EQ(Reprinted(R"("\ud83d\ud83d\ude00")"), "\"\uFFFD\U0001F600\"");
    EXPECT_EQ(Reprinted(R"("\ud83d\ude00\ude00")"), "\"\U0001F600\uFFFD\"");
    EXPECT_EQ(Reprinted(R"("\ud800\u0041")"), "\"\uFFFDA\"");
    EXPECT_EQ(Reprinted(R"("\ud800\n")"), "\"\uFFFD\\n\"");
    EXPECT_EQ(Reprinted(R"({"\ud800":1})"), "{\"\uFFFD\":1}");
}

TEST(JSONParse, EscapedBackslashesBeforeAUAreNoEscapesOfSurrogates)
{
    EXPECT_EQ(Reprinted(R"("\\ud800")"), R"("\\ud800")");
    EXPECT_EQ(Reprinted(R"("\\\ud800")"), "\"\\\\\uFFFD\"");
    EXPECT_EQ(Reprinted(R"("\\\\ud800")"), R"("\\\\ud800")");
    EXPECT_EQ(Reprinted(R"("\ud83d\\ude00")"), "\"\uFFFD\\\\ude00\"");
}

TEST(JSONParse, TenThousandLevelsAreReadAndNoneMore)
{
    constexpr std::size_t kDeepest = 10'000;
    for (const auto& [begin, end] : {std::pair("[", "]"), std::pair("{\"a\":", "}")}) {
        const std::string deepest = Repeated(begin, kDeepest - 1) + "[]" + Repeated(end, kDeepest - 1);
        EXPECT_TRUE(Reprinted(deepest) == deepest);
        const std::string deeper = begin + deepest + end;
        EXPECT_NE(Reprinted(deeper).find("nested deeper than 10000 levels"), std::string::npos);
        EXPECT_TRUE(JSONParse(Repeated(begin, kDeepest)).IsNothing());
        EXPECT_TRUE(JSONParse(deepest + "x").IsNothing());
    }
    // Beside one another they are no deeper, and brackets in texts are no containers.
    const std::string wide = "[" + Repeated("[],", 20'000) + "\"" + Repeated("[", 20'000) + "\"]";
    EXPECT_TRUE(Reprinted(wide) == wide);
}

TEST(JSONParse, SaysWhereATextIsTooDeep)
{
    EXPECT_EQ(Reprinted("[\n" + Repeated("[", 10'000)),
              "<line 2, column 10000: nested deeper than 10000 levels>");
}

TEST(JSONParse, TextsEndAt128Megabytes)
{
    constexpr std::size_t kLongest = 128'000'000;
    std::string text(kLongest, ' ');
    text.back() = '1';
    EXPECT_EQ(Reprinted(text), "1");
    text += ' ';
    EXPECT_EQ(Reprinted(text), "<the text is longer than 128000000 bytes>");
    text[kLongest] = '\0';
    text += "what follows a NUL is not of the text";
    EXPECT_EQ(Reprinted(text), "1");
}

TEST(JSONParse, DeepDocumentsNeedNoDeepStack)
{
    // 64 KiB of stack would not do for a recursion through 10,000 brackets.
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 64 * 1024), 0);
    const auto run = [](void* result) -> void* {
        constexpr std::size_t kDepth = 9'999;
        const std::string text = Repeated("[[],", kDepth) + "0" + Repeated("]", kDepth);
        *static_cast<bool*>(result) = Reprinted(text) == text;
        return nullptr;
    };
    bool same = false;
    pthread_t thread{};
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &same), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    EXPECT_TRUE(same);
    pthread_attr_destroy(&attributes);
}

TEST(JSONParse, WhiteSpaceOfAnyLengthIsWhiteSpace)
{
    std::string text(100'000'000, ' ');
    text += "[1]";
    EXPECT_EQ(Reprinted(text), "[1]");
    EXPECT_TRUE(JSONParse(std::string(1'000'000, '\n')).IsNothing());
}

TEST(JSONParse, ByteOrderMarkIsPassedOver)
{
    EXPECT_EQ(Reprinted("\xEF\xBB\xBF[1]"), "[1]");
}

} // namespace
