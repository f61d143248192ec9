/// \file
/// zelkon::ComboListBox: a pick-only drop-down list of texts with optional 16-bit identifiers,
/// filled from an input array.
#pragma once

#include <zelkon/common/control.h>

#include <QVariant>

#include <memory>

namespace zelkon {

class ComboListBoxPrivate;

/// A pick-only drop-down list of texts with optional 16-bit identifiers, filled from an input array
/// and selected by text or by identifier.
class ZELKON_EXPORT ComboListBox : public Control
{
    Q_OBJECT
    Q_PROPERTY(QVariant InputArray READ InputArray WRITE setInputArray DESIGNABLE false)
    Q_PROPERTY(QString StartValue READ StartValue WRITE setStartValue DESIGNABLE false)
    Q_PROPERTY(QString Value READ Value DESIGNABLE false)
    Q_PROPERTY(qint16 ValueID READ ValueID WRITE setValueID DESIGNABLE false)

public:
    /// An empty list.
    explicit ComboListBox(QWidget *parent = nullptr);
    ~ComboListBox() override;

    /// Reads the persisted properties, each under its own name.
    void ReadProperties(PropertyBag &bag) override;
    /// Writes the persisted properties, each under its own name.
    void WriteProperties(PropertyBag &bag) override;

    ///@{
    /// The rows: an array of two arrays, the texts and their identifiers; the identifiers may be
    /// Empty (every row's is then 0). Throws zelkon::Error 13 for a value that is not an array of
    /// arrays, 9 for identifiers shorter than the texts (after the earlier rows were added), 6 for
    /// a number out of range.
    QVariant InputArray() const;
    void setInputArray(const QVariant &input);
    ///@}
    ///@{
    /// The text last put; a put selects the row with that text (of equal texts the last).
    QString StartValue() const;
    void setStartValue(const QString &text);
    ///@}
    /// The text of the selected row; empty without a selection.
    QString Value() const;
    ///@{
    /// The identifier of the selected row (0 without one); a put selects the first row with that
    /// identifier, and an unknown one changes nothing.
    qint16 ValueID() const;
    void setValueID(qint16 id);
    ///@}

    /// One line high, as tall as the other one-line controls of a form.
    QSize sizeHint() const override;
    /// One line high and a few characters wide.
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The user chose a row (QComboBox::activated); not raised for puts.
    void Change();

protected:
    /// Lays the list out.
    void resizeEvent(QResizeEvent *event) override;
    /// Asks for a new size in a new font.
    void changeEvent(QEvent *event) override;

private:
    friend class ComboListBoxPrivate;
    std::unique_ptr<ComboListBoxPrivate> d;
};

} // namespace zelkon
