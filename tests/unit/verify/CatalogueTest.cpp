#include <tessel/verify/catalogue/Catalogue.h>

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>
#include <string>

namespace tessel::verify {
namespace {

TEST(Catalogue, NamesEveryCheckOnce)
{
    std::set<std::string_view> seen;
    for (const CheckInfo& check : Catalogue()) {
        EXPECT_TRUE(seen.insert(check.id).second) << check.id;
        EXPECT_EQ(FindCheck(check.id), &check);
    }
    EXPECT_EQ(seen.size(), id::kAll.size());
    EXPECT_EQ(FindCheck("color.taste"), nullptr);
}

TEST(Catalogue, SaysOfEveryCheckWhatItAsksAndWhatShowsIt)
{
    for (const CheckInfo& check : Catalogue()) {
        EXPECT_EQ(check.sentence.back(), '.') << check.id;
        EXPECT_FALSE(check.visibleBy.empty()) << check.id;
        EXPECT_FALSE(check.use.empty()) << check.id;
    }
}

TEST(Catalogue, ConsequencesAreChecksAndNeverTheirOwnCause)
{
    for (const CheckInfo& check : Catalogue()) {
        for (const std::string_view consequence : ConsequencesOf(check.id)) {
            EXPECT_NE(FindCheck(consequence), nullptr) << check.id;
            EXPECT_NE(consequence, check.id);
        }
    }
}

TEST(Catalogue, StandsInTheDocumentAsItIs)
{
    std::ifstream file(TEST_VERIFY_DOCUMENT);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_NE(text.find(CatalogueAsMarkdown()), std::string::npos) << "docs/verify.md must hold this table:\n"
                                                                   << CatalogueAsMarkdown();
}

} // namespace
} // namespace tessel::verify
