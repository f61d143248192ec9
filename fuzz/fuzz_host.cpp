// A hostile host: creates one of the registered controls and, led by the input, drives it only
// through what any host can reach: properties put and read by name, members invoked by name,
// keys and clicks on its child widgets and popups, saving and loading. Values are the worst a
// host can pass (Empty, Null, Missing, extreme and non-finite numbers, long and non-Latin texts,
// dates out of range, arrays of the wrong shape, objects that are no recordset). Only
// zelkon::Error may leave a call, and whatever the input did, the control still saves and loads.
#include <zelkon/common/control.h>
#include <zelkon/common/error.h>
#include <zelkon/common/formfile.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/variants.h>
#include <zelkon/data/connection.h>
#include <zelkon/data/recordset.h>
#include <zelkon/test/testplatform.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QPointer>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

// The input, read a little at a time; past its end every read is 0.
class Input
{
public:
    Input(const uint8_t *data, size_t size)
        : m_data(data)
        , m_size(size)
    { }
    bool atEnd() const { return m_pos >= m_size; }
    quint8 byte() { return m_pos < m_size ? m_data[m_pos++] : 0; }
    quint32 pick(quint32 count) { return count == 0 ? 0 : byte() % count; }
    quint32 u32()
    {
        quint32 v = 0;
        for (int i = 0; i < 4; ++i)
            v = (v << 8) | byte();
        return v;
    }
    QByteArray bytes(int max)
    {
        const int n = qMin<int>(int(pick(quint32(max) + 1)), int(m_size - qMin(m_pos, m_size)));
        QByteArray out(reinterpret_cast<const char *>(m_data + m_pos), n);
        m_pos += size_t(n);
        return out;
    }

private:
    const uint8_t *m_data;
    size_t m_size;
    size_t m_pos = 0;
};

// The objects a host may pass where an object is asked for; deleted with the session, or earlier
// when the input says so (a host that drops its recordset while a control still refers to it).
class Objects
{
public:
    QObject *pick(Input &in, QWidget *control)
    {
        if (!m_holder)
            m_holder = new QObject;
        switch (in.pick(7)) {
        case 0:
            return nullptr;
        case 1:
            return new QObject(m_holder);
        case 2:
            return control;
        case 3:
            return zelkon::createObject(QStringLiteral("ADODB.Recordset"), m_holder); // closed
        case 4:
            return zelkon::createObject(QStringLiteral("ADODB.Connection"), m_holder);
        case 5:
            return zelkon::createObject(QStringLiteral("LBValue"), m_holder);
        default:
            return openRecordset(in);
        }
    }
    void drop()
    {
        delete m_holder;
        m_holder = nullptr;
    }
    ~Objects() { drop(); }

private:
    QObject *openRecordset(Input &in)
    {
        auto *connection = new zelkon::Connection(m_holder);
        auto *recordset = new zelkon::Recordset(m_holder);
        static const char *const sources[] = {
            "SELECT 'one' AS t, 1 AS id UNION ALL SELECT 'two', 2 UNION ALL SELECT NULL, 3",
            "SELECT 'x' AS t WHERE 0",
            "SELECT 1 AS only",
            "SELECT 'Ω日本' AS t, -2147483648 AS id, 1e308 AS d, NULL AS n",
        };
        try {
            connection->Open(QStringLiteral("Driver=QSQLITE;Database=:memory:"));
            recordset->Open(QString::fromUtf8(sources[in.pick(4)]),
                            QVariant::fromValue<QObject *>(connection));
        } catch (const zelkon::Error &) {
            std::abort(); // the fixture itself must work
        }
        return recordset;
    }

    QObject *m_holder = nullptr;
};

QVariant hostileArray(Input &in, Objects &objects, QWidget *control, int depth);

QVariant hostileValue(Input &in, Objects &objects, QWidget *control, int depth = 0)
{
    constexpr double inf = std::numeric_limits<double>::infinity();
    switch (in.pick(depth > 1 ? 24 : 28)) {
    case 0:
        return QVariant();
    case 1:
        return zelkon::nullVariant();
    case 2:
        return zelkon::missingVariant();
    case 3:
        return bool(in.byte() & 1);
    case 4: {
        static const qint16 shorts[] = {0, -1, 1, -32768, 32767, 2, 100};
        return QVariant::fromValue(shorts[in.pick(7)]);
    }
    case 5: {
        static const qint32 longs[] = {0,
                                       -1,
                                       1,
                                       std::numeric_limits<qint32>::min(),
                                       std::numeric_limits<qint32>::max(),
                                       32768,
                                       -32769,
                                       5};
        return QVariant::fromValue(longs[in.pick(8)]);
    }
    case 6: {
        static const double doubles[] = {
            std::nan(""),       inf, -inf, 1e308,   -1e308, 4.9e-324,           -0.0, 2147483648.0,
            9007199254740993.0, 0.5, -2.5, 32767.5, 1e15,   123456789.123456789};
        return doubles[in.pick(14)];
    }
    case 7: {
        static const float floats[] = {std::numeric_limits<float>::quiet_NaN(),
                                       std::numeric_limits<float>::infinity(), -3.4e38f, 1e-45f};
        return QVariant::fromValue(floats[in.pick(4)]);
    }
    case 8:
        return QVariant::fromValue(qint64(std::numeric_limits<qint64>::min() + in.u32()));
    case 9:
        return QVariant::fromValue(quint32(in.u32()));
    case 10: {
        double d;
        const quint64 bits = (quint64(in.u32()) << 32) | in.u32();
        std::memcpy(&d, &bits, sizeof d);
        return d;
    }
    case 11:
        return QVariant::fromValue(qint32(in.u32()));
    case 12:
    case 13: {
        static const char *const texts[] = {"",
                                            " ",
                                            "All",
                                            "-",
                                            "1,5",
                                            "1.5e400",
                                            "-0",
                                            "&H7FFFFFFF",
                                            "31.12.9999",
                                            "0000-00-00",
                                            "29.02.2023",
                                            "'%_*[!]?#",
                                            "a'b\"c;DROP TABLE t",
                                            "Ωμέγα мир 日本語 😀 \u200f\u202e",
                                            "\t\r\n",
                                            "{TAB}{ENTER}%{F4}",
                                            "1;2;3",
                                            "Today",
                                            "-2147483649",
                                            "NaN"};
        return QString::fromUtf8(texts[in.pick(20)]);
    }
    case 14:
        return QString::fromUtf8(in.bytes(64)); // whatever the input holds, valid UTF-8 or not
    case 15:
        return QString(30000 + int(in.pick(3)), QChar(0x42f + in.pick(2)));
    case 16: {
        QString withNul = QStringLiteral("ab");
        withNul.append(QChar(0));
        withNul.append(QChar(0xd800)); // a lone surrogate
        return withNul;
    }
    case 17: {
        static const QDate dates[] = {QDate(),
                                      QDate(-4713, 1, 1),
                                      QDate(9999, 12, 31),
                                      QDate(100, 1, 1),
                                      QDate(1899, 12, 30),
                                      QDate(2024, 2, 29),
                                      QDate(-9999, 6, 15),
                                      QDate(1, 1, 1)};
        const QDate date = dates[in.pick(8)];
        if (in.byte() & 1)
            return date;
        return QDateTime(date, QTime(23, 59, 59, 999));
    }
    case 18:
        return QDateTime(); // invalid
    case 19:
    case 20:
        return QVariant::fromValue(objects.pick(in, control));
    case 21:
        return QVariant::fromValue(static_cast<QObject *>(nullptr));
    case 22:
        return QVariant::fromValue(QSize(-1, -1)); // a type no member expects
    case 23:
        return QVariant(QStringList{QStringLiteral("a"), QString()});
    default:
        return hostileArray(in, objects, control, depth + 1);
    }
}

QVariant hostileArray(Input &in, Objects &objects, QWidget *control, int depth)
{
    const auto fill = [&](qsizetype count) {
        QVariantList list;
        for (qsizetype i = 0; i < count; ++i)
            list.append(hostileValue(in, objects, control, depth));
        return list;
    };
    switch (in.pick(6)) {
    case 0:
        return QVariantList();
    case 1:
        return fill(1 + in.pick(6));
    case 2: { // long, all of one kind
        const QVariant item = hostileValue(in, objects, control, depth);
        return QVariantList(3000, item);
    }
    default: {
        // Other bounds and dimensions: none, one from 5, two of the wrong shape, three.
        static const QList<QList<zelkon::Bounds>> shapes = {
            {},
            {{5, 7}},
            {{0, 1}, {0, 2}},
            {{0, 2}, {0, 1}},
            {{1, 2}, {-3, 0}},
            {{0, 0}, {0, -1}},
            {{0, 1}, {0, 1}, {0, 1}},
            {{-2147483647 - 1, -2147483647 - 1}},
            {{0, 1}, {5, 8}},
        };
        zelkon::VariantArray array(shapes.at(in.pick(quint32(shapes.size()))));
        QList<qint32> index;
        for (const zelkon::Bounds &b : array.bounds())
            index.append(b.lower);
        for (qsizetype i = 0; i < array.size() && i < 24; ++i) {
            array.at(index) = hostileValue(in, objects, control, depth);
            for (qsizetype d = 0; d < index.size(); ++d) {
                if (++index[d] <= array.bounds().at(d).upper)
                    break;
                index[d] = array.bounds().at(d).lower;
            }
        }
        return QVariant::fromValue(array);
    }
    }
}

// A value of the type a parameter or property asks for: the hostile value converted where Qt
// can convert it, else that type's default.
QVariant valueOfType(QMetaType type, Input &in, Objects &objects, QWidget *control)
{
    QVariant value = hostileValue(in, objects, control);
    if (type == QMetaType::fromType<QVariant>())
        return value;
    if (value.metaType() != type && !value.convert(type))
        value = QVariant(type);
    return value;
}

void putProperty(zelkon::Control *control, Input &in, Objects &objects)
{
    const QMetaObject *meta = control->metaObject();
    const int first = QWidget::staticMetaObject.propertyCount();
    const int count = meta->propertyCount() - first;
    if (count <= 0)
        return;
    const QMetaProperty property = meta->property(first + int(in.pick(quint32(count))));
    if (!property.isWritable()) {
        control->property(property.name());
        return;
    }
    const QVariant value = valueOfType(property.metaType(), in, objects, control);
    control->setProperty(property.name(), value);
}

void readProperties(zelkon::Control *control)
{
    const QMetaObject *meta = control->metaObject();
    for (int i = QWidget::staticMetaObject.propertyCount(); i < meta->propertyCount(); ++i)
        meta->property(i).read(control);
}

void invokeMember(zelkon::Control *control, Input &in, Objects &objects)
{
    const QMetaObject *meta = control->metaObject();
    QList<QMetaMethod> members;
    for (int i = QWidget::staticMetaObject.methodCount(); i < meta->methodCount(); ++i) {
        const QMetaMethod m = meta->method(i);
        if (m.access() == QMetaMethod::Public && m.methodType() != QMetaMethod::Signal
            && m.methodType() != QMetaMethod::Constructor && m.parameterCount() <= 10)
            members.append(m);
    }
    if (members.isEmpty())
        return;
    const QMetaMethod method = members.at(qsizetype(in.pick(quint32(members.size()))));
    QVariant args[10];
    QByteArray typeNames[10]; // QGenericArgument keeps only the pointers
    QGenericArgument generic[10];
    for (int i = 0; i < method.parameterCount(); ++i) {
        args[i] = valueOfType(method.parameterMetaType(i), in, objects, control);
        // A QVariant parameter takes the variant itself, any other its contents.
        void *arg = method.parameterMetaType(i) == QMetaType::fromType<QVariant>()
            ? static_cast<void *>(&args[i])
            : args[i].data();
        typeNames[i] = method.parameterTypeName(i);
        generic[i] = QGenericArgument(typeNames[i].constData(), arg);
    }
    const QMetaType returns = method.returnMetaType();
    QVariant result(returns.id() == QMetaType::Void || returns == QMetaType::fromType<QVariant>()
                        ? QMetaType()
                        : returns);
    void *resultData = returns.id() == QMetaType::Void ? nullptr
        : returns == QMetaType::fromType<QVariant>()   ? static_cast<void *>(&result)
                                                       : result.data();
    const QGenericReturnArgument ret(method.typeName(), resultData);
    method.invoke(control, Qt::DirectConnection, ret, generic[0], generic[1], generic[2],
                  generic[3], generic[4], generic[5], generic[6], generic[7], generic[8],
                  generic[9]);
}

// The control's widgets and the windows it has open.
QList<QWidget *> targets(zelkon::Control *control, QWidget *form)
{
    QList<QWidget *> list{control};
    list += control->findChildren<QWidget *>();
    for (QWidget *top : QApplication::topLevelWidgets()) {
        if (top != form && top->isVisible() && !list.contains(top)) {
            list.append(top);
            list += top->findChildren<QWidget *>();
        }
    }
    return list;
}

void pressKey(QWidget *target, Input &in)
{
    static const Qt::Key keys[] = {
        Qt::Key_Return,    Qt::Key_Enter,    Qt::Key_Escape,   Qt::Key_Tab,   Qt::Key_Backtab,
        Qt::Key_Left,      Qt::Key_Right,    Qt::Key_Up,       Qt::Key_Down,  Qt::Key_Home,
        Qt::Key_End,       Qt::Key_PageUp,   Qt::Key_PageDown, Qt::Key_F4,    Qt::Key_Space,
        Qt::Key_Backspace, Qt::Key_Delete,   Qt::Key_Insert,   Qt::Key_Minus, Qt::Key_Plus,
        Qt::Key_Period,    Qt::Key_Comma,    Qt::Key_0,        Qt::Key_5,     Qt::Key_9,
        Qt::Key_A,         Qt::Key_T,        Qt::Key_Y,        Qt::Key_M,     Qt::Key_D,
        Qt::Key_W,         Qt::Key_Asterisk,
    };
    static const Qt::KeyboardModifiers modifiers[] = {
        Qt::NoModifier,
        Qt::NoModifier,
        Qt::NoModifier,
        Qt::ShiftModifier,
        Qt::ControlModifier,
        Qt::AltModifier,
        Qt::ShiftModifier | Qt::ControlModifier,
        Qt::AltModifier | Qt::ShiftModifier,
    };
    const quint8 which = in.byte();
    const Qt::KeyboardModifiers mods = modifiers[in.pick(8)];
    if (which >= 200) { // a character of the input's own
        QTest::keyClick(target, char(0x20 + in.pick(95)), mods);
        return;
    }
    QTest::keyClick(target, keys[which % (sizeof keys / sizeof *keys)], mods);
}

void click(QWidget *target, Input &in)
{
    static const Qt::MouseButton buttons[]
        = {Qt::LeftButton, Qt::LeftButton, Qt::RightButton, Qt::MiddleButton};
    const Qt::MouseButton button = buttons[in.pick(4)];
    const QRect r = target->rect();
    const QPoint at(int(in.pick(quint32(qMax(1, r.width() + 4)))) - 2,
                    int(in.pick(quint32(qMax(1, r.height() + 4)))) - 2);
    if (in.byte() & 1)
        QTest::mouseDClick(target, button, {}, at);
    else
        QTest::mouseClick(target, button, {}, at);
}

// Closes whatever the control opened: a modal dialog, a popup menu, a popup window.
void closePopups(QWidget *form, Input &in)
{
    for (QWidget *top : QApplication::topLevelWidgets()) {
        if (top == form || !top->isVisible())
            continue;
        switch (in.pick(3)) {
        case 0:
            QTest::keyClick(top, Qt::Key_Escape);
            break;
        case 1:
            top->close();
            break;
        default:
            top->hide();
            break;
        }
    }
}

// A modal dialog or menu would wait for a user who never comes: end it as soon as it runs.
void dismissModal()
{
    if (QWidget *popup = QApplication::activePopupWidget())
        popup->close();
    if (QWidget *modal = QApplication::activeModalWidget()) {
        if (auto *dialog = qobject_cast<QDialog *>(modal))
            dialog->reject();
        else
            modal->close();
    }
}

// Saves the form and loads it into a new one; nothing may fail here.
void saveAndLoad(const QWidget &form, const QString &path, const QString &className)
{
    try {
        zelkon::saveForm(form, path);
        QWidget copy;
        const QList<zelkon::Control *> loaded = zelkon::loadForm(copy, path);
        if (loaded.size() != 1
            || QString::fromLatin1(loaded.first()->metaObject()->className())
                    .section(QLatin1String("::"), -1)
                != className)
            std::abort();
        zelkon::MemoryPropertyBag bag;
        loaded.first()->WriteProperties(bag);
    } catch (const zelkon::Error &error) {
        qFatal("%s: saving or loading failed after the session: %s", qPrintable(className),
               error.what());
    }
}

// A host that answers the control's events by calling back into it, as hosts do from their
// event handlers: while the control is in the middle of its own work, a property is put or a
// member invoked. Errors raised there are the host's own and stay in its handler.
class EventHandler : public QObject
{
    Q_OBJECT
public:
    EventHandler(zelkon::Control *control, Input &in, Objects &objects)
        : m_control(control)
        , m_in(in)
        , m_objects(objects)
    {
        const QMetaObject *meta = control->metaObject();
        const QMetaMethod handler = metaObject()->method(metaObject()->indexOfSlot("handle()"));
        for (int i = QWidget::staticMetaObject.methodCount(); i < meta->methodCount(); ++i) {
            if (meta->method(i).methodType() == QMetaMethod::Signal)
                connect(control, meta->method(i), this, handler, Qt::DirectConnection);
        }
    }

public Q_SLOTS:
    void handle()
    {
        // One call back at a time, and only when the input asks for it.
        if (m_busy || !m_control || m_in.atEnd() || m_in.pick(4) != 0)
            return;
        m_busy = true;
        try {
            if (m_in.byte() & 1)
                putProperty(m_control, m_in, m_objects);
            else
                invokeMember(m_control, m_in, m_objects);
        } catch (const zelkon::Error &) { }
        m_busy = false;
    }

private:
    QPointer<zelkon::Control> m_control;
    Input &m_in;
    Objects &m_objects;
    bool m_busy = false;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz_host";
    static char *argv[] = {name, nullptr};
    static QApplication *app = [] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("QT_LOGGING_RULES", "qt.*=false");
        // The offscreen platform warns at every popup; only what ends the run is worth printing.
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &text) {
            if (type == QtCriticalMsg || type == QtFatalMsg)
                std::fprintf(stderr, "%s\n", qPrintable(text));
        });
        auto *application = new QApplication(argc, argv);
        auto *guard = new QTimer(application);
        QObject::connect(guard, &QTimer::timeout, guard, dismissModal);
        guard->start(0);
        return application;
    }();
    Q_UNUSED(app);
    static QTemporaryDir dir;
    static QStringList classes = [] {
        QStringList names = zelkon::controlClassNames();
        names.sort();
        return names;
    }();
    if (classes.isEmpty())
        std::abort();

    Input in(data, size);
    // The machine the host runs on: any number locale and language, and a clock that may be
    // far off.
    zelkon::TestPlatform platform;
    static const QLocale::Language languages[]
        = {QLocale::English, QLocale::German, QLocale::Russian, QLocale::Japanese};
    static const QDate todays[]
        = {QDate(2024, 5, 10), QDate(9999, 12, 30), QDate(100, 1, 1), QDate(2000, 2, 29)};
    // Told by the last byte, so that the rest of an input means what it meant before; most
    // inputs keep the ordinary machine.
    const quint8 machine = size > 0 ? data[size - 1] : 0xff;
    if (machine < 64) {
        platform.setNumberLocale(QLocale(languages[machine & 3]));
        platform.setUiLanguage(languages[(machine >> 2) & 3]);
        platform.setToday(todays[(machine >> 4) & 3]);
    }
    Objects objects;
    const QString className = classes.at(qsizetype(in.pick(quint32(classes.size()))));
    const QString path = dir.filePath(QStringLiteral("host.zform"));
    QWidget form;
    form.resize(400, 300);
    QPointer<zelkon::Control> control = zelkon::createControl(className, &form);
    if (!control)
        std::abort();
    if (in.byte() & 1)
        control->InitProperties();
    control->setGeometry(10, 10, 200, 24);
    form.show();

    EventHandler handler(control, in, objects);
    for (int step = 0; step < 64 && !in.atEnd() && control; ++step) {
        try {
            switch (in.pick(12)) {
            case 0:
            case 1:
            case 2:
                putProperty(control, in, objects);
                break;
            case 3:
            case 4:
            case 5:
                invokeMember(control, in, objects);
                break;
            case 6: {
                const QList<QWidget *> list = targets(control, &form);
                QPointer<QWidget> target = list.at(qsizetype(in.pick(quint32(list.size()))));
                if (target && target->isVisible())
                    pressKey(target, in);
                break;
            }
            case 7: {
                const QList<QWidget *> list = targets(control, &form);
                QPointer<QWidget> target = list.at(qsizetype(in.pick(quint32(list.size()))));
                if (target && target->isVisible())
                    click(target, in);
                break;
            }
            case 8: { // a button of its own: this is how popups open
                const QList<QAbstractButton *> buttons = control->findChildren<QAbstractButton *>();
                if (!buttons.isEmpty()) {
                    QAbstractButton *button
                        = buttons.at(qsizetype(in.pick(quint32(buttons.size()))));
                    if (button->isVisible())
                        QTest::mouseClick(button, Qt::LeftButton);
                }
                break;
            }
            case 9:
                closePopups(&form, in);
                break;
            case 10:
                switch (in.pick(4)) {
                case 0: {
                    zelkon::MemoryPropertyBag bag;
                    control->WriteProperties(bag);
                    control->ReadProperties(bag);
                    break;
                }
                case 1:
                    zelkon::saveForm(form, path);
                    break;
                case 2:
                    readProperties(control);
                    break;
                default:
                    objects.drop();
                    break;
                }
                break;
            default: // time passes: the control's timers run
                if (in.byte() & 1)
                    QTest::qWait(int(in.pick(6)));
                else
                    QCoreApplication::processEvents();
                QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
                break;
            }
        } catch (const zelkon::Error &) {
            // the one exception a host may see
        }
    }
    if (!control)
        qFatal("%s: the control was destroyed by the session", qPrintable(className));
    closePopups(&form, in);
    saveAndLoad(form, path, className);
    return 0;
}

#include "fuzz_host.moc"
