#include <kestrel/importhost/HostError.h>
#include <kestrel/qelcore/serialization/Json.h>
#include <tessel/document/settings/DocumentEditor.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace tessel::document {
namespace {

using qelcore::serialization::JSONParse;
using qelcore::serialization::Value;

std::string AfterSetting(const std::string& text, const std::string& path, const std::string& json)
{
    DocumentEditor editor(text);
    editor.Set(path, JSONParse(json));
    return editor.Text();
}

TEST(DocumentEditor, OnlyTheValueIsReplaced)
{
    EXPECT_EQ(AfterSetting(R"( { "a" :  1 , "b": [ 2,3 ] } )", "a", "10"), R"( { "a" :  10 , "b": [ 2,3 ] } )");
    EXPECT_EQ(AfterSetting(R"({"a":[1,{"x":2}],"b":3})", "a", "4"), R"({"a":4,"b":3})");
    EXPECT_EQ(AfterSetting("{\"a\":true\n}", "a", "false"), "{\"a\":false\n}");
}

TEST(DocumentEditor, BracesAndQuotesInsideTextsAreNoStructure)
{
    const std::string text = R"({"a": "}{\"][,:\\", "b": 1})";
    EXPECT_EQ(AfterSetting(text, "b", "2"), R"({"a": "}{\"][,:\\", "b": 2})");
    EXPECT_EQ(AfterSetting(text, "a", "0"), R"({"a": 0, "b": 1})");
}

TEST(DocumentEditor, KeysAreReadWithTheirEscapes)
{
    EXPECT_EQ(AfterSetting(R"({"\u0061\/": 1})", "a/", "2"), R"({"\u0061\/": 2})");
}

TEST(DocumentEditor, OfEqualKeysTheLastCounts)
{
    EXPECT_EQ(AfterSetting(R"({"a": 1, "a": 2})", "a", "3"), R"({"a": 1, "a": 3})");
    EXPECT_EQ(AfterSetting(R"({"o": {"a": 1}, "o": {"b": 2}})", "o.a", "3"),
              R"({"o": {"a": 1}, "o": {"b": 2, "a": 3}})");
}

TEST(DocumentEditor, AbsentKeysAndObjectsAreAddedInTheLayoutOfTheirNeighbours)
{
    EXPECT_EQ(AfterSetting(R"({})", "a", "1"), R"({"a": 1})");
    EXPECT_EQ(AfterSetting(R"({"a":1})", "b", "2"), R"({"a":1,"b":2})");
    EXPECT_EQ(AfterSetting("{\n\t\"a\": 1\n}\n", "b.c", "2"),
              "{\n\t\"a\": 1,\n\t\"b\": {\n\t\t\"c\": 2\n\t}\n}\n");
}

TEST(DocumentEditor, WrappersByteOrderMarksAndRestsStay)
{
    EXPECT_EQ(AfterSetting("\xEF\xBB\xBF{\"a\": 1}", "a", "2"), "\xEF\xBB\xBF{\"a\": 2}");
    EXPECT_EQ(AfterSetting(R"({"a": 0, "SerializerWrappedObject": {"a": 1}})", "a", "2"),
              R"({"a": 0, "SerializerWrappedObject": {"a": 2}})");
    const std::string rest = std::string("\0{\"a\": 5}", 9);
    EXPECT_EQ(AfterSetting("{\"a\": 1}" + rest, "a", "2"), "{\"a\": 2}" + rest);
}

TEST(DocumentEditor, WhatWasSetIsFoundAndNothingElseChanges)
{
    DocumentEditor editor(R"({"n": {"x": [1, 2]}, "k": "text", "z": null})");
    for (const char* path : {"a", "n.y", "n.d.e.f", "k", "z"}) {
        const Value before = editor.Find("n.x");
        for (std::int64_t number = 0; number < 3; ++number) {
            editor.Set(path, Value(number));
            EXPECT_EQ(qelcore::serialization::FindInteger(editor.Find(path)), number) << path;
        }
        EXPECT_EQ(qelcore::serialization::GetJSONUTF8String(editor.Find("n.x"), false),
                  qelcore::serialization::GetJSONUTF8String(before, false));
    }
    EXPECT_TRUE(editor.Find("nothing.here").IsNothing());
}

TEST(DocumentEditor, DeeplyNestedValuesArePassedOver)
{
    const std::string deep = std::string(9000, '[') + std::string(9000, ']');
    EXPECT_EQ(AfterSetting("{\"a\": " + deep + ", \"b\": 1}", "b", "2"), "{\"a\": " + deep + ", \"b\": 2}");
}

TEST(DocumentEditor, WhatIsNoObjectIsRefused)
{
    for (const char* text : {"", "{", "[]", "1", R"({"SerializerWrappedObject": 1})"}) {
        EXPECT_THROW(DocumentEditor{text}, importhost::HostError) << text;
    }
    DocumentEditor editor(R"({"a": {"b": 1}})");
    EXPECT_THROW(editor.Set("a.b.c", Value(std::int64_t{1})), importhost::HostError);
    EXPECT_EQ(editor.Text(), R"({"a": {"b": 1}})");
}

} // namespace
} // namespace tessel::document
