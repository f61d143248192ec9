// The error number that a step raised, as a host reads Err.Number after it.
#pragma once

#include <zelkon/common/error.h>

// 0 when the step raised nothing; the message goes to `message` when one is asked for.
template<typename Step>
int errorOf(Step &&step, QString *message = nullptr)
{
    try {
        step();
    } catch (const zelkon::Error &e) {
        if (message)
            *message = e.message();
        return e.number();
    }
    return 0;
}
