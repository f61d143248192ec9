// ResultOptions: the demo's small controls: the sort column of the results, the name of the
// saved filter, and a title button that folds the filter panel away.
#pragma once

#include <QWidget>

namespace zelkon {
class BoxCombo;
class ComboListBox;
} // namespace zelkon

class ResultOptions : public QWidget
{
    Q_OBJECT
public:
    explicit ResultOptions(QWidget *parent = nullptr);

    // The ORDER BY list of the chosen sort column (one of a fixed set, never user text).
    QString orderBy() const;
    // The name typed or chosen for the filter, for its form file.
    QString filterName() const;

    // A panel of `content` under a title button that folds it away and shows it again.
    static QWidget *foldingPanel(QWidget *content, const QString &title);

Q_SIGNALS:
    void sortChanged();

private:
    zelkon::ComboListBox *m_sortBy;
    zelkon::BoxCombo *m_filterName;
};
