/// Exceptions that are thrown while a request is served, and the answers that they become.

#include "Documents.h"
#include "TesselChecks.h"

#include <new>
#include <stdexcept>

namespace conformance {

namespace {

void ExceptionsBecomeAnswers(Plugin& plugin)
{
    const ksInstance instance = OpenDocument(plugin, Document());
    void* frame = nullptr;
    ExpectEqual(RequestFrame(plugin, instance, 0, frame), 0, "selector 47");
    struct Thrown {
        void (*thrower)();
        int answer;
        const char* what;
    };
    for (const Thrown& thrown : {Thrown{[] { throw std::bad_alloc(); }, 4, "a bad_alloc"},
                                 {[] { throw std::bad_array_new_length(); }, 4, "a kind of bad_alloc"},
                                 {[] { throw std::runtime_error("from the host"); }, 5, "a runtime_error"},
                                 {[] { throw std::exception(); }, 5, "an exception without a text"},
                                 {[] { throw 7; }, 5, "a number"}}) { // NOLINT(hicpp-exception-baseclass)
        Foreign().beforeCreation = thrown.thrower;
        ExpectEqual(RequestFrame(plugin, instance, 0, frame), thrown.answer,
                    std::string("selector 47, where the frame creation throws ") + thrown.what);
        Foreign().beforeCreation = nullptr;
        ExpectEqual(RequestFrame(plugin, instance, 0, frame), 0, "selector 47 afterwards");
    }
}

} // namespace

std::vector<Check> TesselBarrierChecks()
{
    return {{"tessel.barrier.results", "A bad_alloc is answered 4, any other exception 5",
             ExceptionsBecomeAnswers}};
}

} // namespace conformance
