// Runs steps so that a failing step is skipped and the next one still runs.
#pragma once

#include <zelkon/common/error.h>

#include <functional>
#include <initializer_list>

namespace zelkon {

// Runs one step; returns false when it raised a run-time error. Property procedures and event
// handlers of the controls must never disturb the host form, so a run-time error of a step is
// swallowed here and nowhere else. Anything else (an exhausted memory, a bug) is not a run-time
// error of the platform and goes on to the caller rather than vanish.
template<typename Step>
bool attempt(Step &&step)
{
    try {
        std::forward<Step>(step)();
        return true;
    } catch (const Error &) {
        return false;
    }
}

// Runs every step in order, each on its own: a step that raises a run-time error is skipped and
// the rest still run. Returns how many steps failed.
inline int ignoreErrors(std::initializer_list<std::function<void()>> steps)
{
    int failed = 0;
    for (const auto &step : steps) {
        if (!attempt(step))
            ++failed;
    }
    return failed;
}

} // namespace zelkon
