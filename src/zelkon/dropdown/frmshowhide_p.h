// zelkon::frmShowHide: the modal dialog in which the user marks the rows of a check list to show.
#pragma once

#include <QDialog>
#include <QVariant>

class QListWidget;
class QPushButton;

namespace zelkon {

class frmShowHide : public QDialog
{
    Q_OBJECT

public:
    explicit frmShowHide(QWidget *parent = nullptr);
    ~frmShowHide() override;

    // The marked list: one row per row of the check list, marked = shown. A row's mark is both its
    // check box and its selected state, kept in step.
    QListWidget *HideBox() const { return m_hideBox; }
    // Clears HideBox and adds the texts in order, each marked.
    void fill(const QStringList &texts);
    bool confirmed() const { return m_confirmed; }

    // Runs the dialog modally and replaces ArVis with the positions of the marked rows (Empty
    // when none is marked), whether the user confirmed or not. Returns whether the user confirmed.
    Q_INVOKABLE bool frmActivate(QVariant &ArVis);

private:
    void setMarked(int row, bool marked);

    QListWidget *m_hideBox = nullptr;
    QPushButton *m_btnYes = nullptr;
    QPushButton *m_btnNo = nullptr;
    bool m_confirmed = false;
    bool m_syncing = false;
};

} // namespace zelkon
