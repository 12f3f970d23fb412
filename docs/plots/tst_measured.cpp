#include "measured.h"

#include <QTemporaryFile>
#include <QTest>

namespace {

Measured readContent(const QByteArray &content)
{
    QTemporaryFile file;
    if (!file.open() || file.write(content) != content.size() || !file.flush())
        throw DataError("the file was not written");
    return readMeasured(file.fileName());
}

} // namespace

class tst_Measured : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsRows();
    void namesTheFault_data();
    void namesTheFault();
    void namesAMissingFile();
};

void tst_Measured::readsRows()
{
    const Measured measured =
        readContent("# Nanoseconds.\n"
                    "# Measured on a machine.\n"
                    "text,box,words,ovelin,floor,loop,Pango,QTextDocument\n"
                    "Russian,4 lines of 400 px,20,47101,22511,35786,55195,26012\n"
                    "\n"
                    "endless Hebrew word,one line,2000,5,4,3,2,1\n");

    QCOMPARE(measured.origin, "Measured on a machine.");
    QCOMPARE(measured.rows,
             QList<Measurement>(
                 {{"Russian", "4 lines of 400 px", 20, {47101, 22511, 35786, 55195, 26012}},
                  {"endless Hebrew word", "one line", 2000, {5, 4, 3, 2, 1}}}));
}

void tst_Measured::namesTheFault_data()
{
    const QByteArray header = "text,box,words,ovelin,floor,loop,Pango,QTextDocument\n";
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("message");

    QTest::newRow("empty") << QByteArray() << "line 1: there are no times";
    QTest::newRow("no rows") << header << "line 2: there are no times";
    QTest::newRow("other columns")
        << QByteArray("# A comment.\ntext,box,words,ovelin,floor\n")
        << "line 2: the columns are not text,box,words,ovelin,floor,loop,Pango,QTextDocument";
    QTest::newRow("a field too few") << header + "Russian,4 lines,20,1,2,3,4\n"
                                     << "line 2: 7 fields instead of 8";
    QTest::newRow("a field too many")
        << header + "Russian,4 lines,20,1,2,3,4,5\nRussian,4 lines,20,1,2,3,4,5,6\n"
        << "line 3: 9 fields instead of 8";
    QTest::newRow("words as text") << header + "Russian,4 lines,many,1,2,3,4,5\n"
                                   << "line 2: words: \"many\" is not a number above 0";
    QTest::newRow("too many words") << header + "Russian,4 lines,3000000000,1,2,3,4,5\n"
                                    << "line 2: words: \"3000000000\" is not a number above 0";
    QTest::newRow("a time is missing") << header + "Russian,4 lines,20,1,2,3,,5\n"
                                       << "line 2: Pango: \"\" is not a number above 0";
    QTest::newRow("no time at all") << header + "Russian,4 lines,20,1,0,3,4,5\n"
                                    << "line 2: floor: \"0\" is not a number above 0";
    QTest::newRow("a negative time") << header + "Russian,4 lines,20,-1,2,3,4,5\n"
                                     << "line 2: ovelin: \"-1\" is not a number above 0";
    QTest::newRow("not a number") << header + "Russian,4 lines,20,1,2,nan,4,5\n"
                                  << "line 2: loop: \"nan\" is not a number above 0";
    QTest::newRow("an infinite time") << header + "Russian,4 lines,20,1,2,3,4,inf\n"
                                      << "line 2: QTextDocument: \"inf\" is not a number above 0";
}

void tst_Measured::namesTheFault()
{
    QFETCH(const QByteArray, content);
    QFETCH(const QString, message);

    try {
        readContent(content);
        QFAIL("nothing was found wrong");
    } catch (const DataError &error) {
        QCOMPARE(error.what(), message);
    }
}

void tst_Measured::namesAMissingFile()
{
    try {
        readMeasured("none.csv");
        QFAIL("a file was found");
    } catch (const DataError &error) {
        QCOMPARE(error.what(), "No such file or directory");
    }
}

QTEST_GUILESS_MAIN(tst_Measured)
#include "tst_measured.moc"
