#include <kestrel/qelcore/resources/ResourceFile.h>

#include <gtest/gtest.h>
#include <support/TemporaryFolder.h>
#include <sys/stat.h>

#include <random>
#include <string>

namespace {

using namespace qelcore::resources;
using Bytes = std::vector<std::uint8_t>;

const std::filesystem::path kProgram = "/proc/self/exe";
const std::filesystem::path kLibrary = TEST_LIBRARY;

TEST(ReadResource, GivesTheSectionsBytes)
{
    EXPECT_EQ(ReadResource(kProgram, ".ksres.TEST.1"), (Bytes{0, 1, 2, 0xFF, 0}));
}

TEST(ReadResource, GivesNothingWithoutSuchASection)
{
    EXPECT_EQ(ReadResource(kProgram, ".ksres.TEST.4"), std::nullopt);
    EXPECT_EQ(ReadResource(kProgram, ".ksres.TEST"), std::nullopt);
    EXPECT_EQ(ReadResource(kProgram, ""), std::nullopt);
    EXPECT_EQ(ReadResource(kLibrary, ".ksres.TEST.1"), std::nullopt);
    EXPECT_EQ(ReadResource(kLibrary, ".bss"), std::nullopt) << "takes no bytes in the file";
}

TEST(FindLoadedResource, GivesTheBytesThatANoteOfTheProgramLeadsTo)
{
    EXPECT_EQ(FindLoadedResource("TEST.1"), (Bytes{0, 1, 2, 0xFF, 0}));
    EXPECT_EQ(FindLoadedResource("TEST.3"), Bytes());
}

TEST(FindLoadedResource, GivesNothingWithoutANoteOfThatVeryName)
{
    for (const char* const name : {"TEST.2", "TEST", "TEST.11", "", ".ksres.TEST.1"}) {
        EXPECT_EQ(FindLoadedResource(name), std::nullopt) << name;
    }
}

std::string ReasonOf(const std::filesystem::path& file)
{
    try {
        (void)ReadResource(file, ".ksres.TEST.1");
    } catch (const resource_exception& exception) {
        return exception.what();
    }
    return "no exception";
}

TEST(ReadResource, RefusesWhatIsNoLibraryAndNamesIt)
{
    const test::TemporaryFolder folder;
    test::WriteFile(folder / "text", "This is no library.");
    test::WriteFile(folder / "empty", "");
    EXPECT_EQ(ReasonOf(folder / "text"), (folder / "text").string() + ": is not a library of this platform");
    EXPECT_EQ(ReasonOf(folder / "empty"), (folder / "empty").string() + ": is not a library of this platform");
    EXPECT_EQ(ReasonOf(folder.Path()), folder.Path().string() + ": is not a file");
    EXPECT_EQ(ReasonOf(folder / "none").find((folder / "none").string()), 0U);
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(ReasonOf(folder / "pipe"), (folder / "pipe").string() + ": is not a file");
}

TEST(ReadResource, RefusesAnotherPlatformsLibrary)
{
    const test::TemporaryFolder folder;
    std::string bytes = test::ReadFile(kProgram);
    // The machine's number stands at byte 18 of an ELF file; 0xABCD is no machine.
    bytes[18] = '\xCD';
    bytes[19] = '\xAB';
    test::WriteFile(folder / "other.so", bytes);
    EXPECT_EQ(ReasonOf(folder / "other.so"),
              (folder / "other.so").string() + ": is not a library of this platform");
}

TEST(ReadResource, SurvivesBrokenLibraries)
{
    const test::TemporaryFolder folder;
    const std::string whole = test::ReadFile(kProgram);
    const auto read = [&](const std::string& bytes) {
        test::WriteFile(folder / "broken.so", bytes);
        try {
            (void)ReadResource(folder / "broken.so", ".ksres.TEST.1");
        } catch (const resource_exception&) {
            return; // Refusing the file is right, too.
        }
    };
    for (const std::size_t size : {1U, 16U, 63U, 64U, 65U, 4096U}) {
        read(whole.substr(0, size));
    }
    read(whole.substr(0, whole.size() / 2));
    read(whole.substr(0, whole.size() - 1));
    // NOLINTNEXTLINE(cert-msc32-c,cert-msc51-cpp): the seed is fixed so that a failure repeats.
    std::mt19937 random(1);
    for (int i = 0; i < 60; ++i) {
        std::string bytes = whole;
        for (int k = 0; k < 3; ++k) {
            // Section headers stand at the end, the file's header at the beginning.
            const std::size_t place = i % 2 == 0 ? random() % 64 : bytes.size() - 1 - random() % 2000;
            bytes[place] = static_cast<char>(random());
        }
        read(bytes);
    }
}

} // namespace
