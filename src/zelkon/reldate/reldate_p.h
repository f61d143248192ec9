// zelkon::RelDatePrivate: the state of a RelDate and its handlers, shared by the files of the
// control (the properties, the user's gestures, the partners on the form, layout and persistence).
#pragma once

#include <zelkon/reldate/relativedate.h>
#include <zelkon/reldate/reldate.h>

#include <QObject>

class QAction;
class QCheckBox;
class QLineEdit;
class QMenu;
class QKeyEvent;

namespace zelkon {

class DatePicker;
class UpDown;

class RelDatePrivate : public QObject
{
public:
    explicit RelDatePrivate(RelDate *control);

    // Today's date, read afresh, except inside a put: one put reads it once, so that its steps
    // agree on the day even when midnight passes between them.
    QDate today() const;

    // The value: the model's rules, and the widgets brought to show it.
    void switchMode(bool relative);
    void putDate(const QVariant &value);
    void putDayCount(qint32 days);

    // The user's gestures.
    void chRelClicked();
    void menuRelChosen();
    void menuCurrentDateChosen();
    void menuDateAllChosen();
    void dateLongChanged();
    void dateLongUDChanged();
    void dateViewChanged();
    void dateViewAdopted();
    void dateViewLeftAll();
    void popUpMenu(const QPoint &globalPos, bool changeAfter);
    bool keyPressed(QKeyEvent *event);
    bool eventFilter(QObject *watched, QEvent *event) override;
    QWidget *namedChildOf(QObject *watched) const;
    void watchChild(QWidget *child);

    // Partners on the same form.
    Control *findPartner(const QString &name) const;
    QString livePartnerName(QString &field, const QString &property);
    void putPartnerName(QString &field, const QString &name, const QString &property);
    void synchronizeValue();
    void propagateMode();

    // The view.
    void showMode();
    void showCheckBox();
    void setDateLongText(const QString &text);
    void showDaysOf(const QDateTime &date);
    void refreshView(const QDate &now);
    void layoutWidgets();
    void updateAccessibleNames();
    int checkBoxSlotWidth() const;

    // Persistence.
    void readProperties(PropertyBag &bag);
    void writeProperties(PropertyBag &bag);

    RelDate *q;
    QWidget *surface;
    DatePicker *dateView;
    QLineEdit *dateLong;
    UpDown *dateLongUD;
    QCheckBox *chRel;
    QMenu *popUpDate;
    QAction *currentDate[2];
    QAction *dateAll;
    QAction *mnuRel;

    // A newly placed control starts with every field zeroed; the defaults of the property table
    // are those of saving and loading only.
    RelativeDate model;
    qint32 checkBoxState = rbsNotVisible;
    bool menuStateVisible = false;
    QString customFormat;
    qint32 globalSynchro = srdNotSynchro;
    QString topControl;
    QString bootControl;
    bool synchValue = false;

    bool loading = false;
    bool dateLongGuard = false;
    bool dateLongUDGuard = false;
    bool synchronizing = false;
    bool changeAfterMenu = false;
    QDate putDay;
};

} // namespace zelkon
