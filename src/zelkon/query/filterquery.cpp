#include <zelkon/query/filterquery.h>

#include <zelkon/query/filtercondition.h>
#include <zelkon/query/filtercondition_p.h>

#include <zelkon/checklist/checkcombo.h>
#include <zelkon/common/conversions.h>
#include <zelkon/common/error.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/missing.h>
#include <zelkon/common/variantarray.h>
#include <zelkon/common/variants.h>
#include <zelkon/navigator/navigator.h>
#include <zelkon/numedit/numedit.h>
#include <zelkon/reldate/reldate.h>
#include <zelkon/smallcontrols/combolistbox.h>

#include <QDateTime>
#include <QMap>
#include <QMetaMethod>
#include <QPointer>
#include <QSettings>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlQuery>

namespace zelkon {

namespace {

enum class Binds { CheckCombo, DateRange, NumberRange, Navigator, ComboListBox, Down };

struct Binding
{
    Binds binds;
    QString column;
    QPointer<QObject> first;
    QPointer<QObject> second; // the upper bound of a range
    FilterQuery::Match match = FilterQuery::Match::ByIdentifier;
    FilterQuery::DateColumn dates = FilterQuery::DateColumn::Date;
    FilterQuery::Zero zero = FilterQuery::Zero::IsValue;
};

using Kind = FilterTerm::Kind;
using Op = FilterTerm::Op;

QVariantList asList(const QVariant &array)
{
    if (array.typeId() == QMetaType::QVariantList)
        return array.toList();
    QVariantList items;
    if (IsArray(array)) {
        for (qint32 i = LBound(array); i <= UBound(array); ++i)
            items.append(array.value<VariantArray>().at({i}));
    }
    return items;
}

// Rows of the array a check list was filled from; -1 for a recordset source, whose rows the
// list does not keep apart from the ones it shows.
qsizetype sourceRows(CheckCombo *combo)
{
    const QVariant source = combo->SArrayData();
    if (!IsArray(source))
        return -1;
    try {
        const bool block
            = source.canConvert<VariantArray>() && source.value<VariantArray>().dimensions() >= 2;
        return qsizetype(UBound(source, block ? 2 : 1)) + 1;
    } catch (const Error &) {
        return -1;
    }
}

void addCheckCombo(QList<FilterTerm> &terms, const Binding &b, CheckCombo *combo)
{
    const bool byText = b.match == FilterQuery::Match::ByText;
    QVariantList checked = asList(byText ? combo->ArrayChecked() : combo->ArrayCheckedID());
    // The texts say "All" for nothing checked; only a row named "All" also has an identifier.
    if (byText && checked.size() == 1 && checked.first() == QVariant(QStringLiteral("All"))
        && !IsArray(combo->ArrayCheckedID()))
        return;
    if (checked.isEmpty() || checked.size() == sourceRows(combo))
        return;
    terms.append({b.column, combo->Inv() ? Op::NotIn : Op::In, byText ? Kind::Text : Kind::Integer,
                  std::move(checked)});
}

void addDateBound(QList<FilterTerm> &terms, const Binding &b, RelDate *field, bool upper)
{
    // RetDate counts a relative day from the platform's today as it is read, here.
    const QVariant value = field->RetDate();
    if (!isDateType(value))
        return; // "All"
    const QDate day = value.toDateTime().date();
    if (b.dates == FilterQuery::DateColumn::Date) {
        terms.append({b.column, upper ? Op::AtMost : Op::AtLeast, Kind::Date, {day}});
        return;
    }
    // A time on the last day is still that day: the bound is the next midnight, excluded. It is
    // bound as a wall-clock text: a QDateTime would reach some drivers converted to UTC and so
    // move the bound by the zone's offset against a column that holds local times.
    const QDate bound = upper ? day.addDays(1) : day;
    terms.append({b.column,
                  upper ? Op::Below : Op::AtLeast,
                  Kind::DateTime,
                  {QVariant(bound.toString(Qt::ISODate) + QLatin1String("T00:00:00.000"))}});
}

void addNumberBound(QList<FilterTerm> &terms, const Binding &b, NumEdit *field, bool upper)
{
    const double value = field->Value();
    if (value == 0 && b.zero == FilterQuery::Zero::MeansUnset)
        return;
    terms.append({b.column, upper ? Op::AtMost : Op::AtLeast, Kind::Number, {value}});
}

// Down is reached through its members' names only: its list is all this needs of it.
QList<QObject *> downItems(QObject *down)
{
    QList<QObject *> items;
    const qint32 count = down->property("ListCount").toInt();
    for (qint32 i = 1; i <= count; ++i) {
        QObject *item = nullptr;
        const QMetaObject *meta = down->metaObject();
        const int index = meta->indexOfMethod("ListItem(QVariant)");
        if (index < 0)
            break;
        const QMetaMethod method = meta->method(index);
        // The item's class is the control's own: taken as the QObject it is.
        if (!method.invoke(down, Qt::DirectConnection,
                           QGenericReturnArgument(method.typeName(), &item), Q_ARG(QVariant, i)))
            break;
        items.append(item);
    }
    return items;
}

void addDown(QList<FilterTerm> &terms, const Binding &b, QObject *down)
{
    QVariantList values;
    for (QObject *item : downItems(down)) {
        const QVariant value = item ? item->property("Value") : QVariant();
        if (item && item->property("Checked").toBool() && value.isValid() && !IsMissing(value)
            && !value.isNull())
            values.append(value);
    }
    if (!values.isEmpty())
        terms.append({b.column, Op::In, Kind::Variant, std::move(values)});
}

QString presetKey(const QString &prefix, const QString &key)
{
    return prefix + QLatin1Char('/') + key;
}

} // namespace

class FilterQueryPrivate
{
public:
    void add(Binding binding, std::initializer_list<QObject *> controls)
    {
        if (binding.column.isEmpty())
            throw Error(InvalidProcedureCall, QStringLiteral("FilterQuery: no column to bind to"));
        if (std::none_of(controls.begin(), controls.end(), [](QObject *c) { return c; }))
            throw Error(ObjectNotSet, QStringLiteral("FilterQuery: no control to bind"));
        for (QObject *control : controls) {
            if (control)
                boundControls.append(control);
        }
        bindings.append(std::move(binding));
    }

    QList<FilterTerm> terms() const;
    // The key prefix of a bound control in a preset: its name, else its place in the bindings.
    QString prefixOf(const QObject *control) const
    {
        return control->objectName().isEmpty()
            ? QStringLiteral("#%1").arg(boundControls.indexOf(control))
            : control->objectName();
    }
    void save(const Binding &b, QObject *control, MemoryPropertyBag &preset) const;
    void restore(const Binding &b, QObject *control, const MemoryPropertyBag &preset) const;

    QList<Binding> bindings;
    QList<QObject *> boundControls; // in binding order, for the names of unnamed ones
    QMap<QString, MemoryPropertyBag> presets;
};

QList<FilterTerm> FilterQueryPrivate::terms() const
{
    QList<FilterTerm> terms;
    for (const Binding &b : bindings) {
        switch (b.binds) {
        case Binds::CheckCombo:
            if (auto *combo = qobject_cast<CheckCombo *>(b.first.data()))
                addCheckCombo(terms, b, combo);
            break;
        case Binds::DateRange:
            if (auto *from = qobject_cast<RelDate *>(b.first.data()))
                addDateBound(terms, b, from, false);
            if (auto *to = qobject_cast<RelDate *>(b.second.data()))
                addDateBound(terms, b, to, true);
            break;
        case Binds::NumberRange:
            if (auto *min = qobject_cast<NumEdit *>(b.first.data()))
                addNumberBound(terms, b, min, false);
            if (auto *max = qobject_cast<NumEdit *>(b.second.data()))
                addNumberBound(terms, b, max, true);
            break;
        case Binds::Navigator:
            if (auto *navigator = qobject_cast<Navigator *>(b.first.data())) {
                const QString text = navigator->Text();
                if (!text.trimmed().isEmpty())
                    terms.append({b.column, Op::Equal, Kind::Text, {text}});
            }
            break;
        case Binds::ComboListBox:
            if (auto *combo = qobject_cast<ComboListBox *>(b.first.data())) {
                if (!combo->Value().isEmpty())
                    terms.append({b.column, Op::Equal, Kind::Integer, {qint32(combo->ValueID())}});
            }
            break;
        case Binds::Down:
            if (b.first)
                addDown(terms, b, b.first.data());
            break;
        }
    }
    return terms;
}

void FilterQueryPrivate::save(const Binding &b, QObject *control, MemoryPropertyBag &preset) const
{
    MemoryPropertyBag bag;
    if (auto *c = qobject_cast<Control *>(control))
        c->WriteProperties(bag);
    // What the control does not keep in its bag, under the name of the member that holds it.
    switch (b.binds) {
    case Binds::CheckCombo: {
        auto *combo = static_cast<CheckCombo *>(control);
        if (b.match == FilterQuery::Match::ByText)
            bag.insert(QStringLiteral("ArrayChecked"), combo->ArrayChecked());
        else
            bag.insert(QStringLiteral("ArrayCheckedID"), asList(combo->ArrayCheckedID()));
        break;
    }
    case Binds::DateRange: {
        // The bag leaves out a date equal to today, which would then load as the day of
        // loading: an absolute date is kept whatever it is.
        auto *field = static_cast<RelDate *>(control);
        if (!field->Relative())
            bag.insert(QStringLiteral("RetDate"), field->RetDate());
        break;
    }
    case Binds::ComboListBox: {
        auto *combo = static_cast<ComboListBox *>(control);
        if (!combo->Value().isEmpty())
            bag.insert(QStringLiteral("ValueID"), combo->ValueID());
        break;
    }
    case Binds::Down: {
        QVariantList checked;
        const QList<QObject *> items = downItems(control);
        for (qsizetype i = 0; i < items.size(); ++i) {
            if (items.at(i) && items.at(i)->property("Checked").toBool())
                checked.append(qint32(i + 1));
        }
        bag.insert(QStringLiteral("Checked"), checked);
        break;
    }
    case Binds::NumberRange:
    case Binds::Navigator:
        break; // Value and Text are in the bag
    }
    const QString prefix = prefixOf(control);
    for (const QString &key : bag.keys())
        preset.insert(presetKey(prefix, key), bag.ReadProperty(key));
}

void FilterQueryPrivate::restore(const Binding &b, QObject *control,
                                 const MemoryPropertyBag &preset) const
{
    const QString prefix = prefixOf(control) + QLatin1Char('/');
    MemoryPropertyBag bag;
    for (const QString &key : preset.keys()) {
        if (key.startsWith(prefix))
            bag.insert(key.mid(prefix.size()), preset.ReadProperty(key));
    }
    if (auto *c = qobject_cast<Control *>(control))
        c->ReadProperties(bag);
    switch (b.binds) {
    case Binds::CheckCombo: {
        auto *combo = static_cast<CheckCombo *>(control);
        const bool byText = b.match == FilterQuery::Match::ByText;
        const QVariant checked = bag.ReadProperty(byText ? QStringLiteral("ArrayChecked")
                                                         : QStringLiteral("ArrayCheckedID"));
        if (asList(checked).isEmpty())
            combo->ClearAll();
        else if (byText)
            combo->setArrayChecked(checked);
        else
            combo->setArrayCheckedID(checked);
        break;
    }
    case Binds::DateRange:
        if (bag.contains(QStringLiteral("RetDate")) && !static_cast<RelDate *>(control)->Relative())
            static_cast<RelDate *>(control)->setRetDate(
                bag.ReadProperty(QStringLiteral("RetDate")));
        break;
    case Binds::ComboListBox:
        if (bag.contains(QStringLiteral("ValueID")))
            static_cast<ComboListBox *>(control)->setValueID(
                CInt(bag.ReadProperty(QStringLiteral("ValueID"))));
        break;
    case Binds::Down: {
        const QVariantList checked = asList(bag.ReadProperty(QStringLiteral("Checked")));
        const QList<QObject *> items = downItems(control);
        for (qsizetype i = 0; i < items.size(); ++i) {
            if (items.at(i))
                items.at(i)->setProperty("Checked", checked.contains(QVariant(qint32(i + 1))));
        }
        break;
    }
    case Binds::NumberRange:
    case Binds::Navigator:
        break;
    }
}

FilterQuery::FilterQuery()
    : d(std::make_unique<FilterQueryPrivate>())
{ }

FilterQuery::~FilterQuery() = default;

void FilterQuery::bindCheckCombo(CheckCombo *combo, const QString &column, Match match)
{
    d->add({Binds::CheckCombo, column, combo, nullptr, match}, {combo});
}

void FilterQuery::bindDateRange(RelDate *from, RelDate *to, const QString &column, DateColumn kind)
{
    Binding b{Binds::DateRange, column, from, to};
    b.dates = kind;
    d->add(std::move(b), {from, to});
}

void FilterQuery::bindNumberRange(NumEdit *min, NumEdit *max, const QString &column, Zero zero)
{
    Binding b{Binds::NumberRange, column, min, max};
    b.zero = zero;
    d->add(std::move(b), {min, max});
}

void FilterQuery::bindNavigator(Navigator *navigator, const QString &column)
{
    d->add({Binds::Navigator, column, navigator, nullptr}, {navigator});
}

void FilterQuery::bindComboListBox(ComboListBox *combo, const QString &column)
{
    d->add({Binds::ComboListBox, column, combo, nullptr}, {combo});
}

void FilterQuery::bindDown(Control *down, const QString &column)
{
    d->add({Binds::Down, column, down, nullptr}, {down});
}

void FilterQuery::clear()
{
    d->bindings.clear();
    d->boundControls.clear();
}

FilterCondition FilterQuery::build(const QSqlDriver *driver) const
{
    return FilterConditionPrivate::make(d->terms(), driver);
}

QString FilterQuery::where(const QSqlDriver *driver) const
{
    return build(driver).where();
}

QVariantList FilterQuery::values() const
{
    return build().values();
}

bool FilterQuery::prepare(QSqlQuery &query, const QString &head, const QString &tail) const
{
    const FilterCondition condition = build(query.driver());
    QString text = head;
    if (!condition.isEmpty())
        text += QLatin1String(" WHERE ") + condition.where();
    if (!tail.isEmpty())
        text += QLatin1Char(' ') + tail;
    if (!query.prepare(text))
        return false;
    condition.bindValues(query);
    return true;
}

void FilterQuery::savePreset(const QString &name)
{
    MemoryPropertyBag preset;
    for (const Binding &b : std::as_const(d->bindings)) {
        for (QObject *control : {b.first.data(), b.second.data()}) {
            if (control)
                d->save(b, control, preset);
        }
    }
    d->presets.insert(name, preset);
}

bool FilterQuery::restorePreset(const QString &name)
{
    const auto found = d->presets.constFind(name);
    if (found == d->presets.constEnd())
        return false;
    for (const Binding &b : std::as_const(d->bindings)) {
        for (QObject *control : {b.first.data(), b.second.data()}) {
            if (control)
                d->restore(b, control, *found);
        }
    }
    return true;
}

QStringList FilterQuery::presetNames() const
{
    return d->presets.keys();
}

void FilterQuery::removePreset(const QString &name)
{
    d->presets.remove(name);
}

MemoryPropertyBag FilterQuery::preset(const QString &name) const
{
    return d->presets.value(name);
}

void FilterQuery::setPreset(const QString &name, const MemoryPropertyBag &bag)
{
    d->presets.insert(name, bag);
}

void FilterQuery::writePresets(QSettings &settings) const
{
    settings.beginWriteArray(QStringLiteral("presets"), int(d->presets.size()));
    int i = 0;
    for (auto it = d->presets.cbegin(); it != d->presets.cend(); ++it, ++i) {
        settings.setArrayIndex(i);
        settings.setValue(QStringLiteral("name"), it.key());
        const QStringList keys = it.value().keys();
        settings.beginWriteArray(QStringLiteral("values"), int(keys.size()));
        for (int k = 0; k < keys.size(); ++k) {
            settings.setArrayIndex(k);
            settings.setValue(QStringLiteral("key"), keys.at(k));
            settings.setValue(QStringLiteral("value"), it.value().ReadProperty(keys.at(k)));
        }
        settings.endArray();
    }
    settings.endArray();
}

void FilterQuery::readPresets(QSettings &settings)
{
    d->presets.clear();
    const int count = settings.beginReadArray(QStringLiteral("presets"));
    for (int i = 0; i < count; ++i) {
        settings.setArrayIndex(i);
        MemoryPropertyBag bag;
        const int values = settings.beginReadArray(QStringLiteral("values"));
        for (int k = 0; k < values; ++k) {
            settings.setArrayIndex(k);
            bag.insert(settings.value(QStringLiteral("key")).toString(),
                       settings.value(QStringLiteral("value")));
        }
        settings.endArray();
        d->presets.insert(settings.value(QStringLiteral("name")).toString(), bag);
    }
    settings.endArray();
}

} // namespace zelkon
