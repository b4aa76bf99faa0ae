#include <kestrel/qelcore/exceptions/Exceptions.h>
#include <kestrel/qelcore/logging/Log.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

using namespace qelcore::logging;

TEST(Log, GoesToStandardErrorAsOneLineWhenNobodyListens)
{
    ::testing::internal::CaptureStderr();
    Log("who", "what\nand\tmore");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "who: what and more\n");
}

TEST(Log, GoesToTheNewestListenerAlone)
{
    std::vector<std::string> outer;
    std::vector<std::string> inner;
    ::testing::internal::CaptureStderr();
    {
        const ScopedListener outerListener([&](const Message& message) { outer.push_back(message.text); });
        Log("c", "1");
        {
            const ScopedListener innerListener([&](const Message& message) { inner.push_back(message.text); });
            Log("c", "2");
        }
        Log("c", "3");
    }
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(outer, (std::vector<std::string>{"1", "3"}));
    EXPECT_EQ(inner, (std::vector<std::string>{"2"}));
}

TEST(Log, ListenersHearTheirOwnThreadOnly)
{
    int heard = 0;
    const ScopedListener listener([&](const Message&) { ++heard; });
    ::testing::internal::CaptureStderr();
    std::thread([] { Log("c", "other thread"); }).join();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "c: other thread\n");
    EXPECT_EQ(heard, 0);
}

TEST(Log, WhatAHandlerLogsGoesToTheNextOlderListener)
{
    std::vector<std::string> outer;
    const ScopedListener outerListener([&](const Message& message) { outer.push_back(message.text); });
    const ScopedListener innerListener([](const Message& message) { Log("inner", "heard " + message.text); });
    Log("c", "1");
    Log("c", "2");
    EXPECT_EQ(outer, (std::vector<std::string>{"heard 1", "heard 2"}));
}

TEST(Log, HandlersExceptionsStopThere)
{
    int heard = 0;
    const ScopedListener listener([&](const Message&) {
        ++heard;
        throw std::runtime_error("handler");
    });
    ::testing::internal::CaptureStderr();
    Log("c", "1");
    Log("c", "2");
    (void)::testing::internal::GetCapturedStderr();
    EXPECT_EQ(heard, 2);
}

TEST(LogCurrentException, TellsWhatItIs)
{
    std::vector<Message> messages;
    const ScopedListener listener([&](const Message& message) { messages.push_back(message); });
    try {
        throw qelcore::serialization::missing_key_exception("a", "Record");
    } catch (...) {
        LogCurrentException("reader");
    }
    try {
        throw 1;
    } catch (...) {
        LogCurrentException("reader");
    }
    struct Mute : std::exception {
        [[nodiscard]] const char* what() const noexcept override { return nullptr; }
    };
    try {
        throw Mute();
    } catch (...) {
        LogCurrentException("reader");
    }
    ASSERT_EQ(messages.size(), 3U);
    EXPECT_EQ(messages[0].context, "reader");
    EXPECT_EQ(messages[0].text, "\"a\": missing key of Record");
    EXPECT_EQ(messages[1].text, "unknown exception");
    EXPECT_EQ(messages[2].text, "unknown exception") << "one without a text";
}

} // namespace
