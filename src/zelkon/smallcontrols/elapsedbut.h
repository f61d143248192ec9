/// \file
/// zelkon::ElapsedBut: a title button (btnEllaps with the caption Title beside it) that forwards
/// its clicks and mouse actions and keeps a level, node names, an inversion flag and an identifier
/// for its host.
#pragma once

#include <zelkon/common/control.h>

#include <memory>

namespace zelkon {

class ElapsedButPrivate;

/// A title button: the button btnEllaps with its caption (Titul) beside it. It forwards its clicks
/// and mouse actions and keeps a level, node names, an inversion flag and an identifier for its
/// host.
class ZELKON_EXPORT ElapsedBut : public Control
{
    Q_OBJECT
    Q_PROPERTY(QString Titul READ Titul WRITE setTitul)
    Q_PROPERTY(bool Inv READ Inv WRITE setInv)
    Q_PROPERTY(int Level READ Level WRITE setLevel)
    Q_PROPERTY(qint16 Names READ Names WRITE setNames DESIGNABLE false)
    Q_PROPERTY(QString OCXID READ OCXID WRITE setOCXID)
    // Not the shell's putEnabled: this control reports none of its puts (see below).
    // Designer edits QWidget::enabled instead: uic would write this one through
    // QWidget::setEnabled.
    Q_PROPERTY(bool Enabled READ Enabled WRITE setEnabledState DESIGNABLE false)

public:
    /// A button with an empty caption and no node names.
    explicit ElapsedBut(QWidget *parent = nullptr);
    ~ElapsedBut() override;

    /// Reads the persisted properties, each under its own name.
    void ReadProperties(PropertyBag &bag) override;
    /// Writes the persisted properties, each under its own name.
    void WriteProperties(PropertyBag &bag) override;

    // None of the puts below is reported as changed: the values belong to the host, which sets
    // them at run time, and nothing of them is saved with the form.
    ///@{
    /// The caption beside the button (the spelling is the one hosts use). Like every put of this
    /// control, not reported as changed and not saved with the form.
    QString Titul() const;
    void setTitul(const QString &caption);
    ///@}
    ///@{
    /// An inversion flag kept for the host, never acted on.
    bool Inv() const;
    void setInv(bool inv);
    ///@}
    ///@{
    /// A level kept for the host, never acted on.
    qint16 Level() const;
    void setLevel(qint16 level);
    ///@}
    /// The designable form: raises the overflow error (6) outside -32768..32767.
    void setLevel(int level);
    ///@{
    /// The highest index of NodeNames; -1 until the first put, when no node names exist yet. A put
    /// of n > 0 keeps the names 0..n that exist and adds empty ones; 0 leaves one empty name. A
    /// negative n throws zelkon::Error 9 and changes nothing.
    qint16 Names() const;
    void setNames(qint16 count);
    ///@}
    ///@{
    /// The node name at `Index`.
    ///
    /// Both throw zelkon::Error 9 before Names is set and outside 0..Names.
    Q_INVOKABLE QString NodeNames(qint16 Index) const;
    Q_INVOKABLE void setNodeNames(qint16 Index, const QString &value);
    ///@}
    ///@{
    /// An identifier text kept for the host, never acted on.
    QString OCXID() const;
    void setOCXID(const QString &id);
    ///@}
    /// The setter of the Enabled property: applies to the button and the caption, without
    /// PropertyChanged.
    void setEnabledState(bool enabled);

    /// One line high: the square button and the caption beside it.
    QSize sizeHint() const override;
    /// The square button alone.
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The button was clicked.
    void Click();
    /// The mouse moved over the button or the caption (raised with MouseMoveXY).
    void MouseMove();
    /// The mouse moved over the button or the caption; the arguments are those of MouseArgs.
    void MouseMoveXY(qint16 &Button, qint16 &Shift, float &X, float &Y);
    /// A mouse button was released over the button or the caption.
    void MouseUp(qint16 &Button, qint16 &Shift, float &X, float &Y);
    /// A mouse button was pressed over the button or the caption.
    void MouseDown(qint16 &Button, qint16 &Shift, float &X, float &Y);

protected:
    ///@{
    /// Enabled reads the caption's state and applies to the button and the caption.
    bool enabledState() const override;
    void applyEnabled(bool enabled) override;
    ///@}
    /// Raises the mouse events.
    void childMouseEvent(QWidget *child, MouseAction action, MouseArgs &args) override;
    /// Lays the button and the caption out.
    void resizeEvent(QResizeEvent *event) override;
    /// Asks for a new size in a new font.
    void changeEvent(QEvent *event) override;

private:
    friend class ElapsedButPrivate;
    std::unique_ptr<ElapsedButPrivate> d;
};

} // namespace zelkon
