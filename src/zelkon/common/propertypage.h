/// \file
/// zelkon::PropertyPage: a design-time page that edits the properties of the selected controls.
#pragma once

#include <zelkon/common/global.h>

#include <QList>
#include <QWidget>

#include <functional>
#include <initializer_list>
#include <memory>

class QCheckBox;
class QLineEdit;

namespace zelkon {

class PropertyPagePrivate;

/// A design-time page that edits the properties of the selected controls; a page for a control
/// class derives from it, adds its fields and registers itself with ZELKON_REGISTER_PROPERTY_PAGE.
class ZELKON_EXPORT PropertyPage : public QWidget
{
    Q_OBJECT

public:
    /// An empty page without a selection.
    explicit PropertyPage(QWidget *parent = nullptr);
    ~PropertyPage() override;

    ///@{
    /// The designer's selection; the fields are filled from it and the page is unchanged again.
    void setSelectedControls(const QList<QObject *> &controls);
    QList<QObject *> SelectedControls() const;
    ///@}
    ///@{
    /// True after an edit, false after an apply or a new selection.
    bool Changed() const;
    void setChanged(bool changed);
    ///@}
    /// Fills the fields from the first selected control.
    virtual void SelectionChanged();
    /// Writes the fields back to the first selected control, by property name, in order.
    virtual void ApplyChanges();

Q_SIGNALS:
    /// Changed moved; enables the designer's Apply button.
    void ChangedChanged(bool changed);

protected:
    /// What a failing write does to the rest of an apply.
    enum class OnError {
        /// The error is shown to the designer, the rest is not written, the page stays changed.
        Stop,
        /// The error is dropped and the next write still runs.
        Continue,
    };

    /// The control the page reads and writes; nullptr without a selection. A multiple selection
    /// edits only its first control.
    QObject *control() const;
    /// Reads a property of control() by name; invalid without a selection or such a property.
    QVariant readProperty(const char *name) const;
    /// Writes a property of control() by name, converted to the property's own type as a late-bound
    /// assignment would: raises zelkon::Error 13 (type mismatch), 6 (overflow) or 438 (no such
    /// property) when it cannot.
    void writeProperty(const char *name, const QVariant &value);
    /// Runs the writes of an apply in order; a completed apply leaves the page unchanged.
    void applyInOrder(OnError onError, std::initializer_list<std::function<void()>> writes);

    /// Marks the page changed, except while the fields are being filled from the selection.
    void fieldEdited();
    /// Fields, one row each in the order they are added; a click or a text change marks the page
    /// changed. addField() leaves that to the caller (through fieldEdited()), for other kinds.
    QCheckBox *addCheckBox(const QString &name, const QString &caption);
    /// A text box named `name` with a label named `labelName` before it.
    QLineEdit *addTextBox(const QString &name, const QString &labelName, const QString &label);
    /// A field of another kind with its label.
    void addField(QWidget *field, const QString &name, const QString &labelName,
                  const QString &label);
    /// A flag read into a check box keeps its lowest bit: True (-1) and 1 check it.
    static void showFlag(QCheckBox *box, const QVariant &value);
    /// The box's value as the platform reports it: 0 unchecked, 1 checked, 2 grayed.
    static int checkValue(const QCheckBox *box);

private:
    std::unique_ptr<PropertyPagePrivate> d;
};

/// Makes a page; registered under the page's class name.
using PropertyPageFactory = PropertyPage *(*)(QWidget *parent);

/// Registration happens once per page, from the page's own source file.
ZELKON_EXPORT bool registerPropertyPage(const QString &name, PropertyPageFactory factory);
/// "checkProperties", "RelDateProperties", "neProperties"; nullptr for an unknown name.
ZELKON_EXPORT PropertyPage *createPropertyPage(const QString &name, QWidget *parent = nullptr);

} // namespace zelkon

/// Registers the page class `Class` under its own name; write it once in the page's source file, at
/// namespace scope.
#define ZELKON_REGISTER_PROPERTY_PAGE(Class) \
    [[maybe_unused]] static const bool zelkonRegisteredPage##Class \
        = ::zelkon::registerPropertyPage( \
            QStringLiteral(#Class), \
            [](QWidget *parent) -> ::zelkon::PropertyPage * { return new Class(parent); })
