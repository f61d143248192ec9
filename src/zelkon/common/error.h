// zelkon::Error: a run-time error with the platform's error number.
#pragma once

#include <zelkon/common/global.h>

#include <QString>

#include <stdexcept>

namespace zelkon {

// The platform's run-time error numbers that the library raises.
enum ErrorNumber : int {
    InvalidProcedureCall = 5,
    Overflow = 6,
    SubscriptOutOfRange = 9,
    TypeMismatch = 13,
    ObjectNotSet = 91,
    InvalidUseOfNull = 94,
    MemberNotSupported = 438,
    DuplicateKey = 457,
    FileError = 75,
    DatabaseError = 3001, // the database's own errors are 3001 and up
};

class ZELKON_EXPORT Error : public std::runtime_error
{
public:
    Error(int number, const QString &message);
    // An error with the platform's standard text for its number.
    explicit Error(int number);

    int number() const noexcept { return m_number; }
    QString message() const;

    static QString standardText(int number);

private:
    int m_number;
};

} // namespace zelkon
