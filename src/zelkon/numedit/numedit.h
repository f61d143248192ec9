// zelkon::NumEdit: a one-line numeric field with fixed decimals, grouping, limits, colours for
// negative values and keyboard multipliers.
#pragma once

#include <zelkon/common/control.h>

#include <QVariant>

#include <memory>

namespace zelkon {

class NumEditPrivate;

class ZELKON_EXPORT NumEdit : public Control
{
    Q_OBJECT
    Q_PROPERTY(QVariant TagVariant READ TagVariant WRITE setTagVariant DESIGNABLE false)
    Q_PROPERTY(double Value READ Value WRITE setValue)
    Q_PROPERTY(quint32 TextColor READ TextColor WRITE setTextColor)
    Q_PROPERTY(quint32 NegTextColor READ NegTextColor WRITE setNegTextColor)
    Q_PROPERTY(int DigNum READ DigNum WRITE setDigNum)
    Q_PROPERTY(quint32 BackTextColor READ BackTextColor WRITE setBackTextColor)
    Q_PROPERTY(bool LockEdits READ LockEdits WRITE setLockEdits)
    Q_PROPERTY(QString FontName READ FontName WRITE setFontName)
    Q_PROPERTY(int FontSize READ FontSize WRITE setFontSize)
    Q_PROPERTY(int Border READ Border WRITE setBorder)
    Q_PROPERTY(int Appearance READ Appearance WRITE setAppearance)
    Q_PROPERTY(double MinValue READ MinValue WRITE setMinValue)
    Q_PROPERTY(QVariant MaxValue READ MaxValue WRITE setMaxValue DESIGNABLE false)
    // Designer edits QWidget::enabled instead: uic would write this one through
    // QWidget::setEnabled.
    Q_PROPERTY(bool Enabled READ Enabled WRITE putEnabled DESIGNABLE false)

public:
    explicit NumEdit(QWidget *parent = nullptr);
    ~NumEdit() override;

    void InitProperties() override;
    void ReadProperties(PropertyBag &bag) override;
    void WriteProperties(PropertyBag &bag) override;

    QVariant TagVariant() const;
    void setTagVariant(const QVariant &tag);
    // Not const: while the field is not being edited, reading refreshes the formatted display.
    double Value();
    void setValue(double value);
    quint32 TextColor() const;
    void setTextColor(quint32 color);
    quint32 NegTextColor() const;
    void setNegTextColor(quint32 color);
    qint16 DigNum() const;
    void setDigNum(qint16 digits);
    // The designable form: raises the overflow error (6) outside -32768..32767.
    void setDigNum(int digits);
    quint32 BackTextColor() const;
    void setBackTextColor(quint32 color);
    bool LockEdits() const;
    void setLockEdits(bool locked);
    QString FontName() const;
    void setFontName(const QString &name);
    qint16 FontSize() const;
    void setFontSize(qint16 points);
    // The designable form: raises the overflow error (6) outside -32768..32767.
    void setFontSize(int points);
    qint16 Border() const;
    void setBorder(qint16 border);
    // The designable form: raises the overflow error (6) outside -32768..32767.
    void setBorder(int border);
    qint16 Appearance() const;
    void setAppearance(qint16 appearance);
    // The designable form: raises the overflow error (6) outside -32768..32767.
    void setAppearance(int appearance);
    double MinValue() const;
    void setMinValue(double value);
    QVariant MaxValue() const;
    void setMaxValue(const QVariant &value);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void ChangeValue();
    void ArrowKeyUp(qint16 KeyCode);
    void MouseMove(qint16 Button, qint16 Shift, float X, float Y);
    void MouseUp(qint16 Button, qint16 Shift, float X, float Y);
    void MouseDown(qint16 Button, qint16 Shift, float X, float Y);
    void LostFocusEvent();
    void GotFocusEvent();

protected:
    // Enabled is the text box's state: a disabled field still shows its frame and its number.
    bool enabledState() const override;
    void applyEnabled(bool enabled) override;
    void childMouseEvent(QWidget *child, MouseAction action, MouseArgs &args) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    friend class NumEditPrivate;
    std::unique_ptr<NumEditPrivate> d;
};

} // namespace zelkon
