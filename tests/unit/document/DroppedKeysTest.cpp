#include <tessel/document/DroppedKeys.h>

#include <gtest/gtest.h>

namespace {

using tessel::document::DroppedKeys;
using Keys = std::vector<std::string>;

TEST(DroppedKeys, AreThoseOfTheFirstDocumentThatTheSecondLacks)
{
    EXPECT_EQ(DroppedKeys(R"({"b":1,"note":"mine","a":2})", R"({"a":3,"new":4})"), (Keys{"b", "note"}));
    EXPECT_EQ(DroppedKeys(R"({"a":1})", R"({"a":null})"), Keys{}) << "the key is there, whatever its value";
}

TEST(DroppedKeys, InNestedObjectsHaveTheirPath)
{
    EXPECT_EQ(DroppedKeys(R"({"size":{"x":1,"unit":{"name":"px"},"y":2}})", R"({"size":{"unit":{},"x":1}})"),
              (Keys{"size.unit.name", "size.y"}));
    EXPECT_EQ(DroppedKeys(R"({"a":{"b":1}})", R"({"a":5})"), Keys{}) << "the setting took another type";
}

TEST(DroppedKeys, AreLookedForInsideTheWrapper)
{
    EXPECT_EQ(DroppedKeys(R"({"SerializerWrappedObject":{"a":1,"note":2}})", R"({"a":1})"), Keys{"note"});
    EXPECT_EQ(DroppedKeys(R"({"a":1,"note":2})", R"({"SerializerWrappedObject":{"a":1}})"), Keys{"note"});
}

TEST(DroppedKeys, TheOldNameOfTheColorSpaceIsNoneBecauseItIsRead)
{
    EXPECT_EQ(DroppedKeys(R"({"mPredefinedColorSpace":"x"})", R"({"mColorSpace":{}})"), Keys{});
}

TEST(DroppedKeys, TextsThatAreNoDocumentsDropNothing)
{
    for (const char* const text : {"", "{", "[1]", "5", R"({"SerializerWrappedObject":3})"}) {
        EXPECT_EQ(DroppedKeys(text, R"({"a":1})"), Keys{}) << text;
        EXPECT_EQ(DroppedKeys(R"({"a":1})", text), Keys{}) << text;
    }
}

} // namespace
