#include <tessel/typed/NearMisses.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tessel::typed {
namespace {

const std::vector<std::string> kCommands = {"info", "render", "verify", "new", "help"};

TEST(NearMisses, OneWrongMissingExtraOrSwappedLetterIsForgiven)
{
    EXPECT_EQ(NearestTo("rendor", kCommands), "render"); // wrong
    EXPECT_EQ(NearestTo("rendr", kCommands), "render");  // missing
    EXPECT_EQ(NearestTo("rrender", kCommands), "render");
    EXPECT_EQ(NearestTo("redner", kCommands), "render"); // a swap is one slip, not two
    EXPECT_EQ(NearestTo("nwe", kCommands), "new");
    EXPECT_EQ(NearestTo("RENDER", kCommands), "render");
}

TEST(NearMisses, ABeginningStandsForTheWholeWord)
{
    EXPECT_EQ(NearestTo("ver", kCommands), "verify");
    EXPECT_EQ(NearestTo("v", kCommands), "") << "one letter says nothing";
    const std::vector<std::string> spaces = {"rec709", "rec601-pal"};
    EXPECT_EQ(NearestTo("rec601", spaces), "rec601-pal") << "though two other letters make rec709 of it";
}

TEST(NearMisses, WhatIsLikeNothingGetsNoGuess)
{
    EXPECT_EQ(NearestTo("nonsense", kCommands), "");
    EXPECT_EQ(NearestTo("", kCommands), "");
    EXPECT_EQ(NearestTo("a", std::vector<std::string>{"b"}), "");
    EXPECT_EQ(NearestTo(std::string(100000, 'x'), kCommands), "");
    EXPECT_EQ(NearestTo("render", {}), "");
}

TEST(NearMisses, TheNearestOfSeveralIsMeant)
{
    const std::vector<std::string> codecs = {"pcm16", "pcm24", "pcm32"};
    EXPECT_EQ(NearestTo("pcm34", codecs), "pcm24") << "as near as pcm32, and listed before it";
    EXPECT_EQ(NearestTo("pcm322", codecs), "pcm32");
    EXPECT_EQ(DidYouMean("pcm322", codecs), "; did you mean 'pcm32'?");
    EXPECT_EQ(DidYouMean("vorbis", codecs), "");
}

} // namespace
} // namespace tessel::typed
