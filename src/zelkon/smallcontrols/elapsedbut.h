// zelkon::ElapsedBut: a title button (btnEllaps with the caption Title beside it) that forwards
// its clicks and mouse actions and keeps a level, node names, an inversion flag and an identifier
// for its host.
#pragma once

#include <zelkon/common/control.h>

#include <memory>

namespace zelkon {

class ElapsedButPrivate;

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
    explicit ElapsedBut(QWidget *parent = nullptr);
    ~ElapsedBut() override;

    void ReadProperties(PropertyBag &bag) override;
    void WriteProperties(PropertyBag &bag) override;

    // None of the puts below is reported as changed: the values belong to the host, which sets
    // them at run time, and nothing of them is saved with the form.
    QString Titul() const;
    void setTitul(const QString &caption);
    bool Inv() const;
    void setInv(bool inv);
    qint16 Level() const;
    void setLevel(qint16 level);
    // The designable form: raises the overflow error (6) outside -32768..32767.
    void setLevel(int level);
    // -1 until the first put, when no node names exist yet.
    qint16 Names() const;
    // n > 0 keeps the names 0..n that exist and adds empty ones; 0 leaves one empty name. A
    // negative n throws zelkon::Error 9 and changes nothing.
    void setNames(qint16 count);
    // Both throw zelkon::Error 9 before Names is set and outside 0..Names.
    Q_INVOKABLE QString NodeNames(qint16 Index) const;
    Q_INVOKABLE void setNodeNames(qint16 Index, const QString &value);
    QString OCXID() const;
    void setOCXID(const QString &id);
    void setEnabledState(bool enabled);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void Click();
    void MouseMove();
    void MouseMoveXY(qint16 &Button, qint16 &Shift, float &X, float &Y);
    void MouseUp(qint16 &Button, qint16 &Shift, float &X, float &Y);
    void MouseDown(qint16 &Button, qint16 &Shift, float &X, float &Y);

protected:
    // Enabled reads the caption's state and applies to the button and the caption.
    bool enabledState() const override;
    void applyEnabled(bool enabled) override;
    void childMouseEvent(QWidget *child, MouseAction action, MouseArgs &args) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    friend class ElapsedButPrivate;
    std::unique_ptr<ElapsedButPrivate> d;
};

} // namespace zelkon
