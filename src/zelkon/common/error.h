/// \file
/// zelkon::Error: a run-time error with the platform's error number.
#pragma once

#include <zelkon/common/global.h>

#include <QString>

#include <stdexcept>

namespace zelkon {

/// The platform's run-time error numbers that the library raises (the data layer's own are in
/// DataErrorNumber).
enum ErrorNumber : int {
    /// An argument outside what the member accepts.
    InvalidProcedureCall = 5,
    /// A number too large for its type.
    Overflow = 6,
    /// An index outside an array's or a list's bounds.
    SubscriptOutOfRange = 9,
    /// A value of a kind that cannot be converted.
    TypeMismatch = 13,
    /// An object argument or property that is nothing.
    ObjectNotSet = 91,
    /// Null where a value is needed.
    InvalidUseOfNull = 94,
    /// No member of that name on the object.
    MemberNotSupported = 438,
    /// A key already in the collection.
    DuplicateKey = 457,
    /// A file that cannot be read or written.
    FileError = 75,
    DatabaseError = 3001, ///< the database's own errors are 3001 and up
};

/// A run-time error with the platform's error number: what every member of the library throws, also
/// when it is called by name. what() holds the message in UTF-8.
class ZELKON_EXPORT Error : public std::runtime_error
{
public:
    /// An error with its own message.
    Error(int number, const QString &message);
    /// An error with the platform's standard text for its number.
    explicit Error(int number);

    /// The platform's error number (see ErrorNumber and DataErrorNumber).
    int number() const noexcept { return m_number; }
    /// The message, as given or the standard text.
    QString message() const;

    /// The platform's standard text for an error number, in English.
    static QString standardText(int number);

private:
    int m_number;
};

} // namespace zelkon
