#ifndef GUI_ANNUALIZEHTSDLG_H
#define GUI_ANNUALIZEHTSDLG_H

#include <memory>

#include <QMainWindow>
#include <QString>

class AnnualizeHts;
class QLineEdit;
struct ReportNames;

QT_BEGIN_NAMESPACE
namespace Ui {
class AnnualizeHtsDlg;
}
QT_END_NAMESPACE

namespace UtilsNS {
class MessageViewer;
}

// The main window: takes the three paths and the month that each year ends with, and converts on
// the main thread. It owns the diagnostics window, which shows what is logged from the window's
// construction on, and deletes it when it is closed itself.
//
// A closed window is not meant to be shown again: it would have no diagnostics window.
class AnnualizeHtsDlg : public QMainWindow
{
    Q_OBJECT

public:
    // `engine` is not owned and must outlive the window. Sets the logger's level to Trace.
    explicit AnnualizeHtsDlg(AnnualizeHts* engine, QWidget* parent = nullptr);
    ~AnnualizeHtsDlg() override;

    // URL of the help page of a program in the folder, which is not percent-encoded. A URL with
    // white space is in double quotes, so that it remains one command-line parameter.
    static QString helpPageUrl(const QString& programFolder);

protected:
    void closeEvent(QCloseEvent* event) override;

private Q_SLOTS:
    void sourceSelectHandler(bool);
    void resultSelectHandler(bool);
    void controlSelectHandler(bool);
    void okButtonHandler(bool);
    void cancelButtonHandler(bool);
    void helpButtonHandler(bool);
    void diagButtonHandler(bool);

private:
    struct FileDialogTexts;
    struct Paths;
    struct Failure;

    void fillMonthList();
    void connectButtons();
    void addHelpKey(QWidget* window);
    void takeDroppedAndPastedPaths();
    void createDiagnosticsWindow();
    void selectFile(const FileDialogTexts& texts, QLineEdit* lineEdit);
    Failure readPaths(Paths& paths) const;
    static void showFailure(const Failure& failure, QWidget* parent);
    Failure convert();
    Failure readSourcePaths(ReportNames& names) const;
    Failure checkSource();
    Failure saveReport();

    std::unique_ptr<Ui::AnnualizeHtsDlg> m_form;
    AnnualizeHts* m_engine;
    QString m_lastDirectory; // of the file that was selected last, for any of the three
    std::unique_ptr<UtilsNS::MessageViewer> m_diagnostics;
};

#endif // GUI_ANNUALIZEHTSDLG_H
