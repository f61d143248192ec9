/// \file
/// zelkon::CheckCombo: a field whose drop-down is a list of check boxes, the filter of a report.
#pragma once

#include <zelkon/common/control.h>

#include <QFont>
#include <QVariant>

#include <memory>

namespace zelkon {

class CheckComboPrivate;

/// A one-line filter field whose drop-down is a check list over reference rows (an array or a
/// recordset), with "Not In ..." logic and Show/Hide of rows. The field shows "All" (no
/// restriction), the one checked text, or "List".
class ZELKON_EXPORT CheckCombo : public Control
{
    Q_OBJECT
    Q_PROPERTY(QString Title READ Title WRITE setTitle)
    Q_PROPERTY(int MaxLine READ MaxLine WRITE setMaxLine)
    Q_PROPERTY(int Delay READ Delay WRITE setDelay)
    // Designer edits QWidget::enabled instead: uic would write this one through
    // QWidget::setEnabled.
    Q_PROPERTY(bool Enabled READ Enabled WRITE putEnabled DESIGNABLE false)
    Q_PROPERTY(bool EditEnabled READ EditEnabled WRITE setEditEnabled)
    Q_PROPERTY(bool Sorting READ Sorting WRITE setSorting)
    Q_PROPERTY(bool Inv READ Inv WRITE setInv)
    Q_PROPERTY(bool SingleCheck READ SingleCheck WRITE setSingleCheck)
    Q_PROPERTY(bool AllSelect READ AllSelect WRITE setAllSelect)
    Q_PROPERTY(qint32 Appearance READ Appearance WRITE setAppearance)
    Q_PROPERTY(qint32 Border READ Border WRITE setBorder)
    Q_PROPERTY(float Left READ Left WRITE setLeft DESIGNABLE false)
    Q_PROPERTY(float Top READ Top WRITE setTop DESIGNABLE false)
    Q_PROPERTY(float Height READ Height WRITE setHeight DESIGNABLE false)
    Q_PROPERTY(float Width READ Width WRITE setWidth DESIGNABLE false)
    // As Enabled: Designer edits QWidget::font, which is what uic would write.
    Q_PROPERTY(QFont Font READ Font WRITE putFont DESIGNABLE false)
    // Redeclared so that a name set by property (forms, Designer) reaches the field as well.
    Q_PROPERTY(QString accessibleName READ accessibleName WRITE setAccessibleName)

    Q_PROPERTY(zelkon::CheckCombo::ExDate TypeData READ TypeData WRITE setTypeData)
    Q_PROPERTY(QVariant SArrayData READ SArrayData WRITE setSArrayData DESIGNABLE false)
    Q_PROPERTY(QObject *RecordsetData READ RecordsetData WRITE setRecordsetData DESIGNABLE false)
    Q_PROPERTY(QString CommandText READ CommandText WRITE setCommandText)
    Q_PROPERTY(qint32 CommandType READ CommandType WRITE setCommandType)
    Q_PROPERTY(QObject *Connect READ Connect WRITE setConnect DESIGNABLE false)
    Q_PROPERTY(QVariant ArrayChecked READ ArrayChecked WRITE setArrayChecked DESIGNABLE false)
    Q_PROPERTY(QVariant ArrayCheckedID READ ArrayCheckedID WRITE setArrayCheckedID DESIGNABLE false)
    Q_PROPERTY(QVariant ArrayVisible READ ArrayVisible WRITE setArrayVisible DESIGNABLE false)

public:
    /// Kind of data source. ADOData: a recordset searched with Find and AbsolutePosition;
    /// DAOData: one searched with FindFirst and NoMatch; ArData: an array.
    enum ExDate : qint32 { ADOData = 0, DAOData = 1, ArData = 2 };
    Q_ENUM(ExDate)

    /// A field showing "All" with an empty list.
    explicit CheckCombo(QWidget *parent = nullptr);
    ~CheckCombo() override;

    /// Title "All", MaxLine 5, Delay 1, enabled and editable, Sorting on, Inv, SingleCheck and
    /// AllSelect off, Appearance and Border 1.
    void InitProperties() override;
    /// Reads the persisted properties, each under its own name.
    void ReadProperties(PropertyBag &bag) override;
    /// Writes the persisted properties, each under its own name.
    void WriteProperties(PropertyBag &bag) override;

    ///@{
    /// The text shown in the closed field.
    QString Title() const;
    void setTitle(const QString &title);
    ///@}
    ///@{
    /// Rows the drop-down shows without scrolling.
    qint16 MaxLine() const;
    void setMaxLine(qint16 rows);
    ///@}
    /// The designable form: raises the overflow error (6) outside -32768..32767.
    void setMaxLine(int rows);
    ///@{
    /// Milliseconds after the drop-down opens before it first checks whether it lost the
    /// activation.
    qint16 Delay() const;
    void setDelay(qint16 milliseconds);
    ///@}
    /// The designable form: raises the overflow error (6) outside -32768..32767.
    void setDelay(int milliseconds);
    ///@{
    /// Font keeps its name for hosts that reach it by name; its C++ setter is named so that it
    /// does not hide QWidget::setFont. Enabled is the shell's.
    QFont Font() const;
    void putFont(const QFont &font);
    ///@}
    ///@{
    /// Whether the user may type into the field.
    bool EditEnabled() const;
    void setEditEnabled(bool enabled);
    ///@}
    ///@{
    /// Whether the list keeps its rows in case-insensitive order of their texts.
    bool Sorting() const;
    void setSorting(bool sorting);
    ///@}
    ///@{
    /// The inverted ("Not In ...") logic, in step with the check mark of that menu item; a toggle
    /// by the user is stored without PropertyChanged.
    bool Inv() const;
    void setInv(bool inverted);
    ///@}
    ///@{
    /// Whether checking a row unchecks the others.
    bool SingleCheck() const;
    void setSingleCheck(bool single);
    ///@}
    ///@{
    /// A flag stored and saved with the form for the host (the property page's "Enable Select
    /// All"); the drop-down's menu offers "Select All" whenever SingleCheck is off.
    bool AllSelect() const;
    void setAllSelect(bool allSelect);
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
    /// Position and size in pixels within the parent, persisted with the form.
    float Left() const { return float(x()); }
    void setLeft(float left);
    float Top() const { return float(y()); }
    void setTop(float top);
    float Height() const { return float(height()); }
    void setHeight(float height);
    float Width() const { return float(width()); }
    void setWidth(float width);
    ///@}

    ///@{
    /// The kind of data source; chooses how the row tool tips search a recordset.
    ExDate TypeData() const;
    void setTypeData(ExDate type);
    ///@}
    ///@{
    /// Loads rows from an array, keeping the checks by text: a QVariantList of texts, or a
    /// two-dimensional array a(0, i) text, a(1, i) identifier of row i. Reads back the array last
    /// given.
    QVariant SArrayData() const;
    void setSArrayData(const QVariant &array);
    ///@}
    ///@{
    /// Loads rows from the texts of an open recordset's first field (identifiers 0), keeping the
    /// checks by text.
    QObject *RecordsetData() const;
    void setRecordsetData(QObject *recordset);
    ///@}
    ///@{
    /// The SQL text or table name that Refresh() opens.
    QString CommandText() const;
    void setCommandText(const QString &text);
    ///@}
    ///@{
    /// The options argument of Recordset::Open() (1 text, 2 table).
    qint32 CommandType() const;
    void setCommandType(qint32 type);
    ///@}
    /// The connection that Refresh() opens its rows on; set CommandText and CommandType first.
    QObject *Connect() const;
    /// Stores the connection and opens the rows at once (errors of the open reach the caller).
    void setConnect(QObject *connection);
    /// Opens CommandText on Connect and loads the rows of its first field; checks survive only by
    /// text. Errors of the open reach the caller.
    Q_INVOKABLE void Refresh();

    /// The texts of the checked rows; the one-element array holding "All" when nothing is checked.
    QVariant ArrayChecked();
    ///@{
    /// Checks the rows with these texts; the variable comes back as the texts checked.
    void setArrayChecked(QVariant &texts);
    void setArrayChecked(const QVariant &texts);
    ///@}
    /// The identifiers of the checked rows; Empty when nothing is checked.
    QVariant ArrayCheckedID();
    ///@{
    /// Checks the rows with these identifiers; the variable comes back as the identifiers checked.
    void setArrayCheckedID(QVariant &ids);
    void setArrayCheckedID(const QVariant &ids);
    ///@}
    ///@{
    /// Positions (from 0) of the loaded rows that the drop-down shows; Show/Hide hides the others.
    /// A put takes effect at the next load or Show/Hide, not at once.
    QVariant ArrayVisible() const;
    void setArrayVisible(const QVariant &rows);
    ///@}
    /// Checks every row of the source array (nothing for a recordset source); the field shows
    /// "All".
    Q_INVOKABLE void SelectAll();
    /// Unchecks every row.
    Q_INVOKABLE void ClearAll();

    /// The control's accessible name is also the name of its field, where the focus and thus a
    /// screen reader's attention goes; the field is called "Filter" while the host gives none.
    /// QWidget::setAccessibleName is not virtual and sends the widget no event: this one hides it
    /// for callers that know the control's type, and the field catches up when it gains the focus
    /// or its window is activated, the moments a screen reader reads it, for those that do not.
    void setAccessibleName(const QString &name);

    /// The drop-down: opens it when closed, closes it when open.
    void dropDown();
    /// Whether the drop-down is open.
    bool isDroppedDown() const;

Q_SIGNALS:
    /// The drop-down closed: Cancel is true after Esc or Show/Hide, false when the user left it.
    /// The spelling is the one hosts connect to.
    void Quite(bool Cancel);
    /// The mouse moved over the field or its button (raised with MouseMoveXY).
    void MouseMove();
    /// The drop-down has just opened.
    void Click();
    /// The mouse moved over the field or its button; the arguments are those of MouseArgs.
    void MouseMoveXY(qint16 &Button, qint16 &Shift, float &X, float &Y);
    /// A mouse button was released over the field or its button.
    void MouseUp(qint16 &Button, qint16 &Shift, float &X, float &Y);
    /// A mouse button was pressed over the field or its button; a left press then opens the
    /// drop-down.
    void MouseDown(qint16 &Button, qint16 &Shift, float &X, float &Y);

protected:
    /// One line high, as tall as the other one-line controls of a form.
    QSize sizeHint() const override;
    /// Room for the button and one character.
    QSize minimumSizeHint() const override;
    /// Lays the field and the drop-down button out.
    void resizeEvent(QResizeEvent *event) override;
    /// Watches the field and the host window while the drop-down is open.
    bool eventFilter(QObject *watched, QEvent *event) override;
    /// Raises the mouse events, and opens the drop-down on a left press.
    void childMouseEvent(QWidget *child, MouseAction action, MouseArgs &args) override;

private:
    friend class CheckComboPrivate;
    std::unique_ptr<CheckComboPrivate> d;
};

} // namespace zelkon
