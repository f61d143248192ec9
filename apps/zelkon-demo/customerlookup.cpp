#include "customerlookup.h"

#include <zelkon/common/error.h>
#include <zelkon/data/connection.h>
#include <zelkon/data/recordset.h>

void CustomerLookup::fill(QObject *navigator, zelkon::Connection *connection)
{
    if (!navigator || !connection || !connection->isOpen())
        return;
    auto *customers = new zelkon::Recordset(navigator);
    try {
        customers->Open(QStringLiteral("SELECT id, name FROM customers ORDER BY name"),
                        QVariant::fromValue<QObject *>(connection));
    } catch (const zelkon::Error &) {
        // A closed recordset leaves the lookup empty; the form works without it.
    }
    // By name, as a host that knows only the member names does. The field sits on the form's last
    // row, so its list opens upward, over the form rather than past its end.
    navigator->setProperty("FieldInd", 1);
    navigator->setProperty("FieldInd2", 0);
    navigator->setProperty("UpDown", true);
    navigator->setProperty("Text", QString());
    navigator->setProperty("DataSourthe", QVariant::fromValue<QObject *>(customers));
}
