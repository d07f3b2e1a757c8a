#include "support/inputfiles.h"
#include "support/project.h"
#include "support/support.h"
#include "support/tool.h"

#include <QFile>
#include <QProcess>
#include <QTest>
#include <QTransform>

using Support::TToolResult;

namespace {

const char* const ordinary = "0 0 100 50";
const char* const billions_of_pixels = "0 0 99999999999 99999999999";

} // namespace

/// Tests which files "create" turns into pages.
class TestCliInput : public Support::TToolTest
{
    Q_OBJECT

    TToolResult Create(const QStringList& arguments) const
    {
        return Run(QStringList{"create", "--output", "out"} + arguments);
    }

    /// A page as pdftoppm renders it.
    QByteArray Rendered(const QString& pdf, int page, int resolution) const
    {
        QProcess process;
        process.start("pdftoppm", {"-r", QString::number(resolution), "-png", "-f",
                                   QString::number(page), "-singlefile", Path(pdf), Path("page")});
        return process.waitForFinished() ? Content("page.png") : QByteArray();
    }

    /// A project with these pages, as a pair of name and image.
    static QByteArray Project(const QVector<QPair<QByteArray, QByteArray>>& pages)
    {
        QByteArray project = Support::Header(32, "#f79741", "", "", pages.size());
        for (const auto& page : pages)
            project += Support::Page_Record(page.first, page.second, Support::Item_List());
        return project;
    }

private slots:
    void pages_of_pdfs_and_images_are_in_the_given_order()
    {
        const QByteArray image = Support::Png(Support::Picture(60, 40));
        Write("a.png", image);
        Write("b.pdf", Support::Pdf({ordinary, "0 0 70 80.5"}));
        const TToolResult result = Create({"b.pdf", "a.png", "b.pdf"});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.status, 0);
        const QByteArray first = Rendered("b.pdf", 1, 150);
        const QByteArray second = Rendered("b.pdf", 2, 150);
        QVERIFY(!first.isEmpty() && first != second);
        QCOMPARE(Support::Byte_Difference(Content("out"), Project({{"Page 1", first},
                                                                   {"Page 2", second},
                                                                   {"Page 3", image},
                                                                   {"Page 4", first},
                                                                   {"Page 5", second}})),
                 QString());
    }

    void pages_are_chosen_from_each_pdf()
    {
        Write("a.pdf", Support::Pdf({ordinary, "0 0 70 80", "0 0 90 90"}));
        Write("b.pdf", Support::Pdf({"0 0 10 10", "0 0 20 20", "0 0 30 30"}));
        const TToolResult result =
            Create({"a.pdf", "b.pdf", "--pdf-pages", "3,1-2", "--dpi", "36", "--names-from-files"});
        QCOMPARE(result.errors, QString());
        QCOMPARE(
            Support::Byte_Difference(Content("out"), Project({{"a 3", Rendered("a.pdf", 3, 36)},
                                                              {"a 1", Rendered("a.pdf", 1, 36)},
                                                              {"a 2", Rendered("a.pdf", 2, 36)},
                                                              {"b 3", Rendered("b.pdf", 3, 36)},
                                                              {"b 1", Rendered("b.pdf", 1, 36)},
                                                              {"b 2", Rendered("b.pdf", 2, 36)}})),
            QString());
    }

    void pages_of_a_tiff_and_a_webp_become_pages()
    {
        const QVector<QImage> pictures{Support::Picture(40, 30), Support::Picture(50, 20)};
        Write("scan.tif", Support::Tiff(pictures));
        QVERIFY(Support::Picture(30, 30).save(Path("a.webp")));
        const QImage webp(Path("a.webp"));
        const TToolResult result = Create({"scan.tif", "a.webp", "--names-from-files"});
        QCOMPARE(result.errors, QString());
        const QImage rgb = QImage(Path("scan.tif"));
        QCOMPARE(Support::Difference(rgb, pictures[0]), QString());
        const QByteArray second = Support::Png(pictures[1].convertToFormat(rgb.format()));
        QCOMPARE(Support::Byte_Difference(Content("out"), Project({{"scan 1", Support::Png(rgb)},
                                                                   {"scan 2", second},
                                                                   {"a", Support::Png(webp)}})),
                 QString());
    }

    void a_folder_stands_for_its_images_and_pdfs_in_the_order_of_their_names()
    {
        QVERIFY(QDir(d_folder->path()).mkdir("images"));
        Write("images/10.TIF", Support::Tiff({Support::Picture(40, 30)}));
        QVERIFY(Support::Picture(30, 30).save(Path("images/1.webp")));
        Write("images/2.PDF", Support::Pdf({ordinary, "0 0 70 80"}));
        Write("images/notes.txt", "%PDF-1.4 is a format");
        const TToolResult result = Create({"images"});
        QCOMPARE(result.errors, QString());
        const QByteArray expected =
            Project({{"Page 1", Support::Png(QImage(Path("images/1.webp")))},
                     {"Page 2", Rendered("images/2.PDF", 1, 150)},
                     {"Page 3", Rendered("images/2.PDF", 2, 150)},
                     {"Page 4", Support::Png(QImage(Path("images/10.TIF")))}});
        QCOMPARE(Support::Byte_Difference(Content("out"), expected), QString());
    }

    void a_pdf_needs_no_suffix()
    {
        Write("report", Support::Pdf({ordinary}));
        const TToolResult result = Create({"report"});
        QCOMPARE(result.errors, QString());
        QCOMPARE(Content("out"), Project({{"Page 1", Rendered("report", 1, 150)}}));
    }

    void photos_are_turned_upright_unless_as_stored_is_given()
    {
        Write("a.jpg", Support::Exif_Jpeg(Support::Picture(40, 30), 6));
        const QImage stored(Path("a.jpg"));
        const QImage upright = stored.transformed(QTransform().rotate(90));
        QCOMPARE(upright.size(), QSize(30, 40));
        QCOMPARE(Create({"a.jpg", "--as-stored"}).errors, QString());
        QCOMPARE(
            Support::Byte_Difference(Content("out"), Project({{"Page 1", Support::Png(stored)}})),
            QString());
        QCOMPARE(Create({"a.jpg", "--force"}).errors, QString());
        QCOMPARE(
            Support::Byte_Difference(Content("out"), Project({{"Page 1", Support::Png(upright)}})),
            QString());
    }

    void a_refused_pdf_is_reported_and_nothing_is_written_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("pages");
        QTest::addColumn<QString>("defect");
        QTest::newRow("empty") << QByteArray() << "1"
                               << "pdfinfo failed: Syntax Error: Document stream is empty";
        QTest::newRow("page out of range") << Support::Pdf({ordinary}) << "1-2"
                                           << "page 2: does not exist; the file has 1 pages";
        QTest::newRow("second page too large")
            << Support::Pdf({ordinary, billions_of_pixels}) << "1-2"
            << "page 2: is larger than 500 megapixels at 150 dpi";
        QTest::newRow("damaged second page")
            << Support::Pdf({ordinary, ordinary}).replace("5 0 R", "99999") << "1-2"
            << "page 2: cannot be read";
    }
    void a_refused_pdf_is_reported_and_nothing_is_written()
    {
        QFETCH(const QByteArray, content);
        QFETCH(const QString, pages);
        QFETCH(const QString, defect);
        Write("good.png", Support::Png(Support::Picture(60, 40)));
        Write("bad.pdf", content);
        Write("out", "an earlier file");
        const TToolResult result = Create({"good.png", "bad.pdf", "--pdf-pages", pages, "--force"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors, "quillet-cli: bad.pdf: " + defect + '\n');
        QCOMPARE(Content("out"), QByteArray("an earlier file"));
    }

    void a_pdf_that_needs_a_password_is_refused()
    {
        Write("plain.pdf", Support::Pdf({ordinary}));
        QCOMPARE(QProcess::execute("qpdf", {"--encrypt", "user", "owner", "256", "--",
                                            Path("plain.pdf"), Path("locked.pdf")}),
                 0);
        const TToolResult result = Create({"locked.pdf"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors,
                 QStringLiteral("quillet-cli: locked.pdf: is encrypted and needs a password\n"));
        QVERIFY(!QFile::exists(Path("out")));
    }

    void a_missing_renderer_is_named()
    {
        Write("a.pdf", Support::Pdf({ordinary}));
        const Support::TScriptResult result = Shell("PATH=. $tool create a.pdf -o out");
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors, QByteArray("quillet-cli: a.pdf: pdfinfo is not installed (package "
                                           "poppler-utils)\n"));
        QVERIFY(!QFile::exists(Path("out")));
    }

    void an_incomplete_page_is_kept_with_a_warning()
    {
        Write("a.pdf", Support::Pdf({ordinary}, "nonsense"));
        const TToolResult result = Create({"a.pdf"});
        QCOMPARE(result.status, 0);
        QVERIFY2(
            result.errors.startsWith("quillet-cli: a.pdf: warning: page 1: may be incomplete: "),
            qPrintable(result.errors));
        QCOMPARE(Content("out"), Project({{"Page 1", Rendered("a.pdf", 1, 150)}}));
    }

    void an_input_pdf_is_never_overwritten()
    {
        const QByteArray content = Support::Pdf({ordinary});
        Write("out", content);
        const TToolResult result = Create({"out", "--force"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors,
                 QStringLiteral("quillet-cli: out: is an input and cannot be overwritten\n"));
        QCOMPARE(Content("out"), content);
    }

    void help_lists_the_accepted_formats()
    {
        const TToolResult result = Create({"--help"});
        QCOMPARE(result.status, 0);
        QVERIFY(result.output.simplified().contains("Accepted formats: bmp, gif, jpeg, jpg, pbm, "
                                                    "pdf, pgm, png, ppm, tif, tiff, webp, xbm, "
                                                    "xpm."));
    }
};

QTEST_GUILESS_MAIN(TestCliInput)
#include "test_cliinput.moc"
