// MainWindow: the demo host: a filter form, the condition it builds and the rows it selects.
#pragma once

#include <QMainWindow>

class FilterForm;
class ResultOptions;
namespace zelkon {
class Connection;
}
class QPlainTextEdit;
class QSqlQueryModel;
class QTableView;
class QLabel;

class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit MainWindow(const QString &databasePath, QWidget *parent = nullptr);
    ~MainWindow() override;

    void applyFilter();

private:
    void saveFormFile();
    void openFormFile();

    QString m_databasePath;
    zelkon::Connection *m_connection;
    FilterForm *m_form;
    QPlainTextEdit *m_condition;
    QTableView *m_rows;
    QSqlQueryModel *m_model;
    QLabel *m_count;
    ResultOptions *m_options;
};
