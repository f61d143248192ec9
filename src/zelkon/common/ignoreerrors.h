// Runs steps so that a failing step is skipped and the next one still runs.
#pragma once

#include <zelkon/common/global.h>

#include <exception>
#include <functional>
#include <initializer_list>

namespace zelkon {

// Runs one step; returns false when it threw. Property procedures and event handlers of the
// controls must never disturb the host form, so every failure is swallowed here and nowhere else.
template<typename Step>
bool attempt(Step &&step) noexcept
{
    try {
        std::forward<Step>(step)();
        return true;
    } catch (...) {
        return false;
    }
}

// Runs every step in order, each on its own: a step that throws is skipped and the rest still run.
// Returns how many steps failed.
ZELKON_EXPORT int ignoreErrors(std::initializer_list<std::function<void()>> steps) noexcept;

} // namespace zelkon
