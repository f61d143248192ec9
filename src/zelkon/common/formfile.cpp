#include <zelkon/common/control.h>
#include <zelkon/common/error.h>
#include <zelkon/common/formfile.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/variants.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <memory>

namespace zelkon {

namespace {

constexpr int BadFileFormat = 321;
const QLatin1String formatTag("zelkon-form");
constexpr int formatVersion = 1;
// Bounds on what a file may make the loader build, checked before the memory is taken: a form
// file holds a few controls, so anything near these limits is damaged or hostile.
constexpr qint64 maxFileSize = 16 * 1024 * 1024;
constexpr int maxNesting = 64;

// Where in the file a fault lies, for the error message.
class Place
{
public:
    explicit Place(QString path)
        : m_path(std::move(path))
    { }
    [[noreturn]] void fail(const QString &where, const QString &what) const
    {
        throw Error(BadFileFormat,
                    QStringLiteral("%1: %2: %3")
                        .arg(m_path, where.isEmpty() ? QStringLiteral("file") : where, what));
    }

private:
    QString m_path;
};

QString exactDouble(double value)
{
    char buf[64];
    const auto r = std::to_chars(buf, buf + sizeof buf, value); // shortest form that reads back
    return QString::fromLatin1(buf, int(r.ptr - buf));
}

QString exactFloat(float value)
{
    char buf[64];
    const auto r = std::to_chars(buf, buf + sizeof buf, value);
    return QString::fromLatin1(buf, int(r.ptr - buf));
}

template<typename T>
bool readFloating(const QString &text, T *out)
{
    const QByteArray bytes = text.toLatin1();
    const auto r = std::from_chars(bytes.constData(), bytes.constData() + bytes.size(), *out);
    return r.ec == std::errc() && r.ptr == bytes.constData() + bytes.size();
}

QString dateTimeFormat()
{
    return QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz");
}

// The readable form holds four-digit years only.
bool hasTextForm(QDate d)
{
    return d.isValid() && d.year() >= 1 && d.year() <= 9999;
}

void insertDay(QJsonObject &o, QDate d, int msecs)
{
    o.insert(QLatin1String("jd"), double(d.toJulianDay())); // exact: well within 2^53
    o.insert(QLatin1String("ms"), msecs);
}

QJsonValue encode(const QVariant &value, const QString &where, const QString &path)
{
    QJsonObject o;
    const auto tag = [&](const char *t) { o.insert(QLatin1String("t"), QLatin1String(t)); };
    if (!value.isValid()) {
        tag("empty");
    } else if (IsNull(value)) {
        tag("null");
    } else if (IsMissing(value)) {
        tag("missing");
    } else if (isVariantArray(value)) {
        const VariantArray array = value.value<VariantArray>();
        tag("array");
        QJsonArray bounds;
        for (const Bounds &b : array.bounds())
            bounds.append(QJsonArray{b.lower, b.upper});
        QJsonArray items;
        int i = 0;
        for (const QVariant &item : array.elements())
            items.append(encode(item, where + QStringLiteral("[%1]").arg(i++), path));
        o.insert(QLatin1String("bounds"), bounds);
        o.insert(QLatin1String("items"), items);
    } else {
        switch (value.metaType().id()) {
        case QMetaType::Bool:
            tag("bool");
            o.insert(QLatin1String("v"), value.toBool());
            break;
        case QMetaType::Short:
            tag("int16");
            o.insert(QLatin1String("v"), value.toInt());
            break;
        case QMetaType::Int:
            tag("int32");
            o.insert(QLatin1String("v"), value.toInt());
            break;
        case QMetaType::UInt:
            tag("uint32");
            o.insert(QLatin1String("v"), qint64(value.toUInt()));
            break;
        case QMetaType::LongLong:
            tag("int64");
            o.insert(QLatin1String("v"), QString::number(value.toLongLong()));
            break;
        case QMetaType::Float:
            tag("single");
            o.insert(QLatin1String("v"), exactFloat(value.toFloat()));
            break;
        case QMetaType::Double:
            tag("double");
            o.insert(QLatin1String("v"), exactDouble(value.toDouble()));
            break;
        case QMetaType::QString:
            tag("string");
            o.insert(QLatin1String("v"), value.toString());
            break;
        case QMetaType::QDateTime: {
            tag("date");
            const QDateTime dt = value.toDateTime();
            if (hasTextForm(dt.date()))
                o.insert(QLatin1String("v"), dt.toString(dateTimeFormat()));
            else if (dt.isValid())
                insertDay(o, dt.date(), dt.time().msecsSinceStartOfDay());
            break; // an invalid date has neither
        }
        case QMetaType::QDate: {
            tag("day");
            const QDate d = value.toDate();
            if (hasTextForm(d))
                o.insert(QLatin1String("v"), d.toString(Qt::ISODate));
            else if (d.isValid())
                insertDay(o, d, 0);
            break;
        }
        case QMetaType::QVariantList: {
            tag("list");
            QJsonArray items;
            int i = 0;
            for (const QVariant &item : value.toList())
                items.append(encode(item, where + QStringLiteral("[%1]").arg(i++), path));
            o.insert(QLatin1String("items"), items);
            break;
        }
        default:
            throw Error(TypeMismatch,
                        QStringLiteral("%1: %2: a value of type %3 cannot be saved")
                            .arg(path, where, QLatin1String(value.typeName())));
        }
    }
    return o;
}

QVariant decode(const QJsonValue &json, const QString &where, const Place &place, int depth = 0)
{
    if (depth > maxNesting)
        place.fail(where, QStringLiteral("values are nested more than %1 deep").arg(maxNesting));
    if (!json.isObject())
        place.fail(where, QStringLiteral("a value must be an object with a type tag"));
    const QJsonObject o = json.toObject();
    const QString t = o.value(QLatin1String("t")).toString();
    const QJsonValue v = o.value(QLatin1String("v"));
    const auto needString = [&]() {
        if (!v.isString())
            place.fail(where, QStringLiteral("the value of a %1 must be a string").arg(t));
        return v.toString();
    };
    const auto needInteger = [&](qint64 low, qint64 high, const QJsonValue &n) {
        const double d = n.toDouble(std::nan(""));
        if (!n.isDouble() || d != std::trunc(d) || d < double(low) || d > double(high))
            place.fail(where, QStringLiteral("the value of a %1 is out of its range").arg(t));
        return qint64(d);
    };
    if (t == QLatin1String("empty"))
        return QVariant();
    if (t == QLatin1String("null"))
        return nullVariant();
    if (t == QLatin1String("missing"))
        return missingVariant();
    if (t == QLatin1String("bool")) {
        if (!v.isBool())
            place.fail(where, QStringLiteral("the value of a bool must be true or false"));
        return v.toBool();
    }
    if (t == QLatin1String("int16"))
        return QVariant::fromValue(qint16(needInteger(-32768, 32767, v)));
    if (t == QLatin1String("int32"))
        return QVariant::fromValue(qint32(needInteger(-2147483648LL, 2147483647LL, v)));
    if (t == QLatin1String("uint32"))
        return QVariant::fromValue(quint32(needInteger(0, 4294967295LL, v)));
    if (t == QLatin1String("int64")) {
        bool ok = false;
        const qint64 n = needString().toLongLong(&ok);
        if (!ok)
            place.fail(where, QStringLiteral("not a 64-bit integer"));
        return QVariant::fromValue(n);
    }
    if (t == QLatin1String("single")) {
        float f = 0;
        if (!readFloating(needString(), &f))
            place.fail(where, QStringLiteral("not a number"));
        return QVariant::fromValue(f);
    }
    if (t == QLatin1String("double")) {
        double d = 0;
        if (!readFloating(needString(), &d))
            place.fail(where, QStringLiteral("not a number"));
        return QVariant::fromValue(d);
    }
    if (t == QLatin1String("string"))
        return needString();
    // Dates outside the years 1 to 9999 are stored as a day number, invalid ones as neither.
    const QJsonValue jd = o.value(QLatin1String("jd"));
    const bool textForm = !v.isUndefined();
    if ((t == QLatin1String("date") || t == QLatin1String("day")) && !textForm
        && !jd.isUndefined()) {
        const qint64 day = needInteger(-784350574879LL, 784354017364LL, jd); // QDate's range
        const qint64 ms = needInteger(0, 86399999, o.value(QLatin1String("ms")));
        const QDate d = QDate::fromJulianDay(day);
        if (t == QLatin1String("day"))
            return d;
        return QDateTime(d, QTime::fromMSecsSinceStartOfDay(int(ms)));
    }
    if (t == QLatin1String("date")) {
        if (!textForm)
            return QDateTime();
        const QDateTime dt = QDateTime::fromString(needString(), dateTimeFormat());
        if (!dt.isValid())
            place.fail(where, QStringLiteral("not a date"));
        return dt;
    }
    if (t == QLatin1String("day")) {
        if (!textForm)
            return QDate();
        const QDate d = QDate::fromString(needString(), Qt::ISODate);
        if (!d.isValid())
            place.fail(where, QStringLiteral("not a date"));
        return d;
    }
    if (t == QLatin1String("list")) {
        const QJsonValue items = o.value(QLatin1String("items"));
        if (!items.isArray())
            place.fail(where, QStringLiteral("a list needs its items"));
        QVariantList list;
        int i = 0;
        for (const QJsonValue &item : items.toArray())
            list.append(decode(item, where + QStringLiteral("[%1]").arg(i++), place, depth + 1));
        return list;
    }
    if (t == QLatin1String("array")) {
        const QJsonValue boundsJson = o.value(QLatin1String("bounds"));
        const QJsonValue items = o.value(QLatin1String("items"));
        if (!boundsJson.isArray() || !items.isArray())
            place.fail(where, QStringLiteral("an array needs its bounds and items"));
        QList<Bounds> bounds;
        for (const QJsonValue &b : boundsJson.toArray()) {
            const QJsonArray pair = b.toArray();
            if (pair.size() != 2 || !pair.at(0).isDouble() || !pair.at(1).isDouble())
                place.fail(where, QStringLiteral("array bounds must be pairs of integers"));
            bounds.append({qint32(pair.at(0).toInt()), qint32(pair.at(1).toInt())});
        }
        // The count the bounds declare must match the items written before any is allocated:
        // bounds can declare billions where the file holds a handful.
        const QJsonArray itemArray = items.toArray();
        qint64 declared = bounds.isEmpty() ? 0 : 1;
        for (const Bounds &b : std::as_const(bounds))
            declared
                = std::min<qint64>(declared * std::max<qint64>(0, qint64(b.upper) - b.lower + 1),
                                   std::numeric_limits<qint32>::max());
        if (declared != itemArray.size())
            place.fail(where,
                       QStringLiteral("the array holds %1 items where its bounds need %2")
                           .arg(itemArray.size())
                           .arg(declared));
        VariantArray array;
        try {
            array = VariantArray(bounds);
        } catch (const Error &) {
            place.fail(where, QStringLiteral("array bounds out of range"));
        }
        // Elements are stored first index fastest; walk the indices in the same order.
        QList<qint32> index;
        for (const Bounds &b : bounds)
            index.append(b.lower);
        for (qsizetype i = 0; i < itemArray.size(); ++i) {
            array.at(index)
                = decode(itemArray.at(i), where + QStringLiteral("[%1]").arg(i), place, depth + 1);
            for (qsizetype d = 0; d < index.size(); ++d) {
                if (++index[d] <= bounds.at(d).upper)
                    break;
                index[d] = bounds.at(d).lower;
            }
        }
        return QVariant::fromValue(array);
    }
    place.fail(where, QStringLiteral("unknown value type \"%1\"").arg(t));
}

// At most how many bytes a value takes in the file (tags, braces and indentation included),
// counted no further than `limit`: a value too large to be read back is refused before it is
// encoded, whatever its size in memory.
qint64 savedSize(const QVariant &value, qint64 limit, int depth = 0)
{
    if (depth > maxNesting) // could not be read back either
        return limit + 1;
    qint64 size = 64 + 16 * qint64(depth);
    const auto add = [&](const QList<QVariant> &items) {
        for (const QVariant &item : items) {
            if (size > limit)
                break;
            size += savedSize(item, limit - size, depth + 1);
        }
    };
    if (value.metaType() == QMetaType::fromType<QString>())
        size += 6 * value.toString().size(); // every character escaped, at the worst
    else if (value.metaType() == QMetaType::fromType<QVariantList>())
        add(value.toList());
    else if (isVariantArray(value))
        add(value.value<VariantArray>().elements());
    return size;
}

// The bag a control writes into when its form is saved. A value that the file cannot hold (an
// object, a type of no form, more than a file may hold) is refused at the write, with the error
// a persisting bag raises, so that the control skips that one property as it skips any failing
// write, and the rest of the form is saved.
class SavingBag : public MemoryPropertyBag
{
public:
    SavingBag(QString where, QString path, qint64 *room)
        : m_where(std::move(where))
        , m_path(std::move(path))
        , m_room(room)
    { }
    void WriteProperty(const QString &name, const QVariant &value,
                       const QVariant &defaultValue) override
    {
        const QString where = m_where + QLatin1Char('.') + name;
        const qint64 size = savedSize(value, *m_room);
        if (size > *m_room)
            throw Error(FileError,
                        QStringLiteral(
                            "%1: %2: the value is too large or too deeply nested for a form file")
                            .arg(m_path, where));
        encode(value, where, m_path);
        *m_room -= size;
        MemoryPropertyBag::WriteProperty(name, value, defaultValue);
    }

private:
    QString m_where;
    QString m_path;
    qint64 *m_room;
};

struct SavedControl
{
    QString className;
    QString name;
    int index = -1;
    QRect geometry;
    MemoryPropertyBag bag;
};

QString lineAndColumn(const QByteArray &data, int offset)
{
    int line = 1;
    int column = 1;
    for (int i = 0; i < offset && i < data.size(); ++i) {
        if (data.at(i) == '\n') {
            ++line;
            column = 1;
        } else {
            ++column;
        }
    }
    return QStringLiteral("line %1, column %2").arg(line).arg(column);
}

} // namespace

void saveForm(const QWidget &form, const QString &path)
{
    QJsonArray controls;
    int i = 0;
    qint64 room = maxFileSize - 4096; // what the values may take; the rest is for the controls
    for (Control *control : Control::formControls(&form)) {
        const QString where = QStringLiteral("control %1 (%2)").arg(i++).arg(control->objectName());
        SavingBag bag(where, path, &room);
        control->WriteProperties(bag);
        QJsonArray properties;
        for (const QString &key : bag.keys()) {
            properties.append(
                QJsonObject{{QLatin1String("name"), key},
                            {QLatin1String("value"),
                             encode(bag.ReadProperty(key), where + QLatin1Char('.') + key, path)}});
        }
        const QRect g = control->geometry();
        controls.append(QJsonObject{
            {QLatin1String("class"),
             QString::fromLatin1(control->metaObject()->className())
                 .section(QLatin1String("::"), -1)},
            {QLatin1String("name"), control->objectName()},
            {QLatin1String("index"), control->Index()},
            {QLatin1String("geometry"), QJsonArray{g.x(), g.y(), g.width(), g.height()}},
            {QLatin1String("properties"), properties},
        });
    }
    const QJsonObject root{{QLatin1String("format"), formatTag},
                           {QLatin1String("version"), formatVersion},
                           {QLatin1String("controls"), controls}};
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        throw Error(FileError,
                    QStringLiteral("%1: cannot be written: %2").arg(path, file.errorString()));
    // QSaveFile does not always notice a write that stopped short (a full disk, a file-size
    // limit): the count written is checked here, or a cut-off file would replace the old one.
    const QByteArray bytes = QJsonDocument(root).toJson(QJsonDocument::Indented);
    if (bytes.size() > maxFileSize) // many controls: a file that could not be read back
        throw Error(FileError, QStringLiteral("%1: too large for a form file").arg(path));
    if (file.write(bytes) != bytes.size() || !file.flush()) {
        const QString reason = file.errorString();
        file.cancelWriting();
        throw Error(FileError, QStringLiteral("%1: cannot be written: %2").arg(path, reason));
    }
    if (!file.commit())
        throw Error(FileError,
                    QStringLiteral("%1: cannot be written: %2").arg(path, file.errorString()));
}

QList<Control *> loadForm(QWidget &form, const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw Error(FileError,
                    QStringLiteral("%1: cannot be read: %2").arg(path, file.errorString()));
    const Place place(path);
    if (file.size() > maxFileSize)
        place.fail(QString(),
                   QStringLiteral("%1 bytes is too large for a form file (at most %2)")
                       .arg(file.size())
                       .arg(maxFileSize));
    const QByteArray data = file.readAll();
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(data, &parseError);
    if (parseError.error != QJsonParseError::NoError)
        place.fail(lineAndColumn(data, parseError.offset), parseError.errorString());
    const QJsonObject root = document.object();
    if (!document.isObject() || root.value(QLatin1String("format")).toString() != formatTag)
        place.fail(QString(), QStringLiteral("not a Zelkon form file"));
    if (root.value(QLatin1String("version")).toInt() != formatVersion)
        place.fail(QStringLiteral("version"), QStringLiteral("unsupported form file version"));
    const QJsonValue controlsJson = root.value(QLatin1String("controls"));
    if (!controlsJson.isArray())
        place.fail(QStringLiteral("controls"), QStringLiteral("the list of controls is missing"));

    // Everything is read and checked before the form is touched.
    std::vector<std::unique_ptr<SavedControl>> savedControls;
    const QStringList known = controlClassNames();
    int i = 0;
    for (const QJsonValue &entry : controlsJson.toArray()) {
        const QString where = QStringLiteral("control %1").arg(i++);
        const QJsonObject o = entry.toObject();
        auto saved = std::make_unique<SavedControl>();
        saved->className = o.value(QLatin1String("class")).toString();
        if (!entry.isObject() || !known.contains(saved->className))
            place.fail(where, QStringLiteral("unknown control class \"%1\"").arg(saved->className));
        saved->name = o.value(QLatin1String("name")).toString();
        const QJsonValue index = o.value(QLatin1String("index"));
        if (!index.isDouble() || index.toDouble() != index.toInt())
            place.fail(where, QStringLiteral("the index must be an integer"));
        saved->index = index.toInt();
        const QJsonArray g = o.value(QLatin1String("geometry")).toArray();
        if (g.size() != 4)
            place.fail(where, QStringLiteral("the geometry must be four integers"));
        for (const QJsonValue &n : g) {
            if (!n.isDouble() || n.toDouble() != n.toInt())
                place.fail(where, QStringLiteral("the geometry must be four integers"));
        }
        // Any place and size a host gave is saved, so any is read back; bounded only so that
        // the rectangle's right and bottom edges stay integers.
        constexpr int farthest = 1 << 30;
        saved->geometry = QRect(qBound(-farthest, g.at(0).toInt(), farthest),
                                qBound(-farthest, g.at(1).toInt(), farthest),
                                qBound(0, g.at(2).toInt(), QWIDGETSIZE_MAX),
                                qBound(0, g.at(3).toInt(), QWIDGETSIZE_MAX));
        const QJsonValue properties = o.value(QLatin1String("properties"));
        if (!properties.isArray())
            place.fail(where, QStringLiteral("the properties are missing"));
        for (const QJsonValue &p : properties.toArray()) {
            const QString key = p.toObject().value(QLatin1String("name")).toString();
            if (key.isEmpty())
                place.fail(where, QStringLiteral("a property has no name"));
            saved->bag.insert(key,
                              decode(p.toObject().value(QLatin1String("value")),
                                     where + QLatin1Char('.') + key, place));
        }
        savedControls.push_back(std::move(saved));
    }

    QList<Control *> created;
    try {
        for (const auto &saved : savedControls) {
            Control *control = createControl(saved->className, &form);
            created.append(control);
            control->setObjectName(saved->name);
            control->setIndex(saved->index);
            control->setGeometry(saved->geometry);
            control->ReadProperties(saved->bag);
        }
    } catch (...) {
        qDeleteAll(created);
        throw;
    }
    for (Control *control : std::as_const(created))
        control->show();
    return created;
}

} // namespace zelkon
