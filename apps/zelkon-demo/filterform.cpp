#include "filterform.h"

#include "customerlookup.h"

#include <zelkon/checklist/checkcombo.h>
#include <zelkon/common/control.h>
#include <zelkon/common/conversions.h>
#include <zelkon/common/error.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/variantarray.h>
#include <zelkon/data/connection.h>
#include <zelkon/navigator/navigator.h>
#include <zelkon/numedit/numedit.h>
#include <zelkon/query/filtercondition.h>
#include <zelkon/reldate/reldate.h>

#include <QLabel>
#include <QMetaMethod>
#include <QSettings>
#include <QSqlQuery>

FilterForm::FilterForm(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("FilterForm"));
    setAutoFillBackground(true);
    m_slots = {
        {QStringLiteral("CheckCombo"), QStringLiteral("cboRegion"), tr("Regions:"), 0, 0},
        {QStringLiteral("CheckCombo"), QStringLiteral("cboProduct"), tr("Products:"), 0, 1},
        {QStringLiteral("RelDate"), QStringLiteral("DateFrom"), tr("Ordered from:"), 1, 0},
        {QStringLiteral("RelDate"), QStringLiteral("DateTo"), tr("to:"), 1, 1},
        {QStringLiteral("NumEdit"), QStringLiteral("AmountFrom"), tr("Total from:"), 2, 0},
        {QStringLiteral("NumEdit"), QStringLiteral("AmountTo"), tr("to:"), 2, 1},
        {QStringLiteral("Navigator"), QStringLiteral("nvCustomer"), tr("Customer:"), 3, 0},
    };
    for (const Slot &slot : std::as_const(m_slots)) {
        auto *label = new QLabel(slot.label, this);
        const QRect place = placeOf(slot);
        label->setGeometry(place.x() - labelWidth(), place.y(), labelWidth() - 8, place.height());
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
}

int FilterForm::labelWidth() const
{
    return fontMetrics().horizontalAdvance(QStringLiteral("Ordered from:")) + 16;
}

QRect FilterForm::placeOf(const Slot &slot) const
{
    const int rowHeight = fontMetrics().height() + 12;
    const int fieldWidth = fontMetrics().averageCharWidth() * 28;
    const int columnWidth = labelWidth() + fieldWidth + 12;
    return QRect(12 + labelWidth() + slot.column * columnWidth, 12 + slot.row * (rowHeight + 10),
                 fieldWidth, rowHeight);
}

QSize FilterForm::sizeHint() const
{
    QRect all;
    for (const Slot &slot : m_slots)
        all |= placeOf(slot);
    return QSize(all.right() + 16, all.bottom() + 16);
}

void FilterForm::createControls()
{
    for (const Slot &slot : std::as_const(m_slots)) {
        zelkon::Control *control = zelkon::createControl(slot.className, this);
        if (!control) {
            auto *note = new QLabel(tr("(%1 is not in this build)").arg(slot.className), this);
            note->setGeometry(placeOf(slot));
            note->setEnabled(false);
            continue;
        }
        control->setObjectName(slot.name);
        control->setAccessibleName(slot.label);
        control->setGeometry(placeOf(slot));
        // Opened as a saved form with nothing changed: every property at its default.
        zelkon::MemoryPropertyBag defaults;
        control->ReadProperties(defaults);
        watch(control);
        control->show();
    }
    configureControls();
    bindControls();
}

void FilterForm::configureControls()
{
    // Everything by name, as a host that knows only the class and member names does.
    const auto set = [this](const char *name, const char *property, const QVariant &value) {
        if (zelkon::Control *c = control(QLatin1String(name)))
            c->setProperty(property, value);
    };
    // Order dates: from a year ago (relative, so it moves with today) to any date. The two
    // fields bound each other and follow each other's mode.
    for (const char *name : {"DateFrom", "DateTo"}) {
        set(name, "CheckBoxState", 1);
        set(name, "MenuStateVisible", true);
        set(name, "Relative", true);
    }
    set("DateFrom", "RetNum", -365);
    set("DateTo", "RetDate", QStringLiteral("All"));
    for (const char *name : {"DateFrom", "DateTo"}) {
        set(name, "GlobalSynchro", 1);
        set(name, "SynchValue", true);
    }
    set("DateFrom", "TopControl", QStringLiteral("DateTo"));
    set("DateTo", "BootControl", QStringLiteral("DateFrom"));
    // Amounts: two decimals, negative numbers in red, no negative totals.
    for (const char *name : {"AmountFrom", "AmountTo"}) {
        set(name, "DigNum", 2);
        set(name, "NegTextColor", QVariant::fromValue(quint32(0x0000FF)));
        set(name, "MaxValue", 99999999.0);
        set(name, "MinValue", 0.0);
    }
}

void FilterForm::fillFromDatabase(zelkon::Connection *connection)
{
    if (!connection || !connection->isOpen())
        return;
    if (zelkon::Control *regions = control(QStringLiteral("cboRegion"))) {
        // Texts and identifiers as a two-row block: row 0 the names, row 1 the ids.
        QSqlQuery query(QStringLiteral("SELECT name, id FROM regions ORDER BY id"),
                        connection->database());
        QList<QPair<QString, int>> rows;
        while (query.next())
            rows.append({query.value(0).toString(), query.value(1).toInt()});
        zelkon::VariantArray block({{0, 1}, {0, qint32(rows.size()) - 1}});
        for (qint32 i = 0; i < rows.size(); ++i) {
            block.at({0, i}) = rows.at(i).first;
            block.at({1, i}) = qint32(rows.at(i).second);
        }
        regions->setProperty("TypeData", 2);
        regions->setProperty("SArrayData", QVariant::fromValue(block));
    }
    CustomerLookup::fill(control(QStringLiteral("nvCustomer")), connection);
    if (zelkon::Control *products = control(QStringLiteral("cboProduct"))) {
        // The control opens the command itself; the second field becomes each row's tool tip.
        // Refresh reports a database error to its caller: the form then shows an empty list.
        try {
            products->setProperty("TypeData", 0);
            products->setProperty("CommandText",
                                  QStringLiteral("SELECT name, id FROM products ORDER BY name"));
            products->setProperty("Connect", QVariant::fromValue<QObject *>(connection));
            QMetaObject::invokeMethod(products, "Refresh");
        } catch (const zelkon::Error &) { }
    }
}

void FilterForm::adoptControls(const QList<zelkon::Control *> &loaded)
{
    qDeleteAll(controls());
    for (zelkon::Control *control : loaded) {
        control->setParent(this);
        watch(control);
        control->show();
    }
    bindControls();
}

namespace {
template<typename T>
T *typedControl(const FilterForm &form, const char *name)
{
    return qobject_cast<T *>(form.control(QLatin1String(name)));
}

// The presets live in the user's settings, apart from the read-only sample database.
std::unique_ptr<QSettings> presetStore()
{
    return std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope,
                                       QStringLiteral("Zelkon"),
                                       QStringLiteral("zelkon-demo-presets"));
}
} // namespace

void FilterForm::bindControls()
{
    // The presets stay: they are kept by control name, and a loaded form names its controls.
    m_query.clear();
    if (auto *regions = typedControl<zelkon::CheckCombo>(*this, "cboRegion"))
        m_query.bindCheckCombo(regions, QStringLiteral("c.region_id"));
    if (auto *products = typedControl<zelkon::CheckCombo>(*this, "cboProduct"))
        m_query.bindCheckCombo(products, QStringLiteral("p.name"),
                               zelkon::FilterQuery::Match::ByText);
    auto *from = typedControl<zelkon::RelDate>(*this, "DateFrom");
    auto *to = typedControl<zelkon::RelDate>(*this, "DateTo");
    if (from || to)
        m_query.bindDateRange(from, to, QStringLiteral("o.order_date"));
    auto *min = typedControl<zelkon::NumEdit>(*this, "AmountFrom");
    auto *max = typedControl<zelkon::NumEdit>(*this, "AmountTo");
    if (min || max) // an empty amount field sets no bound
        m_query.bindNumberRange(min, max, QStringLiteral("o.total"),
                                zelkon::FilterQuery::Zero::MeansUnset);
    if (auto *customer = typedControl<zelkon::Navigator>(*this, "nvCustomer"))
        m_query.bindNavigator(customer, QStringLiteral("c.name"));
}

QString FilterForm::describe(const zelkon::FilterCondition &condition)
{
    if (condition.isEmpty())
        return tr("(no condition: every order)");
    QStringList shown;
    for (const QVariant &v : condition.values())
        shown.append(v.typeId() == QMetaType::QString
                         ? QLatin1Char('\'') + v.toString() + QLatin1Char('\'')
                         : zelkon::CStr(v));
    return QStringLiteral("WHERE ") + condition.where() + QStringLiteral("\n-- bound values: ")
        + shown.join(QStringLiteral(", "));
}

void FilterForm::savePreset(const QString &name)
{
    const std::unique_ptr<QSettings> settings = presetStore();
    m_query.readPresets(*settings); // another window may have saved one meanwhile
    m_query.savePreset(name);
    m_query.writePresets(*settings);
}

bool FilterForm::restorePreset(const QString &name)
{
    m_query.readPresets(*presetStore());
    const bool found = m_query.restorePreset(name);
    if (found)
        Q_EMIT filterChanged();
    return found;
}

zelkon::Control *FilterForm::control(const QString &name) const
{
    for (zelkon::Control *c : controls()) {
        if (c->objectName() == name)
            return c;
    }
    return nullptr;
}

QList<zelkon::Control *> FilterForm::controls() const
{
    return zelkon::Control::formControls(this);
}

void FilterForm::watch(zelkon::Control *control)
{
    // The controls are reached by name only, so the form works with whichever classes are built.
    static const QMetaMethod changed
        = staticMetaObject.method(staticMetaObject.indexOfSignal("filterChanged()"));
    const QMetaObject *meta = control->metaObject();
    for (const char *signal :
         {"Quite(bool)", "Change()", "ChangeValue()", "LostFocusEvent()", "ContextChange()"}) {
        const int index = meta->indexOfSignal(signal);
        if (index >= 0)
            connect(control, meta->method(index), this, changed);
    }
}
