#include <tessel/document/settings/KeptLayout.h>

#include <gtest/gtest.h>

namespace {

using tessel::document::InLayoutOf;

TEST(InLayoutOf, ChangesTheValueAndNothingElse)
{
    EXPECT_EQ(InLayoutOf("{\n\t\"b\": 1,\r\n  \"a\" : { \"x\":2 }\n}\n", R"({"a":{"x":3},"b":1})"),
              "{\n\t\"b\": 1,\r\n  \"a\" : { \"x\":3 }\n}\n");
}

TEST(InLayoutOf, KeepsTheSpellingOfNumbersThatAreTheSame)
{
    const std::string text = "{\"a\": 1, \"b\": 0.1, \"c\": [1, 2.50], \"d\": 1e2}\n";
    // 0.100000001490116 is the 32-bit float nearest to 0.1.
    EXPECT_EQ(InLayoutOf(text, R"({"a":1.0,"b":0.100000001490116,"c":[1,2.5],"d":100})"), text);
    EXPECT_EQ(InLayoutOf("{\"t\": 9007199254740993}", R"({"t":9007199254740992})"),
              R"({"t": 9007199254740992})")
        << "integers are compared exactly";
}

TEST(InLayoutOf, AddsKeysInTheIndentationOfTheirNeighbours)
{
    EXPECT_EQ(InLayoutOf("{\n    \"a\": 1\n}\n", R"({"a":1,"b":{"c":2}})"),
              "{\n    \"a\": 1,\n    \"b\": {\n        \"c\": 2\n    }\n}\n");
}

TEST(InLayoutOf, AddsKeysWithTheLineEndsOfTheirNeighbours)
{
    EXPECT_EQ(InLayoutOf("{\r\n  \"a\": 1\r\n}\r\n", R"({"a":1,"b":{"c":2}})"),
              "{\r\n  \"a\": 1,\r\n  \"b\": {\r\n    \"c\": 2\r\n  }\r\n}\r\n");
}

TEST(InLayoutOf, AddsKeysWithTheBlanksOfTheirNeighbours)
{
    EXPECT_EQ(InLayoutOf(R"({"a":1,"b":2})", R"({"a":1,"b":2,"c":{"d":3}})"), R"({"a":1,"b":2,"c":{"d":3}})");
    EXPECT_EQ(InLayoutOf(R"({"a":1})", R"({"a":1,"b":2,"c":3})"), R"({"a":1,"b":2,"c":3})");
    EXPECT_EQ(InLayoutOf(R"({"a": 1})", R"({"a":1,"b":2})"), R"({"a": 1, "b": 2})");
    EXPECT_EQ(InLayoutOf(R"({ "a" : 1 , "b" : 2 })", R"({"a":1,"b":2,"c":3})"),
              R"({ "a" : 1 , "b" : 2 , "c" : 3 })");
    EXPECT_EQ(InLayoutOf("{\n  \"a\":\n    1\n}", R"({"a":1,"b":2})"), "{\n  \"a\":\n    1,\n  \"b\": 2\n}");
}

TEST(InLayoutOf, TakesOutKeysThatAreGone)
{
    EXPECT_EQ(InLayoutOf("{\n  \"note\": \"mine\",\n  \"a\": 1\n}", R"({"a":1})"), "{\n  \"a\": 1\n}");
    EXPECT_EQ(InLayoutOf("{\n  \"a\": 1,\n  \"note\": \"mine\"\n}", R"({"a":1})"), "{\n  \"a\": 1\n}");
    EXPECT_EQ(InLayoutOf("{\"a\": 1, \"note\": 2, \"b\": 3}", R"({"a":1,"b":3})"), "{\"a\": 1, \"b\": 3}");
    EXPECT_EQ(InLayoutOf("{\"o\": { \"note\": 1 }, \"a\": 1}", R"({"a":1,"o":{}})"), "{\"o\": { }, \"a\": 1}");
    EXPECT_EQ(InLayoutOf("{\"n\": 1, \"a\": 1, \"n\": 2}", R"({"a":1})"), "{\"a\": 1}") << "each of equal keys";
}

TEST(InLayoutOf, KeepsTheWrapper)
{
    EXPECT_EQ(InLayoutOf(R"({"SerializerWrappedObject": {"a": 1}})", R"({"a":2})"),
              R"({"SerializerWrappedObject": {"a": 2}})");
}

TEST(InLayoutOf, GivesTheNewTextWhereItCannotBePutIntoTheOldOne)
{
    for (const char* const before : {"", "{", "[1]", "no document", R"({"a.b": 1})"}) {
        EXPECT_EQ(InLayoutOf(before, R"({"a":2})"), R"({"a":2})") << before;
    }
    EXPECT_EQ(InLayoutOf(std::string("{\"a\": 1}\0tail", 13), R"({"a":2})"), R"({"a":2})");
}

} // namespace
