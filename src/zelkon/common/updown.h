// zelkon::UpDown: a pair of arrow buttons that step a 32-bit value between two limits.
#pragma once

#include <zelkon/common/global.h>

#include <QWidget>

#include <memory>

namespace zelkon {

class UpDownPrivate;

// The spinner that RelDate and NumEdit show beside their fields; hosts meet it as their child.
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
    ~UpDown() override;

    qint32 Value() const;
    // Clamped between the limits; raises Change whenever the value moves, by arrow or by code.
    void setValue(qint32 value);
    qint32 Min() const;
    void setMin(qint32 min);
    qint32 Max() const;
    void setMax(qint32 max);
    qint32 Increment() const;
    void setIncrement(qint32 increment);
    bool Wrap() const;
    void setWrap(bool wrap);

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
    friend class UpDownPrivate;
    std::unique_ptr<UpDownPrivate> d;
};

} // namespace zelkon
