/// \file
/// zelkon::Control: the base of every Zelkon control (container services, persistence, version)
/// and the shell that every control shares: frame, Enabled, mouse forwarding, the put rule.
#pragma once

#include <zelkon/common/global.h>
#include <zelkon/common/mouseargs.h>

#include <QEvent>
#include <QVariant>
#include <QWidget>

#include <memory>

namespace zelkon {

class PropertyBag;
class ControlPrivate;

/// The base of every Zelkon control: the services a form container gives a control (run mode,
/// index, persistence, version) and the shell every control shares (frame, Enabled, mouse
/// forwarding, the rule that every property put is reported).
class ZELKON_EXPORT Control : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(int Index READ Index WRITE setIndex)
    Q_PROPERTY(bool UserMode READ UserMode WRITE setUserMode DESIGNABLE false)
    Q_PROPERTY(QVariant Version READ Version DESIGNABLE false)
    Q_PROPERTY(qint32 hWnd READ hWnd DESIGNABLE false)

public:
    /// A control in run mode, in no control array (Index -1).
    explicit Control(QWidget *parent = nullptr);
    ~Control() override;

    /// Called when the control is newly placed on a form: sets the defaults of its properties.
    virtual void InitProperties();
    /// Called when a saved form is opened: reads the persisted properties from `bag`.
    virtual void ReadProperties(PropertyBag &bag);
    /// Called when the form is saved: writes the persisted properties to `bag`.
    virtual void WriteProperties(PropertyBag &bag);

    ///@{
    /// True while the form runs, false while it is being designed; a change calls
    /// userModeChanged().
    bool UserMode() const;
    void setUserMode(bool runMode);
    ///@}
    ///@{
    /// The control's index in a control array of its form (several controls of one name); -1
    /// when it is in none.
    int Index() const;
    void setIndex(int index);
    ///@}

    /// The library's version: the array of versionArray().
    QVariant Version() const;
    /// The native window of the control's form, made on demand by the platform; 0 off screen.
    qint32 hWnd() const;

    ///@{
    /// "Enabled" of the controls that have it: a control declares
    /// `Q_PROPERTY(bool Enabled READ Enabled WRITE putEnabled)`. The setter is not called
    /// setEnabled so that QWidget::setEnabled, which Qt itself calls, keeps its meaning. Reads the
    /// control's own setting: a control on a disabled form still reads true.
    bool Enabled() const;
    void putEnabled(bool enabled);
    ///@}

    /// The container's control collection: the Control children of a form, in creation order.
    static QList<Control *> formControls(const QWidget *form);

Q_SIGNALS:
    /// A property was put (also with its unchanged value): the container marks its form modified.
    void PropertyChanged(const QString &name);

protected:
    /// Called when the ambient UserMode changes.
    virtual void userModeChanged();

    ///@{
    /// What "Enabled" reads and how it is applied; by default the control as a whole.
    virtual bool enabledState() const;
    virtual void applyEnabled(bool enabled);
    ///@}

    /// Every property put reports the change under the property's name, also when the value is
    /// unchanged: the container marks its form modified on every put, as hosts expect.
    void notifyPut(const QString &name);
    ///@{
    /// Stores a put value, runs `refresh` only when the value changed, and always notifies.
    template<typename T, typename Refresh>
    void put(T &field, const T &value, const QString &name, Refresh refresh)
    {
        if (!(field == value)) {
            field = value;
            refresh();
        }
        notifyPut(name);
    }
    template<typename T>
    void put(T &field, const T &value, const QString &name)
    {
        put(field, value, name, [] {});
    }
    ///@}

    /// The frame of Border and Appearance, drawn around contentsRect(): border 0 draws none,
    /// appearance 0 a flat line, otherwise the style's sunken frame of a line edit. The contents
    /// margins follow the frame, so children laid out in contentsRect() stay inside it.
    void setFrameLook(int appearance, int border);
    /// The appearance given to setFrameLook(): 0 flat, 1 three-dimensional.
    int frameAppearance() const;
    /// The border given to setFrameLook(): 0 none, 1 single.
    int frameBorder() const;

    /// After forwardMouse(child), every mouse press, release, move and double click on the child
    /// reaches childMouseEvent() with the platform's arguments in the child's own coordinates.
    void forwardMouse(QWidget *child);
    /// A mouse action on a child given to forwardMouse(); the control raises its mouse events
    /// here. The default does nothing.
    virtual void childMouseEvent(QWidget *child, MouseAction action, MouseArgs &args);
    /// Raises MouseDown, MouseUp or MouseMove (Button, Shift, X, Y) of a control that has these
    /// three events.
    template<typename C>
    static void raiseMouseEvents(C *control, MouseAction action, MouseArgs &a)
    {
        switch (action) {
        case MouseAction::Down:
            Q_EMIT control->MouseDown(a.Button, a.Shift, a.X, a.Y);
            break;
        case MouseAction::Up:
            Q_EMIT control->MouseUp(a.Button, a.Shift, a.X, a.Y);
            break;
        case MouseAction::Move:
            Q_EMIT control->MouseMove(a.Button, a.Shift, a.X, a.Y);
            break;
        }
    }

    /// The size of a one-line control: the height of a framed line edit in this control's font and
    /// style, so that one-line controls share one height in a form layout, and the width of
    /// `chars` average characters.
    QSize lineSizeHint(int chars) const;

    /// Draws the frame of setFrameLook().
    void paintEvent(QPaintEvent *event) override;
    /// Keeps the frame in step with a new style.
    void changeEvent(QEvent *event) override;

private:
    friend class ControlPrivate;
    std::unique_ptr<ControlPrivate> d;
};

} // namespace zelkon
