// zelkon::RelDate: a date bound given as an absolute date, a day count from today, or "All".
#pragma once

#include <zelkon/common/control.h>

#include <QDateTime>
#include <QVariant>

#include <memory>

namespace zelkon {

class RelDatePrivate;

// Where RelDate shows its mode check box.
enum RelativeBoxState : qint32 { rbsNotVisible = 0, rbsRight = 1, rbsLeft = 2 };
// Whether a RelDate follows the mode changes made on the other RelDate controls of its form.
enum SynchroRelative : qint32 { srdNotSynchro = 0, srdSynchro = 1 };

// The widget is a view over a RelativeDate: a day-count field with its spinner in relative mode, a
// date picker in absolute mode, a mode check box and a pop-up menu.
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
    Q_PROPERTY(QVariant RetDate READ RetDate WRITE setRetDate DESIGNABLE false)
    Q_PROPERTY(qint32 RetNum READ RetNum WRITE setRetNum)
    Q_PROPERTY(QString CustomFormat READ CustomFormat WRITE setCustomFormat)
    // QWidget::setEnabled must stay what it is, so the setter of "Enabled" is named apart.
    // Designer edits QWidget::enabled instead: uic would write this one through
    // QWidget::setEnabled.
    Q_PROPERTY(bool Enabled READ Enabled WRITE putEnabled DESIGNABLE false)
    Q_PROPERTY(QDateTime MaxDate READ MaxDate WRITE setMaxDate)
    Q_PROPERTY(QDateTime MinDate READ MinDate WRITE setMinDate)
    Q_PROPERTY(bool UpDown READ UpDown WRITE setUpDown)
    Q_PROPERTY(qint16 YearDate READ YearDate DESIGNABLE false)
    Q_PROPERTY(qint16 MonthDate READ MonthDate DESIGNABLE false)
    Q_PROPERTY(qint16 DayOfMonth READ DayOfMonth DESIGNABLE false)
    Q_PROPERTY(qint16 DayOfWeek READ DayOfWeek DESIGNABLE false)
    Q_PROPERTY(qint16 HourDate READ HourDate DESIGNABLE false)
    Q_PROPERTY(qint16 MinuteDate READ MinuteDate DESIGNABLE false)
    Q_PROPERTY(qint16 SecondDate READ SecondDate DESIGNABLE false)

public:
    explicit RelDate(QWidget *parent = nullptr);
    ~RelDate() override;

    void ReadProperties(PropertyBag &bag) override;
    void WriteProperties(PropertyBag &bag) override;

    bool AllowAll() const;
    void setAllowAll(bool allow);
    qint32 Appearance() const;
    void setAppearance(qint32 appearance);
    qint32 Border() const;
    void setBorder(qint32 border);
    bool SynchValue() const;
    void setSynchValue(bool synch);
    // A partner name that no longer names a control on the form is forgotten when read.
    QString TopControl();
    void setTopControl(const QString &name);
    QString BootControl();
    void setBootControl(const QString &name);
    qint32 GlobalSynchro() const;
    void setGlobalSynchro(qint32 synchro);
    bool MenuStateVisible() const;
    void setMenuStateVisible(bool visible);
    qint32 CheckBoxState() const;
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

    QString CustomFormat() const;
    void setCustomFormat(const QString &format);
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

    // One line high, as tall as the other one-line controls of a form.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void Change();
    void MouseMove();
    // Only Button is passed by reference here, unlike MouseUp and MouseDown.
    void MouseMoveXY(qint16 &Button, qint16 Shift, float X, float Y);
    void MouseUp(qint16 &Button, qint16 &Shift, float &X, float &Y);
    void MouseDown(qint16 &Button, qint16 &Shift, float &X, float &Y);

protected:
    // The surface's state is copied to the parts, so each part shows it even where a host or
    // a style looks at the part alone.
    void applyEnabled(bool enabled) override;
    void childMouseEvent(QWidget *child, MouseAction action, MouseArgs &args) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    friend class RelDatePrivate;
    std::unique_ptr<RelDatePrivate> d;
};

} // namespace zelkon
