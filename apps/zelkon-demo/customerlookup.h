// The demo's customer lookup: a Navigator over the sample database's customers.
#pragma once

class QObject;
namespace zelkon {
class Connection;
}

namespace CustomerLookup {

// Gives the lookup a recordset of the customers, names shown and searched, identifiers answered
// through Text2. The recordset belongs to the lookup.
void fill(QObject *navigator, zelkon::Connection *connection);

} // namespace CustomerLookup
