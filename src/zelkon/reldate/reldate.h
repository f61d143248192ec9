// zelkon::RelDate: a date bound given as an absolute date, a day count from today, or "All".
#pragma once

#include <zelkon/common/control.h>

#include <QDateTime>
#include <QEvent>
#include <QPointF>
#include <QVariant>

class QAction;
class QCheckBox;
class QLineEdit;
class QMenu;

namespace zelkon {

class DatePicker;
class UpDown;

// Where RelDate shows its mode check box.
enum RelativeBoxState : qint32 { rbsNotVisible = 0, rbsRight = 1, rbsLeft = 2 };
// Whether a RelDate follows the mode changes made on the other RelDate controls of its form.
enum SynchroRelative : qint32 { srdNotSynchro = 0, srdSynchro = 1 };

class ZELKON_EXPORT RelDate : public Control
{
    Q_OBJECT
    Q_PROPERTY(bool AllowAll READ AllowAll WRITE setAllowAll)
    Q_PROPERTY(qint32 Appearance READ Appearance WRITE setAppearance)
    Q_PROPERTY(qint32 Border READ Border WRITE setBorder)
    Q_PROPERTY(bool SynchValue READ SynchValue WRITE setSynchValue)
    Q_PROPERTY(QString TopControl READ TopControl WRITE setTopControl)
    Q_PROPERTY(QString BootControl READ BootControl WRITE setBootControl)
    Q_PROPERTY(qint32 GlobalSynchro READ GlobalSynchro WRITE setGlobalSynchro)
    Q_PROPERTY(bool MenuStateVisible READ MenuStateVisible WRITE setMenuStateVisible)
    Q_PROPERTY(qint32 CheckBoxState READ CheckBoxState WRITE setCheckBoxState)
    Q_PROPERTY(bool Relative READ Relative WRITE setRelative)
    Q_PROPERTY(QVariant RetDate READ RetDate WRITE setRetDate)
    Q_PROPERTY(qint32 RetNum READ RetNum WRITE setRetNum)
    Q_PROPERTY(QString CustomFormat READ CustomFormat WRITE setCustomFormat)
    // QWidget::setEnabled must stay what it is, so the accessors of "Enabled" are named apart.
    Q_PROPERTY(bool Enabled READ Enabled WRITE setControlEnabled)
    Q_PROPERTY(QDateTime MaxDate READ MaxDate WRITE setMaxDate)
    Q_PROPERTY(QDateTime MinDate READ MinDate WRITE setMinDate)
    Q_PROPERTY(bool UpDown READ UpDown WRITE setUpDown)
    Q_PROPERTY(qint16 YearDate READ YearDate)
    Q_PROPERTY(qint16 MonthDate READ MonthDate)
    Q_PROPERTY(qint16 DayOfMonth READ DayOfMonth)
    Q_PROPERTY(qint16 DayOfWeek READ DayOfWeek)
    Q_PROPERTY(qint16 HourDate READ HourDate)
    Q_PROPERTY(qint16 MinuteDate READ MinuteDate)
    Q_PROPERTY(qint16 SecondDate READ SecondDate)

public:
    explicit RelDate(QWidget *parent = nullptr);
    ~RelDate() override;

    void ReadProperties(PropertyBag &bag) override;
    void WriteProperties(PropertyBag &bag) override;

    bool AllowAll() const { return m_allowAll; }
    void setAllowAll(bool allow);
    qint32 Appearance() const { return m_appearance; }
    void setAppearance(qint32 appearance);
    qint32 Border() const { return m_border; }
    void setBorder(qint32 border);
    bool SynchValue() const { return m_synchValue; }
    void setSynchValue(bool synch);
    // A partner name that no longer names a control on the form is forgotten when read.
    QString TopControl();
    void setTopControl(const QString &name);
    QString BootControl();
    void setBootControl(const QString &name);
    qint32 GlobalSynchro() const { return m_globalSynchro; }
    void setGlobalSynchro(qint32 synchro);
    bool MenuStateVisible() const { return m_menuStateVisible; }
    void setMenuStateVisible(bool visible);
    qint32 CheckBoxState() const { return m_checkBoxState; }
    void setCheckBoxState(qint32 state);

    // Reading the mode also shows the widgets of that mode again.
    bool Relative();
    void setRelative(bool relative);
    // A date, or the text "All". In relative mode the date is computed from today on every read.
    QVariant RetDate();
    void setRetDate(const QVariant &value);
    // The day count; in absolute mode computed from today on every read.
    qint32 RetNum();
    void setRetNum(qint32 days);

    QString CustomFormat() const { return m_customFormat; }
    void setCustomFormat(const QString &format);
    bool Enabled() const;
    void setControlEnabled(bool enabled);
    QDateTime MaxDate() const;
    void setMaxDate(const QDateTime &date);
    QDateTime MinDate() const;
    void setMinDate(const QDateTime &date);
    bool UpDown() const;
    void setUpDown(bool upDown);

    qint16 YearDate() const;
    qint16 MonthDate() const;
    qint16 DayOfMonth() const;
    qint16 DayOfWeek() const;
    qint16 HourDate() const;
    qint16 MinuteDate() const;
    qint16 SecondDate() const;

Q_SIGNALS:
    void Change();
    void MouseMove();
    // Only Button is passed by reference here, unlike MouseUp and MouseDown.
    void MouseMoveXY(qint16 &Button, qint16 Shift, float X, float Y);
    void MouseUp(qint16 &Button, qint16 &Shift, float &X, float &Y);
    void MouseDown(qint16 &Button, qint16 &Shift, float &X, float &Y);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    // User gestures.
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
    bool mouseEvent(QWidget *child, QWidget *watched, QMouseEvent *event);
    bool keyPressed(QKeyEvent *event);

    // Partners on the same form.
    Control *findPartner(const QString &name) const;
    QString livePartnerName(QString &field, const QString &property);
    void putPartnerName(QString &field, const QString &name, const QString &property);
    void synchronizeValue();
    void propagateMode();

    void showMode();
    void setDateLongText(const QString &text);
    void refreshView();
    void layoutWidgets();
    void updateAccessibleNames();
    int frameWidth() const;
    QWidget *namedChildOf(QObject *watched) const;
    void watchChild(QWidget *child);

    QWidget *m_surface;
    DatePicker *m_dateView;
    QLineEdit *m_dateLong;
    zelkon::UpDown *m_dateLongUD;
    QCheckBox *m_chRel;
    QMenu *m_popUpDate;
    QAction *m_currentDate[2];
    QAction *m_dateAll;
    QAction *m_mnuRel;

    // A newly placed control starts with every field zeroed; the defaults of the property table
    // are those of saving and loading only.
    bool m_relative = false;
    QVariant m_date;
    qint32 m_dayCount = 0;
    bool m_allowAll = false;
    qint32 m_checkBoxState = rbsNotVisible;
    bool m_menuStateVisible = false;
    QString m_customFormat;
    qint32 m_globalSynchro = srdNotSynchro;
    QString m_topControl;
    QString m_bootControl;
    bool m_synchValue = false;
    qint32 m_appearance = 1;
    qint32 m_border = 1;

    bool m_loading = false;
    bool m_dateLongGuard = false;
    bool m_dateLongUDGuard = false;
    bool m_synchronizing = false;
    bool m_changeAfterMenu = false;
    // The last mouse event reported, to report an event once when it travels on to a parent.
    QEvent::Type m_lastMouseType = QEvent::None;
    quint64 m_lastMouseTime = 0;
    QPointF m_lastMousePos;
};

} // namespace zelkon
