#include <zelkon/common/checkclass.h>
#include <zelkon/common/registry.h>

namespace zelkon {

CheckClass::CheckClass(QObject *parent)
    : QObject(parent)
{ }

ZELKON_REGISTER_OBJECT(CheckClass, "CheckClass");

} // namespace zelkon
