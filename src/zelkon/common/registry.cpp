#include <zelkon/common/control.h>
#include <zelkon/common/registry.h>

#include <QList>
#include <QPair>

namespace zelkon {

namespace {

// Kept in registration order so that the class lists read the same in every run.
template<typename Factory>
struct Registry
{
    QList<QPair<QString, Factory>> entries;

    Factory find(const QString &name, Qt::CaseSensitivity cs) const
    {
        for (const auto &entry : entries) {
            if (entry.first.compare(name, cs) == 0)
                return entry.second;
        }
        return nullptr;
    }
    QStringList names() const
    {
        QStringList list;
        for (const auto &entry : entries)
            list.append(entry.first);
        return list;
    }
};

Registry<ControlFactory> &controls()
{
    static Registry<ControlFactory> registry;
    return registry;
}

Registry<ObjectFactory> &objects()
{
    static Registry<ObjectFactory> registry;
    return registry;
}

} // namespace

bool registerControlClass(const QString &className, ControlFactory factory)
{
    if (!factory || controls().find(className, Qt::CaseSensitive))
        return false;
    controls().entries.append({className, factory});
    return true;
}

bool registerObjectClass(const QString &progId, ObjectFactory factory)
{
    if (!factory || objects().find(progId, Qt::CaseInsensitive))
        return false;
    objects().entries.append({progId, factory});
    return true;
}

Control *createControl(const QString &className, QWidget *parent)
{
    const ControlFactory factory = controls().find(className, Qt::CaseSensitive);
    return factory ? factory(parent) : nullptr;
}

QObject *createObject(const QString &progId, QObject *parent)
{
    const ObjectFactory factory = objects().find(progId, Qt::CaseInsensitive);
    return factory ? factory(parent) : nullptr;
}

QStringList controlClassNames()
{
    return controls().names();
}

QStringList objectClassNames()
{
    return objects().names();
}

} // namespace zelkon
