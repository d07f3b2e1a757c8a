#include "src/export/printedpdf.h"

#include "support/support.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>
#include <QPrinter>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// Output of a program that has to succeed without a warning; empty otherwise.
QByteArray Output_Of(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    const bool succeeded = process.waitForFinished() && process.exitCode() == 0;
    return succeeded && process.readAllStandardError().isEmpty() ? process.readAllStandardOutput()
                                                                 : QByteArray();
}

/// Title and page number of each bookmark, as qpdf reads them.
QStringList Bookmarks(const QString& path)
{
    const QByteArray json = Output_Of("qpdf", {"--json", "--json-key=outlines", path});
    const QJsonArray outlines = QJsonDocument::fromJson(json).object()["outlines"].toArray();
    QStringList bookmarks;
    for (const QJsonValue& outline : outlines)
        bookmarks += outline["title"].toString() + ": " +
                     QString::number(outline["destpageposfrom1"].toInt());
    return bookmarks;
}

} // namespace

/// PDF files of Qt's printer.
class TestPrintedPdf : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> d_folder;
    QString d_path;

    void Print(int page_count) const
    {
        QPrinter printer;
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(d_path);
        QPainter painter(&printer);
        for (int number = 1; number <= page_count; ++number) {
            if (number > 1)
                printer.newPage();
            painter.drawText(100, 100, QString::number(number));
        }
    }

private slots:
    void init()
    {
        d_folder = std::make_unique<QTemporaryDir>();
        d_path = d_folder->filePath("file.pdf");
    }

    void a_file_is_complete_if_its_table_is_at_the_offset_named_at_its_end_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<bool>("complete");
        const QByteArray body = "%PDF-1.4\nbody\n";
        const QByteArray table = "xref\n0 1\ntrailer\n";
        const QByteArray end = "startxref\n14\n%%EOF\n";
        QTest::newRow("whole") << body + table + end << true;
        QTest::newRow("empty") << QByteArray() << false;
        QTest::newRow("no end mark") << body + table + "startxref\n14\n" << false;
        QTest::newRow("end mark cut") << body + table + "startxref\n14\n%%EO" << false;
        QTest::newRow("a gap in the body") << body.mid(3) + table + end << false;
        QTest::newRow("end mark alone") << QByteArray("%%EOF\n") << false;
        QTest::newRow("offset past the end") << body + table + "startxref\n99999\n%%EOF\n" << false;
        QTest::newRow("no number") << body + table + "startxref\nxx\n%%EOF\n" << false;
        QTest::newRow("negative offset") << body + table + "startxref\n-14\n%%EOF\n" << false;
    }
    void a_file_is_complete_if_its_table_is_at_the_offset_named_at_its_end()
    {
        QFETCH(QByteArray, content);
        Support::Write_File(d_path, content);
        QTEST(PrintedPdf::Is_Complete(d_path), "complete");
    }

    void each_bookmark_leads_to_its_page_data()
    {
        QTest::addColumn<QStringList>("titles");
        QTest::newRow("one") << QStringList{"Cover"};
        QTest::newRow("three") << QStringList{"Cover", "(Plan) \\ <1>", "Last"};
        QTest::newRow("other scripts")
            << QStringList{QString::fromUtf8("Größe"), QString::fromUtf8("漏水 😀")};
    }
    void each_bookmark_leads_to_its_page()
    {
        QFETCH(const QStringList, titles);
        Print(3);
        const QByteArray before = Support::Read_File(d_path);
        QVERIFY(PrintedPdf::Add_Bookmarks(d_path, titles));
        QVERIFY(Support::Read_File(d_path).startsWith(before));
        QVERIFY(PrintedPdf::Is_Complete(d_path));
        QVERIFY(!Output_Of("qpdf", {"--check", d_path}).isEmpty());
        QStringList expected;
        for (const QString& title : titles)
            expected += title + ": " + QString::number(expected.size() + 1);
        QCOMPARE(Bookmarks(d_path), expected);
        QVERIFY(Output_Of("pdfinfo", {d_path}).contains("Pages:           3\n"));
    }

    void hundreds_of_pages_get_bookmarks()
    {
        constexpr int count = 700;
        Print(count);
        QStringList titles;
        for (int number = 1; number <= count; ++number)
            titles += QStringLiteral("Page %1").arg(number);
        QVERIFY(PrintedPdf::Add_Bookmarks(d_path, titles));
        const QStringList bookmarks = Bookmarks(d_path);
        QCOMPARE(bookmarks.size(), count);
        QCOMPARE(bookmarks.last(), QStringLiteral("Page 700: 700"));
    }

    void there_are_no_more_bookmarks_than_pages()
    {
        Print(2);
        const QByteArray before = Support::Read_File(d_path);
        QVERIFY(!PrintedPdf::Add_Bookmarks(d_path, {"a", "b", "c"}));
        QCOMPARE(Support::Read_File(d_path), before);
    }

    void a_file_of_another_form_gets_no_bookmarks_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("truncated") << QByteArray("%PDF-1.4\n");
        QTest::newRow("no catalogue")
            << QByteArray("%PDF-1.4\nbody\nxref\n0 1\n0000000000 65535 f \ntrailer\n<<\n/Size "
                          "1\n>>\nstartxref\n14\n%%EOF\n");
        QTest::newRow("no trailer")
            << QByteArray("%PDF-1.4\nbody\nxref\n0 1\nstartxref\n14\n%%EOF\n");
    }
    void a_file_of_another_form_gets_no_bookmarks()
    {
        QFETCH(const QByteArray, content);
        Support::Write_File(d_path, content);
        QVERIFY(!PrintedPdf::Add_Bookmarks(d_path, {"a"}));
        QCOMPARE(Support::Read_File(d_path), content);
    }
};

QTEST_MAIN(TestPrintedPdf)
#include "test_printedpdf.moc"
