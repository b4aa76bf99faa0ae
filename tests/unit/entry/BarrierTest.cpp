#include "TestModule.h"

#include <ImporterTessel/entry/ImporterTessel.h>
#include <kestrel/qelcore/exceptions/Exceptions.h>
#include <kestrel/qelcore/logging/Log.h>

#include <gtest/gtest.h>

#include <any>
#include <cstdint>
#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

class Barrier : public testing::Test {
protected:
    void SetUp() override { TestModule::Reset(); }
    void TearDown() override { TestModule::Reset(); }

    /// Sends a frame request that does `onRequest`.
    std::int32_t Throw(const std::function<void()>& onRequest)
    {
        TestModule::TheScript().onRequest = [onRequest] {
            onRequest();
            return 0;
        };
        TestModule instance;
        ksFrameRec record{};
        record.instance = &instance;
        return TestModule::ImportEntry(47, nullptr, nullptr, &record);
    }

    /// The one message since the last call.
    qelcore::logging::Message TakeMessage()
    {
        EXPECT_EQ(mMessages.size(), 1U);
        qelcore::logging::Message message = mMessages.empty() ? qelcore::logging::Message{} : mMessages[0];
        mMessages.clear();
        return message;
    }

    std::vector<qelcore::logging::Message> mMessages;
    qelcore::logging::ScopedListener mListener{
        [this](const qelcore::logging::Message& message) { mMessages.push_back(message); }};
};

/// A report's message without its end, where the host says which line it comes from.
std::string Reported(const qelcore::logging::Message& message)
{
    return message.text.substr(0, message.text.find(" [assertion "));
}

bool Holds(const std::string& text, const std::string& piece)
{
    return text.find(piece) != std::string::npos;
}

TEST_F(Barrier, BadAllocIsAnswered4)
{
    EXPECT_EQ(Throw([] { throw std::bad_alloc(); }), 4);
    const auto message = TakeMessage();
    EXPECT_EQ(Reported(message), "plugin.KsImportModule  importmod:0x0 Threw a bad_alloc during  selector:47");
    EXPECT_FALSE(Holds(message.text, "what()")) << message.text;
    EXPECT_TRUE(Holds(message.text, "1320")) << message.text;
    EXPECT_TRUE(Holds(message.text, "Importers\\Inc\\KsImportModule")) << message.text;
    EXPECT_TRUE(Holds(message.text, "\"false\"")) << message.text;
    EXPECT_EQ(message.context, "plugin.KsImportModule");
}

TEST_F(Barrier, DerivedBadAllocIsAnswered4)
{
    EXPECT_EQ(Throw([] { throw std::bad_array_new_length(); }), 4);
}

TEST_F(Barrier, ExceptionIsAnswered5WithItsText)
{
    EXPECT_EQ(Throw([] { throw std::runtime_error("JSON not well-formed"); }), 5);
    const auto message = TakeMessage();
    EXPECT_EQ(Reported(message), "plugin.KsImportModule  importmod:0x0 Threw an EXCEPTION during  "
                                 "selector:47. what() returned JSON not well-formed");
    EXPECT_TRUE(Holds(message.text, "1329")) << message.text;
    EXPECT_EQ(message.context, "plugin.KsImportModule");
}

TEST_F(Barrier, HostExceptionsThatAreStandardExceptionsAreAnsweredLikeThem)
{
    EXPECT_EQ(Throw([] { throw qelcore::serialization::type_exception("mFrameWidth", "an integer"); }), 5);
    EXPECT_TRUE(Holds(TakeMessage().text, "what() returned \"mFrameWidth\": expected an integer"));
    EXPECT_EQ(Throw([] { throw qelcore::null_pointer_exception("user interface"); }), 5);
    EXPECT_TRUE(Holds(TakeMessage().text, "user interface"));
}

TEST_F(Barrier, AnythingElseIsAnswered5WithoutText)
{
    const std::string expected =
        "plugin.KsImportModule  importmod:0x0 Threw an unknown EXCEPTION during  selector:47";
    EXPECT_EQ(Throw([] { throw 5; }), 5);
    auto message = TakeMessage();
    EXPECT_EQ(Reported(message), expected);
    EXPECT_FALSE(Holds(message.text, "what()")) << message.text;
    EXPECT_TRUE(Holds(message.text, "1337")) << message.text;

    EXPECT_EQ(Throw([] { throw qelcore::Exception("not a standard exception"); }), 5);
    message = TakeMessage();
    EXPECT_EQ(Reported(message), expected);
}

TEST_F(Barrier, ReportsNameTheNotedPointerInBareHexadecimalDigitsAndTheSelectorInDecimalOnes)
{
    ImportRequest request;
    request.selector = 86;
    request.currentImporter = reinterpret_cast<const void*>(std::uintptr_t{0xABC10});
    ReportException("class TestModule", request, "why");
    EXPECT_EQ(Reported(TakeMessage()), "plugin.KsImportModule  importmod:0xabc10 Threw an EXCEPTION "
                                       "during  selector:86. what() returned why");
}

TEST_F(Barrier, StandsAroundEverySelectorThatHasWork)
{
    TestModule instance;
    TestModule::TheScript().onRequest = []() -> std::int32_t { throw std::runtime_error("why"); };
    for (const int selector : {0, 14, 25, 37, 38, 39, 45, 47, 73}) {
        // The instance at each place where a record has it: 0, 20, 36 and 198.
        std::array<std::uint8_t, 1024> record{};
        for (const std::size_t offset : {0U, 36U, 198U}) {
            const void* const pointer = &instance;
            std::memcpy(record.data() + offset, &pointer, sizeof pointer);
        }
        if (selector == 25) {
            const void* const pointer = &instance;
            std::memcpy(record.data() + 20, &pointer, sizeof pointer);
        }
        const bool isIndexed = selector == 14 || selector == 73;
        EXPECT_EQ(
            TestModule::ImportEntry(selector, nullptr, isIndexed ? nullptr : record.data(), record.data()), 5)
            << selector;
        const auto message = TakeMessage();
        EXPECT_TRUE(Holds(message.text, " selector:" + std::to_string(selector) + ".")) << message.text;
    }
}

/// An exception whose `what()` is null, which the standard forbids.
struct Mute : std::exception {
    [[nodiscard]] const char* what() const noexcept override { return nullptr; }
};

TEST_F(Barrier, ExceptionWithoutAnyTextIsReportedAsOne)
{
    EXPECT_EQ(Throw([] { throw Mute(); }), 5);
    EXPECT_EQ(Reported(TakeMessage()), "plugin.KsImportModule  importmod:0x0 Threw an EXCEPTION during  "
                                       "selector:47. what() returned ");
}

TEST_F(Barrier, ConstructionThatThrowsWithoutAnyTextIsReported)
{
    TestModule::TheScript().onConstruction = [] { throw Mute(); };
    ksFileInfoRec record{};
    EXPECT_EQ(TestModule::ImportEntry(81, nullptr, nullptr, &record), 5);
    ASSERT_EQ(mMessages.size(), 3U);
    EXPECT_EQ(mMessages[0].text, "<plugin.KsImportModule> An exception occured creating ImportModule class "
                                 "TestModule what() returned ");
}

TEST_F(Barrier, FailedCreationIsLoggedThenReportedAndThenAnsweredByTheBarrier)
{
    struct Row {
        std::function<void()> onConstruction;
        std::int32_t result;
        std::string what;
    };
    const std::string allocationText = std::bad_alloc().what();
    for (const Row& row : {Row{[] { throw std::bad_alloc(); }, 4, allocationText},
                           Row{[] { throw std::runtime_error("no colour space"); }, 5, "no colour space"}}) {
        for (const int selector : {37, 39, 81}) {
            TestModule::TheScript().onConstruction = row.onConstruction;
            std::array<std::uint8_t, 1024> record{};
            EXPECT_EQ(TestModule::ImportEntry(selector, nullptr, record.data(), record.data()), row.result);
            ASSERT_EQ(mMessages.size(), 3U);
            const std::string line = "<plugin.KsImportModule> An exception occured creating ImportModule class "
                                     "TestModule what() returned " +
                                     row.what;
            EXPECT_EQ(mMessages[0].text, line) << "the log";
            EXPECT_EQ(Reported(mMessages[1]), line) << "the report";
            EXPECT_TRUE(Holds(mMessages[1].text, "315")) << mMessages[1].text;
            EXPECT_TRUE(Holds(mMessages[2].text, " selector:" + std::to_string(selector)))
                << "the barrier: " << mMessages[2].text;
            mMessages.clear();
            const std::array<std::uint8_t, 1024> zeros{};
            EXPECT_EQ(record, zeros) << "selector " << selector;
        }
    }
}

TEST_F(Barrier, ConstructionThatThrowsNoStandardExceptionIsReportedOnlyByTheBarrier)
{
    TestModule::TheScript().onConstruction = [] { throw 5; };
    ksFileInfoRec record{};
    EXPECT_EQ(TestModule::ImportEntry(81, nullptr, nullptr, &record), 5);
    EXPECT_TRUE(Holds(TakeMessage().text, "unknown EXCEPTION"));
}

TEST_F(Barrier, LogsCarryTheImportersTypeName)
{
    EXPECT_EQ(ImporterTessel::ImporterTessel::kTypeName, "class ImporterTessel::ImporterTessel");
    ReportBadAlloc(ImporterTessel::ImporterTessel::kTypeName, {});
    EXPECT_EQ(TakeMessage().context, "plugin.KsImportModule");
}

} // namespace
