// zelkon::BoxCombo: an editable combo box filled from an input array of texts and identifiers,
// to which the user may add typed entries.
#pragma once

#include <zelkon/common/control.h>

#include <QVariant>

#include <memory>

namespace zelkon {

class BoxComboPrivate;

class ZELKON_EXPORT BoxCombo : public Control
{
    Q_OBJECT
    Q_PROPERTY(QVariant InputArray READ InputArray WRITE setInputArray DESIGNABLE false)
    // Only shows its text and reads back empty, so a form could not keep it.
    Q_PROPERTY(QString StartValue READ StartValue WRITE setStartValue DESIGNABLE false)
    Q_PROPERTY(QString Value READ Value WRITE setValue DESIGNABLE false)
    Q_PROPERTY(bool AllowAddNew READ AllowAddNew WRITE setAllowAddNew)

public:
    explicit BoxCombo(QWidget *parent = nullptr);
    ~BoxCombo() override;

    void ReadProperties(PropertyBag &bag) override;
    void WriteProperties(PropertyBag &bag) override;

    QVariant InputArray() const;
    // Throws zelkon::Error (13, 9, 6) for a value that is not an array of texts and identifiers.
    void setInputArray(const QVariant &input);
    // Shows the text; reads back empty, as the text is never kept.
    QString StartValue() const;
    void setStartValue(const QString &text);
    QString Value() const;
    void setValue(const QString &text);
    bool AllowAddNew() const;
    void setAllowAddNew(bool allow);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void Change();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    friend class BoxComboPrivate;
    std::unique_ptr<BoxComboPrivate> d;
};

} // namespace zelkon
