// DownForm: the pop-up check list of a Down: a frameless top-level window under the control that
// closes on Enter, on Escape, or on a click anywhere outside it.
#pragma once

#include <QWidget>

class QListWidget;
class QTimer;

namespace zelkon {

class DownForm : public QWidget
{
    Q_OBJECT

public:
    explicit DownForm(QWidget *parent);

    // The list: one checkable row per entry, filled by the owner before ShowAtPos.
    QListWidget *lst() const { return m_lst; }
    // Adds a row at `row` (appended when `row` is negative or past the end) and returns its
    // place; its check is set after it is in the list, as a user's check would be.
    int addRow(const QString &text, qint32 row, bool checked);
    // Opens at (left, top) in screen coordinates, `width` wide and `rows` rows high (fewer when
    // the list has fewer; an empty list is only as high as its frame).
    void ShowAtPos(int left, int top, int width, qint32 rows);
    // Stops watching the mouse, hides and unloads the form; raises OnClose once.
    void DoClose();

Q_SIGNALS:
    void OnClose();
    // The user toggled row `ItemIndex`; a handler may hand back another state to show.
    void OnItemCheck(qint16 &ItemIndex, bool &Checked);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void onTimer();
    void onItemChanged(int row);

    QListWidget *m_lst;
    QTimer *m_tm;
    bool m_showingVeto = false;
    bool m_closed = false;
};

} // namespace zelkon
