// FilterForm: the demo's filter form, with its controls at fixed places as on a designed form.
#pragma once

#include <zelkon/query/filterquery.h>

#include <QList>
#include <QWidget>

namespace zelkon {
class Connection;
class Control;
class FilterCondition;
} // namespace zelkon
class QLabel;

class FilterForm : public QWidget
{
    Q_OBJECT
public:
    explicit FilterForm(QWidget *parent = nullptr);

    // Creates every control of the form by class name; a class the library lacks leaves a note.
    void createControls();
    // Puts the sample database's rows into the controls that show rows.
    void fillFromDatabase(zelkon::Connection *connection);
    // Replaces the form's controls by controls loaded from a form file.
    void adoptControls(const QList<zelkon::Control *> &controls);

    zelkon::Control *control(const QString &name) const;
    QList<zelkon::Control *> controls() const;

    // The orders condition of the form's controls, bound to their columns.
    const zelkon::FilterQuery &query() const { return m_query; }
    // The condition with its bound values listed, for showing to the user.
    static QString describe(const zelkon::FilterCondition &condition);
    // Named states of the form, kept in the user's settings.
    void savePreset(const QString &name);
    bool restorePreset(const QString &name);
    QStringList presetNames() const { return m_query.presetNames(); }

    QSize sizeHint() const override;

Q_SIGNALS:
    // A control reported a change the filter depends on.
    void filterChanged();

private:
    struct Slot
    {
        QString className;
        QString name;
        QString label;
        int row;
        int column;
    };
    QRect placeOf(const Slot &slot) const;
    int labelWidth() const;
    void watch(zelkon::Control *control);
    void configureControls();
    void bindControls();

    QList<Slot> m_slots;
    zelkon::FilterQuery m_query;
};
