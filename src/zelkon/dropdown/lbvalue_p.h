// The state of an LBValue, and what only the list may change: the key and the wanted row.
#pragma once

#include <zelkon/dropdown/lbvalue.h>

namespace zelkon {

class LBValuePrivate
{
public:
    static LBValuePrivate *get(LBValue *item) { return item->d.get(); }

    QString text;
    QVariant value;
    QString key;
    // The wanted row in the pop-up list; -1 appends.
    qint32 itemIndex = -1;
    bool checked = false;
};

} // namespace zelkon
