#include <zelkon/common/conversions.h>
#include <zelkon/common/error.h>
#include <zelkon/dropdown/itemlist_p.h>
#include <zelkon/dropdown/lbvalue.h>

#include <algorithm>
#include <utility>

namespace zelkon {

void ItemList::append(LBValue *item, const QString &key)
{
    if (!key.isEmpty()) {
        if (m_keys.contains(folded(key)))
            throw Error(DuplicateKey);
        m_keys.insert(folded(key), item);
    }
    m_items.push_back(item);
}

qsizetype ItemList::positionOf(const QVariant &index) const
{
    if (index.typeId() == QMetaType::QString) {
        const auto found = m_keys.constFind(folded(index.toString()));
        if (found == m_keys.cend())
            throw Error(InvalidProcedureCall);
        return std::find(m_items.cbegin(), m_items.cend(), found.value()) - m_items.cbegin();
    }
    if (!index.isValid() || !IsNumeric(index))
        throw Error(InvalidProcedureCall);
    const qint32 position = CLng(index); // rounds half to even, as the platform does
    if (position < 1 || position > count())
        throw Error(SubscriptOutOfRange);
    return position - 1;
}

LBValue *ItemList::item(const QVariant &index) const
{
    return m_items[size_t(positionOf(index))];
}

LBValue *ItemList::take(const QVariant &index)
{
    const auto at = m_items.begin() + positionOf(index);
    LBValue *item = *at;
    m_items.erase(at);
    const auto keyed = m_keys.constFind(folded(item->Key()));
    if (keyed != m_keys.cend() && keyed.value() == item)
        m_keys.erase(keyed);
    return item;
}

std::vector<LBValue *> ItemList::takeAll()
{
    m_keys.clear();
    return std::exchange(m_items, {});
}

} // namespace zelkon
