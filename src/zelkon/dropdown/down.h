// zelkon::Down: a one-line caption over a check list that the host fills item by item.
#pragma once

#include <zelkon/common/control.h>
#include <zelkon/common/variants.h>

#include <QVariant>

#include <memory>

namespace zelkon {

class DownPrivate;
class LBValue;

class ZELKON_EXPORT Down : public Control
{
    Q_OBJECT
    Q_PROPERTY(qint32 VisibleCount READ VisibleCount WRITE setVisibleCount)
    Q_PROPERTY(QString CaptionNothing READ CaptionNothing WRITE setCaptionNothing)
    Q_PROPERTY(QString CaptionGroup READ CaptionGroup WRITE setCaptionGroup)
    Q_PROPERTY(bool Redraw READ Redraw WRITE setRedraw DESIGNABLE false)
    Q_PROPERTY(qint32 CheckedCount READ CheckedCount DESIGNABLE false)
    Q_PROPERTY(qint32 ListCount READ ListCount DESIGNABLE false)
    // Designer edits QWidget::enabled instead: uic would write this one through
    // QWidget::setEnabled.
    Q_PROPERTY(bool Enabled READ Enabled WRITE putEnabled DESIGNABLE false)

public:
    explicit Down(QWidget *parent = nullptr);
    ~Down() override;

    void InitProperties() override;
    void ReadProperties(PropertyBag &bag) override;
    void WriteProperties(PropertyBag &bag) override;

    // The errors of the list reach the caller as zelkon::Error: a duplicate key (457), an unknown
    // key (5), a position out of range (9), a checked count past 32 bits (6). A checked item whose
    // key is a duplicate is already counted and captioned when the key fails; hosts rely on that.
    Q_INVOKABLE void AddItem(const QString &Text, const QString &Key = QString(),
                             const QVariant &Value = zelkon::missingVariant(), bool Checked = false,
                             const QVariant &ItemIndex = zelkon::missingVariant());
    // `Index` is a 1-based position or a key. The caption is left as it was.
    Q_INVOKABLE void RemoveItem(const QVariant &Index);
    Q_INVOKABLE void Clear();
    // The item itself: changes through it act on the list. A removed item stays valid until the
    // event loop runs again.
    Q_INVOKABLE zelkon::LBValue *ListItem(const QVariant &Index) const;

    qint32 CheckedCount() const;
    qint32 ListCount() const;
    qint32 VisibleCount() const;
    void setVisibleCount(qint32 count);
    // Neither setter refreshes the caption on screen: the next change of the checks does.
    QString CaptionNothing() const;
    void setCaptionNothing(const QString &caption);
    QString CaptionGroup() const;
    void setCaptionGroup(const QString &caption);
    bool Redraw() const;
    void setRedraw(bool redraw);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    friend class DownPrivate;
    std::unique_ptr<DownPrivate> d;
};

} // namespace zelkon
