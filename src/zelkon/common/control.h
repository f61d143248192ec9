// zelkon::Control: the base of every Zelkon control (container services, persistence, version).
#pragma once

#include <zelkon/common/global.h>

#include <QVariant>
#include <QWidget>

namespace zelkon {

class PropertyBag;

class ZELKON_EXPORT Control : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(int Index READ Index WRITE setIndex)
    Q_PROPERTY(bool UserMode READ UserMode WRITE setUserMode)
    Q_PROPERTY(QVariant Version READ Version)
    Q_PROPERTY(qint32 hWnd READ hWnd)

public:
    explicit Control(QWidget *parent = nullptr);
    ~Control() override;

    virtual void InitProperties(); // newly placed on a form
    virtual void ReadProperties(PropertyBag &bag); // a saved form is opened
    virtual void WriteProperties(PropertyBag &bag); // the form is saved

    bool UserMode() const { return m_userMode; }
    void setUserMode(bool runMode);
    int Index() const { return m_index; }
    void setIndex(int index) { m_index = index; }

    QVariant Version() const;
    // The native window of the control's form, made on demand by the platform; 0 off screen.
    qint32 hWnd() const;

    // The container's control collection: the Control children of a form, in creation order.
    static QList<Control *> formControls(const QWidget *form);

Q_SIGNALS:
    void PropertyChanged(const QString &name);

protected:
    // Called when the ambient UserMode changes.
    virtual void userModeChanged() { }

private:
    bool m_userMode = true;
    int m_index = -1;
};

} // namespace zelkon
