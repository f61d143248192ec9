// zelkon::ComboListBox: a pick-only drop-down list of texts with optional 16-bit identifiers,
// filled from an input array.
#pragma once

#include <zelkon/common/control.h>

#include <QVariant>

#include <memory>

namespace zelkon {

class ComboListBoxPrivate;

class ZELKON_EXPORT ComboListBox : public Control
{
    Q_OBJECT
    Q_PROPERTY(QVariant InputArray READ InputArray WRITE setInputArray DESIGNABLE false)
    Q_PROPERTY(QString StartValue READ StartValue WRITE setStartValue DESIGNABLE false)
    Q_PROPERTY(QString Value READ Value DESIGNABLE false)
    Q_PROPERTY(qint16 ValueID READ ValueID WRITE setValueID DESIGNABLE false)

public:
    explicit ComboListBox(QWidget *parent = nullptr);
    ~ComboListBox() override;

    void ReadProperties(PropertyBag &bag) override;
    void WriteProperties(PropertyBag &bag) override;

    QVariant InputArray() const;
    // Throws zelkon::Error (13, 9, 6) for a value that is not an array of texts and identifiers.
    void setInputArray(const QVariant &input);
    QString StartValue() const;
    void setStartValue(const QString &text);
    QString Value() const;
    qint16 ValueID() const;
    void setValueID(qint16 id);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void Change();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    friend class ComboListBoxPrivate;
    std::unique_ptr<ComboListBoxPrivate> d;
};

} // namespace zelkon
