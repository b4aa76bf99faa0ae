/// A variable of the environment for one test.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace test {

/// Set, or absent, from construction to destruction; then as it was before. One thread at a time.
class ScopedVariable {
public:
    /// @param value  Null: the variable is absent.
    ScopedVariable(const char* name, const char* value) : mName(name)
    {
        if (const char* const before = std::getenv(name)) {
            mBefore = before;
        }
        Put(value);
    }
    ~ScopedVariable() { Put(mBefore ? mBefore->c_str() : nullptr); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    void Put(const char* value) const
    {
        if (value != nullptr) {
            setenv(mName, value, 1);
        } else {
            unsetenv(mName);
        }
    }

    const char* mName;
    std::optional<std::string> mBefore;
};

} // namespace test
