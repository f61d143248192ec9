// zelkon::FilterQuery: filter controls bound to columns, turned into a parameterised condition.
#pragma once

#include <zelkon/common/global.h>

#include <QString>
#include <QStringList>
#include <QVariantList>

#include <memory>

class QObject;
class QSettings;
class QSqlDriver;
class QSqlQuery;

namespace zelkon {

class CheckCombo;
class ComboListBox;
class Control;
class FilterCondition;
class FilterQueryPrivate;
class MemoryPropertyBag;
class Navigator;
class NumEdit;
class RelDate;

/// Binds the controls of a filter form to columns once and builds, whenever asked, the SQL
/// condition they stand for: identifiers quoted by the driver, every value bound through a
/// placeholder, never written into the text. The same condition filters a model in memory
/// (FilterProxyModel). Named presets save and restore the bound controls' state.
///
/// A column is written "table.column" or "column"; a name with a quote or bracket in it is
/// taken as one name. Controls are watched, not owned: a control destroyed after binding no longer
/// restricts. Binding a null control raises zelkon::Error 91, an empty column name Error 5.
class ZELKON_EXPORT FilterQuery
{
public:
    /// Whether a check list restricts by its rows' identifiers or by their texts.
    enum class Match { ByIdentifier, ByText };
    /// Whether a date range applies to a column of dates or of dates with a time.
    enum class DateColumn { Date, DateTime };
    /// What a NumEdit holding 0 means for its bound.
    enum class Zero { IsValue, MeansUnset };

    /// A filter with no bindings: its condition is empty.
    FilterQuery();
    /// Forgets the bindings and presets; the controls stay as they are.
    ~FilterQuery();
    /// Not copyable: a copy would watch the same controls twice.
    FilterQuery(const FilterQuery &) = delete;
    /// Not copyable.
    FilterQuery &operator=(const FilterQuery &) = delete;

    /// The checked rows give `column IN (...)`, `NOT IN (...)` while Inv is set; nothing or
    /// every row of the source array checked ("All") gives no restriction.
    void bindCheckCombo(CheckCombo *combo, const QString &column,
                        Match match = Match::ByIdentifier);
    /// Two date fields as the bounds of a column, either may be null; a field holding "All" sets
    /// no bound. A relative bound counts from Platform::current().today() when the condition is
    /// built. The "to" day is inclusive: `<= day` for dates, `< next day` for date-times.
    void bindDateRange(RelDate *from, RelDate *to, const QString &column,
                       DateColumn kind = DateColumn::Date);
    /// Two numeric fields as `column >= min` and `column <= max`, either may be null.
    void bindNumberRange(NumEdit *min, NumEdit *max, const QString &column, Zero zero);
    /// The lookup's text as `column = text`; a blank text gives no restriction.
    void bindNavigator(Navigator *navigator, const QString &column);
    /// The chosen entry's identifier (ValueID) as `column = id`; no choice gives no restriction.
    void bindComboListBox(ComboListBox *combo, const QString &column);
    /// A Down list, reached by its members' names: the checked items' Value as
    /// `column IN (...)`; items without a Value are left out, nothing checked gives no
    /// restriction.
    void bindDown(Control *down, const QString &column);
    /// Forgets every binding (presets stay).
    void clear();

    /// Reads the controls now and builds the condition for `driver` (standard SQL quoting
    /// when null).
    FilterCondition build(const QSqlDriver *driver = nullptr) const;
    /// build(driver).where().
    QString where(const QSqlDriver *driver = nullptr) const;
    /// build().values().
    QVariantList values() const;
    /// Prepares `head WHERE condition tail` (or `head tail` when the condition is empty) on
    /// the query's database and binds the values; returns what QSqlQuery::prepare returned.
    bool prepare(QSqlQuery &query, const QString &head, const QString &tail = QString()) const;

    /// Saves the bound controls' state (their property bags and the checks, choices and
    /// dates they hold) under a name, replacing a preset of that name.
    void savePreset(const QString &name);
    /// Puts a preset back into the bound controls through their ReadProperties; relative
    /// dates count from today. False, and nothing changed, for an unknown name.
    bool restorePreset(const QString &name);
    /// The names of the presets, sorted.
    QStringList presetNames() const;
    /// Forgets a preset.
    void removePreset(const QString &name);
    /// A preset as one bag, keys "control/property"; empty for an unknown name.
    MemoryPropertyBag preset(const QString &name) const;
    /// Stores a bag as a preset, as preset() gives it.
    void setPreset(const QString &name, const MemoryPropertyBag &bag);
    /// Writes every preset into the settings, under the current group.
    void writePresets(QSettings &settings) const;
    /// Replaces the presets by those written into the settings by writePresets().
    void readPresets(QSettings &settings);

private:
    std::unique_ptr<FilterQueryPrivate> d;
};

} // namespace zelkon
