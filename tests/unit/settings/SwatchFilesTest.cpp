#include <ImporterTessel/settings/SwatchFiles.h>
#include <kestrel/qelcore/exceptions/Exceptions.h>

#include <gtest/gtest.h>
#include <support/TemporaryFolder.h>

#include <any>
#include <array>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using ImporterTessel::ReadSwatchColorsFile;
using ImporterTessel::ReadSwatchCoordinatesFile;
using ImporterTessel::SwatchColors;
using ImporterTessel::SwatchCoordinates;
using qelcore::serialization::missing_key_exception;

namespace {

const std::string kColors =
    R"({"colorSwatches": [1, 0.5], "legalRangeGradient": [0.25], "fullRangeGradient": [-2, 3e1, 4]})";

const std::string kCoordinates = R"({
    "colorSwatches": {"xCoordinates": [1, 2], "yCoordinates": [3]},
    "legalRangeGradient": {"xCoordinates": [], "yCoordinates": [4, 5]},
    "fullRangeGradient": {"xCoordinates": [-6], "yCoordinates": [4294967303]}})";

const SwatchColors kOtherColors{{9.0F}, {8.0F}, {7.0F}};
const SwatchCoordinates kOtherCoordinates{{{9}, {8}}, {{7}, {6}}, {{5}, {4}}};

std::string Wrapped(const std::string& text)
{
    return R"({"SerializerWrappedObject": )" + text + "}";
}

std::string Replaced(std::string text, const std::string& piece, const std::string& other)
{
    text.replace(text.find(piece), piece.size(), other);
    return text;
}

template <class Exception>
void ExpectColorsToThrow(const std::string& text)
{
    const test::TemporaryFolder folder;
    SwatchColors colors = kOtherColors;
    EXPECT_THROW(static_cast<void>(ReadSwatchColorsFile(folder.Write("c.json", text).u16string(), colors)),
                 Exception)
        << text;
    EXPECT_EQ(colors, kOtherColors) << text;
}

template <class Exception>
void ExpectCoordinatesToThrow(const std::string& text)
{
    const test::TemporaryFolder folder;
    SwatchCoordinates coordinates = kOtherCoordinates;
    EXPECT_THROW(
        static_cast<void>(ReadSwatchCoordinatesFile(folder.Write("c.json", text).u16string(), coordinates)),
        Exception)
        << text;
    EXPECT_EQ(coordinates, kOtherCoordinates) << text;
}

} // namespace

TEST(SwatchColorsFile, ReplacesAllThreeLists)
{
    const test::TemporaryFolder folder;
    for (const std::string& text : {kColors, Wrapped(kColors), kColors + std::string("\0rest", 5)}) {
        SwatchColors colors = kOtherColors;
        EXPECT_EQ(ReadSwatchColorsFile(folder.Write("c.json", text).u16string(), colors), 0);
        EXPECT_EQ(colors, (SwatchColors{{1.0F, 0.5F}, {0.25F}, {-2.0F, 30.0F, 4.0F}})) << text;
    }
}

TEST(SwatchColorsFile, TakesEmptyLists)
{
    const test::TemporaryFolder folder;
    SwatchColors colors = kOtherColors;
    EXPECT_EQ(
        ReadSwatchColorsFile(
            folder
                .Write("c.json", R"({"colorSwatches":[],"legalRangeGradient":[],"fullRangeGradient":[],"x":1})")
                .u16string(),
            colors),
        0);
    EXPECT_EQ(colors, SwatchColors{});
}

TEST(SwatchColorsFile, UnopenableFileGivesANegativeStatusAndNoException)
{
    const test::TemporaryFolder folder;
    SwatchColors colors = kOtherColors;
    EXPECT_LT(ReadSwatchColorsFile((folder.Path() / "absent").u16string(), colors), 0);
    EXPECT_LT(ReadSwatchColorsFile(folder.Path().u16string(), colors), 0);
    EXPECT_EQ(colors, kOtherColors);
}

TEST(SwatchColorsFile, MalformedTextThrowsWithThatVeryText)
{
    const test::TemporaryFolder folder;
    SwatchColors colors;
    try {
        static_cast<void>(ReadSwatchColorsFile(folder.Write("c.json", "{").u16string(), colors));
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "JSON not well-formed");
    }
    ExpectColorsToThrow<std::runtime_error>("");
    ExpectColorsToThrow<std::runtime_error>("{}{}");
}

TEST(SwatchColorsFile, RootsThatAreNoObjectAreOfTheWrongType)
{
    for (const char* const text : {"[]", "5", "null", R"("text")"}) {
        ExpectColorsToThrow<std::bad_any_cast>(text);
        ExpectColorsToThrow<std::bad_any_cast>(Wrapped(text));
    }
}

TEST(SwatchColorsFile, RootThatIsNoObjectIsNamedByItsRecord)
{
    const test::TemporaryFolder folder;
    SwatchColors colors;
    try {
        static_cast<void>(ReadSwatchColorsFile(folder.Write("c.json", "[]").u16string(), colors));
        FAIL() << "nothing was thrown";
    } catch (const std::bad_any_cast& error) {
        EXPECT_STREQ(error.what(), "\"SwatchColors\": expected an object");
    }
}

TEST(SwatchColorsFile, EveryListIsRequired)
{
    for (const char* const key : {"colorSwatches", "legalRangeGradient", "fullRangeGradient"}) {
        ExpectColorsToThrow<missing_key_exception>(Replaced(kColors, key, "other"));
    }
}

TEST(SwatchColorsFile, ElementsAreNumbers)
{
    for (const char* const element : {R"("0.25")", "true", "null", "[1]", "{}"}) {
        ExpectColorsToThrow<std::bad_any_cast>(Replaced(kColors, "0.25", element));
    }
}

TEST(SwatchCoordinatesFile, ReplacesAllSixLists)
{
    const test::TemporaryFolder folder;
    for (const std::string& text : {kCoordinates, Wrapped(kCoordinates)}) {
        SwatchCoordinates coordinates = kOtherCoordinates;
        EXPECT_EQ(ReadSwatchCoordinatesFile(folder.Write("c.json", text).u16string(), coordinates), 0);
        // 4294967303 is 2^32 + 7.
        EXPECT_EQ(coordinates, (SwatchCoordinates{{{1, 2}, {3}}, {{}, {4, 5}}, {{-6}, {7}}})) << text;
    }
}

TEST(SwatchCoordinatesFile, MissingYCoordinatesAreNamedInEachOfTheThree)
{
    const test::TemporaryFolder folder;
    for (int band = 0; band < 3; ++band) {
        const char* const name = std::array{"colorSwatches", "legalRangeGradient",
                                            "fullRangeGradient"}[static_cast<std::size_t>(band)];
        std::string text = kCoordinates;
        std::size_t place = 0;
        for (int skipped = 0; skipped <= band; ++skipped) {
            place = text.find("yCoordinates", place + 1);
        }
        text.replace(place, 1, "z");
        SwatchCoordinates coordinates = kOtherCoordinates;
        try {
            static_cast<void>(ReadSwatchCoordinatesFile(folder.Write("c.json", text).u16string(), coordinates));
            FAIL() << "nothing was thrown: " << text;
        } catch (const missing_key_exception& exception) {
            EXPECT_EQ(exception.Key(), "yCoordinates");
            EXPECT_EQ(exception.what(),
                      '"' + std::string(name) + ".yCoordinates\": missing key of Coordinates");
        }
        EXPECT_EQ(coordinates, kOtherCoordinates);
    }
}

TEST(SwatchCoordinatesFile, EveryBandIsRequired)
{
    for (const char* const key : {"colorSwatches", "legalRangeGradient", "fullRangeGradient"}) {
        ExpectCoordinatesToThrow<missing_key_exception>(Replaced(kCoordinates, key, "other"));
    }
}

TEST(SwatchCoordinatesFile, ElementsAreIntegers)
{
    for (const char* const element : {"1.5", "1.0", "1e0", R"("1")", "null", "true"}) {
        ExpectCoordinatesToThrow<std::bad_any_cast>(Replaced(kCoordinates, "-6", element));
    }
}

TEST(SwatchValues, ReadBackAsTheyWereWritten)
{
    const auto colors = ImporterTessel::ValueFromSwatchColors(kOtherColors);
    EXPECT_EQ(ImporterTessel::SwatchColorsFromValue(colors, "colors"), kOtherColors);
    const auto coordinates = ImporterTessel::ValueFromSwatchCoordinates(kOtherCoordinates);
    EXPECT_EQ(ImporterTessel::SwatchCoordinatesFromValue(coordinates, "coordinates"), kOtherCoordinates);
}
