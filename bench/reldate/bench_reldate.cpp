// Opening a form with date fields and moving their day counts, each against the bare Qt widgets
// doing the same in the same iteration (so that a busy machine slows both alike). The "ratio"
// counter is the Zelkon time over the bare time.
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/reldate/reldate.h>

#include "benchratio.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QCheckBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QSpinBox>

#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <string>

namespace {

constexpr int fieldsPerForm = 20;

using zelkon::bench::Clock;
using zelkon::bench::report;

// A form of date fields restored from a saved bag, against the same count of bare date edits,
// line edits, spin boxes and check boxes. A date field holds about twice the widgets of that bare
// set (its "All" face, its spinner's buttons, its menu), hence the looser target.
void BM_OpenForm(benchmark::State &state)
{
    zelkon::MemoryPropertyBag bag;
    {
        zelkon::RelDate source;
        zelkon::MemoryPropertyBag empty;
        source.ReadProperties(empty);
        source.setRetNum(-7);
        source.setCheckBoxState(zelkon::rbsRight);
        source.WriteProperties(bag);
    }
    Clock::duration bare{}, ours{};
    for (auto _ : state) {
        const auto t0 = Clock::now();
        {
            QWidget form;
            for (int i = 0; i < fieldsPerForm; ++i) {
                auto *edit = new QDateEdit(&form);
                edit->setCalendarPopup(true);
                edit->setDate(QDate(2024, 5, 3));
                auto *line = new QLineEdit(&form);
                line->setText(QStringLiteral("-7"));
                auto *spin = new QSpinBox(&form);
                spin->setValue(-7);
                new QCheckBox(&form);
            }
            benchmark::DoNotOptimize(form.children().size());
        }
        const auto t1 = Clock::now();
        {
            QWidget form;
            for (int i = 0; i < fieldsPerForm; ++i) {
                auto *field = new zelkon::RelDate(&form);
                field->ReadProperties(bag);
            }
            benchmark::DoNotOptimize(form.children().size());
        }
        const auto t2 = Clock::now();
        bare += t1 - t0;
        ours += t2 - t1;
    }
    report(state, "open a form of date fields vs bare widgets", bare, ours);
}

// Day counts set one after the other: spinner, text, picker and model, against a bare spin box,
// line edit and date edit set to the same values.
void BM_SetDayCount(benchmark::State &state)
{
    zelkon::RelDate field;
    zelkon::MemoryPropertyBag empty;
    field.ReadProperties(empty);
    QDateEdit edit;
    QLineEdit line;
    QSpinBox spin;
    spin.setRange(-100000, 100000);
    const QDate today = QDate::currentDate();
    Clock::duration bare{}, ours{};
    for (auto _ : state) {
        const auto t0 = Clock::now();
        for (int n = -500; n < 500; ++n) {
            spin.setValue(n);
            line.setText(QString::number(n));
            edit.setDate(today.addDays(n));
        }
        const auto t1 = Clock::now();
        for (int n = -500; n < 500; ++n)
            field.setRetNum(n);
        const auto t2 = Clock::now();
        if (field.RetNum() != 499)
            state.SkipWithError("the day count did not arrive");
        bare += t1 - t0;
        ours += t2 - t1;
    }
    report(state, "1000 RetNum puts vs bare widget sets", bare, ours);
}

BENCHMARK(BM_OpenForm)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_SetDayCount)->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    return zelkon::bench::runAndPrintRatios(argc, argv,
                                            {{"open a form of date fields vs bare widgets", 4.0},
                                             {"1000 RetNum puts vs bare widget sets", 2.0}});
}
