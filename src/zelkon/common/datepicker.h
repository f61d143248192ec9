/// \file
/// zelkon::DatePicker: a date field with a drop-down calendar or spin buttons, clamped to a range.
#pragma once

#include <zelkon/common/global.h>

#include <QDateTime>
#include <QWidget>

#include <memory>

class QDateTimeEdit;

namespace zelkon {

class DatePickerPrivate;

/// The date picker that RelDate shows in absolute mode; hosts meet it as the control's child.
class ZELKON_EXPORT DatePicker : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QDateTime Value READ Value WRITE setValue NOTIFY Change)
    Q_PROPERTY(QDateTime MinDate READ MinDate WRITE setMinDate)
    Q_PROPERTY(QDateTime MaxDate READ MaxDate WRITE setMaxDate)
    Q_PROPERTY(QString CustomFormat READ CustomFormat WRITE setCustomFormat)
    Q_PROPERTY(bool UpDown READ UpDown WRITE setUpDown)
    Q_PROPERTY(qint16 Year READ Year)
    Q_PROPERTY(qint16 Month READ Month)
    Q_PROPERTY(qint16 Day READ Day)
    Q_PROPERTY(qint16 DayOfWeek READ DayOfWeek)
    Q_PROPERTY(qint16 Hour READ Hour)
    Q_PROPERTY(qint16 Minute READ Minute)
    Q_PROPERTY(qint16 Second READ Second)

public:
    /// A picker showing today's date, with a drop-down calendar.
    explicit DatePicker(QWidget *parent = nullptr);
    ~DatePicker() override;

    /// The date shown.
    QDateTime Value() const;
    /// Clamped to [MinDate, MaxDate] by calendar day: a date outside the range becomes the bound's
    /// day with the picker's current time of day. Raises Change when the value moves, whether the
    /// user or the code moved it. An invalid date throws zelkon::Error 13.
    void setValue(const QDateTime &value);
    ///@{
    /// The earliest day the picker takes (1601-01-01 by default). Only the calendar day of a
    /// bound counts. A bound that would cross the other one throws zelkon::Error 5 and changes
    /// nothing.
    QDateTime MinDate() const;
    void setMinDate(const QDateTime &date);
    ///@}
    ///@{
    /// The latest day the picker takes (9999-12-31 by default); same rules as MinDate.
    QDateTime MaxDate() const;
    void setMaxDate(const QDateTime &date);
    ///@}
    /// Whether the picker takes the date as it is: its calendar day lies within the bounds' days.
    bool inRange(const QDateTime &date) const;
    ///@{
    /// Empty: the short date format of the platform's locale. The text "All" is no format: the
    /// picker then shows the word All instead of a date until another format is set.
    QString CustomFormat() const;
    void setCustomFormat(const QString &format);
    ///@}
    ///@{
    /// Spin buttons instead of the drop-down calendar.
    bool UpDown() const;
    void setUpDown(bool upDown);
    ///@}

    ///@{
    /// Parts of Value (DayOfWeek: 1 Sunday .. 7 Saturday).
    qint16 Year() const;
    qint16 Month() const;
    qint16 Day() const;
    qint16 DayOfWeek() const;
    qint16 Hour() const;
    qint16 Minute() const;
    qint16 Second() const;
    ///@}

    /// Whether the word All is shown instead of a date.
    bool showsAll() const;
    /// The inner date edit, for styling and tests; its date is Value.
    QDateTimeEdit *dateEdit() const;
    /// The inner date edit and the word All are named after the picker's own accessible name and
    /// description ("Date" when it has none); the word All says that any date is meant. Runs on
    /// show and on focus; call it after renaming the picker while it is shown.
    void updateAccessibleNames();

    ///@{
    /// Those of the inner date edit.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    ///@}

Q_SIGNALS:
    /// Value moved, by the user or by code.
    void Change();
    void DropDown(); ///< the calendar opened
    void CloseUp(); ///< the calendar closed
    /// A left click on the picker, also on the word All.
    void Click();
    /// A key pressed in the picker; setting KeyCode to 0 swallows the key.
    void KeyDown(qint16 &KeyCode, qint16 &Shift);

protected:
    /// Names the parts for accessibility on show and on a new tool tip.
    bool event(QEvent *event) override;
    /// Raises DropDown, CloseUp, Click and KeyDown from the parts; names them on focus.
    bool eventFilter(QObject *watched, QEvent *event) override;
    /// Lays the date edit and the word All out.
    void resizeEvent(QResizeEvent *event) override;

private:
    friend class DatePickerPrivate;
    std::unique_ptr<DatePickerPrivate> d;
};

} // namespace zelkon
