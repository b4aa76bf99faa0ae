#include <kestrel/qelcore/FourCharacterCode.h>
#include <kestrel/qelcore/text/FourCharacterText.h>
#include <kestrel/qelcore/text/LetterCase.h>

#include <gtest/gtest.h>

namespace {

using qelcore::text::LowerCase;

static_assert(LowerCase('A') == 'a' && LowerCase('Z') == 'z');
static_assert(LowerCase('@') == '@' && LowerCase('[') == '[', "the neighbours of A and Z");

TEST(LowerCase, ChangesCapitalLettersOfAsciiAndNothingElse)
{
    EXPECT_EQ(LowerCase("Rec. 709 \xC3\x84\xC3\xA4_Z"),
              "rec. 709 \xC3\x84\xC3\xA4_z"); // A and a with diaeresis
    EXPECT_EQ(LowerCase(""), "");
}

TEST(FourCharacterCode, IsShownInItsOwnByteOrder)
{
    EXPECT_EQ(qelcore::FourCharacterCode("IMPT"), 0x494D5054U);
    EXPECT_EQ(qelcore::text::TextOfFourCharacters(0x494D5054U), "IMPT");
    EXPECT_EQ(qelcore::FourBytesCode("bgra"), 0x61726762U);
    EXPECT_EQ(qelcore::text::TextOfFourBytes(0x61726762U), "bgra");
}

TEST(FourCharacterCode, ShowsAQuestionMarkForWhatCannotBeShown)
{
    EXPECT_EQ(qelcore::text::TextOfFourCharacters(0x41001F7FU), "A???");
    EXPECT_EQ(qelcore::text::TextOfFourCharacters(0x7E20FF80U), "~ ??");
    EXPECT_EQ(qelcore::text::TextOfFourBytes(0), "????");
}

} // namespace
