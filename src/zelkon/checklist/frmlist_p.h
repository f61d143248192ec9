// zelkon::frmList: the drop-down window of a CheckCombo and the store of its rows and checks.
#pragma once

#include <QElapsedTimer>
#include <QPointer>
#include <QVariant>
#include <QWidget>

#include <functional>

class QAction;
class QMenu;
class QTimer;

namespace zelkon {

class CheckListModel;
class CheckListView;
class frmShowHide;

class frmList : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QVariant SourceArray READ SourceArray WRITE setSourceArray)
    Q_PROPERTY(bool SourceIs2D READ SourceIs2D)
    Q_PROPERTY(QObject *SourceRecordset READ SourceRecordset WRITE setSourceRecordset)
    Q_PROPERTY(qint16 ActiveList READ ActiveList WRITE setActiveList)
    Q_PROPERTY(QVariant AllItems READ AllItems)
    Q_PROPERTY(QVariant ArVis READ ArVis WRITE setArVis)
    Q_PROPERTY(bool ArVisReady READ ArVisReady)
    Q_PROPERTY(QVariant CheckedTexts READ CheckedTexts WRITE setCheckedTexts)
    Q_PROPERTY(QVariant CheckedIDs READ CheckedIDs WRITE setCheckedIDs)
    Q_PROPERTY(bool FieldTips READ FieldTips WRITE setFieldTips)
    Q_PROPERTY(bool SingleCheck READ SingleCheck WRITE setSingleCheck)
    Q_PROPERTY(qint32 TypeData READ TypeData WRITE setTypeData)
    Q_PROPERTY(qint16 MaxLine READ MaxLine WRITE setMaxLine)
    Q_PROPERTY(qint16 Delay READ Delay WRITE setDelay)
    Q_PROPERTY(bool Invert READ Invert)

public:
    // How long a popup that the window system has not activated yet is left alone before a
    // missing activation counts as having left it.
    static constexpr int ActivationGraceMs = 1000;

    explicit frmList(QWidget *parent = nullptr);
    ~frmList() override;

    // The elements of a one-dimensional array in index order (Empty: none). Any other single
    // value stands for itself; an array of more dimensions has no element a single index reads.
    static QVariantList elementsOf(const QVariant &value);

    // The store's fields.
    QVariant SourceArray() const { return m_sourceArray; }
    void setSourceArray(const QVariant &array) { m_sourceArray = array; }
    bool SourceIs2D() const { return m_sourceIs2D; }
    QObject *SourceRecordset() const { return m_sourceRecordset; }
    void setSourceRecordset(QObject *recordset) { m_sourceRecordset = recordset; }
    qint16 ActiveList() const { return m_activeList; }
    void setActiveList(qint16 index);
    QVariant AllItems() const; // 2-D (0 to n-1, 0 to 1): text, identifier; Empty when no rows
    int snapshotRows() const;
    QVariant ArVis() const;
    void setArVis(const QVariant &rows);
    bool ArVisReady() const { return m_arVisReady; }
    QVariant CheckedTexts() const { return m_checkedTexts; }
    void setCheckedTexts(const QVariant &texts) { m_checkedTexts = texts; }
    QVariant CheckedIDs() const { return m_checkedIDs; }
    void setCheckedIDs(const QVariant &ids) { m_checkedIDs = ids; }
    bool FieldTips() const { return m_fieldTips; }
    void setFieldTips(bool on) { m_fieldTips = on; }
    bool SingleCheck() const { return m_singleCheck; }
    void setSingleCheck(bool on) { m_singleCheck = on; }
    qint32 TypeData() const { return m_typeData; }
    void setTypeData(qint32 type) { m_typeData = type; }
    qint16 MaxLine() const { return m_maxLine; }
    void setMaxLine(qint16 rows) { m_maxLine = rows; }
    // The interval of the first activation check after the popup opens, in milliseconds.
    qint16 Delay() const { return m_delay; }
    void setDelay(qint16 milliseconds) { m_delay = milliseconds; }
    // The check mark of "Not In ...".
    bool Invert() const;

    // The public operations of the store.
    Q_INVOKABLE void InsertArray();
    Q_INVOKABLE void InsertRecord();
    Q_INVOKABLE void ReloadArVis();
    Q_INVOKABLE void GetChecked();
    Q_INVOKABLE void RepairCheck();
    Q_INVOKABLE void RepairCheckID();
    Q_INVOKABLE void SetInvert(bool value);

    // The CheckedTexts that GetChecked would compute, without computing CheckedIDs or keeping
    // anything: what a reload saves to restore by text.
    QVariant readCheckedTexts() const;

    // The operations behind the context menu and the public ones.
    Q_INVOKABLE void CheckAllRows();
    Q_INVOKABLE void UncheckAllRows();
    Q_INVOKABLE void InvertRows();
    Q_INVOKABLE void RebuildVisibleRows();
    Q_INVOKABLE void ShowHideRows();
    void TakeSnapshot();
    bool FillShowHideDialog();

    // The list in use: List(ActiveList).
    CheckListView *List() const { return m_views[m_activeList]; }

    // Loads the rows for the owner's data source once, when the owner creates the form.
    void loadRows();
    // The popup: the height of `rows` rows of the list, shown topmost at the rectangle, activated,
    // with its activation timer started after Delay.
    int heightForRows(int rows) const;
    void popUp(const QRect &geometry);
    void popDown();

Q_SIGNALS:
    // Closed by Esc (Cancel True), by leaving it (False) or after Show/Hide (True).
    void Change(bool Cancel);
    // "Not In ..." toggled; the new state.
    void ChangeInv(bool Inverted);
    void UnloadMe();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    bool handleKey(QKeyEvent *event);
    void onTimer();
    void showContextMenu(const QPoint &globalPos);
    void showRowTip(const QPoint &viewportPos);
    // Unchecks every row but `newest` when the single-check rule applies.
    void applySingleCheck(int newest);
    // Sets every row's check to what `state(row, checked)` gives, row after row, under the
    // single-check rule when it applies; the top row stays where it was.
    void setChecksInTurn(const std::function<bool(int row, bool checked)> &state);
    // Sets the checks of the rows named, unchecking the rest first; `newest` is the last row
    // that the caller's sequence checked.
    void setCheckedRows(const std::vector<bool> &checked, int newest);
    // Shows the rows that ArVis names, checked where `checked(text)` says so.
    void showArVis(const std::function<bool(const QString &)> &checked);
    void ReloadArVisFor(int rows);
    // CheckedIDs from the rows, CheckedTexts left as they are.
    void readCheckedIDs();
    QStringList checkedTextsOfList() const;

    CheckListModel *m_model = nullptr;
    CheckListView *m_views[2] = {};
    QTimer *m_timer = nullptr;
    QMenu *m_menu = nullptr;
    QList<QAction *> m_menuItems;
    QPointer<frmShowHide> m_showHideDialog;

    QVariant m_sourceArray;
    bool m_sourceIs2D = false;
    QPointer<QObject> m_sourceRecordset;
    qint16 m_activeList = 0;
    QVariant m_arVis;
    // Every row shown, 0 to m_everyRow - 1, kept as a count until someone reads ArVis; -1: none.
    qint32 m_everyRow = -1;
    bool m_arVisReady = false;
    QVariant m_checkedTexts;
    QVariant m_checkedIDs;
    bool m_fieldTips = false;
    bool m_singleCheck = false;
    qint32 m_typeData = 0;
    qint16 m_maxLine = 5;
    qint16 m_delay = 1;

    bool m_inSingleCheck = false;
    bool m_beenActive = false;
    QElapsedTimer m_openedAt;
};

} // namespace zelkon
