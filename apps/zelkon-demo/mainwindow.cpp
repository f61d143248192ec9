#include "mainwindow.h"

#include "columnchooser.h"
#include "filterform.h"
#include "propertiesdialog.h"
#include "resultoptions.h"

#include <zelkon/common/control.h>

#include <zelkon/common/error.h>
#include <zelkon/common/formfile.h>
#include <zelkon/data/connection.h>
#include <zelkon/query/filtercondition.h>

#include <QApplication>
#include <QFileDialog>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QSplitter>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlQueryModel>
#include <QStatusBar>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

MainWindow::MainWindow(const QString &databasePath, QWidget *parent)
    : QMainWindow(parent)
    , m_databasePath(databasePath)
    , m_connection(new zelkon::Connection(this))
    , m_form(new FilterForm)
    , m_condition(new QPlainTextEdit)
    , m_rows(new QTableView)
    , m_model(new QSqlQueryModel(this))
    , m_count(new QLabel)
    , m_options(new ResultOptions)
{
    setWindowTitle(tr("Zelkon demo: orders filter"));
    // A database that cannot be opened or read leaves the lists empty but the window in use: the
    // user is told in the status bar, and each filter then shows the database's own message.
    QString databaseProblem;
    try {
        // Braces keep a path with ';' in it one value.
        m_connection->Open(
            QStringLiteral("Driver=QSQLITE;Database={%1};Options=QSQLITE_OPEN_READONLY;")
                .arg(databasePath));
    } catch (const zelkon::Error &e) {
        databaseProblem = e.message();
    }

    QMenu *file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("&Open form..."), QKeySequence::Open, this, &MainWindow::openFormFile);
    file->addAction(tr("&Save form..."), QKeySequence::Save, this, &MainWindow::saveFormFile);
    file->addSeparator();
    file->addAction(tr("&Quit"), QKeySequence::Quit, qApp, &QApplication::quit);
    addEditPropertiesMenu(menuBar(), m_form);

    m_form->createControls();
    try {
        m_form->fillFromDatabase(m_connection);
    } catch (const zelkon::Error &e) {
        databaseProblem = e.message();
    }
    auto *formArea = new QScrollArea;
    formArea->setWidget(m_form);
    formArea->setWidgetResizable(false);
    m_form->resize(m_form->sizeHint());

    m_condition->setReadOnly(true);
    m_condition->setObjectName(QStringLiteral("condition"));
    m_condition->setAccessibleName(tr("SQL condition"));
    m_condition->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_condition->setMaximumHeight(m_condition->fontMetrics().height() * 6);
    m_rows->setModel(m_model);
    m_rows->setAccessibleName(tr("Selected orders"));
    m_rows->horizontalHeader()->setStretchLastSection(true);
    m_rows->verticalHeader()->hide();

    auto *apply = new QPushButton(tr("&Apply filter"));
    connect(apply, &QPushButton::clicked, this, &MainWindow::applyFilter);
    auto *bottom = new QWidget;
    auto *bottomLayout = new QVBoxLayout(bottom);
    bottomLayout->setContentsMargins(0, 0, 0, 0);
    auto *actions = new QHBoxLayout;
    actions->addWidget(apply);
    actions->addWidget(m_options);
    // A preset is the form's state under the filter's name; relative dates move with the day.
    auto *savePreset = new QPushButton(tr("Save p&reset"));
    savePreset->setObjectName(QStringLiteral("savePreset"));
    connect(savePreset, &QPushButton::clicked, this, [this] {
        const QString name = m_options->filterName();
        if (name.isEmpty())
            return statusBar()->showMessage(tr("Name the filter to save it as a preset"), 5000);
        m_form->savePreset(name);
        statusBar()->showMessage(tr("Saved preset %1").arg(name), 5000);
    });
    auto *restorePreset = new QPushButton(tr("Res&tore preset"));
    restorePreset->setObjectName(QStringLiteral("restorePreset"));
    connect(restorePreset, &QPushButton::clicked, this, [this] {
        const QString name = m_options->filterName();
        statusBar()->showMessage(m_form->restorePreset(name) ? tr("Restored preset %1").arg(name)
                                                             : tr("No preset %1").arg(name),
                                 5000);
    });
    actions->addWidget(savePreset);
    actions->addWidget(restorePreset);
    actions->addStretch();
    bottomLayout->addLayout(actions);
    bottomLayout->addWidget(m_condition);
    bottomLayout->addWidget(m_count);
    bottomLayout->addWidget(m_rows, 1);

    auto *splitter = new QSplitter(Qt::Vertical);
    splitter->addWidget(ResultOptions::foldingPanel(formArea, tr("Filter")));
    splitter->addWidget(bottom);
    splitter->setStretchFactor(1, 1);
    setCentralWidget(splitter);
    statusBar()->showMessage(tr("Sample database: %1").arg(databasePath));
    if (!databaseProblem.isEmpty())
        statusBar()->showMessage(tr("The database cannot be read: %1").arg(databaseProblem));

    // Changes are gathered and applied once the event loop is idle again.
    auto *pending = new QTimer(this);
    pending->setSingleShot(true);
    pending->setInterval(0);
    connect(pending, &QTimer::timeout, this, &MainWindow::applyFilter);
    connect(m_form, &FilterForm::filterChanged, pending, qOverload<>(&QTimer::start));
    connect(m_options, &ResultOptions::sortChanged, pending, qOverload<>(&QTimer::start));
    resize(qMax(900, m_form->sizeHint().width() + 40), 680);
    applyFilter();
    new ColumnChooser(menuBar(), m_rows);
}

MainWindow::~MainWindow()
{
    m_model->clear();
}

void MainWindow::applyFilter()
{
    QSqlDatabase db = m_connection->database();
    // The form's controls give the condition; its values are bound, never written into the text.
    const zelkon::FilterCondition condition = m_form->query().build(db.driver());
    m_condition->setPlainText(FilterForm::describe(condition));
    const QString where
        = condition.isEmpty() ? QString() : QStringLiteral("WHERE ") + condition.where();

    const QString select = QStringLiteral(
        "SELECT o.id AS \"Order\", o.order_date AS \"Date\", c.name AS \"Customer\", "
        "r.name AS \"Region\", p.name AS \"Product\", o.quantity AS \"Qty\", o.total AS \"Total\" "
        "FROM orders o JOIN customers c ON c.id = o.customer_id "
        "JOIN regions r ON r.id = c.region_id JOIN products p ON p.id = o.product_id ");
    QSqlQuery count(db);
    count.prepare(
        QStringLiteral("SELECT COUNT(*) FROM orders o JOIN customers c ON c.id = o.customer_id "
                       "JOIN products p ON p.id = o.product_id ")
        + where);
    condition.bindValues(count);
    if (count.exec() && count.next())
        m_count->setText(tr("%n order(s) match", nullptr, count.value(0).toInt()));
    else
        m_count->setText(count.lastError().text());

    QSqlQuery query(db);
    query.prepare(select + where
                  + QStringLiteral(" ORDER BY %1 LIMIT 1000").arg(m_options->orderBy()));
    condition.bindValues(query);
    query.exec();
    m_model->setQuery(std::move(query));
}

void MainWindow::saveFormFile()
{
    const QString name = m_options->filterName();
    const QString path = QFileDialog::getSaveFileName(
        this, tr("Save form"), name.isEmpty() ? QString() : name + QStringLiteral(".zform"),
        tr("Zelkon forms (*.zform)"));
    if (path.isEmpty())
        return;
    try {
        zelkon::saveForm(*m_form, path);
        statusBar()->showMessage(tr("Saved %1").arg(path), 5000);
    } catch (const zelkon::Error &e) {
        QMessageBox::warning(this, tr("Save form"), e.message());
    }
}

void MainWindow::openFormFile()
{
    const QString path = QFileDialog::getOpenFileName(this, tr("Open form"), QString(),
                                                      tr("Zelkon forms (*.zform)"));
    if (path.isEmpty())
        return;
    try {
        // Loaded aside first, so that a damaged file leaves the form as it is.
        QWidget staging;
        const QList<zelkon::Control *> loaded = zelkon::loadForm(staging, path);
        m_form->adoptControls(loaded);
        m_form->fillFromDatabase(m_connection);
        applyFilter();
        statusBar()->showMessage(tr("Opened %1").arg(path), 5000);
    } catch (const zelkon::Error &e) {
        QMessageBox::warning(this, tr("Open form"), e.message());
    }
}
