/// \file
/// zelkon::Navigator: a text field with an attached list that looks entries up in a recordset as
/// the user types.
#pragma once

#include <zelkon/common/control.h>

#include <QVariant>

#include <memory>

namespace zelkon {

class NavigatorPrivate;

/// A type-ahead lookup over a recordset: a text box whose one-column list opens under (or above) it
/// and follows the typed text. The recordset is searched in memory, so typed text never reaches a
/// database as SQL; no match paints the field in the info colours.
class ZELKON_EXPORT Navigator : public Control
{
    Q_OBJECT
    Q_PROPERTY(QString Text READ Text WRITE setText)
    // The interface's own spelling, kept for hosts that assign it by name.
    Q_PROPERTY(QVariant DataSourthe READ DataSourthe WRITE setDataSourthe DESIGNABLE false)
    Q_PROPERTY(bool LockEdits READ LockEdits WRITE setLockEdits)
    Q_PROPERTY(int ListLine READ ListLine WRITE setListLine)
    Q_PROPERTY(bool AllCaps READ AllCaps WRITE setAllCaps)
    Q_PROPERTY(int CharCount READ CharCount WRITE setCharCount)
    Q_PROPERTY(bool UpDown READ UpDown WRITE setUpDown)
    Q_PROPERTY(qint32 FieldInd READ FieldInd WRITE setFieldInd)
    Q_PROPERTY(QString Text2 READ Text2 WRITE setText2 DESIGNABLE false)
    Q_PROPERTY(qint32 FieldInd2 READ FieldInd2 WRITE setFieldInd2)
    Q_PROPERTY(QString FontName READ FontName WRITE setFontName)
    Q_PROPERTY(int FontSize READ FontSize WRITE setFontSize)
    // Designer edits QWidget::enabled instead: uic would write this one through
    // QWidget::setEnabled.
    Q_PROPERTY(bool Enabled READ Enabled WRITE putEnabled DESIGNABLE false)

public:
    /// An empty field without a data source.
    explicit Navigator(QWidget *parent = nullptr);
    ~Navigator() override;

    /// Sets Text to one space, the text of a newly placed field.
    void InitProperties() override;
    /// Reads the persisted properties, each under its own name.
    void ReadProperties(PropertyBag &bag) override;
    /// Writes the persisted properties, each under its own name.
    void WriteProperties(PropertyBag &bag) override;

    ///@{
    /// The text in the text box; a put searches it like typed text and raises ContextChange.
    /// Not const: reading a non-empty text searches it again (selection and colour follow).
    QString Text();
    void setText(const QString &text);
    ///@}
    ///@{
    /// The recordset the list is filled from at once, kept by reference; Empty clears it. Reads
    /// back the object given last (an invalid QVariant when none). The spelling is the one hosts
    /// use.
    QVariant DataSourthe() const;
    void setDataSourthe(const QVariant &source);
    ///@}
    ///@{
    /// Makes the text box read-only.
    bool LockEdits() const;
    void setLockEdits(bool locked);
    ///@}
    ///@{
    /// Lines the list shows (4 by default).
    qint16 ListLine() const;
    void setListLine(qint16 lines);
    ///@}
    /// The designable form: raises the overflow error (6) outside -32768..32767.
    void setListLine(int lines);
    ///@{
    /// Upper case for typed text; turning it on changes the current text at once, keeping the
    /// caret.
    bool AllCaps() const;
    void setAllCaps(bool allCaps);
    ///@}
    ///@{
    /// The longest text the user may type; 0 for no limit.
    qint16 CharCount() const;
    void setCharCount(qint16 count);
    ///@}
    /// The designable form: raises the overflow error (6) outside -32768..32767.
    void setCharCount(int count);
    ///@{
    /// Whether the list opens above the text box instead of under it.
    bool UpDown() const;
    void setUpDown(bool upward);
    ///@}
    ///@{
    /// The column (from 0) that the list shows and the typed text is searched in.
    qint32 FieldInd() const;
    void setFieldInd(qint32 index);
    ///@}
    ///@{
    /// The FieldInd2 value of the record whose FieldInd value is Text (empty when none is); a put
    /// shows the FieldInd value of the record whose FieldInd2 value it is. Not const: both
    /// directions look the record up in the recordset.
    QString Text2();
    void setText2(const QString &text);
    ///@}
    ///@{
    /// The column (from 0) that Text2 answers with.
    qint32 FieldInd2() const;
    void setFieldInd2(qint32 index);
    ///@}
    ///@{
    /// The font of the text box and the list.
    QString FontName() const;
    void setFontName(const QString &name);
    ///@}
    ///@{
    /// The font size in points of the text box and the list.
    qint16 FontSize() const;
    void setFontSize(qint16 points);
    ///@}
    /// The designable form: raises the overflow error (6) outside -32768..32767.
    void setFontSize(int points);

    /// One line high, as tall as the other one-line controls of a form.
    QSize sizeHint() const override;
    /// One line high and a few characters wide.
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The text changed, by the user or by code; raised before the search.
    void ContextChange();
    /// The mouse moved over the text box; the arguments are those of MouseArgs.
    void MouseMove(qint16 Button, qint16 Shift, float X, float Y);
    /// A mouse button was released over the text box.
    void MouseUp(qint16 Button, qint16 Shift, float X, float Y);
    /// A mouse button was pressed over the text box.
    void MouseDown(qint16 Button, qint16 Shift, float X, float Y);

protected:
    /// Raises the mouse events.
    void childMouseEvent(QWidget *child, MouseAction action, MouseArgs &args) override;
    /// Keys, focus and clicks of the text box and the list.
    bool eventFilter(QObject *watched, QEvent *event) override;
    /// Lays the text box out.
    void resizeEvent(QResizeEvent *event) override;
    /// Keeps the list ListLine lines high in a new font.
    void changeEvent(QEvent *event) override;

private:
    friend class NavigatorPrivate;
    std::unique_ptr<NavigatorPrivate> d;
};

} // namespace zelkon
