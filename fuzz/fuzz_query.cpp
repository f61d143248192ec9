// Filter conditions from any state of the controls and any column names: the text holds nothing
// but quoted identifiers, the fixed operators and one placeholder per bound value.
#include <zelkon/checklist/checkcombo.h>
#include <zelkon/common/control.h>
#include <zelkon/common/error.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/variantarray.h>
#include <zelkon/navigator/navigator.h>
#include <zelkon/numedit/numedit.h>
#include <zelkon/query/filtercondition.h>
#include <zelkon/query/filterquery.h>
#include <zelkon/reldate/reldate.h>
#include <zelkon/smallcontrols/combolistbox.h>
#include <zelkon/test/testplatform.h>

#include <QApplication>
#include <QSqlDatabase>
#include <QSqlDriver>

#include <cstdint>
#include <cstdlib>

using namespace zelkon;

namespace {

// Reads the input as a stream of choices; past its end every choice is 0.
class Choices
{
public:
    Choices(const uint8_t *data, size_t size)
        : m_data(data)
        , m_size(size)
    { }
    int next(int bound) { return m_at < m_size ? m_data[m_at++] % bound : 0; }
    QString text()
    {
        const size_t length = size_t(next(24));
        const size_t from = m_at;
        m_at = std::min(m_size, m_at + length);
        return QString::fromUtf8(reinterpret_cast<const char *>(m_data + from),
                                 qsizetype(m_at - from));
    }

private:
    const uint8_t *m_data;
    size_t m_size;
    size_t m_at = 0;
};

template<typename T>
T *make(QWidget *form, const char *className)
{
    auto *control = qobject_cast<T *>(createControl(QLatin1String(className), form));
    MemoryPropertyBag defaults;
    control->ReadProperties(defaults);
    return control;
}

struct Form
{
    QWidget widget;
    CheckCombo *ids = make<CheckCombo>(&widget, "CheckCombo");
    CheckCombo *texts = make<CheckCombo>(&widget, "CheckCombo");
    RelDate *from = make<RelDate>(&widget, "RelDate");
    RelDate *to = make<RelDate>(&widget, "RelDate");
    NumEdit *min = make<NumEdit>(&widget, "NumEdit");
    NumEdit *max = make<NumEdit>(&widget, "NumEdit");
    Navigator *navigator = make<Navigator>(&widget, "Navigator");
    ComboListBox *list = make<ComboListBox>(&widget, "ComboListBox");
    Control *down = createControl(QStringLiteral("Down"), &widget);
};

void setDate(Choices &in, RelDate *field)
{
    switch (in.next(3)) {
    case 0:
        field->setRetDate(QStringLiteral("All"));
        break;
    case 1:
        field->setRelative(true);
        field->setRetNum(in.next(256) - 128);
        break;
    default:
        field->setRelative(false);
        field->setRetDate(QDate(2024, 1, 1).addDays(in.next(256) * 40).startOfDay());
    }
}

// The states of the controls, then the columns, as the input chooses them.
void fill(Form &form, Choices &in, FilterQuery &query)
{
    const int rows = in.next(6);
    VariantArray block({{0, 1}, {0, rows - 1}});
    QVariantList texts;
    QVariantList checkedIds;
    QVariantList checkedTexts;
    for (qint32 i = 0; i < rows; ++i) {
        const QString text = in.text();
        block.at({0, i}) = text;
        block.at({1, i}) = qint32(in.next(256) - 128);
        texts.append(text);
        if (in.next(2)) {
            checkedIds.append(block.at({1, i}));
            checkedTexts.append(text);
        }
    }
    form.ids->setSArrayData(QVariant::fromValue(block));
    form.ids->setArrayCheckedID(checkedIds);
    form.ids->setInv(in.next(2));
    form.texts->setSArrayData(texts);
    form.texts->setArrayChecked(checkedTexts);
    form.texts->setInv(in.next(2));
    setDate(in, form.from);
    setDate(in, form.to);
    form.min->setValue(in.next(256) - 100);
    form.max->setValue(in.next(256) * 1e6);
    form.navigator->setText(in.text());
    form.list->setInputArray(
        QVariantList{QVariantList{in.text(), in.text()}, QVariantList{in.next(256), in.next(256)}});
    form.list->setValueID(qint16(in.next(256)));
    if (form.down) {
        QMetaObject::invokeMethod(form.down, "Clear");
        for (int i = in.next(4); i > 0; --i) {
            const QVariant value = in.next(2) ? QVariant(in.text()) : QVariant(in.next(256));
            QMetaObject::invokeMethod(form.down, "AddItem", Q_ARG(QString, in.text()),
                                      Q_ARG(QString, QString()), Q_ARG(QVariant, value),
                                      Q_ARG(bool, in.next(2) != 0));
        }
    }
    query.clear();
    // A column without a name is refused, and only that.
    const auto bind = [&in](auto step) {
        const QString column = in.text();
        try {
            step(column);
        } catch (const Error &e) {
            if (!column.isEmpty() || e.number() != InvalidProcedureCall)
                std::abort();
            return;
        }
        if (column.isEmpty()) {
            std::abort();
        }
    };
    const bool dates = in.next(2);
    const bool zero = in.next(2);
    bind([&](const QString &c) { query.bindCheckCombo(form.ids, c); });
    bind(
        [&](const QString &c) { query.bindCheckCombo(form.texts, c, FilterQuery::Match::ByText); });
    bind([&](const QString &c) {
        query.bindDateRange(form.from, form.to, c,
                            dates ? FilterQuery::DateColumn::Date
                                  : FilterQuery::DateColumn::DateTime);
    });
    bind([&](const QString &c) {
        query.bindNumberRange(form.min, form.max, c,
                              zero ? FilterQuery::Zero::IsValue : FilterQuery::Zero::MeansUnset);
    });
    bind([&](const QString &c) { query.bindNavigator(form.navigator, c); });
    bind([&](const QString &c) { query.bindComboListBox(form.list, c); });
    if (form.down)
        bind([&](const QString &c) { query.bindDown(form.down, c); });
}

// Skips one quoted identifier, or several joined by '.', from `at`: "a""b", `a``b` or [a b] as
// the dialects quote; false when there is none.
bool skipIdentifier(const QString &text, qsizetype &at)
{
    do {
        if (at >= text.size())
            return false;
        const QChar open = text.at(at);
        const QChar close = open == QLatin1Char('[') ? QLatin1Char(']') : open;
        if (open != QLatin1Char('"') && open != QLatin1Char('`') && open != QLatin1Char('['))
            return false;
        for (++at;; ++at) {
            if (at >= text.size())
                return false;
            if (text.at(at) == close) {
                if (close != QLatin1Char(']') && at + 1 < text.size() && text.at(at + 1) == close)
                    ++at; // a doubled quote inside the name
                else
                    break;
            }
        }
        ++at;
    } while (at < text.size() && text.at(at) == QLatin1Char('.') && ++at);
    return true;
}

bool skip(const QString &text, qsizetype &at, QLatin1String word)
{
    if (QStringView(text).mid(at).startsWith(word)) {
        at += word.size();
        return true;
    }
    return false;
}

// The number of placeholders when the text is made of the allowed parts only, else -1.
qsizetype placeholders(const QString &text)
{
    qsizetype at = 0;
    qsizetype marks = 0;
    while (at < text.size()) {
        if (marks > 0 && !skip(text, at, QLatin1String(" AND ")))
            return -1;
        if (!skipIdentifier(text, at))
            return -1;
        if (skip(text, at, QLatin1String(" IN (")) || skip(text, at, QLatin1String(" NOT IN ("))) {
            do {
                if (!skip(text, at, QLatin1String("?")))
                    return -1;
                ++marks;
            } while (skip(text, at, QLatin1String(", ")));
            if (!skip(text, at, QLatin1String(")")))
                return -1;
        } else if (skip(text, at, QLatin1String(" >= ?")) || skip(text, at, QLatin1String(" <= ?"))
                   || skip(text, at, QLatin1String(" < ?"))
                   || skip(text, at, QLatin1String(" = ?"))) {
            ++marks;
        } else {
            return -1;
        }
    }
    return marks;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz_query";
    static char *argv[] = {name, nullptr};
    static QApplication *app = [] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return new QApplication(argc, argv);
    }();
    Q_UNUSED(app);
    static TestPlatform platform;
    static Form form;
    static FilterQuery query;
    static const QList<const QSqlDriver *> drivers = [] {
        QList<const QSqlDriver *> list{nullptr};
        for (const char *type : {"QSQLITE", "QPSQL"}) {
            if (QSqlDatabase::isDriverAvailable(QLatin1String(type)))
                list.append(
                    QSqlDatabase::addDatabase(QLatin1String(type), QLatin1String(type)).driver());
        }
        return list;
    }();

    Choices in(data, size);
    fill(form, in, query);
    for (const QSqlDriver *driver : drivers) {
        const FilterCondition condition = query.build(driver);
        if (placeholders(condition.where()) != condition.values().size()
            || condition.isEmpty() != condition.where().isEmpty()) {
            std::abort();
        }
    }
    return 0;
}
