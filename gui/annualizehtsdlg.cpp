#include "gui/annualizehtsdlg.h"

#include <algorithm>

#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QShortcut>

#include "QsLog.h"
#include "annualize/annualizehts.h"
#include "annualize/convertfiles.h"
#include "annualize/months.h"
#include "check/reportlines.h"
#include "gui/applicationicon.h"
#include "gui/filedrop.h"
#include "gui/messageviewer.h"
#include "gui/pathpaste.h"
#include "gui/sourcecheck.h"
#include "gui/sourcereport.h"
#include "gui/warningbox.h"
#include "report/filereport.h"
#include "ui_annualizehtsdlg.h"
#include "utils/checkedfile.h"
#include "utils/envvars.h"
#include "utils/fileroles.h"
#include "utils/helpurl.h"
#include "utils/messagewatcher.h"
#include "utils/verboselogging.h"

namespace {

// The window's own version; the one that the command line prints differs on purpose.
constexpr int kMajorVersion = 1;
constexpr int kMinorVersion = 1;

constexpr int kDecemberIndex = 11;

const QLatin1String kHtsFilters("HTS Files (*.hts);;All Files (*)");
const QLatin1String kAllFilter("All Files (*)");
const QLatin1String kHtmlFilters("HTML Files (*.html);;All Files (*)");

const QLatin1String kIncompleteTitle("Incomplete Information");
const QLatin1String kInformationTitle("Information Error");
const QLatin1String kConfigurationTitle("Annualizer Configuration Error");
const QLatin1String kConversionTitle("Annualize HTS Error");
const QLatin1String kSuccessTitle("Annualize HTS");
const QLatin1String kCheckTitle("Check HTS Error");
const QLatin1String kReportTitle("HTS Report Error");

const QLatin1String kIncomplete("Source, Result, or Control File name is not specified");
const QLatin1String
    kSourceNotSubstituted("Source HTS file environment variables could not be substituted");
const QLatin1String
    kResultNotSubstituted("Result HTS file environment variables could not be substituted");
const QLatin1String
    kControlNotSubstituted("Method control file environment variables could not be substituted");
const QLatin1String kNoSource("Source File name is not specified");
const QLatin1String kNoControl("Method Control File name is not specified");
const QLatin1String kSuccess("Annual HTS file successfully created!");

// Shows the wait cursor until it is destroyed.
class WaitCursor
{
public:
    WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

} // namespace

struct AnnualizeHtsDlg::FileDialogTexts
{
    QLatin1String caption;
    QLatin1String filters;
    QLatin1String selectedFilter;
};

struct AnnualizeHtsDlg::Paths
{
    QString source;
    QString result;
    QString control;

    // Fails when writing the result would destroy one of the other two.
    Status checkResult() const
    {
        const UtilsNS::FileRole sourceRole = {QStringLiteral("source HTS file"), source};
        const UtilsNS::FileRole controlRole = {QStringLiteral("method control file"), control};
        const UtilsNS::FileRole resultRole = {QStringLiteral("result HTS file"), result};
        return UtilsNS::checkFileRole(resultRole, {sourceRole, controlRole});
    }
};

// Why there was no conversion or check, and the title of the box that says so. An empty text means
// that nothing failed.
struct AnnualizeHtsDlg::Failure
{
    QString title;
    QString text;

    bool isNone() const { return text.isEmpty(); }
};

AnnualizeHtsDlg::AnnualizeHtsDlg(AnnualizeHts* engine, QWidget* parent)
    : QMainWindow(parent), m_form(std::make_unique<Ui::AnnualizeHtsDlg>()), m_engine(engine)
{
    Q_ASSERT(engine != nullptr);
    m_form->setupUi(this);
    setWindowTitle(QStringLiteral("HTS Annualizer (v%1.%2)")
                       .arg(QString::number(kMajorVersion), QString::number(kMinorVersion)));
    setApplicationIcon();
    fillMonthList();
    connectButtons();
    takeDroppedAndPastedPaths();
    createDiagnosticsWindow();
    UtilsNS::setVerboseLogging(true);
}

AnnualizeHtsDlg::~AnnualizeHtsDlg() = default;

void AnnualizeHtsDlg::fillMonthList()
{
    for (const QLatin1String month : kMonthNames)
        m_form->_endMonthComboBox->addItem(month);
    m_form->_endMonthComboBox->setCurrentIndex(kDecemberIndex);
}

void AnnualizeHtsDlg::connectButtons()
{
    const auto onClick = [this](QPushButton* button, void (AnnualizeHtsDlg::*handler)(bool)) {
        connect(button, &QPushButton::clicked, this, handler);
        button->setAutoDefault(
            true); // outside a QDialog, Return presses a focused button only then
    };
    onClick(m_form->_sourceHtsButton, &AnnualizeHtsDlg::sourceSelectHandler);
    onClick(m_form->_annualResultHtsButton, &AnnualizeHtsDlg::resultSelectHandler);
    onClick(m_form->_methodControlButton, &AnnualizeHtsDlg::controlSelectHandler);
    onClick(m_form->_okButton, &AnnualizeHtsDlg::okButtonHandler);
    onClick(m_form->_cancelButton, &AnnualizeHtsDlg::cancelButtonHandler);
    onClick(m_form->_helpButton, &AnnualizeHtsDlg::helpButtonHandler);
    onClick(m_form->_diagButton, &AnnualizeHtsDlg::diagButtonHandler);
    addHelpKey(this);
}

void AnnualizeHtsDlg::addHelpKey(QWidget* window)
{
    auto* shortcut = new QShortcut(QKeySequence(Qt::Key_F1), window);
    connect(shortcut, &QShortcut::activated, m_form->_helpButton, &QPushButton::click);
}

void AnnualizeHtsDlg::takeDroppedAndPastedPaths()
{
    for (QLineEdit* lineEdit : {m_form->_sourceHtsLineEdit, m_form->_methodControlLineEdit,
                                m_form->_annualResultHtsLineEdit}) {
        new UtilsNS::FileDrop(lineEdit);
        new UtilsNS::PathPaste(lineEdit);
    }
}

void AnnualizeHtsDlg::createDiagnosticsWindow()
{
    // Without a parent, so that either window can be in front of the other.
    const QStringList headerLabels = {tr("Diagnostic Messages")};
    m_diagnostics = std::make_unique<UtilsNS::MessageViewer>(headerLabels, nullptr);
    m_diagnostics->setWindowTitle(QStringLiteral("HTS Annualizer Diagnostics"));
    m_diagnostics->connectWatcher();
    const auto showing = [this](Failure (AnnualizeHtsDlg::*function)()) {
        return [this, function] {
            const Failure failure = (this->*function)();
            if (!failure.isNone())
                showFailure(failure, m_diagnostics.get());
        };
    };
    m_diagnostics->addCheckMenu(showing(&AnnualizeHtsDlg::checkSource),
                                showing(&AnnualizeHtsDlg::saveReport));
    addHelpKey(m_diagnostics.get());
}

void AnnualizeHtsDlg::sourceSelectHandler(bool)
{
    selectFile({QLatin1String("Source HTS File"), kHtsFilters, QLatin1String("HTS Files (*.hts)")},
               m_form->_sourceHtsLineEdit);
}

void AnnualizeHtsDlg::resultSelectHandler(bool)
{
    // The separator after the filter is there on purpose.
    selectFile({QLatin1String("Result Annual Hts File"), kHtsFilters,
                QLatin1String("HTS Files (*.hts);;")},
               m_form->_annualResultHtsLineEdit);
}

void AnnualizeHtsDlg::controlSelectHandler(bool)
{
    selectFile({QLatin1String("Method Control File"), kAllFilter, kAllFilter},
               m_form->_methodControlLineEdit);
}

// A dialog for saving, also for the files that are read: it accepts the name of a file that does
// not exist yet.
void AnnualizeHtsDlg::selectFile(const FileDialogTexts& texts, QLineEdit* lineEdit)
{
    QString selectedFilter = texts.selectedFilter;
    const QString name =
        QFileDialog::getSaveFileName(this, texts.caption, m_lastDirectory, texts.filters,
                                     &selectedFilter, QFileDialog::DontConfirmOverwrite);
    if (name.isEmpty())
        return;
    m_lastDirectory = QFileInfo(name).path();
    lineEdit->setText(name);
}

void AnnualizeHtsDlg::okButtonHandler(bool)
{
    const Failure failure = convert();
    if (!failure.isNone()) {
        showFailure(failure, nullptr);
        return;
    }
    QLOG_INFO() << "Annual HTs file successfully created\n";
    UtilsNS::showWarning(nullptr, kSuccessTitle, kSuccess); // a warning box too, on purpose
}

void AnnualizeHtsDlg::showFailure(const Failure& failure, QWidget* parent)
{
    QLOG_ERROR().noquote() << failure.text;
    UtilsNS::showWarning(parent, failure.title, failure.text);
}

AnnualizeHtsDlg::Failure AnnualizeHtsDlg::readPaths(Paths& paths) const
{
    const QString source = m_form->_sourceHtsLineEdit->text();
    const QString result = m_form->_annualResultHtsLineEdit->text();
    const QString control = m_form->_methodControlLineEdit->text();
    if (source.isEmpty() || result.isEmpty() || control.isEmpty())
        return {kIncompleteTitle, kIncomplete};
    // What is wrong with the references is deliberately not reported.
    if (!UtilsNS::substituteEnvVars(source, paths.source).ok())
        return {kInformationTitle, kSourceNotSubstituted};
    if (!UtilsNS::substituteEnvVars(result, paths.result).ok())
        return {kInformationTitle, kResultNotSubstituted};
    if (!UtilsNS::substituteEnvVars(control, paths.control).ok())
        return {kInformationTitle, kControlNotSubstituted};
    return {};
}

AnnualizeHtsDlg::Failure AnnualizeHtsDlg::convert()
{
    Paths paths;
    Failure failure = readPaths(paths);
    if (!failure.isNone())
        return failure;

    UtilsNS::CheckedFile sourceFile(paths.source);
    if (!sourceFile.open(QIODevice::ReadOnly | QIODevice::Text | QIODevice::Unbuffered))
        return {kConfigurationTitle, sourceFile.errorString()};
    Status status = m_engine->setControlFile(paths.control);
    if (status.ok())
        status = paths.checkResult();
    if (!status.ok())
        return {kConfigurationTitle, status.message};

    UtilsNS::CheckedFile resultFile(paths.result);
    if (!resultFile.open(QIODevice::WriteOnly | QIODevice::Text))
        return {kConfigurationTitle, resultFile.errorString()};
    status = m_engine->setEndMonth(m_form->_endMonthComboBox->currentIndex() + 1);
    if (!status.ok())
        return {kConfigurationTitle, status.message};

    const WaitCursor waitCursor;
    status = convertFiles(*m_engine, sourceFile, resultFile);
    return {kConversionTitle, status.message};
}

// Without the result file.
AnnualizeHtsDlg::Failure AnnualizeHtsDlg::readSourcePaths(ReportNames& names) const
{
    const QString source = m_form->_sourceHtsLineEdit->text();
    const QString control = m_form->_methodControlLineEdit->text();
    if (source.isEmpty())
        return {kIncompleteTitle, kNoSource};
    if (!UtilsNS::substituteEnvVars(source, names.file).ok())
        return {kInformationTitle, kSourceNotSubstituted};
    if (!UtilsNS::substituteEnvVars(control, names.control).ok())
        return {kInformationTitle, kControlNotSubstituted};
    return {};
}

// A control file is needed only for what is said about methods.
AnnualizeHtsDlg::Failure AnnualizeHtsDlg::checkSource()
{
    ReportNames names;
    Failure failure = readSourcePaths(names);
    if (!failure.isNone())
        return failure;
    UtilsNS::CheckedFile file(names.file);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text | QIODevice::Unbuffered))
        return {kConfigurationTitle, file.errorString()};
    const WaitCursor waitCursor;
    const int endMonth = m_form->_endMonthComboBox->currentIndex() + 1;
    return {kCheckTitle, UtilsNS::checkSource(file, names, endMonth, *m_diagnostics).message};
}

AnnualizeHtsDlg::Failure AnnualizeHtsDlg::saveReport()
{
    ReportNames names;
    Failure failure = readSourcePaths(names);
    if (!failure.isNone())
        return failure;
    if (names.control.isEmpty())
        return {kIncompleteTitle, kNoControl};
    const QFileInfo source(names.file);
    const QString path = QFileDialog::getSaveFileName(
        m_diagnostics.get(), tr("Save Report"),
        source.path() + QLatin1Char('/') + source.completeBaseName() + QLatin1String(".html"),
        kHtmlFilters);
    if (path.isEmpty())
        return {};
    ReportRequest request;
    request.controlPath = names.control;
    request.endMonth = m_form->_endMonthComboBox->currentIndex() + 1;
    request.program = QStringLiteral("HTS Annualizer %1.%2")
                          .arg(QString::number(kMajorVersion), QString::number(kMinorVersion));
    request.written = QDateTime::currentDateTimeUtc();
    const WaitCursor waitCursor;
    return {kReportTitle, UtilsNS::saveReport(names.file, request, path).message};
}

void AnnualizeHtsDlg::cancelButtonHandler(bool)
{
    close();
}

QString AnnualizeHtsDlg::helpPageUrl(const QString& programFolder)
{
    const QString url = QStringLiteral("file:///%1/Help/HtsAnnualizerHelp.html").arg(programFolder);
    const auto isSpace = [](QChar c) { return c.isSpace(); };
    const bool hasSpace = std::any_of(url.begin(), url.end(), isSpace);
    return hasSpace ? QStringLiteral("\"%1\"").arg(url) : url;
}

void AnnualizeHtsDlg::helpButtonHandler(bool)
{
    const QString url = helpPageUrl(QCoreApplication::applicationDirPath());
    QLOG_INFO().noquote() << QStringLiteral("Opening help file %1").arg(url);
    static_cast<void>(UtilsNS::openHelpUrl(url)); // always succeeds
}

void AnnualizeHtsDlg::diagButtonHandler(bool)
{
    if (m_diagnostics == nullptr)
        return;
    m_diagnostics->setWindowState(m_diagnostics->windowState() & ~Qt::WindowMinimized);
    m_diagnostics->show();
    m_diagnostics->raise();
    m_diagnostics->activateWindow();
}

void AnnualizeHtsDlg::closeEvent(QCloseEvent* event)
{
    m_diagnostics.reset();
    QMainWindow::closeEvent(event);
}
