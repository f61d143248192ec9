// zelkon::UpDown: a pair of arrow buttons that step a 32-bit value between two limits.
#pragma once

#include <zelkon/common/global.h>

#include <QWidget>

class QToolButton;

namespace zelkon {

class ZELKON_EXPORT UpDown : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(qint32 Value READ Value WRITE setValue NOTIFY Change)
    Q_PROPERTY(qint32 Min READ Min WRITE setMin)
    Q_PROPERTY(qint32 Max READ Max WRITE setMax)
    Q_PROPERTY(qint32 Increment READ Increment WRITE setIncrement)
    Q_PROPERTY(bool Wrap READ Wrap WRITE setWrap)

public:
    explicit UpDown(QWidget *parent = nullptr);

    qint32 Value() const { return m_value; }
    // Clamped between the limits; raises Change whenever the value moves, by arrow or by code.
    void setValue(qint32 value);
    qint32 Min() const { return m_min; }
    void setMin(qint32 min);
    qint32 Max() const { return m_max; }
    void setMax(qint32 max);
    qint32 Increment() const { return m_increment; }
    void setIncrement(qint32 increment);
    bool Wrap() const { return m_wrap; }
    void setWrap(bool wrap) { m_wrap = wrap; }

    // What the up and down arrows do, also reachable by name.
    Q_INVOKABLE void stepUp();
    Q_INVOKABLE void stepDown();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void Change();
    void UpClick();
    void DownClick();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void step(qint64 delta);
    qint32 clamped(qint64 value) const;
    void updateButtons();

    QToolButton *m_up;
    QToolButton *m_down;
    qint32 m_value = 0;
    qint32 m_min = 0;
    qint32 m_max = 10;
    qint32 m_increment = 1;
    bool m_wrap = false;
};

} // namespace zelkon
