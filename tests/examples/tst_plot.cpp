// The recipes of examples/plot: what they draw of the examples and of small files.

#include <algorithm>

#include <QDate>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

#include "tests/app/annualizerrun.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

constexpr QRgb kInput = qRgb(0x56, 0xB4, 0xE9);
constexpr QRgb kAnnual = qRgb(0xD5, 0x5E, 0x00);
constexpr QRgb kBars[] = {qRgb(0x00, 0x72, 0xB2), qRgb(0xE6, 0x9F, 0x00), qRgb(0x00, 0x9E, 0x73),
                          qRgb(0xCC, 0x79, 0xA7)};

// Debian's Python is the one that has the packages.
const QString kPythonProgram = QStringLiteral("/usr/bin/python3");
const QString kPythonRecipe = QStringLiteral(EXAMPLES_DIR "/plot/plot.py");

enum Recipe { Gnuplot, Python };
constexpr Recipe kRecipes[] = {Gnuplot, Python};
constexpr const char* kNames[] = {"gnuplot", "python"};

// A folder with an input and its annual result, of which a recipe makes the picture "plot.png".
struct Plot : AnnualizerRun
{
    Plot()
    {
        // Both keep a list of fonts there, which takes seconds to make.
        static const QTemporaryDir home;
        environment.insert(QStringLiteral("HOME"), home.path());
        // There the day after the first water year of the rivers began at one o'clock.
        environment.insert(QStringLiteral("TZ"), QStringLiteral("America/Asuncion"));
        environment.insert(QStringLiteral("HTSTOOL"), QStringLiteral("./tool"));
        write(QStringLiteral("tool"),
              "#!/bin/sh\necho \"$*\" >>calls\nexec '" HTSTOOL "' \"$@\"\n");
        QFile::setPermissions(path(QStringLiteral("tool")), QFile::ReadOwner | QFile::ExeOwner);
    }

    // Writes the input and converts it.
    void prepare(const QByteArray& input, const char* endMonth = "12",
                 const QByteArray& rules = "*.*: MaxNaN\n")
    {
        write(QStringLiteral("a.hts"), input);
        write(QStringLiteral("c.txt"), rules);
        start(words("-i a.hts -c c.txt -o annual.hts -y") << QLatin1String(endMonth));
        QCOMPARE(exitCode, 0);
    }

    QImage picture() const
    {
        return QImage(path(QStringLiteral("plot.png"))).convertToFormat(QImage::Format_RGB32);
    }

    // The month that years end with for the check that counts the missing values.
    QString countedMonth() const
    {
        static const QRegularExpression month(QStringLiteral("^check .*-y 0*(\\d+) "),
                                              QRegularExpression::MultilineOption);
        return month.match(QString::fromUtf8(read(QStringLiteral("calls")))).captured(1);
    }
};

QByteArray example(const QString& name)
{
    return readFile(QStringLiteral(EXAMPLES_DIR "/") + name);
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

// The monthly file with every `step`th value missing, and with a slot for each of these objects.
QByteArray fileWithGaps(int step, const QByteArrayList& objects)
{
    QByteArray file = monthlyFile();
    for (int month = 1; month <= 24; month += step)
        file.replace('\n' + QByteArray::number(month) + ".000000000000", "\nNaN");
    const int slotBegin = file.indexOf("object_type: ");
    const int slotEnd = file.indexOf("END_RUN\n");
    QByteArray allSlots;
    for (const QByteArray& object : objects)
        allSlots += file.mid(slotBegin, slotEnd - slotBegin).replace("Lake A", object);
    return file.replace(slotBegin, slotEnd - slotBegin, allSlots);
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

// Where the recipe draws a slot, below the title and the slots before it.
QImage panel(const QImage& picture, Recipe recipe, int slot)
{
    constexpr int kTop = 40;
    constexpr int kHeight = 110;
    const int pitch = recipe == Gnuplot ? 160 : 151;
    return picture.copy(0, kTop + slot * pitch, picture.width(), kHeight);
}

} // namespace

Q_DECLARE_METATYPE(Recipe)

class TestPlot : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void exampleIsDrawn_data()
    {
        QTest::addColumn<Recipe>("recipe");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("endMonth");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<bool>("hasSecondBar"); // more than one slot misses values
        QTest::addColumn<bool>("hasSecondRun");
        for (const Recipe recipe : kRecipes) {
            const bool isGnuplot = recipe == Gnuplot;
            QTest::addRow("%s, days", kNames[recipe])
                << recipe << QStringLiteral("rivers_daily") << QStringLiteral("9")
                << QSize(900, isGnuplot ? 1000 : 950) << false << true;
            QTest::addRow("%s, months", kNames[recipe])
                << recipe << QStringLiteral("basins_monthly") << QStringLiteral("12")
                << QSize(900, isGnuplot ? 1480 : 1400) << true << false;
        }
    }

    void exampleIsDrawn()
    {
        QFETCH(Recipe, recipe);
        QFETCH(QString, name);
        QFETCH(QString, endMonth);
        QFETCH(QSize, size);
        QFETCH(bool, hasSecondBar);
        QFETCH(bool, hasSecondRun);

        Plot plot;
        plot.prepare(example(name + QStringLiteral(".hts")), qPrintable(endMonth),
                     example(name + QStringLiteral("_methods.txt")));
        draw(plot, recipe);
        QCOMPARE(plot.ended(), QByteArray("exit 0"));
        const QImage picture = plot.picture();
        QCOMPARE(picture.size(), size);
        QVERIFY(count(picture, kInput) > 100);
        QVERIFY(count(picture, kAnnual) > 1000);
        QVERIFY(count(picture, kBars[0]) > 100);
        QCOMPARE(count(picture, kBars[1]) > 0, hasSecondBar);
        QCOMPARE(plot.countedMonth(), endMonth);

        if (hasSecondRun) {
            draw(plot, recipe, "a.hts annual.hts plot.png 2");
            QCOMPARE(plot.errors, QByteArray());
            QCOMPARE(plot.exitCode, 0);
            QCOMPARE(plot.picture().size(), size);
            QVERIFY(panel(plot.picture(), recipe, 0) != panel(picture, recipe, 0));
        }
    }

    void fileWithoutMissingValuesHasNoBars_data() { addRecipes(); }

    void fileWithoutMissingValuesHasNoBars()
    {
        QFETCH(Recipe, recipe);
        Plot plot;
        plot.prepare(monthlyFile());
        draw(plot, recipe);
        QCOMPARE(plot.errors, QByteArray());
        QCOMPARE(plot.exitCode, 0);
        QVERIFY(count(plot.picture(), kAnnual) > 100);
        QCOMPARE(count(plot.picture(), kBars[0]), 0);

        const QByteArray first = plot.read(QStringLiteral("plot.png"));
        draw(plot, recipe);
        QVERIFY(plot.read(QStringLiteral("plot.png")) == first);
    }

    void yearOfWeeksIsThatOfItsMonth_data() { addRecipes(); }

    // Its last day is seldom the last of a month.
    void yearOfWeeksIsThatOfItsMonth()
    {
        QFETCH(Recipe, recipe);
        Plot plot;
        plot.prepare(weeklyFile(), "9");
        draw(plot, recipe, "a.hts annual.hts plot.svg");
        QCOMPARE(plot.errors, QByteArray());
        QCOMPARE(plot.exitCode, 0);
        QCOMPARE(plot.countedMonth(), QStringLiteral("9"));
        const QByteArray picture = plot.read(QStringLiteral("plot.svg"));
        QVERIFY(picture.startsWith("<?xml"));
        for (const char* year : {">2001<", ">2002<", ">2003<"}) {
            if (recipe == Gnuplot)                // the other draws letters as lines
                QCOMPARE(picture.count(year), 2); // one label in each panel
        }
    }

    void oddSlotsAreDrawn_data()
    {
        addColumns<Recipe, QByteArrayList, bool>("recipe", "objects", "hasValues");
        for (const Recipe recipe : kRecipes) {
            // Plain, for CSV, for a formula, and what a legend leaves out.
            QTest::addRow("%s, every second month", kNames[recipe])
                << recipe << QByteArrayList{"A", "a, \"b\" [c]", "$\\b$ {", "_a"} << true;
            QTest::addRow("%s, no values", kNames[recipe])
                << recipe << QByteArrayList{"A"} << false;
        }
    }

    void oddSlotsAreDrawn()
    {
        QFETCH(Recipe, recipe);
        QFETCH(QByteArrayList, objects);
        QFETCH(bool, hasValues);
        Plot plot;
        plot.prepare(fileWithGaps(hasValues ? 2 : 1, objects));
        plot.startShell(QStringLiteral("mv a.hts ./-a.hts"));
        draw(plot, recipe, "-a.hts annual.hts plot.png");
        QCOMPARE(plot.errors, QByteArray());
        QCOMPARE(plot.exitCode, 0);
        for (int i = 0; i < objects.size(); ++i) {
            const QImage drawn = panel(plot.picture(), recipe, i);
            QCOMPARE(count(drawn, kInput) > 10, hasValues);
            QCOMPARE(count(drawn, kAnnual) > 100, hasValues);
            QVERIFY(count(plot.picture(), kBars[i]) > 100);
        }
    }

    void wrongUseIsAnError_data()
    {
        QTest::addColumn<Recipe>("recipe");
        QTest::addColumn<QByteArray>("input"); // empty if there is none
        QTest::addColumn<QByteArray>("arguments");
        QTest::addColumn<QByteArray>("reason"); // what its text begins with
        const QByteArray twins = fileWithGaps(25, {"Lake A", "Lake A"});
        const QByteArray other = fileWithGaps(25, {"Lake B"});
        const struct
        {
            const char* name;
            QByteArray input;
            const char* arguments;
            const char* reasons[2];
        } cases[] = {
            {"no input",
             {},
             "a.hts annual.hts plot.png",
             {"htstool: a.hts: No such file or directory\n",
              "htstool: a.hts: No such file or directory\n"}},
            {"no such run",
             monthlyFile(),
             "a.hts annual.hts plot.png 2",
             {"htstool: a.hts: The file has 1 runs; nothing is exported\n",
              "no values of run 2 in a.hts and annual.hts\n"}},
            {"run is no number",
             monthlyFile(),
             "a.hts annual.hts plot.png abc",
             {"htstool: \"abc\" is not the number of a run\nTry \"htstool --help\".\n",
              "RUN counts from 1: abc\n"}},
            {"another input",
             other,
             "a.hts annual.hts plot.png",
             {"Lake A.Outflow is not in the input\n", "Lake A.Outflow is not in the input\n"}},
            {"twins",
             twins,
             "a.hts annual.hts plot.png",
             {"two slots of the input are named Lake A.Outflow\n",
              "two slots of the input are named Lake A.Outflow\n"}},
            {"format",
             monthlyFile(),
             "a.hts annual.hts plot.xyz",
             {"plot.xyz: PICTURE ends with .png, .svg or .pdf\n",
              "plot.xyz: Format 'xyz' is not supported (supported formats: "}},
        };
        for (const auto& row : cases) {
            for (const Recipe recipe : kRecipes)
                QTest::addRow("%s, %s", kNames[recipe], row.name)
                    << recipe << row.input << QByteArray(row.arguments)
                    << QByteArray(row.reasons[recipe]);
        }
    }

    void wrongUseIsAnError()
    {
        QFETCH(Recipe, recipe);
        QFETCH(QByteArray, input);
        QFETCH(QByteArray, arguments);
        QFETCH(QByteArray, reason);
        Plot plot;
        plot.prepare(monthlyFile());
        plot.write(QStringLiteral("a.hts"), input);
        if (input.isEmpty())
            QFile::remove(plot.path(QStringLiteral("a.hts")));
        draw(plot, recipe, arguments);
        QVERIFY2(plot.errors.startsWith(reason), plot.errors);
        QCOMPARE(plot.errors.count('\n'), std::max(static_cast<int>(reason.count('\n')), 1));
        QCOMPARE(plot.exitCode, 1);
        QVERIFY(!plot.exists(QStringLiteral("plot.png")));
    }

    void pythonNamesItsPackages()
    {
        Plot plot;
        plot.startShell(kPythonProgram + QStringLiteral(" -S '") + kPythonRecipe +
                        QStringLiteral("' a.hts annual.hts plot.png"));
        QCOMPARE(plot.errors, QByteArray("No module named 'matplotlib'; it comes with the packages "
                                         "python3-pandas and python3-matplotlib\n"));
        QCOMPARE(plot.exitCode, 1);
    }

    void cleanupTestCase()
    {
        m_python.closeWriteChannel();
        m_python.waitForFinished();
    }

private:
    static void addRecipes()
    {
        QTest::addColumn<Recipe>("recipe");
        for (const Recipe recipe : kRecipes)
            QTest::newRow(kNames[recipe]) << recipe;
    }

    // Runs the recipe in the folder of the plot, as "RECIPE a.hts annual.hts plot.png" if not told
    // otherwise.
    void draw(Plot& plot, Recipe recipe, const char* arguments = "a.hts annual.hts plot.png")
    {
        QFile::remove(plot.path(QStringLiteral("plot.png")));
        if (recipe == Gnuplot) {
            plot.startShell(QStringLiteral("'" EXAMPLES_DIR "/plot/plot-gnuplot' ") +
                            QLatin1String(arguments));
            return;
        }
        if (m_python.state() == QProcess::NotRunning) {
            m_python.setProcessEnvironment(plot.environment);
            m_python.setProcessChannelMode(QProcess::ForwardedErrorChannel);
            m_python.start(
                kPythonProgram,
                {QStringLiteral(SOURCE_DIR "/tests/examples/plot_often.py"), kPythonRecipe});
        }
        const QJsonArray request =
            QJsonArray::fromStringList(QStringList(plot.path({})) + words(arguments));
        m_python.write(QJsonDocument(request).toJson(QJsonDocument::Compact) + '\n');
        while (!m_python.canReadLine())
            QVERIFY(m_python.waitForReadyRead());
        plot.exitCode = m_python.readLine().trimmed().toInt();
        plot.output = plot.read(QStringLiteral("output"));
        plot.errors = plot.read(QStringLiteral("errors"));
    }

    QProcess m_python; // plot_often.py
};

HTS_TEST(TestPlot, QCoreApplication)

#include "tst_plot.moc"
