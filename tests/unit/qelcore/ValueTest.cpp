#include <kestrel/qelcore/exceptions/Exceptions.h>
#include <kestrel/qelcore/serialization/Json.h>
#include <kestrel/qelcore/serialization/Value.h>

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace qelcore::serialization;

/// A view of a temporary's text would outlive the text.
template <class Given>
concept GivesItsText = requires(Given&& value)
{
    FindText(std::forward<Given>(value));
    AsText(std::forward<Given>(value), "");
};
static_assert(GivesItsText<const Value&> && !GivesItsText<Value> && !GivesItsText<const Value>);

template <class Read>
std::string ErrorOf(Read read)
{
    try {
        (void)read();
    } catch (const type_exception& exception) {
        return exception.what();
    }
    return "no error";
}

TEST(Value, AnArrayIsMadeOfItemsInTheirOrder)
{
    const std::string_view letters = "one|two";
    const Value array = ArrayOf(std::vector{letters.substr(4), letters.substr(0, 3)},
                                [](std::string_view part) { return Value(part); });
    EXPECT_EQ(GetJSONUTF8String(array, /*formatted=*/false), R"(["two","one"])");
    EXPECT_EQ(GetJSONUTF8String(ArrayOf(std::vector<int>{}, [](int) { return Value(); }), /*formatted=*/false),
              "[]");
}

TEST(Value, ReadersNameTheKeyAndTheTypeTheyNeed)
{
    for (const Value& value : {Value(nullptr), Value()}) {
        EXPECT_EQ(ErrorOf([&] { return AsObject(value, "k"); }), "\"k\": expected an object");
        EXPECT_EQ(ErrorOf([&] { return AsArray(value, "k"); }), "\"k\": expected an array");
        EXPECT_EQ(ErrorOf([&] { return AsText(value, "k"); }), "\"k\": expected a text");
        EXPECT_EQ(ErrorOf([&] { return AsInteger(value, "k"); }), "\"k\": expected an integer");
        EXPECT_EQ(ErrorOf([&] { return AsNumber(value, "k"); }), "\"k\": expected a number");
        EXPECT_EQ(ErrorOf([&] { return AsBoolean(value, "k"); }), "\"k\": expected a boolean");
    }
}

TEST(Value, EachReaderTakesItsTypesAndNoOthers)
{
    struct Row {
        const char* text;
        bool integer;
        bool number;
        bool boolean;
    };
    for (const Row& row : {Row{"1", true, true, true}, Row{"18446744073709551615", true, true, true},
                           Row{"333.0", false, true, false}, Row{"true", false, false, true},
                           Row{"\"true\"", false, false, true}, Row{"\"false\"", false, false, true},
                           Row{"\"no\"", false, false, false}, Row{"\"True\"", false, false, false},
                           Row{"\"1\"", false, false, false}, Row{"null", false, false, false},
                           Row{"[1]", false, false, false}, Row{"{}", false, false, false}}) {
        const Value value = JSONParse(row.text);
        ASSERT_FALSE(value.IsNothing()) << row.text;
        const auto reads = [&](auto read) { return ErrorOf([&] { return read(value, "k"); }) == "no error"; };
        EXPECT_EQ(reads(AsInteger), row.integer) << row.text;
        EXPECT_EQ(reads(AsNumber), row.number) << row.text;
        EXPECT_EQ(reads(AsFloat), row.number) << row.text;
        EXPECT_EQ(reads(AsBoolean), row.boolean) << row.text;
    }
}

TEST(Value, BooleansComeFromBooleansIntegersAndTwoTexts)
{
    for (const char* text : {"true", "1", "-1", "18446744073709551615", "\"true\""}) {
        EXPECT_TRUE(AsBoolean(JSONParse(text), "k")) << text;
    }
    for (const char* text : {"false", "0", "\"false\""}) {
        EXPECT_FALSE(AsBoolean(JSONParse(text), "k")) << text;
    }
}

TEST(Value, UnsignedIntegersKeepTheirBits)
{
    EXPECT_EQ(AsInteger(JSONParse("18446744073709551615"), "k"), -1);
    EXPECT_EQ(AsInteger(JSONParse("9223372036854775808"), "k"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(AsNumber(JSONParse("18446744073709551615"), "k"), 0x1p64);
}

TEST(Value, LookingUpFindsNothingWhereThereIsNothing)
{
    const Value object = JSONParse(R"({"a": null, "b": 1})");
    EXPECT_TRUE(ObjectHasProperty(object, "a"));
    EXPECT_EQ(GetVariantInObject(object, "a").GetKind(), Value::Kind::Null);
    EXPECT_FALSE(ObjectHasProperty(object, "c"));
    EXPECT_TRUE(GetVariantInObject(object, "c").IsNothing());
    for (const Value& other : {JSONParse("[\"a\"]"), JSONParse("\"a\""), Value()}) {
        EXPECT_FALSE(ObjectHasProperty(other, "a"));
        EXPECT_TRUE(GetVariantInObject(other, "a").IsNothing());
    }
}

TEST(Value, AddingUnderAKeyReplaces)
{
    Object object;
    AddToObject(object, "a", Value(std::int64_t{1}));
    AddToObject(object, "a", Value(std::int64_t{2}));
    EXPECT_EQ(AsInteger(object.at("a"), "a"), 2);
}

TEST(Value, SubTreesOutliveTheirDocument)
{
    Value inner;
    {
        const std::string opening(1000, '[');
        const std::string closing(1000, ']');
        const Value root = JSONParse(opening + R"({"a": "kept"})" + closing);
        inner = root;
        for (int i = 0; i < 1000; ++i) {
            inner = AsArray(inner, "")[0];
        }
    }
    const Value text = GetVariantInObject(inner, "a");
    inner = Value();
    EXPECT_EQ(AsText(text, "a"), "kept");
}

TEST(Value, WideAndDeepTreesAreTakenDownOnManyThreads)
{
    // Every thread destroys trees of its own and its share of a common one.
    const Value common = JSONParse("[" + std::string(5000, '[') + std::string(5000, ']') + "]");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([copy = common]() mutable {
            for (int k = 0; k < 20; ++k) {
                std::string text = "[0";
                for (int wide = 0; wide < 50; ++wide) {
                    text += "," + std::string(200, '[') + "{\"a\":[]}" + std::string(200, ']');
                }
                const Value own = JSONParse(text + "]");
                EXPECT_EQ(AsArray(own, "").size(), 51U);
            }
            copy = Value();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(GetJSONUTF8String(common, false).size(), 10'002U);
}

} // namespace
