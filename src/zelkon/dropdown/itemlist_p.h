// The ordered, optionally keyed list of a Down: 1-based positions, unique keys that compare
// without regard to case, and the platform collection's error numbers.
#pragma once

#include <QHash>
#include <QString>
#include <QVariant>

#include <vector>

namespace zelkon {

class LBValue;

class ItemList
{
public:
    qint32 count() const { return qint32(m_items.size()); }
    // An empty key appends the item without one. A key already present raises 457 and leaves the
    // list as it was.
    void append(LBValue *item, const QString &key);
    // `index` is a 1-based position (a number) or a key (a string). An unknown key raises 5, a
    // position out of range 9.
    LBValue *item(const QVariant &index) const;
    // Takes the item out of the list; the caller owns it from then on.
    LBValue *take(const QVariant &index);
    std::vector<LBValue *> takeAll();
    const std::vector<LBValue *> &items() const { return m_items; }

private:
    qsizetype positionOf(const QVariant &index) const; // 0-based
    static QString folded(const QString &key) { return key.toCaseFolded(); }

    std::vector<LBValue *> m_items;
    QHash<QString, LBValue *> m_keys; // by folded key
};

} // namespace zelkon
