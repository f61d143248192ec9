/// \file
/// zelkon::BoxCombo: an editable combo box filled from an input array of texts and identifiers,
/// to which the user may add typed entries.
#pragma once

#include <zelkon/common/control.h>

#include <QVariant>

#include <memory>

namespace zelkon {

class BoxComboPrivate;

/// An editable combo box filled from an input array of texts and identifiers; with AllowAddNew a
/// typed text that no row has (compared case-sensitively) is added on Enter.
class ZELKON_EXPORT BoxCombo : public Control
{
    Q_OBJECT
    Q_PROPERTY(QVariant InputArray READ InputArray WRITE setInputArray DESIGNABLE false)
    // Only shows its text and reads back empty, so a form could not keep it.
    Q_PROPERTY(QString StartValue READ StartValue WRITE setStartValue DESIGNABLE false)
    Q_PROPERTY(QString Value READ Value WRITE setValue DESIGNABLE false)
    Q_PROPERTY(bool AllowAddNew READ AllowAddNew WRITE setAllowAddNew)

public:
    /// An empty combo box.
    explicit BoxCombo(QWidget *parent = nullptr);
    ~BoxCombo() override;

    /// Reads the persisted properties, each under its own name.
    void ReadProperties(PropertyBag &bag) override;
    /// Writes the persisted properties, each under its own name.
    void WriteProperties(PropertyBag &bag) override;

    ///@{
    /// The rows: an array of two arrays, the texts and their identifiers (needed here). Throws
    /// zelkon::Error 13 for a value that is not an array of arrays, 9 for identifiers shorter than
    /// the texts (after the earlier rows were added), 6 for a number out of range.
    QVariant InputArray() const;
    void setInputArray(const QVariant &input);
    ///@}
    ///@{
    /// Shows the text; reads back empty, as the text is never kept.
    QString StartValue() const;
    void setStartValue(const QString &text);
    ///@}
    ///@{
    /// The text in the edit field; a put shows the text without choosing a row.
    QString Value() const;
    void setValue(const QString &text);
    ///@}
    ///@{
    /// Whether Enter adds a typed text that no row has.
    bool AllowAddNew() const;
    void setAllowAddNew(bool allow);
    ///@}

    /// One line high, as tall as the other one-line controls of a form.
    QSize sizeHint() const override;
    /// One line high and a few characters wide.
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The user chose a row or confirmed the text (QComboBox::activated).
    void Change();

protected:
    /// Enter in the edit field, for AllowAddNew.
    bool eventFilter(QObject *watched, QEvent *event) override;
    /// Lays the combo box out.
    void resizeEvent(QResizeEvent *event) override;
    /// Lays the combo box out again in a new font or style.
    void changeEvent(QEvent *event) override;

private:
    friend class BoxComboPrivate;
    std::unique_ptr<BoxComboPrivate> d;
};

} // namespace zelkon
