/// From exceptions to results: the one way in which calls of the C interface end.
#pragma once

#include "tessel.h"

#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace tessel::api {

/// A call that cannot be served, with the result that says so.
class CallError : public std::runtime_error {
public:
    CallError(tessel_result result, const std::string& line) : std::runtime_error(line), mResult(result) {}

    [[nodiscard]] tessel_result Result() const noexcept { return mResult; }

private:
    tessel_result mResult;
};

/// @throws CallError  TESSEL_BAD_ARGUMENT with that line, where it does not hold
inline void Require(bool holds, const char* line)
{
    if (!holds) {
        throw CallError(TESSEL_BAD_ARGUMENT, line);
    }
}

/// The line that `tessel_error_text` gives on this thread.
[[nodiscard]] const char* LastError() noexcept;

/// Keeps the line, as far as there is memory, and gives the result back.
tessel_result Fail(tessel_result result, const char* line) noexcept;

/// In the last error, has the document be called "the document" instead of by the name of the file that stood
/// in for it, which callers never see. Needs no memory.
/// @param standIn  the file's name as messages have it; empty: the document is a file of the caller's
void NameDocument(std::string_view standIn) noexcept;

/// Runs a call. Whatever it throws becomes a result: its own for a `CallError`, `otherwise` for what the host
/// or the conversions throw.
template <typename Call>
tessel_result Serve(tessel_result otherwise, Call&& call) noexcept
{
    try {
        std::forward<Call>(call)();
        return TESSEL_OK;
    } catch (const CallError& error) {
        return Fail(error.Result(), error.what());
    } catch (const std::bad_alloc&) {
        return Fail(TESSEL_OUT_OF_MEMORY, "out of memory");
    } catch (const std::exception& error) {
        return Fail(otherwise, error.what());
    } catch (...) {
        return Fail(otherwise, "an exception of an unknown type");
    }
}

} // namespace tessel::api
