// zelkon::LBValue: one entry of a Down list, created by name ("LBValue") or by Down::AddItem.
#pragma once

#include <zelkon/common/global.h>

#include <QObject>
#include <QVariant>

#include <memory>

namespace zelkon {

class LBValuePrivate;

/// One item of a Down list: its text, the host's value, its check and its key.
class ZELKON_EXPORT LBValue : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString Text READ Text WRITE setText)
    // Never interpreted by the list: any value, also an object, is stored as given.
    Q_PROPERTY(QVariant Value READ Value WRITE setValue)
    Q_PROPERTY(bool Checked READ Checked WRITE setChecked)
    // Given once, by the list that creates the item.
    Q_PROPERTY(QString Key READ Key)

public:
    /// An empty, unchecked item without a key.
    Q_INVOKABLE explicit LBValue(QObject *parent = nullptr);
    ~LBValue() override;

    /// The text shown in the pop-up, and the caption when it is the only checked item.
    QString Text() const;
    /// Sets the text; the pop-up shows it the next time it opens.
    void setText(const QString &text);
    /// The host's payload, never interpreted by the list.
    QVariant Value() const;
    /// Sets the payload; any value, also an object, is stored as given.
    void setValue(const QVariant &value);
    /// The check state.
    bool Checked() const;
    /// Sets the check state. The list's checked count does not follow a change made here,
    /// except as a veto in a handler of Down::OnItemCheck.
    void setChecked(bool checked);
    /// The key given to Down::AddItem; empty for an item without one.
    QString Key() const;

private:
    friend class LBValuePrivate;
    std::unique_ptr<LBValuePrivate> d;
};

} // namespace zelkon
