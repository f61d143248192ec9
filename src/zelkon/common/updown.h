/// \file
/// zelkon::UpDown: a pair of arrow buttons that step a 32-bit value between two limits.
#pragma once

#include <zelkon/common/global.h>

#include <QWidget>

#include <memory>

namespace zelkon {

class UpDownPrivate;

/// The spinner that RelDate and NumEdit show beside their fields; hosts meet it as their child.
class ZELKON_EXPORT UpDown : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(qint32 Value READ Value WRITE setValue NOTIFY Change)
    Q_PROPERTY(qint32 Min READ Min WRITE setMin)
    Q_PROPERTY(qint32 Max READ Max WRITE setMax)
    Q_PROPERTY(qint32 Increment READ Increment WRITE setIncrement)
    Q_PROPERTY(bool Wrap READ Wrap WRITE setWrap)

public:
    /// A spinner at 0 between 0 and 10, stepping by 1, without wrapping.
    explicit UpDown(QWidget *parent = nullptr);
    ~UpDown() override;

    /// The current value, between Min and Max.
    qint32 Value() const;
    /// Clamped between the limits; raises Change whenever the value moves, by arrow or by code.
    void setValue(qint32 value);
    ///@{
    /// The lower limit; the value moves within it at once.
    qint32 Min() const;
    void setMin(qint32 min);
    ///@}
    ///@{
    /// The upper limit; the value moves within it at once.
    qint32 Max() const;
    void setMax(qint32 max);
    ///@}
    ///@{
    /// The step of one arrow click.
    qint32 Increment() const;
    void setIncrement(qint32 increment);
    ///@}
    ///@{
    /// Whether stepping past a limit continues from the other one.
    bool Wrap() const;
    void setWrap(bool wrap);
    ///@}

    ///@{
    /// What the up and down arrows do, also reachable by name.
    Q_INVOKABLE void stepUp();
    Q_INVOKABLE void stepDown();
    ///@}

    /// As wide as a scroll bar and two arrows high.
    QSize sizeHint() const override;
    /// Room for two small arrows.
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// Value moved, by arrow, key, wheel or code.
    void Change();
    /// The up arrow was clicked, or the Up or Right key pressed.
    void UpClick();
    /// The down arrow was clicked, or the Down or Left key pressed.
    void DownClick();

protected:
    /// Up and Right step up, Down and Left step down.
    void keyPressEvent(QKeyEvent *event) override;
    /// The wheel steps the value.
    void wheelEvent(QWheelEvent *event) override;
    /// Lays the two arrows out.
    void resizeEvent(QResizeEvent *event) override;
    /// Keeps the arrows' enabled state in step with the spinner's.
    void changeEvent(QEvent *event) override;

private:
    friend class UpDownPrivate;
    std::unique_ptr<UpDownPrivate> d;
};

} // namespace zelkon
