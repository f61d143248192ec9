// Draws each control as a user sees it, its list or menu open, into PNG files for the README:
//   zelkon-pictures <directory> <en|ru>
// Each picture is a small form with the host's label beside the control; open popups are
// separate windows, so they are drawn onto the form's picture where they stand on the screen.
// Today and the language are pinned, so the pictures change only when the controls do.
#include <zelkon/checklist/checkcombo.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/data/connection.h>
#include <zelkon/data/recordset.h>
#include <zelkon/dropdown/down.h>
#include <zelkon/navigator/navigator.h>
#include <zelkon/numedit/numedit.h>
#include <zelkon/reldate/reldate.h>
#include <zelkon/smallcontrols/boxcombo.h>
#include <zelkon/smallcontrols/combolistbox.h>
#include <zelkon/smallcontrols/elapsedbut.h>
#include <zelkon/test/testplatform.h>
#include <zelkon/zelkon.h>

#include <QApplication>
#include <QDir>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QSqlQuery>
#include <QTest>

#include <cstdio>
#include <functional>

namespace {

// The host's own texts and rows in one language; the controls' texts come from the library.
struct Texts
{
    QStringList regions, customers;
    QString regionsLabel, fromLabel, totalLabel, toLabel, customerLabel, typed;
    QString sortLabel, sortBy, filterLabel, title, products, nothing, group;
    QLocale locale;
};

Texts english()
{
    return {{u"North"_qs, u"South"_qs, u"East"_qs, u"West"_qs, u"Central"_qs, u"Islands"_qs,
             u"Mountains"_qs, u"Coast"_qs},
            {u"Baker & Sons"_qs, u"Balmoral Foods"_qs, u"Barrow Trading"_qs, u"Bates Hardware"_qs,
             u"Bayside Books"_qs, u"Carter Ltd"_qs, u"Delta Supplies"_qs},
            u"Regions:"_qs,
            u"Ordered from:"_qs,
            u"Total from:"_qs,
            u"to:"_qs,
            u"Customer:"_qs,
            u"Ba"_qs,
            u"Sort by:"_qs,
            u"Date;Customer;Total, largest first"_qs,
            u"Saved filter:"_qs,
            u"Orders"_qs,
            u"Tea;Coffee;Cocoa;Juice"_qs,
            u"(none)"_qs,
            u"(several)"_qs,
            QLocale(QLocale::English, QLocale::UnitedStates)};
}

Texts russian()
{
    return {{u"Север"_qs, u"Юг"_qs, u"Восток"_qs, u"Запад"_qs, u"Центр"_qs, u"Острова"_qs,
             u"Горы"_qs, u"Побережье"_qs},
            {u"Балтика-Трейд"_qs, u"Барс"_qs, u"Бастион"_qs, u"Баумаркет"_qs, u"Байкал-Книга"_qs,
             u"Вектор"_qs, u"Дельта"_qs},
            u"Регионы:"_qs,
            u"Заказы с:"_qs,
            u"Сумма от:"_qs,
            u"до:"_qs,
            u"Клиент:"_qs,
            u"Ба"_qs,
            u"Порядок:"_qs,
            u"Дата;Клиент;Сумма, по убыванию"_qs,
            u"Фильтр:"_qs,
            u"Заказы"_qs,
            u"Чай;Кофе;Какао;Сок"_qs,
            u"(нет)"_qs,
            u"(несколько)"_qs,
            QLocale(QLocale::Russian, QLocale::Russia)};
}

// A form of rows "label: control"; `extra` leaves room below for a list that grows out of a field.
class Form : public QWidget
{
public:
    explicit Form(int extra = 0)
    {
        setAutoFillBackground(true);
        m_grid->setContentsMargins(12, 12, 12, 12 + extra);
        m_grid->setHorizontalSpacing(8);
        m_grid->setColumnMinimumWidth(1, 200);
        m_grid->setRowStretch(32, 1);
    }
    template<class C>
    C *add(const QString &label, int row, int column = 0)
    {
        auto *control = new C(this);
        // As the user meets it: a saved form opened in run mode, every property at its default.
        control->setUserMode(true);
        zelkon::MemoryPropertyBag bag;
        control->ReadProperties(bag);
        if (!label.isEmpty())
            m_grid->addWidget(new QLabel(label, this), row, column * 2, Qt::AlignRight);
        m_grid->addWidget(control, row, column * 2 + 1);
        return control;
    }
    void showAt(QPoint where)
    {
        move(where);
        show();
        activateWindow();
        if (!QTest::qWaitForWindowActive(this))
            std::fprintf(stderr, "zelkon-pictures: the form did not become active\n");
        if (QWidget *focused = QApplication::focusWidget())
            focused->clearFocus(); // no field selected unless the scene types into it
        settle();
    }
    static void settle() { QTest::qWait(150); }

private:
    QGridLayout *m_grid = new QGridLayout(this);
};

template<class W>
W *part(QWidget *control, const char *name)
{
    return control->findChild<W *>(QLatin1String(name));
}

// The form and every other visible window (the popups) on one picture, as they stand.
QImage compose(QWidget *form)
{
    QList<QWidget *> windows{form};
    QRect area = form->geometry();
    for (QWidget *w : QApplication::topLevelWidgets()) {
        if (w != form && w->isVisible()) {
            windows << w;
            area |= w->geometry();
        }
    }
    area.adjust(-6, -6, 6, 6);
    QImage image(area.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    for (QWidget *w : std::as_const(windows)) {
        QRect place = w->geometry().translated(-area.topLeft());
        painter.setPen(QColor(0, 0, 0, 60)); // a thin shadow lifts the window off the page
        painter.drawRect(place.adjusted(-1, -1, 0, 0));
        painter.drawPixmap(place.topLeft(), w->grab());
    }
    return image;
}

QVariant rowsOf(const QStringList &texts)
{
    zelkon::VariantArray rows({{0, 1}, {0, qint32(texts.size() - 1)}});
    for (int i = 0; i < texts.size(); ++i) {
        rows.at({0, i}) = texts.at(i);
        rows.at({1, i}) = i + 1;
    }
    return QVariant::fromValue(rows);
}

QVariant inputArray(const QString &joined)
{
    QVariantList texts, ids;
    for (const QString &text : joined.split(u';')) {
        texts << text;
        ids << ids.size() + 1;
    }
    return QVariantList{texts, ids};
}

using Scene = std::function<void(Form &, const Texts &)>;

void checkList(Form &form, const Texts &t)
{
    auto *combo = form.add<zelkon::CheckCombo>(t.regionsLabel, 0);
    combo->setTypeData(zelkon::CheckCombo::ArData);
    combo->setMaxLine(int(t.regions.size()));
    combo->setSArrayData(rowsOf(t.regions));
    QVariant checked = QVariantList{1, 3, 4};
    combo->setArrayCheckedID(checked);
    form.showAt({40, 40});
    QTest::mouseClick(part<QWidget>(combo, "ButDropDown"), Qt::LeftButton);
}

void relativeDate(Form &form, const Texts &t)
{
    auto *date = form.add<zelkon::RelDate>(t.fromLabel, 0);
    date->setCheckBoxState(1);
    date->setAllowAll(true);
    date->setMenuStateVisible(true);
    date->setRelative(true);
    date->setRetNum(-7);
    form.showAt({40, 40});
    QWidget *days = part<QWidget>(date, "DateLong");
    QTest::mouseClick(days, Qt::RightButton, {}, QPoint(24, days->height() - 2));
}

void numericField(Form &form, const Texts &t)
{
    auto *from = form.add<zelkon::NumEdit>(t.totalLabel, 0);
    auto *to = form.add<zelkon::NumEdit>(t.toLabel, 1);
    from->setValue(1250);
    to->setValue(-300.5);
    to->setNegTextColor(0x0000c0); // red: colours are 0xBBGGRR
    form.showAt({40, 40});
}

void navigator(Form &form, const Texts &t)
{
    auto *connection = new zelkon::Connection(&form);
    connection->Open(u"Driver=QSQLITE;Database=:memory:"_qs);
    QSqlQuery query(connection->database());
    query.exec(u"CREATE TABLE customers (id INTEGER, name TEXT)"_qs);
    for (int i = 0; i < t.customers.size(); ++i) {
        query.prepare(u"INSERT INTO customers VALUES (?, ?)"_qs);
        query.addBindValue(i + 1);
        query.addBindValue(t.customers.at(i));
        query.exec();
    }
    auto *rows = new zelkon::Recordset(&form);
    rows->Open(u"SELECT id, name FROM customers ORDER BY name"_qs,
               QVariant::fromValue<QObject *>(connection));
    auto *nav = form.add<zelkon::Navigator>(t.customerLabel, 0);
    nav->setProperty("FieldInd", 1);
    nav->setProperty("FieldInd2", 0);
    nav->setProperty("DataSourthe", QVariant::fromValue<QObject *>(rows));
    form.showAt({40, 40});
    QLineEdit *text = part<QLineEdit>(nav, "Text1");
    text->setFocus();
    for (const QChar c : t.typed) // keyClicks knows ASCII only
        QTest::sendKeyEvent(QTest::Click, text, Qt::Key_unknown, QString(c), Qt::NoModifier);
}

void smallControls(Form &form, const Texts &t)
{
    auto *title = form.add<zelkon::ElapsedBut>(QString(), 0);
    title->setTitul(t.title);
    // The host draws what the button means; here, as in the demo, an open panel's triangle.
    part<QPushButton>(title, "btnEllaps")->setText(QChar(0x25BE));
    auto *sortBy = form.add<zelkon::ComboListBox>(t.sortLabel, 1);
    sortBy->setInputArray(inputArray(t.sortBy));
    sortBy->setValueID(3);
    auto *products = form.add<zelkon::BoxCombo>(t.filterLabel, 2);
    products->setInputArray(inputArray(t.products));
    products->setStartValue(t.products.section(u';', 1, 1));
    form.showAt({40, 40});
}

void down(Form &form, const Texts &t)
{
    auto *list = form.add<zelkon::Down>(t.regionsLabel, 0);
    list->setCaptionNothing(t.nothing);
    list->setCaptionGroup(t.group);
    for (int i = 0; i < 4; ++i)
        list->AddItem(t.regions.at(i), QString(), i + 1, i == 1 || i == 2);
    form.showAt({40, 40});
    QTest::mouseClick(part<QWidget>(list, "txt"), Qt::LeftButton); // a press drops the list
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() != 3 || (args.at(2) != u"en"_qs && args.at(2) != u"ru"_qs)) {
        std::fprintf(stderr, "usage: zelkon-pictures <directory> <en|ru>\n");
        return 2;
    }
    const QString language = args.at(2);
    const Texts texts = language == u"ru"_qs ? russian() : english();
    zelkon::TestPlatform platform(QDate(2024, 5, 10), texts.locale, texts.locale.language());
    QLocale::setDefault(texts.locale);

    const QList<std::pair<QString, std::pair<Scene, int>>> scenes = {
        {u"checkcombo"_qs, {checkList, 0}}, {u"reldate"_qs, {relativeDate, 0}},
        {u"numedit"_qs, {numericField, 0}}, {u"navigator"_qs, {navigator, 64}},
        {u"small"_qs, {smallControls, 0}},  {u"down"_qs, {down, 0}},
    };
    const QDir out(args.at(1));
    int failed = 0;
    for (const auto &[name, scene] : scenes) {
        Form form(scene.second);
        scene.first(form, texts);
        Form::settle();
        const QString path = out.filePath(u"%1-%2.png"_qs.arg(name, language));
        if (compose(&form).save(path))
            std::printf("%s\n", qPrintable(path));
        else
            ++failed;
    }
    return failed ? 1 : 0;
}
