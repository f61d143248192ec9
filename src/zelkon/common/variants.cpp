#include <zelkon/common/variants.h>

#include <QDateTime>

#include <cmath>
#include <cstring>

namespace zelkon {

bool IsObject(const QVariant &v)
{
    return v.metaType().flags().testFlag(QMetaType::PointerToQObject);
}

QObject *toObject(const QVariant &v)
{
    if (!IsObject(v))
        return nullptr;
    return *static_cast<QObject *const *>(v.constData());
}

bool isNumberType(const QVariant &v)
{
    switch (v.metaType().id()) {
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Float:
    case QMetaType::Double:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
        return true;
    default:
        return false;
    }
}

bool isDateType(const QVariant &v)
{
    const int id = v.metaType().id();
    return id == QMetaType::QDateTime || id == QMetaType::QDate;
}

bool identical(const QVariant &a, const QVariant &b)
{
    if (a.metaType() != b.metaType())
        return false;
    if (!a.isValid() || IsNull(a) || IsMissing(a))
        return true;
    switch (a.metaType().id()) {
    case QMetaType::Double: {
        const double x = a.toDouble(), y = b.toDouble();
        return std::memcmp(&x, &y, sizeof x) == 0 || (std::isnan(x) && std::isnan(y));
    }
    case QMetaType::Float: {
        const float x = a.toFloat(), y = b.toFloat();
        return std::memcmp(&x, &y, sizeof x) == 0 || (std::isnan(x) && std::isnan(y));
    }
    case QMetaType::QDateTime:
        return a.toDateTime() == b.toDateTime()
            && a.toDateTime().timeSpec() == b.toDateTime().timeSpec();
    case QMetaType::QVariantList: {
        const QVariantList x = a.toList(), y = b.toList();
        if (x.size() != y.size())
            return false;
        for (qsizetype i = 0; i < x.size(); ++i) {
            if (!identical(x.at(i), y.at(i)))
                return false;
        }
        return true;
    }
    default:
        if (isVariantArray(a))
            return a.value<VariantArray>() == b.value<VariantArray>();
        return a == b;
    }
}

static bool numericValue(const QVariant &v, double *out)
{
    if (!v.isValid()) {
        *out = 0;
        return true;
    }
    if (v.metaType().id() == QMetaType::Bool) {
        *out = v.toBool() ? -1 : 0;
        return true;
    }
    if (isNumberType(v)) {
        *out = v.toDouble();
        return true;
    }
    return false;
}

bool looselyEquals(const QVariant &a, const QVariant &b)
{
    if (IsNull(a) || IsNull(b))
        return IsNull(a) && IsNull(b);
    if (IsMissing(a) || IsMissing(b))
        return IsMissing(a) && IsMissing(b);
    const bool aString = a.metaType().id() == QMetaType::QString;
    const bool bString = b.metaType().id() == QMetaType::QString;
    if (aString || bString) {
        if (aString && bString)
            return a.toString() == b.toString();
        const QVariant &other = aString ? b : a;
        return !other.isValid() && (aString ? a : b).toString().isEmpty();
    }
    if (isDateType(a) || isDateType(b)) {
        if (!(isDateType(a) && isDateType(b)))
            return false;
        const QDateTime x
            = a.metaType().id() == QMetaType::QDate ? a.toDate().startOfDay() : a.toDateTime();
        const QDateTime y
            = b.metaType().id() == QMetaType::QDate ? b.toDate().startOfDay() : b.toDateTime();
        return x == y;
    }
    double x = 0, y = 0;
    if (numericValue(a, &x) && numericValue(b, &y))
        return x == y;
    return identical(a, b);
}

} // namespace zelkon
