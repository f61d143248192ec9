// Building the condition of a form of ten bound controls, one of them a check list with 32,767
// checked rows, against reading the checked identifiers of that list alone.
#include "benchratio.h"

#include <zelkon/checklist/checkcombo.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/data/recordset.h>
#include <zelkon/navigator/navigator.h>
#include <zelkon/numedit/numedit.h>
#include <zelkon/query/filtercondition.h>
#include <zelkon/query/filterquery.h>
#include <zelkon/reldate/reldate.h>
#include <zelkon/smallcontrols/combolistbox.h>

#include <QApplication>
#include <QSqlDatabase>

#include <algorithm>
#include <ctime>
#include <vector>

using namespace zelkon;
using zelkon::bench::Clock;

namespace {

constexpr int Rows = 32767;

// The processor time of this thread: a run that the shared machine preempts costs no more.
Clock::duration threadTime()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
}

Clock::duration median(std::vector<Clock::duration> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

template<typename T>
T *make(QWidget *form, const char *className)
{
    auto *control = qobject_cast<T *>(createControl(QLatin1String(className), form));
    MemoryPropertyBag defaults;
    control->ReadProperties(defaults);
    return control;
}

void buildCondition(benchmark::State &state)
{
    QWidget form;
    // Rows from a recordset: the list keeps no source array to call every row "All" by, so the
    // condition lists all 32,767 identifiers, the most it can hold.
    Recordset rows;
    rows.Open(QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
                             "WHERE i < %1) SELECT 'Item ' || i FROM n")
                  .arg(Rows),
              QStringLiteral("Driver=QSQLITE;Database=:memory:"));
    auto *big = make<CheckCombo>(&form, "CheckCombo");
    big->setRecordsetData(&rows);
    QVariantList texts;
    for (int i = 1; i <= Rows; ++i)
        texts.append(QStringLiteral("Item %1").arg(i));
    big->setArrayChecked(texts);
    auto *small = make<CheckCombo>(&form, "CheckCombo");
    small->setSArrayData(
        QVariantList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")});
    small->setArrayChecked(QVariantList{QStringLiteral("b")});
    auto *from = make<RelDate>(&form, "RelDate");
    auto *to = make<RelDate>(&form, "RelDate");
    auto *stampFrom = make<RelDate>(&form, "RelDate");
    auto *stampTo = make<RelDate>(&form, "RelDate");
    from->setRetNum(-30);
    stampFrom->setRetNum(-7);
    auto *min = make<NumEdit>(&form, "NumEdit");
    auto *max = make<NumEdit>(&form, "NumEdit");
    min->setValue(10);
    max->setValue(500);
    auto *customer = make<Navigator>(&form, "Navigator");
    customer->setText(QStringLiteral("Bob"));
    auto *status = make<ComboListBox>(&form, "ComboListBox");
    status->setInputArray(QVariantList{QVariantList{QStringLiteral("new"), QStringLiteral("paid")},
                                       QVariantList{1, 2}});
    status->setValueID(2);

    FilterQuery query;
    query.bindCheckCombo(big, QStringLiteral("item"));
    query.bindCheckCombo(small, QStringLiteral("letter"), FilterQuery::Match::ByText);
    query.bindDateRange(from, to, QStringLiteral("day"));
    query.bindDateRange(stampFrom, stampTo, QStringLiteral("stamp"),
                        FilterQuery::DateColumn::DateTime);
    query.bindNumberRange(min, max, QStringLiteral("amount"), FilterQuery::Zero::MeansUnset);
    query.bindNavigator(customer, QStringLiteral("customer"));
    query.bindComboListBox(status, QStringLiteral("status"));
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("bench"));

    std::vector<Clock::duration> reads;
    std::vector<Clock::duration> builds;
    for (auto _ : state) {
        Clock::duration start = threadTime();
        const QVariant ids = big->ArrayCheckedID();
        reads.push_back(threadTime() - start);
        start = threadTime();
        const FilterCondition condition = query.build(db.driver());
        builds.push_back(threadTime() - start);
        if (ids.toList().size() != Rows || condition.values().size() != Rows + 9)
            state.SkipWithError("the condition does not hold every checked row");
    }
    zelkon::bench::report(state, "build condition vs ArrayCheckedID", median(reads),
                          median(builds));
    // report() divides by the iterations: the medians are per run already.
    state.counters["bare_ms"] = std::chrono::duration<double, std::milli>(median(reads)).count();
    state.counters["zelkon_ms"] = std::chrono::duration<double, std::milli>(median(builds)).count();
}

} // namespace

BENCHMARK(buildCondition)->Unit(benchmark::kMillisecond)->Iterations(21);

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    return zelkon::bench::runAndPrintRatios(argc, argv,
                                            {{"build condition vs ArrayCheckedID", 2.0}});
}
