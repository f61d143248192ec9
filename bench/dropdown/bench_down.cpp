// Filling a Down item by item and opening its pop-up, against a bare fill of a list widget with
// the same texts and checks.
#include "benchratio.h"

#include <zelkon/common/memorypropertybag.h>
#include <zelkon/dropdown/down.h>

#include <QApplication>
#include <QComboBox>
#include <QListWidget>
#include <QMouseEvent>

#include <memory>

using namespace zelkon;
using zelkon::bench::Clock;

namespace {

constexpr int Items = 10000;

QString textOf(int i)
{
    return QStringLiteral("Item %1").arg(i, 5, 10, QLatin1Char('0'));
}

bool checkedAt(int i)
{
    return i % 3 == 0;
}

// The baseline: a shown list widget with one checkable row per text, rows of one height as in
// the pop-up.
Clock::duration bareFill()
{
    QListWidget list;
    list.setUniformItemSizes(true);
    list.resize(200, 300);
    const auto start = Clock::now();
    for (int i = 0; i < Items; ++i) {
        auto *item = new QListWidgetItem(textOf(i));
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(checkedAt(i) ? Qt::Checked : Qt::Unchecked);
        list.addItem(item);
    }
    list.show();
    QCoreApplication::processEvents();
    return Clock::now() - start;
}

// AddItem for every text, then a left press on the combo box opens the pop-up.
Clock::duration addAndOpen(QWidget &form)
{
    std::unique_ptr<Down> down(new Down(&form));
    down->setGeometry(10, 10, 200, 24);
    MemoryPropertyBag bag;
    down->ReadProperties(bag);
    auto *txt = down->findChild<QComboBox *>(QStringLiteral("txt"));
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(5, 5), txt->mapToGlobal(QPointF(5, 5)),
                      Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    const auto start = Clock::now();
    for (int i = 0; i < Items; ++i)
        down->AddItem(textOf(i), QString(), i, checkedAt(i));
    QCoreApplication::sendEvent(txt, &press);
    QCoreApplication::processEvents();
    const auto elapsed = Clock::now() - start;
    auto *popup = down->findChild<QListWidget *>(QStringLiteral("lst"));
    if (!popup || popup->count() != Items || !popup->isVisible())
        qFatal("the pop-up did not open with every item");
    down->Free();
    return elapsed;
}

void addItemsAndOpen(benchmark::State &state)
{
    QWidget form;
    form.resize(300, 100);
    form.show();
    Clock::duration bare{};
    Clock::duration ours{};
    for (auto _ : state) {
        bare += bareFill();
        ours += addAndOpen(form);
    }
    zelkon::bench::report(state, "Down: 10000 AddItem + open", bare, ours);
}

} // namespace

BENCHMARK(addItemsAndOpen)->Unit(benchmark::kMillisecond)->Iterations(10);

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    return zelkon::bench::runAndPrintRatios(argc, argv, {{"Down: 10000 AddItem + open", 2.0}});
}
