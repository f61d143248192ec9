// zelkon::CheckCombo: a field whose drop-down is a list of check boxes, the filter of a report.
#pragma once

#include <zelkon/common/control.h>

#include <QFont>
#include <QVariant>

#include <memory>

namespace zelkon {

class CheckComboPrivate;

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
    // Kind of data source.
    enum ExDate : qint32 { ADOData = 0, DAOData = 1, ArData = 2 };
    Q_ENUM(ExDate)

    explicit CheckCombo(QWidget *parent = nullptr);
    ~CheckCombo() override;

    void InitProperties() override;
    void ReadProperties(PropertyBag &bag) override;
    void WriteProperties(PropertyBag &bag) override;

    QString Title() const;
    void setTitle(const QString &title);
    qint16 MaxLine() const;
    void setMaxLine(qint16 rows);
    // The designable form: raises the overflow error (6) outside -32768..32767.
    void setMaxLine(int rows);
    qint16 Delay() const;
    void setDelay(qint16 milliseconds);
    // The designable form: raises the overflow error (6) outside -32768..32767.
    void setDelay(int milliseconds);
    // Font keeps its name for hosts that reach it by name; its C++ setter is named so that it
    // does not hide QWidget::setFont. Enabled is the shell's.
    QFont Font() const;
    void putFont(const QFont &font);
    bool EditEnabled() const;
    void setEditEnabled(bool enabled);
    bool Sorting() const;
    void setSorting(bool sorting);
    bool Inv() const;
    void setInv(bool inverted);
    bool SingleCheck() const;
    void setSingleCheck(bool single);
    bool AllSelect() const;
    void setAllSelect(bool allSelect);
    qint32 Appearance() const;
    void setAppearance(qint32 appearance);
    qint32 Border() const;
    void setBorder(qint32 border);
    float Left() const { return float(x()); }
    void setLeft(float left);
    float Top() const { return float(y()); }
    void setTop(float top);
    float Height() const { return float(height()); }
    void setHeight(float height);
    float Width() const { return float(width()); }
    void setWidth(float width);

    ExDate TypeData() const;
    void setTypeData(ExDate type);
    QVariant SArrayData() const;
    void setSArrayData(const QVariant &array);
    QObject *RecordsetData() const;
    void setRecordsetData(QObject *recordset);
    QString CommandText() const;
    void setCommandText(const QString &text);
    qint32 CommandType() const;
    void setCommandType(qint32 type);
    QObject *Connect() const;
    // Stores the connection and opens the rows at once (errors of the open reach the caller).
    void setConnect(QObject *connection);
    Q_INVOKABLE void Refresh();

    QVariant ArrayChecked();
    // Checks the rows with these texts; the variable comes back as the texts checked.
    void setArrayChecked(QVariant &texts);
    void setArrayChecked(const QVariant &texts);
    QVariant ArrayCheckedID();
    void setArrayCheckedID(QVariant &ids);
    void setArrayCheckedID(const QVariant &ids);
    QVariant ArrayVisible() const;
    void setArrayVisible(const QVariant &rows);
    Q_INVOKABLE void SelectAll();
    Q_INVOKABLE void ClearAll();

    // The control's accessible name is also the name of its field, where the focus and thus a
    // screen reader's attention goes; the field is called "Filter" while the host gives none.
    // QWidget::setAccessibleName is not virtual and sends the widget no event: this one hides it
    // for callers that know the control's type, and the field catches up when it gains the focus
    // or its window is activated, the moments a screen reader reads it, for those that do not.
    void setAccessibleName(const QString &name);

    // The drop-down: opens it when closed, closes it when open.
    void dropDown();
    bool isDroppedDown() const;

Q_SIGNALS:
    void Quite(bool Cancel); // the popup closed; the spelling is the one hosts connect to
    void MouseMove();
    void Click();
    void MouseMoveXY(qint16 &Button, qint16 &Shift, float &X, float &Y);
    void MouseUp(qint16 &Button, qint16 &Shift, float &X, float &Y);
    void MouseDown(qint16 &Button, qint16 &Shift, float &X, float &Y);

protected:
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void childMouseEvent(QWidget *child, MouseAction action, MouseArgs &args) override;

private:
    friend class CheckComboPrivate;
    std::unique_ptr<CheckComboPrivate> d;
};

} // namespace zelkon
