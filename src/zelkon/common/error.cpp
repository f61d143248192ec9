#include <zelkon/common/error.h>

namespace zelkon {

Error::Error(int number, const QString &message)
    : std::runtime_error(message.toStdString())
    , m_number(number)
{ }

Error::Error(int number)
    : Error(number, standardText(number))
{ }

QString Error::message() const
{
    return QString::fromStdString(what());
}

QString Error::standardText(int number)
{
    switch (number) {
    case InvalidProcedureCall:
        return QStringLiteral("Invalid procedure call or argument");
    case Overflow:
        return QStringLiteral("Overflow");
    case SubscriptOutOfRange:
        return QStringLiteral("Subscript out of range");
    case TypeMismatch:
        return QStringLiteral("Type mismatch");
    case FileError:
        return QStringLiteral("Path/File access error");
    case ObjectNotSet:
        return QStringLiteral("Object variable not set");
    case InvalidUseOfNull:
        return QStringLiteral("Invalid use of Null");
    case MemberNotSupported:
        return QStringLiteral("Object doesn't support this property or method");
    case DuplicateKey:
        return QStringLiteral("This key is already associated with an element of this collection");
    default:
        return QStringLiteral("Application-defined or object-defined error %1").arg(number);
    }
}

} // namespace zelkon
