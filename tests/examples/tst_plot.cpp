// The recipes of examples/plot: what they draw of the examples and of a small file.

#include <QDate>
#include <QImage>
#include <QRegularExpression>
#include <QtTest>

#include "tests/app/annualizerrun.h"
#include "tests/support/testmain.h"

namespace {

constexpr QRgb kInput = qRgb(0x56, 0xB4, 0xE9);
constexpr QRgb kAnnual = qRgb(0xD5, 0x5E, 0x00);
constexpr QRgb kFirstBar = qRgb(0x00, 0x72, 0xB2);
constexpr QRgb kSecondBar = qRgb(0xE6, 0x9F, 0x00);

const QString kGnuplot = QStringLiteral("\"$EXAMPLES/plot/plot-gnuplot\" ");
// Debian's Python is the one that has the packages.
const QString kPython = QStringLiteral("/usr/bin/python3 \"$EXAMPLES/plot/plot.py\" ");

// The picture "plot.png" that a recipe makes.
struct Plot : AnnualizerRun
{
    Plot();

    // Converts "a.hts" with "c.txt" to "annual.hts".
    void convert(const QString& endMonth);
    QImage picture() const;
};

Plot::Plot()
{
    environment.insert(QStringLiteral("EXAMPLES"), QStringLiteral(EXAMPLES_DIR));
    environment.insert(QStringLiteral("HTSTOOL"), QStringLiteral(HTSTOOL));
    // Both keep a list of fonts there, which takes seconds to make.
    static const QTemporaryDir home;
    environment.insert(QStringLiteral("HOME"), home.path());
}

void Plot::convert(const QString& endMonth)
{
    start({QStringLiteral("-i"), QStringLiteral("a.hts"), QStringLiteral("-c"),
           QStringLiteral("c.txt"), QStringLiteral("-o"), QStringLiteral("annual.hts"),
           QStringLiteral("-y"), endMonth});
}

QImage Plot::picture() const
{
    return QImage(path(QStringLiteral("plot.png"))).convertToFormat(QImage::Format_RGB32);
}

// Three years of weeks that end on Saturdays.
QByteArray weeklyFile()
{
    const int count = 157;
    const QDate first(2000, 10, 7);
    const auto end = [&](int week) {
        const QDate day = first.addDays(7 * week);
        return QStringLiteral("%1-%2-%3 24:00").arg(day.year()).arg(day.month()).arg(day.day());
    };
    QString text = QStringLiteral("name:w\nowner:w\ndescription:w\ncreate_date:2015-3-31 24:00\n"
                                  "number_of_runs:1\nEND_PACKAGE_PREAMBLE\nstart:%1\nend:%2\n"
                                  "time_step_unit:week\nunit_quantity:1\ntime_steps:%3\n"
                                  "consecutive:1\nidx_sequential:1\nEND_RUN_PREAMBLE\n")
                       .arg(end(0), end(count - 1))
                       .arg(count);
    for (int week = 0; week < count; ++week)
        text += end(week) + QLatin1Char('\n');
    text += QStringLiteral("object_type: Reservoir\nobject_name: Lake A\nslot_type: SeriesSlot\n"
                           "slot_name: Outflow\nEND_SLOT_PREAMBLE\nunits: cms\nscale: 1\n") +
            QStringLiteral("1.5\n").repeated(count) +
            QStringLiteral("END_COLUMN\nEND_SLOT\nEND_RUN\n");
    return text.toUtf8();
}

// Number of pixels of exactly this colour.
int count(const QImage& picture, QRgb colour)
{
    int pixels = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            pixels += picture.pixel(x, y) == colour ? 1 : 0;
    }
    return pixels;
}

// Where both recipes draw the first slot, below the title and above the other slots.
QImage firstPanel(const QImage& picture)
{
    constexpr int kTop = 40;
    constexpr int kHeight = 110;
    return picture.copy(0, kTop, picture.width(), kHeight);
}

} // namespace

class TestPlot : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void exampleIsDrawn_data();
    void exampleIsDrawn();
    void yearsOfTheCountsAreThoseOfTheResult_data();
    void yearsOfTheCountsAreThoseOfTheResult();
    void pictureIsTheSameEachTime_data();
    void pictureIsTheSameEachTime();
    void fileWithoutMissingValuesHasNoBars_data();
    void fileWithoutMissingValuesHasNoBars();
    void eachRunHasItsOwnPicture_data();
    void eachRunHasItsOwnPicture();
    void inputThatIsNotThereIsAnError_data();
    void inputThatIsNotThereIsAnError();
    void runThatIsNotThereIsAnError_data();
    void runThatIsNotThereIsAnError();
    void resultOfAnotherInputIsAnError_data();
    void resultOfAnotherInputIsAnError();
    void oddSlotsAreDrawn_data();
    void oddSlotsAreDrawn();
    void twinsAreRefused_data();
    void twinsAreRefused();
    void wrongUseIsAnError_data();
    void wrongUseIsAnError();
    void gnuplotWritesTheFormatOfTheName();
};

namespace {

void addRecipes()
{
    QTest::addColumn<QString>("recipe");
    QTest::newRow("gnuplot") << kGnuplot;
    QTest::newRow("python") << kPython;
}

const QString kArguments = QStringLiteral("a.hts annual.hts plot.png");

} // namespace

void TestPlot::exampleIsDrawn_data()
{
    QTest::addColumn<QString>("recipe");
    QTest::addColumn<QString>("example");
    QTest::addColumn<QString>("endMonth");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("hasSecondBar"); // more than one slot misses values

    const QString rivers = QStringLiteral("rivers_daily");
    const QString basins = QStringLiteral("basins_monthly");
    const QString september = QStringLiteral("9");
    const QString december = QStringLiteral("12");
    QTest::newRow("gnuplot, days") << kGnuplot << rivers << september << QSize(900, 1000) << false;
    QTest::newRow("gnuplot, months") << kGnuplot << basins << december << QSize(900, 1480) << true;
    QTest::newRow("python, days") << kPython << rivers << september << QSize(900, 950) << false;
    QTest::newRow("python, months") << kPython << basins << december << QSize(900, 1400) << true;
}

void TestPlot::exampleIsDrawn()
{
    QFETCH(QString, recipe);
    QFETCH(QString, example);
    QFETCH(QString, endMonth);
    QFETCH(QSize, size);
    QFETCH(bool, hasSecondBar);

    Plot plot;
    // There the day after the first water year of the rivers began at one o'clock.
    plot.environment.insert(QStringLiteral("TZ"), QStringLiteral("America/Asuncion"));
    plot.startShell(QStringLiteral("ln -s \"$EXAMPLES/%1.hts\" a.hts; "
                                   "ln -s \"$EXAMPLES/%1_methods.txt\" c.txt")
                        .arg(example));
    plot.convert(endMonth);
    plot.startShell(recipe + kArguments);
    QCOMPARE(plot.errors, QByteArray());
    QCOMPARE(plot.output, QByteArray());
    QCOMPARE(plot.exitCode, 0);
    const QImage picture = plot.picture();
    QCOMPARE(picture.size(), size);
    QVERIFY(count(picture, kInput) > 100);
    QVERIFY(count(picture, kAnnual) > 1000);
    QVERIFY(count(picture, kFirstBar) > 100);
    QCOMPARE(count(picture, kSecondBar) > 0, hasSecondBar);
}

void TestPlot::yearsOfTheCountsAreThoseOfTheResult_data()
{
    QTest::addColumn<QString>("recipe");
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QString>("endMonth");
    const auto rows = [](const char* name, const QString& recipe) {
        QTest::addRow("%s, months", name) << recipe << monthlyFile() << QStringLiteral("9");
        QTest::addRow("%s, December", name) << recipe << monthlyFile() << QStringLiteral("12");
        // A year of weeks seldom ends with a month.
        QTest::addRow("%s, weeks", name) << recipe << weeklyFile() << QStringLiteral("9");
    };
    rows("gnuplot", kGnuplot);
    rows("python", kPython);
}

void TestPlot::yearsOfTheCountsAreThoseOfTheResult()
{
    QFETCH(QString, recipe);
    QFETCH(QByteArray, input);
    QFETCH(QString, endMonth);
    Plot plot;
    writeInputs(plot);
    plot.write(QStringLiteral("a.hts"), input);
    plot.convert(endMonth);
    QCOMPARE(plot.exitCode, 0);
    plot.startShell(QStringLiteral("printf '#!/bin/sh\necho \"$*\" >>calls\nexec \"%s\" \"$@\"\n' "
                                   "\"$HTSTOOL\" >tool; chmod +x tool; HTSTOOL=./tool ") +
                    recipe + kArguments);
    QCOMPARE(plot.exitCode, 0);
    const QString calls = QString::fromUtf8(plot.read(QStringLiteral("calls")));
    const QRegularExpression month(QStringLiteral("^check .*-y 0*(\\d+) "),
                                   QRegularExpression::MultilineOption);
    QCOMPARE(month.match(calls).captured(1), endMonth);
}

void TestPlot::pictureIsTheSameEachTime_data()
{
    addRecipes();
}

void TestPlot::pictureIsTheSameEachTime()
{
    QFETCH(QString, recipe);
    Plot plot;
    writeInputs(plot);
    plot.convert(QStringLiteral("12"));
    plot.startShell(recipe + kArguments);
    const QByteArray first = plot.read(QStringLiteral("plot.png"));
    QVERIFY(!plot.picture().isNull());
    plot.startShell(recipe + kArguments);
    QVERIFY(plot.read(QStringLiteral("plot.png")) == first);
}

void TestPlot::fileWithoutMissingValuesHasNoBars_data()
{
    addRecipes();
}

void TestPlot::fileWithoutMissingValuesHasNoBars()
{
    QFETCH(QString, recipe);
    Plot plot;
    writeInputs(plot);
    plot.convert(QStringLiteral("12"));
    plot.startShell(recipe + kArguments);
    QCOMPARE(plot.errors, QByteArray());
    QCOMPARE(plot.exitCode, 0);
    QVERIFY(count(plot.picture(), kAnnual) > 100);
    QCOMPARE(count(plot.picture(), kFirstBar), 0);
}

void TestPlot::eachRunHasItsOwnPicture_data()
{
    addRecipes();
}

void TestPlot::eachRunHasItsOwnPicture()
{
    QFETCH(QString, recipe);
    Plot plot;
    plot.startShell(QStringLiteral("ln -s \"$EXAMPLES/rivers_daily.hts\" a.hts; "
                                   "ln -s \"$EXAMPLES/rivers_daily_methods.txt\" c.txt"));
    plot.convert(QStringLiteral("9"));
    plot.startShell(recipe + kArguments);
    const QImage first = plot.picture();
    plot.startShell(recipe + kArguments + QStringLiteral(" 2"));
    QCOMPARE(plot.errors, QByteArray());
    QCOMPARE(plot.exitCode, 0);
    QCOMPARE(plot.picture().size(), first.size());
    QVERIFY(firstPanel(plot.picture()) != firstPanel(first));
}

void TestPlot::inputThatIsNotThereIsAnError_data()
{
    addRecipes();
}

void TestPlot::inputThatIsNotThereIsAnError()
{
    QFETCH(QString, recipe);
    Plot plot;
    plot.startShell(recipe + kArguments);
    QCOMPARE(plot.errors, QByteArray("htstool: a.hts: No such file or directory\n"));
    QCOMPARE(plot.exitCode, 1);
    QVERIFY(!plot.exists(QStringLiteral("plot.png")));
}

void TestPlot::runThatIsNotThereIsAnError_data()
{
    addRecipes();
}

void TestPlot::runThatIsNotThereIsAnError()
{
    QFETCH(QString, recipe);
    Plot plot;
    writeInputs(plot);
    plot.convert(QStringLiteral("12"));
    plot.startShell(recipe + kArguments + QStringLiteral(" 2"));
    QVERIFY2(plot.errors.contains("a.hts"), plot.errors);
    QCOMPARE(plot.exitCode, 1);
    QVERIFY(!plot.exists(QStringLiteral("plot.png")));
}

void TestPlot::resultOfAnotherInputIsAnError_data()
{
    addRecipes();
}

void TestPlot::resultOfAnotherInputIsAnError()
{
    QFETCH(QString, recipe);
    Plot plot;
    writeInputs(plot);
    plot.convert(QStringLiteral("12"));
    plot.write(QStringLiteral("a.hts"), monthlyFile().replace("Lake A", "Lake B"));
    plot.startShell(recipe + kArguments);
    QCOMPARE(plot.errors, QByteArray("Lake A.Outflow is not in the input\n"));
    QCOMPARE(plot.exitCode, 1);
    QVERIFY(!plot.exists(QStringLiteral("plot.png")));
}

void TestPlot::oddSlotsAreDrawn_data()
{
    QTest::addColumn<QString>("recipe");
    QTest::addColumn<QByteArray>("object");
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<bool>("hasValues");
    QByteArray none = monthlyFile();
    for (int month = 1; month <= 24; ++month)
        none.replace('\n' + QByteArray::number(month) + ".000000000000", "\nNaN");
    QByteArray some = monthlyFile();
    for (int month = 1; month <= 24; month += 2)
        some.replace('\n' + QByteArray::number(month) + ".000000000000", "\nNaN");
    const auto rows = [&](const char* name, const QString& recipe) {
        QTest::addRow("%s, every second month", name) << recipe << QByteArray("A") << some << true;
        QTest::addRow("%s, no values", name) << recipe << QByteArray("A") << none << false;
        QTest::addRow("%s, for CSV", name) << recipe << QByteArray("a, \"b\" [c]") << some << true;
        QTest::addRow("%s, for a formula", name) << recipe << QByteArray("$\\b$ {") << some << true;
        QTest::addRow("%s, underscore", name) << recipe << QByteArray("_a") << some << true;
    };
    rows("gnuplot", kGnuplot);
    rows("python", kPython);
}

void TestPlot::oddSlotsAreDrawn()
{
    QFETCH(QString, recipe);
    QFETCH(QByteArray, object);
    QFETCH(QByteArray, input);
    QFETCH(bool, hasValues);
    Plot plot;
    plot.write(QStringLiteral("a.hts"), input.replace("Lake A", object));
    plot.write(QStringLiteral("c.txt"), "*.*: MaxNaN\n");
    plot.convert(QStringLiteral("12"));
    plot.startShell(QStringLiteral("mv a.hts ./-a.hts; ") + recipe +
                    QStringLiteral("-a.hts annual.hts plot.png"));
    QCOMPARE(plot.errors, QByteArray());
    QCOMPARE(plot.exitCode, 0);
    QCOMPARE(count(firstPanel(plot.picture()), kInput) > 10, hasValues);
    QCOMPARE(count(firstPanel(plot.picture()), kAnnual) > 100, hasValues);
    QVERIFY(count(plot.picture(), kFirstBar) > 100);
}

void TestPlot::twinsAreRefused_data()
{
    addRecipes();
}

void TestPlot::twinsAreRefused()
{
    QFETCH(QString, recipe);
    Plot plot;
    writeInputs(plot);
    QByteArray twins = monthlyFile();
    const int slot = twins.indexOf("object_type");
    const QByteArray copy = twins.mid(slot, twins.indexOf("END_RUN\n") - slot);
    plot.write(QStringLiteral("a.hts"), twins.insert(slot, copy));
    plot.convert(QStringLiteral("12"));
    plot.startShell(recipe + kArguments);
    QCOMPARE(plot.errors, QByteArray("two slots of the input are named Lake A.Outflow\n"));
    QCOMPARE(plot.exitCode, 1);
    QVERIFY(!plot.exists(QStringLiteral("plot.png")));
}

void TestPlot::wrongUseIsAnError_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QByteArray>("reason");
    const QString python = QStringLiteral("/usr/bin/python3 -S \"$EXAMPLES/plot/plot.py\" ");
    QTest::newRow("python, run") << kPython + kArguments + QStringLiteral(" abc")
                                 << QByteArray("RUN counts from 1: abc\n");
    QTest::newRow("python, format")
        << kPython + QStringLiteral("a.hts annual.hts plot.xyz")
        << QByteArray("plot.xyz: Format 'xyz' is not supported (supported formats: ");
    QTest::newRow("python, packages")
        << python + kArguments
        << QByteArray("No module named 'matplotlib'; it comes with the packages python3-pandas and "
                      "python3-matplotlib\n");
    QTest::newRow("gnuplot, format") << kGnuplot + QStringLiteral("a.hts annual.hts plot.xyz")
                                     << QByteArray("plot.xyz: PICTURE ends with .png, .svg or "
                                                   ".pdf\n");
}

void TestPlot::wrongUseIsAnError()
{
    QFETCH(QString, command);
    QFETCH(QByteArray, reason);
    Plot plot;
    writeInputs(plot);
    plot.convert(QStringLiteral("12"));
    plot.startShell(command);
    QVERIFY2(plot.errors.startsWith(reason), plot.errors);
    QCOMPARE(plot.errors.count('\n'), 1);
    QCOMPARE(plot.exitCode, 1);
}

void TestPlot::gnuplotWritesTheFormatOfTheName()
{
    Plot plot;
    writeInputs(plot);
    plot.write(QStringLiteral("a.hts"), weeklyFile());
    plot.convert(QStringLiteral("9"));
    plot.startShell(kGnuplot + QStringLiteral("a.hts annual.hts plot.svg"));
    QCOMPARE(plot.errors, QByteArray());
    const QByteArray picture = plot.read(QStringLiteral("plot.svg"));
    QVERIFY(picture.startsWith("<?xml"));
    for (const char* year : {">2001<", ">2002<", ">2003<"})
        QCOMPARE(picture.count(year), 2); // one label in each panel
}

HTS_TEST(TestPlot, QCoreApplication)

#include "tst_plot.moc"
