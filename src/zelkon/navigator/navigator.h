// zelkon::Navigator: a text field with an attached list that looks entries up in a recordset as
// the user types.
#pragma once

#include <zelkon/common/control.h>

#include <QVariant>

#include <memory>

namespace zelkon {

class NavigatorPrivate;

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
    explicit Navigator(QWidget *parent = nullptr);
    ~Navigator() override;

    void InitProperties() override;
    void ReadProperties(PropertyBag &bag) override;
    void WriteProperties(PropertyBag &bag) override;

    // Not const: reading a non-empty text searches it again (selection and colour follow).
    QString Text();
    void setText(const QString &text);
    // The object given last (an invalid QVariant when none).
    QVariant DataSourthe() const;
    void setDataSourthe(const QVariant &source);
    bool LockEdits() const;
    void setLockEdits(bool locked);
    qint16 ListLine() const;
    void setListLine(qint16 lines);
    // The designable form: raises the overflow error (6) outside -32768..32767.
    void setListLine(int lines);
    bool AllCaps() const;
    void setAllCaps(bool allCaps);
    qint16 CharCount() const;
    void setCharCount(qint16 count);
    // The designable form: raises the overflow error (6) outside -32768..32767.
    void setCharCount(int count);
    bool UpDown() const;
    void setUpDown(bool upward);
    qint32 FieldInd() const;
    void setFieldInd(qint32 index);
    // Not const: both directions look the record up in the recordset.
    QString Text2();
    void setText2(const QString &text);
    qint32 FieldInd2() const;
    void setFieldInd2(qint32 index);
    QString FontName() const;
    void setFontName(const QString &name);
    qint16 FontSize() const;
    void setFontSize(qint16 points);
    // The designable form: raises the overflow error (6) outside -32768..32767.
    void setFontSize(int points);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void ContextChange();
    void MouseMove(qint16 Button, qint16 Shift, float X, float Y);
    void MouseUp(qint16 Button, qint16 Shift, float X, float Y);
    void MouseDown(qint16 Button, qint16 Shift, float X, float Y);

protected:
    void childMouseEvent(QWidget *child, MouseAction action, MouseArgs &args) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    friend class NavigatorPrivate;
    std::unique_ptr<NavigatorPrivate> d;
};

} // namespace zelkon
