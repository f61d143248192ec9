/// \file
/// Error numbers of the data-access layer (all in the database range, 3001 and up).
#pragma once

#include <zelkon/common/error.h>

namespace zelkon {

/// Error numbers of the data-access layer.
///
/// The numbers follow the platform's data-access objects, so that a host that tests
/// `Err.Number` against the numbers it knows keeps working.
enum DataErrorNumber : int {
    BadArguments = 3001, ///< wrong, out-of-range or unreadable argument (a bad Find criterion)
    NoCurrentRecord = 3021, ///< BOF or EOF is True: there is no current record
    DatabaseCallFailed = 3146, ///< the database driver refused: the text is the driver's message
    ItemNotFound = 3265, ///< no field with that name or ordinal
    ObjectClosed = 3704, ///< the recordset or connection is closed
    ObjectOpen = 3705, ///< the recordset or connection is already open
    ProviderNotFound = 3706, ///< no QtSql driver of that name
    ConnectionNotUsable = 3709, ///< no connection, or a closed one
};

} // namespace zelkon
