#include <zelkon/checklist/checklistwidget.h>

#include <zelkon/common/error.h>

#include <QScrollBar>
#include <QSignalBlocker>
#include <QStyle>
#include <QStyleOptionViewItem>

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace zelkon {

namespace {

constexpr int CheckItemType = QListWidgetItem::UserType + 1;

// A row that keeps its text, item value and check in plain members, so that reading the checks
// of tens of thousands of rows does not build a variant per row and role. The view still reads
// and writes them through data() and setData().
class CheckItem : public QListWidgetItem
{
public:
    explicit CheckItem(const CheckRow &row)
        : QListWidgetItem(nullptr, CheckItemType)
        , m_text(row.text)
        , m_id(row.id)
        , m_checked(row.checked)
    {
        setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    }

    QVariant data(int role) const override
    {
        switch (role) {
        case Qt::DisplayRole:
        case Qt::EditRole:
            return m_text;
        case Qt::CheckStateRole:
            return int(m_checked ? Qt::Checked : Qt::Unchecked);
        case CheckListWidget::ItemValueRole:
            return m_id;
        default:
            return QListWidgetItem::data(role);
        }
    }

    void setData(int role, const QVariant &value) override
    {
        switch (role) {
        case Qt::DisplayRole:
        case Qt::EditRole:
            if (value.toString() == m_text)
                return;
            m_text = value.toString();
            break;
        case Qt::CheckStateRole:
            if ((value.toInt() == Qt::Checked) == m_checked)
                return;
            m_checked = value.toInt() == Qt::Checked;
            break;
        case CheckListWidget::ItemValueRole:
            if (value.toInt() == m_id)
                return;
            m_id = value.toInt();
            break;
        default:
            QListWidgetItem::setData(role, value);
            return;
        }
        if (auto *list = qobject_cast<CheckListWidget *>(listWidget()))
            list->rowDataChanged(this, role);
    }

    const QString &text() const { return m_text; }
    qint32 id() const { return m_id; }
    bool checked() const { return m_checked; }
    void setCheckedQuietly(bool checked) { m_checked = checked; }
    void assignQuietly(const CheckRow &row)
    {
        m_text = row.text;
        m_id = row.id;
        m_checked = row.checked;
    }

private:
    QString m_text;
    qint32 m_id;
    bool m_checked;
};

CheckItem *checkItem(QListWidgetItem *item)
{
    return item && item->type() == CheckItemType ? static_cast<CheckItem *>(item) : nullptr;
}

// Appends the text's case folding. Most row texts are plain ASCII, where folding is lowering
// A to Z; anything else takes the full Unicode case folding.
void appendFolded(std::vector<char16_t> &keys, const QString &text)
{
    const size_t start = keys.size();
    const auto *from = reinterpret_cast<const char16_t *>(text.constData());
    const qsizetype size = text.size();
    for (qsizetype i = 0; i < size; ++i) {
        const char16_t c = from[i];
        if (c >= 0x80) {
            keys.resize(start);
            const QString folded = text.toCaseFolded();
            const auto *f = reinterpret_cast<const char16_t *>(folded.constData());
            keys.insert(keys.end(), f, f + folded.size());
            return;
        }
        keys.push_back(c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c);
    }
}

} // namespace

CheckListWidget::CheckListWidget(bool sorted, QWidget *parent)
    : QListWidget(parent)
    , m_sorted(sorted)
{
    // Every row has the same height; without this the view measures each of up to 32767 rows.
    setUniformItemSizes(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
}

void CheckListWidget::sortRows(QList<CheckRow> &rows)
{
    const qsizetype n = rows.size();
    if (n < 2)
        return;
    // Every text is folded once, into one buffer: keys[start[i], start[i + 1]) is row i's key.
    std::vector<char16_t> keys;
    std::vector<qsizetype> start;
    start.reserve(static_cast<size_t>(n) + 1);
    qsizetype total = 0;
    for (const CheckRow &row : std::as_const(rows))
        total += row.text.size();
    keys.reserve(static_cast<size_t>(total));
    for (const CheckRow &row : std::as_const(rows)) {
        start.push_back(qsizetype(keys.size()));
        appendFolded(keys, row.text);
    }
    start.push_back(qsizetype(keys.size()));
    const auto key = [&](qsizetype i) {
        return std::u16string_view(keys.data() + start[size_t(i)],
                                   size_t(start[size_t(i) + 1] - start[size_t(i)]));
    };

    bool inOrder = true;
    for (qsizetype i = 1; i < n && inOrder; ++i)
        inOrder = !(key(i) < key(i - 1));
    if (inOrder)
        return;

    // Keys often share a long beginning (codes, numbered names). The code units after the part
    // that all keys share, packed into one integer (as many as fit: nine when the keys are
    // ASCII), decide most comparisons.
    size_t common = key(0).size();
    for (qsizetype i = 1; i < n && common > 0; ++i) {
        const std::u16string_view a = key(0), b = key(i);
        size_t same = 0;
        const size_t limit = std::min({common, a.size(), b.size()});
        while (same < limit && a[same] == b[same])
            ++same;
        common = same;
    }
    const char16_t highest = keys.empty() ? 0 : *std::max_element(keys.cbegin(), keys.cend());
    const int bits = highest < 0x80 ? 7 : highest < 0x100 ? 8 : 16;
    const size_t units = size_t(64 / bits);
    struct Entry
    {
        quint64 head; // the packed units, the first in the highest bits; 0 past the end
        qsizetype row;
    };
    std::vector<Entry> order(static_cast<size_t>(n));
    for (qsizetype i = 0; i < n; ++i) {
        const std::u16string_view k = key(i);
        quint64 head = 0;
        for (size_t j = 0; j < units; ++j)
            head = (head << bits) | (common + j < k.size() ? quint64(k[common + j]) : 0);
        order[size_t(i)] = {head, i};
    }
    // A stable radix sort on the packed units, sixteen bits per pass, skipping the passes in
    // which every row has the same bits...
    std::vector<Entry> buffer(order.size());
    std::vector<quint32> counts(0x10000);
    for (int shift = 0; shift < 64; shift += 16) {
        const auto digit = [shift](const Entry &e) { return size_t((e.head >> shift) & 0xFFFF); };
        const size_t first = digit(order.front());
        if (std::all_of(order.cbegin(), order.cend(),
                        [&](const Entry &e) { return digit(e) == first; }))
            continue;
        std::fill(counts.begin(), counts.end(), 0);
        for (const Entry &e : order)
            ++counts[digit(e)];
        quint32 sum = 0;
        for (quint32 &c : counts)
            sum += std::exchange(c, sum);
        for (const Entry &e : order)
            buffer[counts[digit(e)]++] = e;
        order.swap(buffer);
    }
    // ...then rows with the same packed units are ordered by the rest of their keys. Rows whose
    // keys are equal keep the order given: the row number breaks the tie.
    for (auto from = order.begin(); from != order.end();) {
        const auto to = std::find_if(from + 1, order.end(),
                                     [&](const Entry &e) { return e.head != from->head; });
        if (to - from > 1) {
            std::sort(from, to, [&](const Entry &a, const Entry &b) {
                const int c = key(a.row).substr(common).compare(key(b.row).substr(common));
                return c != 0 ? c < 0 : a.row < b.row;
            });
        }
        from = to;
    }
    // The rows move to their places in place, cycle by cycle: row order[i].row goes to i.
    std::vector<bool> placed(static_cast<size_t>(n), false);
    for (qsizetype i = 0; i < n; ++i) {
        if (placed[size_t(i)])
            continue;
        CheckRow moving = std::move(rows[i]);
        qsizetype to = i;
        for (qsizetype from = order[size_t(i)].row; from != i; from = order[size_t(to)].row) {
            rows[to] = std::move(rows[from]);
            placed[size_t(to)] = true;
            to = from;
        }
        rows[to] = std::move(moving);
        placed[size_t(to)] = true;
    }
}

void CheckListWidget::fill(QList<CheckRow> rows, bool inOrder)
{
    if (rows.size() > MaxRows)
        throw Error(Overflow);
    if (m_sorted && !inOrder)
        sortRows(rows);
    const int n = int(rows.size());
    const int old = count();
    bool reusable = true;
    for (int i = 0; i < old && i < n && reusable; ++i)
        reusable = checkItem(item(i)) != nullptr;
    if (!reusable || n == 0) {
        clear();
        if (n == 0)
            return;
    }

    const bool updates = updatesEnabled();
    setUpdatesEnabled(false);
    // A reload mostly brings about as many rows as the list had: the rows already there take
    // the new rows' contents in place, so that they are neither freed nor allocated again and
    // the view hears of them once instead of once per row.
    const int reused = qMin(count(), n);
    if (count() > n)
        model()->removeRows(n, count() - n);
    for (int i = 0; i < reused; ++i)
        checkItem(item(i))->assignQuietly(rows.at(i));
    for (int i = reused; i < n; ++i)
        addItem(new CheckItem(rows.at(i)));
    if (reused > 0)
        reset(); // the view drops its selection, current row and cached sizes, as after clear()
    setUpdatesEnabled(updates);
}

void CheckListWidget::rowDataChanged(QListWidgetItem *row, int role)
{
    const QModelIndex index = indexFromItem(row);
    if (index.isValid())
        Q_EMIT model()->dataChanged(index, index, {role});
}

void CheckListWidget::clearRows()
{
    clear();
}

QString CheckListWidget::rowText(int row) const
{
    QListWidgetItem *it = item(row);
    if (!it)
        throw Error(SubscriptOutOfRange);
    const CheckItem *fast = checkItem(it);
    return fast ? fast->text() : it->text();
}

qint32 CheckListWidget::itemValue(int row) const
{
    QListWidgetItem *it = item(row);
    if (!it)
        throw Error(SubscriptOutOfRange);
    const CheckItem *fast = checkItem(it);
    return fast ? fast->id() : it->data(ItemValueRole).toInt();
}

bool CheckListWidget::isChecked(int row) const
{
    QListWidgetItem *it = item(row);
    if (!it)
        throw Error(SubscriptOutOfRange);
    const CheckItem *fast = checkItem(it);
    return fast ? fast->checked() : it->checkState() == Qt::Checked;
}

int CheckListWidget::checkedCount() const
{
    int checked = 0;
    const int n = count();
    for (int i = 0; i < n; ++i) {
        if (const CheckItem *it = checkItem(item(i)))
            checked += it->checked() ? 1 : 0;
        else
            checked += item(i)->checkState() == Qt::Checked ? 1 : 0;
    }
    return checked;
}

void CheckListWidget::checkedRows(QVariantList *texts, QVariantList *ids) const
{
    const int n = count();
    texts->clear();
    ids->clear();
    texts->reserve(n);
    ids->reserve(n);
    for (int i = 0; i < n; ++i) {
        QListWidgetItem *it = item(i);
        if (const CheckItem *row = checkItem(it)) {
            if (row->checked()) {
                texts->append(row->text());
                ids->append(row->id());
            }
        } else if (it->checkState() == Qt::Checked) {
            texts->append(it->text());
            ids->append(it->data(ItemValueRole).toInt());
        }
    }
}

QList<CheckRow> CheckListWidget::rows() const
{
    QList<CheckRow> all;
    const int n = count();
    all.reserve(n);
    for (int i = 0; i < n; ++i) {
        QListWidgetItem *it = item(i);
        if (const CheckItem *row = checkItem(it))
            all.append({row->text(), row->id(), row->checked()});
        else
            all.append(
                {it->text(), it->data(ItemValueRole).toInt(), it->checkState() == Qt::Checked});
    }
    return all;
}

int CheckListWidget::setChecks(const std::function<bool(int, bool)> &state)
{
    int newest = -1;
    {
        const QSignalBlocker blocker(model());
        const int n = count();
        for (int i = 0; i < n; ++i) {
            QListWidgetItem *it = item(i);
            CheckItem *row = checkItem(it);
            const bool was = row ? row->checked() : it->checkState() == Qt::Checked;
            const bool now = state(i, was);
            if (now == was)
                continue;
            // The view learns of the change by the one repaint below.
            if (row)
                row->setCheckedQuietly(now);
            else
                it->setCheckState(now ? Qt::Checked : Qt::Unchecked);
            if (now)
                newest = i;
        }
    }
    viewport()->update();
    return newest;
}

int CheckListWidget::topRow() const
{
    const QModelIndex top = indexAt(QPoint(1, 1));
    return top.isValid() ? top.row() : 0;
}

void CheckListWidget::setTopRow(int row)
{
    if (row == 0 && count() > 0) {
        // The first row at the top is both scroll bars at their start; asking the view to
        // scroll to it would lay out every row of a freshly filled list at once.
        verticalScrollBar()->setValue(0);
        horizontalScrollBar()->setValue(0);
        return;
    }
    if (QListWidgetItem *it = item(row))
        scrollToItem(it, QAbstractItemView::PositionAtTop);
}

int CheckListWidget::rowHeight() const
{
    if (count() > 0) {
        const int height = sizeHintForRow(0);
        if (height > 0)
            return height;
    }
    // An empty list measures a check-box row of its own font the way its delegate would.
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    option.features |= QStyleOptionViewItem::HasCheckIndicator | QStyleOptionViewItem::HasDisplay;
    option.checkState = Qt::Unchecked;
    option.text = QStringLiteral("Xg");
    return style()->sizeFromContents(QStyle::CT_ItemViewItem, &option, QSize(), this).height();
}

} // namespace zelkon
