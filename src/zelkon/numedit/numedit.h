/// \file
/// zelkon::NumEdit: a one-line numeric field with fixed decimals, grouping, limits, colours for
/// negative values and keyboard multipliers.
#pragma once

#include <zelkon/common/control.h>

#include <QVariant>

#include <memory>

namespace zelkon {

class NumEditPrivate;

/// A one-line numeric field. While it has the focus the user edits a plain number (the T, M and Y
/// keys multiply it by a thousand, a million and a thousand million, Esc brings back the number it
/// had on focus); without the focus it shows the number grouped, with DigNum decimals. Colours are
/// the platform's: 0x00BBGGRR, or 0x800000nn for system colour nn.
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
    /// An empty field: Value 0, no limits.
    explicit NumEdit(QWidget *parent = nullptr);
    ~NumEdit() override;

    /// Shows the number of a newly placed field (no decimals; a saved form without DigNum gets 2).
    void InitProperties() override;
    /// Reads the persisted properties, each under its own name.
    void ReadProperties(PropertyBag &bag) override;
    /// Writes the persisted properties, each under its own name.
    void WriteProperties(PropertyBag &bag) override;

    ///@{
    /// A free slot for the host, never persisted: an object is kept by reference, anything else by
    /// copy.
    QVariant TagVariant() const;
    void setTagVariant(const QVariant &tag);
    ///@}
    ///@{
    /// The number. A put is clamped silently to [MinValue, MaxValue] while the limits are active; a
    /// non-finite one is ignored.
    ///
    /// Not const: while the field is not being edited, reading refreshes the formatted display.
    double Value();
    void setValue(double value);
    ///@}
    ///@{
    /// The text colour while Value is 0 or more (system Window Text by default).
    quint32 TextColor() const;
    void setTextColor(quint32 color);
    ///@}
    ///@{
    /// The text colour while Value is negative (system Window Text by default, so negatives look
    /// alike).
    quint32 NegTextColor() const;
    void setNegTextColor(quint32 color);
    ///@}
    ///@{
    /// Decimals shown without the focus; a negative count is stored as 0.
    qint16 DigNum() const;
    void setDigNum(qint16 digits);
    ///@}
    /// The designable form: raises the overflow error (6) outside -32768..32767.
    void setDigNum(int digits);
    ///@{
    /// The background colour (system Window by default).
    quint32 BackTextColor() const;
    void setBackTextColor(quint32 color);
    ///@}
    ///@{
    /// Makes the field read-only; the keys and the focus handling are then off.
    bool LockEdits() const;
    void setLockEdits(bool locked);
    ///@}
    ///@{
    /// The font of the field.
    QString FontName() const;
    void setFontName(const QString &name);
    ///@}
    ///@{
    /// The font size of the field, in points.
    qint16 FontSize() const;
    void setFontSize(qint16 points);
    ///@}
    /// The designable form: raises the overflow error (6) outside -32768..32767.
    void setFontSize(int points);
    ///@{
    /// 0 none, 1 single (the default).
    qint16 Border() const;
    void setBorder(qint16 border);
    ///@}
    /// The designable form: raises the overflow error (6) outside -32768..32767.
    void setBorder(int border);
    ///@{
    /// 0 flat, 1 three-dimensional (the default).
    qint16 Appearance() const;
    void setAppearance(qint16 appearance);
    ///@}
    /// The designable form: raises the overflow error (6) outside -32768..32767.
    void setAppearance(int appearance);
    ///@{
    /// The lower limit. The limits are active unless MinValue and MaxValue are both 0; a put clamps
    /// Value at once, with a beep and ChangeValue.
    double MinValue() const;
    void setMinValue(double value);
    ///@}
    ///@{
    /// The upper limit, a double in a QVariant; a value that is no number leaves it as it was. See
    /// MinValue.
    QVariant MaxValue() const;
    void setMaxValue(const QVariant &value);
    ///@}

    /// One line high, as tall as the other one-line controls of a form.
    QSize sizeHint() const override;
    /// One line high and a few characters wide.
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// Value changed: by typing, Esc, a multiplier, a clamp to the limits or a put.
    void ChangeValue();
    /// An arrow key pointing out of the text (Left at its start, Right at its end, Up, Down, Page
    /// Up, Page Down; raised on key-down) so that the host can move to the next field. KeyCode: 37
    /// Left, 38 Up, 39 Right, 40 Down, 33 Page Up, 34 Page Down.
    void ArrowKeyUp(qint16 KeyCode);
    /// The mouse moved over the field; the arguments are those of MouseArgs.
    void MouseMove(qint16 Button, qint16 Shift, float X, float Y);
    /// A mouse button was released over the field.
    void MouseUp(qint16 Button, qint16 Shift, float X, float Y);
    /// A mouse button was pressed over the field.
    void MouseDown(qint16 Button, qint16 Shift, float X, float Y);
    /// The field lost the focus, after Value was clamped to the limits (not while LockEdits).
    void LostFocusEvent();
    /// The field gained the focus (not while LockEdits).
    void GotFocusEvent();

protected:
    ///@{
    /// Enabled is the text box's state: a disabled field still shows its frame and its number.
    bool enabledState() const override;
    void applyEnabled(bool enabled) override;
    ///@}
    /// Raises the mouse events.
    void childMouseEvent(QWidget *child, MouseAction action, MouseArgs &args) override;
    /// Keys and focus of the text box.
    bool eventFilter(QObject *watched, QEvent *event) override;
    /// Lays the text box out.
    void resizeEvent(QResizeEvent *event) override;
    /// Stops the pending focus handling.
    void hideEvent(QHideEvent *event) override;
    /// Lays the field out again in a new font.
    void changeEvent(QEvent *event) override;

private:
    friend class NumEditPrivate;
    std::unique_ptr<NumEditPrivate> d;
};

} // namespace zelkon
