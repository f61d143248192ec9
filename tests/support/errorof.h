// The error number that a step raised (0 for none), as a host reads Err.Number after it.
#pragma once

#include <zelkon/common/error.h>

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
