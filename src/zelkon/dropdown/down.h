// zelkon::Down: a one-line caption over a check list that the host fills item by item.
#pragma once

#include <zelkon/common/control.h>
#include <zelkon/common/variants.h>

#include <QVariant>

#include <memory>

namespace zelkon {

class DownPrivate;
class LBValue;

/// A drop-down check list filled item by item: the combo box shows one caption, a click opens
/// the pop-up list of LBValue items, and every check the user makes there is reported.
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
    /// An empty list showing no caption; loading saved properties in run mode shows
    /// CaptionNothing and makes a click on the combo box open the pop-up.
    explicit Down(QWidget *parent = nullptr);
    ~Down() override;

    /// Sets the defaults of a control newly placed on a form.
    void InitProperties() override;
    /// Reads the saved properties; in run mode also hooks the combo box (once per control).
    void ReadProperties(PropertyBag &bag) override;
    /// Writes the persisted properties.
    void WriteProperties(PropertyBag &bag) override;

    /// Adds an item. The errors of the list reach the caller as zelkon::Error: a duplicate key
    /// (457), a checked count past 32 bits (6). A checked item whose key is a duplicate is
    /// already counted and captioned when the key fails; hosts rely on that. A key of blanks
    /// only is no key; `ItemIndex` (0 or more) is the item's wanted row in the pop-up.
    Q_INVOKABLE void AddItem(const QString &Text, const QString &Key = QString(),
                             const QVariant &Value = zelkon::missingVariant(), bool Checked = false,
                             const QVariant &ItemIndex = zelkon::missingVariant());
    /// Removes the item at a 1-based position or under a key (unknown key: 5, position out of
    /// range: 9). The caption is left as it was.
    Q_INVOKABLE void RemoveItem(const QVariant &Index);
    /// Removes every item; the caption is left as it was.
    Q_INVOKABLE void Clear();
    /// The item itself at a 1-based position or under a key: changes through it act on the
    /// list. A removed item stays valid until the event loop runs again.
    Q_INVOKABLE zelkon::LBValue *ListItem(const QVariant &Index) const;
    /// Releases the window hooks and closes the pop-up. The host calls it before it destroys the
    /// control; from then on clicks on the combo box are the combo box's own again.
    Q_INVOKABLE void Free();

    /// The number of checked items, kept up to date by each change and never recounted.
    qint32 CheckedCount() const;
    /// The number of items.
    qint32 ListCount() const;
    /// The number of rows the pop-up shows.
    qint32 VisibleCount() const;
    /// Sets the number of rows the pop-up shows; no range check.
    void setVisibleCount(qint32 count);
    /// The caption with no item checked. Its setter does not refresh the caption on screen:
    /// the next change of the checks does.
    QString CaptionNothing() const;
    /// Sets the caption with no item checked.
    void setCaptionNothing(const QString &caption);
    /// The caption with several items checked. Its setter does not refresh the caption either.
    QString CaptionGroup() const;
    /// Sets the caption with several items checked.
    void setCaptionGroup(const QString &caption);
    /// Whether caption changes reach the screen.
    bool Redraw() const;
    /// Switches redrawing; the latest caption is shown at once when it is on.
    void setRedraw(bool redraw);

    /// A one-line size.
    QSize sizeHint() const override;
    /// A one-line size a few characters wide.
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The pop-up list has closed.
    void OnClose();
    /// The user checked or unchecked `Item`, row `ItemIndex` (0-based) of the pop-up. Setting
    /// the item's Checked back vetoes the toggle: the row shows the item's state again and
    /// neither the count nor the caption changes.
    void OnItemCheck(qint16 &ItemIndex, zelkon::LBValue *&Item);

protected:
    /// Presses on the drop-down face, which open the pop-up.
    bool eventFilter(QObject *watched, QEvent *event) override;
    /// Lays the combo box, the face and its label out.
    void resizeEvent(QResizeEvent *event) override;
    void applyEnabled(bool enabled) override;

private:
    friend class DownPrivate;
    std::unique_ptr<DownPrivate> d;
};

} // namespace zelkon
