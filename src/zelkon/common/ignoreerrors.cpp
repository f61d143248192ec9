#include <zelkon/common/ignoreerrors.h>

namespace zelkon {

int ignoreErrors(std::initializer_list<std::function<void()>> steps) noexcept
{
    int failed = 0;
    for (const auto &step : steps) {
        if (!attempt(step))
            ++failed;
    }
    return failed;
}

} // namespace zelkon
