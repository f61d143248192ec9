/// \file
/// zelkon::RelDate: a date bound given as an absolute date, a day count from today, or "All".
#pragma once

#include <zelkon/common/control.h>

#include <QDateTime>
#include <QVariant>

#include <memory>

namespace zelkon {

class RelDatePrivate;

/// Where RelDate shows its mode check box.
enum RelativeBoxState : qint32 { rbsNotVisible = 0, rbsRight = 1, rbsLeft = 2 };
/// Whether a RelDate follows the mode changes made on the other RelDate controls of its form.
enum SynchroRelative : qint32 { srdNotSynchro = 0, srdSynchro = 1 };

/// A date bound given as an absolute date, a day count from today ("today - 7" stays a week ago
/// whatever day it is), or "All". Fields of one form can bound one another (TopControl,
/// BootControl) and follow one another's mode (GlobalSynchro).
///
/// The widget is a view over a RelativeDate: a day-count field with its spinner in relative mode, a
/// date picker in absolute mode, a mode check box and a pop-up menu.
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
    /// A new field in absolute mode; "All" is not allowed until AllowAll is set.
    explicit RelDate(QWidget *parent = nullptr);
    ~RelDate() override;

    /// Reads the persisted properties, each under its own name.
    void ReadProperties(PropertyBag &bag) override;
    /// Writes the persisted properties, each under its own name.
    void WriteProperties(PropertyBag &bag) override;

    ///@{
    /// Whether the menu offers "Any Dates" and RetDate takes "All".
    bool AllowAll() const;
    void setAllowAll(bool allow);
    ///@}
    ///@{
    /// 0 flat, 1 three-dimensional (the default).
    qint32 Appearance() const;
    void setAppearance(qint32 appearance);
    ///@}
    ///@{
    /// 0 none, 1 single (the default).
    qint32 Border() const;
    void setBorder(qint32 border);
    ///@}
    ///@{
    /// Keeps the date between the dates of the partners TopControl and BootControl.
    bool SynchValue() const;
    void setSynchValue(bool synch);
    ///@}
    ///@{
    /// The name of the partner whose date is this field's upper bound: "DateTo" or "DateTo(2)" for
    /// a control array, any case. A put of a name that names no control stores "".
    ///
    /// A partner name that no longer names a control on the form is forgotten when read.
    QString TopControl();
    void setTopControl(const QString &name);
    ///@}
    ///@{
    /// The name of the partner whose date is this field's lower bound; the rules of TopControl.
    QString BootControl();
    void setBootControl(const QString &name);
    ///@}
    ///@{
    /// srdSynchro: this field follows every mode change of the other RelDate fields of its form.
    qint32 GlobalSynchro() const;
    void setGlobalSynchro(qint32 synchro);
    ///@}
    ///@{
    /// Whether the pop-up menu offers the switch between relative and absolute mode.
    bool MenuStateVisible() const;
    void setMenuStateVisible(bool visible);
    ///@}
    ///@{
    /// Where the mode check box stands (a RelativeBoxState).
    qint32 CheckBoxState() const;
    void setCheckBoxState(qint32 state);
    ///@}

    ///@{
    /// Relative mode (a day count) or absolute mode (a date); a switch keeps the calendar day,
    /// raises Change and is passed to the partners that follow it.
    ///
    /// Reading the mode also shows the widgets of that mode again.
    bool Relative();
    void setRelative(bool relative);
    ///@}
    ///@{
    /// The bound: a date, or the text "All". In relative mode the date is computed from today on
    /// every read. A put takes a date (clamped to [MinDate, MaxDate]) or "All" (refused silently
    /// unless AllowAll); other values are ignored.
    QVariant RetDate();
    void setRetDate(const QVariant &value);
    ///@}
    ///@{
    /// Days from today, negative in the past.
    ///
    /// The day count; in absolute mode computed from today on every read.
    qint32 RetNum();
    void setRetNum(qint32 days);
    ///@}

    ///@{
    /// The date format of absolute mode (QDateTime format codes); empty for the locale's short
    /// date.
    QString CustomFormat() const;
    void setCustomFormat(const QString &format);
    ///@}
    ///@{
    /// The latest day (9999-12-31 by default); a bound that would cross MinDate is ignored.
    QDateTime MaxDate() const;
    void setMaxDate(const QDateTime &date);
    ///@}
    ///@{
    /// The earliest day (1601-01-01 by default); a bound that would cross MaxDate is ignored.
    QDateTime MinDate() const;
    void setMinDate(const QDateTime &date);
    ///@}
    ///@{
    /// Spin buttons instead of the drop-down calendar in absolute mode.
    bool UpDown() const;
    void setUpDown(bool upDown);
    ///@}

    ///@{
    /// Parts of the date picker's date (DayOfWeek: 1 Sunday .. 7 Saturday).
    qint16 YearDate() const;
    qint16 MonthDate() const;
    qint16 DayOfMonth() const;
    qint16 DayOfWeek() const;
    qint16 HourDate() const;
    qint16 MinuteDate() const;
    qint16 SecondDate() const;
    ///@}

    /// One line high, as tall as the other one-line controls of a form.
    QSize sizeHint() const override;
    /// One line high, with room for a few digits and the check box.
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The value or the mode changed: by the user, the menu, or a put of Relative.
    void Change();
    /// The mouse moved over the day count, its spinner or the date picker (raised with
    /// MouseMoveXY).
    void MouseMove();
    /// The mouse moved over any part of the field, the check box included. Only Button is passed
    /// by reference here, unlike MouseUp and MouseDown.
    void MouseMoveXY(qint16 &Button, qint16 Shift, float X, float Y);
    /// A mouse button was released over a part of the field; the arguments are those of MouseArgs.
    void MouseUp(qint16 &Button, qint16 &Shift, float &X, float &Y);
    /// A mouse button was pressed over a part of the field.
    void MouseDown(qint16 &Button, qint16 &Shift, float &X, float &Y);

protected:
    /// The surface's state is copied to the parts, so each part shows it even where a host or
    /// a style looks at the part alone.
    void applyEnabled(bool enabled) override;
    /// Raises the mouse events.
    void childMouseEvent(QWidget *child, MouseAction action, MouseArgs &args) override;
    /// Lays the parts out for the mode and CheckBoxState.
    void resizeEvent(QResizeEvent *event) override;
    /// Names the parts for accessibility after the host's accessible name.
    void showEvent(QShowEvent *event) override;

private:
    friend class RelDatePrivate;
    std::unique_ptr<RelDatePrivate> d;
};

} // namespace zelkon
