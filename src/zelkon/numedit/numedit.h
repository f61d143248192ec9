// zelkon::NumEdit: a one-line numeric field with fixed decimals, grouping, limits, colours for
// negative values and keyboard multipliers.
#pragma once

#include <zelkon/common/control.h>
#include <zelkon/numedit/displayformat.h>

#include <QVariant>

class QLineEdit;
class QTimer;

namespace zelkon {

class UpDown;

class ZELKON_EXPORT NumEdit : public Control
{
    Q_OBJECT
    Q_PROPERTY(QVariant TagVariant READ TagVariant WRITE setTagVariant)
    Q_PROPERTY(double Value READ Value WRITE setValue)
    Q_PROPERTY(quint32 TextColor READ TextColor WRITE setTextColor)
    Q_PROPERTY(quint32 NegTextColor READ NegTextColor WRITE setNegTextColor)
    Q_PROPERTY(qint16 DigNum READ DigNum WRITE setDigNum)
    Q_PROPERTY(quint32 BackTextColor READ BackTextColor WRITE setBackTextColor)
    Q_PROPERTY(bool LockEdits READ LockEdits WRITE setLockEdits)
    Q_PROPERTY(QString FontName READ FontName WRITE setFontName)
    Q_PROPERTY(qint16 FontSize READ FontSize WRITE setFontSize)
    Q_PROPERTY(qint16 Border READ Border WRITE setBorder)
    Q_PROPERTY(qint16 Appearance READ Appearance WRITE setAppearance)
    Q_PROPERTY(double MinValue READ MinValue WRITE setMinValue)
    Q_PROPERTY(QVariant MaxValue READ MaxValue WRITE setMaxValue)
    // Qt-style accessors for "Enabled" would hide QWidget::isEnabled/setEnabled, which enable the
    // whole control; this property is the text box's own state, so its C++ names differ.
    Q_PROPERTY(bool Enabled READ isEnabledProperty WRITE setEnabledProperty)

public:
    explicit NumEdit(QWidget *parent = nullptr);
    ~NumEdit() override;

    void InitProperties() override;
    void ReadProperties(PropertyBag &bag) override;
    void WriteProperties(PropertyBag &bag) override;

    QVariant TagVariant() const { return m_tag; }
    void setTagVariant(const QVariant &tag) { m_tag = tag; }

    // Not const: while the field is not being edited, reading refreshes the formatted display.
    double Value();
    void setValue(double value);
    quint32 TextColor() const { return m_textColor; }
    void setTextColor(quint32 color);
    quint32 NegTextColor() const { return m_negTextColor; }
    void setNegTextColor(quint32 color);
    qint16 DigNum() const { return m_digNum; }
    void setDigNum(qint16 digits);
    quint32 BackTextColor() const { return m_backTextColor; }
    void setBackTextColor(quint32 color);
    bool LockEdits() const;
    void setLockEdits(bool locked);
    QString FontName() const;
    void setFontName(const QString &name);
    qint16 FontSize() const;
    void setFontSize(qint16 points);
    qint16 Border() const { return m_border; }
    void setBorder(qint16 border);
    qint16 Appearance() const { return m_appearance; }
    void setAppearance(qint16 appearance);
    double MinValue() const { return m_minValue; }
    void setMinValue(double value);
    QVariant MaxValue() const { return QVariant(m_maxValue); }
    void setMaxValue(const QVariant &value);
    bool isEnabledProperty() const;
    void setEnabledProperty(bool enabled);

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
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void DetectDecimalSeparator();
    void ClampToRange();
    void FormatDisplay();

    void textChanged();
    // True when the key is consumed.
    bool keyDown(QKeyEvent *event);
    bool keyPress(QKeyEvent *event);
    void keyUp(QKeyEvent *event);
    void focusGained();
    void focusLost();
    void syncFocus();

    bool limitsActive() const { return !(m_minValue == 0 && m_maxValue == 0); }
    QString plainText() const; // the value without grouping, empty for 0
    int selStart() const;
    void writeText(const QString &text); // with the suppress-change flag set
    void applyTextColor(quint32 color);
    void updateFrame();
    void relayout();

    QLineEdit *m_text;
    UpDown *m_upDown;
    QTimer *m_focusTimer;

    QVariant m_tag;
    double m_value = 0;
    double m_savedValue = 0;
    double m_minValue = 0;
    double m_maxValue = 0;
    qint16 m_digNum = 2;
    quint32 m_textColor;
    quint32 m_negTextColor;
    quint32 m_backTextColor;
    qint16 m_border = 1;
    qint16 m_appearance = 1;
    QString m_lastText;
    QChar m_decimalSeparator = QLatin1Char('.');
    QChar m_foreignSeparator = QLatin1Char(',');
    bool m_suppressChange = false;
    bool m_editing = false;
    bool m_hasFocus = false;
    bool m_textAccepted = false;
    bool m_retyping = false;
    DisplayFormat m_format;
};

} // namespace zelkon
