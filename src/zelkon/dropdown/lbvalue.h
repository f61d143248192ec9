// zelkon::LBValue: one entry of a Down list, created by name ("LBValue") or by Down::AddItem.
#pragma once

#include <zelkon/common/global.h>

#include <QObject>
#include <QVariant>

#include <memory>

namespace zelkon {

class LBValuePrivate;

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
    Q_INVOKABLE explicit LBValue(QObject *parent = nullptr);
    ~LBValue() override;

    QString Text() const;
    void setText(const QString &text);
    QVariant Value() const;
    void setValue(const QVariant &value);
    bool Checked() const;
    void setChecked(bool checked);
    QString Key() const;

private:
    friend class LBValuePrivate;
    std::unique_ptr<LBValuePrivate> d;
};

} // namespace zelkon
