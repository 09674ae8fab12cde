// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

namespace diary::testing {

// An environment variable with another value, or without one, for as long as this lives.
class ScopedEnvironment {
public:
    ScopedEnvironment(const char *name, const std::optional<std::string> &value) : m_name(name) {
        if (const char *before = std::getenv(name))
            m_before = before;
        set(value);
    }
    ScopedEnvironment(const ScopedEnvironment &) = delete;
    ScopedEnvironment &operator=(const ScopedEnvironment &) = delete;
    ~ScopedEnvironment() { set(m_before); }

private:
    void set(const std::optional<std::string> &value) const {
        if (value)
            setenv(m_name.c_str(), value->c_str(), 1);
        else
            unsetenv(m_name.c_str());
        // The C library reads TZ only when asked to; for other variables this does no harm.
        tzset();
    }

    std::string m_name;
    std::optional<std::string> m_before;
};

} // namespace diary::testing
