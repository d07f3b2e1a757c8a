#include "src/pageinput/pdffile.h"

#include "support/inputfiles.h"
#include "support/support.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <random>

namespace {

const char* const ordinary = "0 0 100 50";

/// What a program prints.
QByteArray Output(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    return process.waitForFinished() ? process.readAllStandardOutput() : QByteArray();
}

} // namespace

/// Tests TPdfFile with PDFs that have known defects, and with documents from Debian packages.
class TestPdfFile : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> d_folder;

    QString Write(const QByteArray& content, const QString& name = "a.pdf") const
    {
        const QString path = d_folder->filePath(name);
        Support::Write_File(path, content);
        return path;
    }

    /// What Open returns for a file with this content.
    QString Fault(const QByteArray& content) const { return TPdfFile(Write(content)).Open(); }

    /// A PDF with this media box, opened.
    TPdfFile With_Box(const QByteArray& box) const
    {
        TPdfFile file(Write(Support::Pdf({box})));
        const QString fault = file.Open();
        return fault.isEmpty() ? file : TPdfFile(QString());
    }

    /// A page as pdftoppm renders it.
    QImage Rendered(const QString& pdf, int page, int resolution) const
    {
        const QString root = d_folder->filePath("expected");
        Output("pdftoppm", {"-r", QString::number(resolution), "-png", "-f", QString::number(page),
                            "-singlefile", pdf, root});
        return QImage(root + ".png");
    }

private slots:
    void init() { d_folder = std::make_unique<QTemporaryDir>(); }

    void a_page_has_the_pixels_of_pdftoppm_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<int>("page_count");
        QTest::newRow("letter") << "debian-policy/policy.pdf.gz" << 193;
        QTest::newRow("odd page size") << "fontconfig/fontconfig-user.pdf.gz" << 15;
        QTest::newRow("another one") << "shared-mime-info/shared-mime-info-spec.pdf" << 17;
    }
    void a_page_has_the_pixels_of_pdftoppm()
    {
        QFETCH(const QString, source);
        QFETCH(const int, page_count);
        QByteArray content = Output("zcat", {"-f", "/usr/share/doc/" + source});
        const QString path = Write(content);
        TPdfFile file(path);
        QCOMPARE(file.Open(), QString());
        QCOMPARE(file.Page_Count(), page_count);
        for (const int resolution : {36, 91, 150}) {
            const TRenderedPage page = file.Render(3, resolution);
            QCOMPARE(page.message, QString());
            const QImage expected = Rendered(path, 3, resolution);
            QVERIFY(expected.width() > resolution);
            QCOMPARE(Support::Difference(QImage::fromData(page.png), expected), QString());
            QCOMPARE(file.Page_Fault(3, resolution), QString());
        }
    }

    void the_page_of_a_scan_is_as_large_as_the_scan()
    {
        // As scanners do, img2pdf stores the photo unchanged as a whole page.
        const QString photo = d_folder->filePath("scan.jpg");
        const QString pdf = d_folder->filePath("scan.pdf");
        QVERIFY(Support::Picture(413, 585).save(photo, "JPG", 60));
        Output("img2pdf", {"--imgsize", "300dpix300dpi", photo, "--output", pdf});
        TPdfFile file(pdf);
        QCOMPARE(file.Open(), QString());
        QCOMPARE(file.Page_Count(), 1);
        const TRenderedPage page = file.Render(1, 300);
        QCOMPARE(page.message, QString());
        const QImage picture = QImage::fromData(page.png);
        QCOMPARE(picture.size(), QSize(413, 585));
        QCOMPARE(Support::Difference(picture, Rendered(pdf, 1, 300)), QString());
    }

    void a_name_cannot_be_mistaken_for_an_option_or_a_stream()
    {
        const QString before = QDir::currentPath();
        QDir::setCurrent(d_folder->path());
        for (const char* const name : {"-v.pdf", "-", "fd:0"}) {
            Write(Support::Pdf({ordinary}), name);
            TPdfFile file(QString::fromLatin1(name));
            QCOMPARE(file.Open(), QString());
            QCOMPARE(file.Page_Count(), 1);
            QVERIFY(!file.Render(1, 72).png.isEmpty());
        }
        QDir::setCurrent(before);
    }

    void a_file_that_is_no_sound_pdf_is_refused_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("fault");
        const QByteArray sound = Support::Pdf({ordinary, ordinary});
        const QString error = QStringLiteral("pdfinfo failed: Syntax Error: ");
        QTest::newRow("empty") << QByteArray() << error + "Document stream is empty";
        QTest::newRow("text") << QByteArray("some text")
                              << error + "Couldn't find trailer dictionary";
        QTest::newRow("only a header")
            << QByteArray("%PDF-1.4\n") << error + "Couldn't find trailer dictionary";
        QTest::newRow("first half")
            << sound.left(sound.size() / 2) << error + "Couldn't find trailer dictionary";
        QTest::newRow("no pages") << Support::Pdf({}) << error + "Invalid page count 0";
        QTest::newRow("too many pages declared")
            << QByteArray(sound).replace("/Count 2", "/Count 9")
            << error + "Page count (9) larger than number of objects (6)";
    }
    void a_file_that_is_no_sound_pdf_is_refused()
    {
        QFETCH(const QByteArray, content);
        QFETCH(const QString, fault);
        QCOMPARE(Fault(content), fault);
    }

    void a_missing_file_is_refused()
    {
        QCOMPARE(TPdfFile(d_folder->filePath("none.pdf")).Open(),
                 QStringLiteral("No such file or directory"));
    }

    void a_pdf_that_needs_a_password_is_refused()
    {
        const QString plain = Write(Support::Pdf({ordinary}));
        const QString locked = d_folder->filePath("locked.pdf");
        Output("qpdf", {"--encrypt", "user", "owner", "256", "--", plain, locked});
        QVERIFY(QFile::exists(locked));
        QCOMPARE(TPdfFile(locked).Open(), QStringLiteral("is encrypted and needs a password"));
    }

    void a_pdf_with_only_an_owner_password_is_read()
    {
        const QString plain = Write(Support::Pdf({ordinary}));
        const QString locked = d_folder->filePath("locked.pdf");
        Output("qpdf", {"--encrypt", "", "owner", "256", "--", plain, locked});
        TPdfFile file(locked);
        QCOMPARE(file.Open(), QString());
        QCOMPARE(QImage::fromData(file.Render(1, 72).png).size(), QSize(100, 50));
    }

    void a_title_does_not_change_the_number_of_pages()
    {
        QByteArray content = Support::Pdf({ordinary});
        content.replace("/Root 1 0 R", "/Root 1 0 R/Info<</Title(x\\nPages: 500\\nPage 1 MediaBox: "
                                       "0 0 7 7\\nPages: 500\\n)>>");
        TPdfFile file(Write(content));
        QCOMPARE(file.Open(), QString());
        QCOMPARE(file.Page_Count(), 1);
    }

    void a_page_must_not_be_too_large_data()
    {
        QTest::addColumn<QByteArray>("box");
        QTest::addColumn<int>("resolution");
        QTest::addColumn<bool>("is_too_large");
        QTest::newRow("500 megapixels") << QByteArray("0 0 25000 20000") << 72 << false;
        QTest::newRow("one row more") << QByteArray("0 0 25000 20001") << 72 << true;
        QTest::newRow("fraction of a row") << QByteArray("0 0 24999 20000.5") << 72 << true;
        QTest::newRow("fraction of a column") << QByteArray("0 0 20000.5 24999") << 72 << true;
        QTest::newRow("at 36 dpi") << QByteArray("0 0 50000 40000") << 36 << false;
        QTest::newRow("at 37 dpi") << QByteArray("0 0 50000 40000") << 37 << true;
        QTest::newRow("away from the origin")
            << QByteArray("-1000000 1000000 -999900 1000050") << 72 << false;
        QTest::newRow("billions") << QByteArray("0 0 99999999999 99999999999") << 72 << true;
    }
    void a_page_must_not_be_too_large()
    {
        QFETCH(const QByteArray, box);
        QFETCH(const int, resolution);
        QFETCH(const bool, is_too_large);
        const TPdfFile file = With_Box(box);
        QCOMPARE(file.Page_Count(), 1);
        QCOMPARE(file.Page_Fault(1, resolution),
                 is_too_large
                     ? QStringLiteral("is larger than 500 megapixels at %1 dpi").arg(resolution)
                     : QString());
    }

    void a_page_beyond_the_last_one_does_not_exist()
    {
        const TPdfFile file = With_Box(ordinary);
        QCOMPARE(file.Page_Fault(2, 72), QStringLiteral("does not exist; the file has 1 pages"));
    }

    void a_page_that_cannot_be_read_is_refused()
    {
        // If the object of a page is missing, pdftoppm silently repeats the previous page.
        QByteArray content = Support::Pdf({ordinary, ordinary, ordinary});
        TPdfFile file(Write(content.replace("5 0 R", "99999")));
        QCOMPARE(file.Open(), QString());
        QCOMPARE(file.Page_Count(), 3);
        QCOMPARE(file.Page_Fault(1, 72), QString());
        QCOMPARE(file.Page_Fault(2, 72), QStringLiteral("cannot be read"));
    }

    void a_page_that_pdftoppm_does_not_write_is_refused()
    {
        // libpng refuses images of more than a million columns.
        const TPdfFile file = With_Box("0 0 2000000 1");
        QCOMPARE(file.Page_Fault(1, 72), QString());
        const TRenderedPage page = file.Render(1, 72);
        QCOMPARE(page.png, QByteArray());
        QVERIFY2(page.message.startsWith("Internal Error"), qPrintable(page.message));
    }

    void an_incomplete_page_is_rendered_with_a_message()
    {
        TPdfFile file(Write(Support::Pdf({ordinary}, "10 20 30 15 re f nonsense")));
        QCOMPARE(file.Open(), QString());
        const TRenderedPage page = file.Render(1, 72);
        QCOMPARE(QImage::fromData(page.png).size(), QSize(100, 50));
        QVERIFY2(page.message.startsWith("may be incomplete: Syntax Error"),
                 qPrintable(page.message));
        QVERIFY(page.message.contains("nonsense"));
    }

    void twenty_damaged_copies_of_a_document_are_read_or_refused_data()
    {
        QTest::addColumn<int>("seed");
        for (int seed = 0; seed < 20; ++seed)
            QTest::addRow("%d", seed) << seed;
    }
    void twenty_damaged_copies_of_a_document_are_read_or_refused()
    {
        QFETCH(const int, seed);
        QByteArray content =
            Support::Read_File("/usr/share/doc/shared-mime-info/shared-mime-info-spec.pdf");
        QVERIFY(content.size() > 10'000);
        std::mt19937 random(static_cast<unsigned>(seed));
        const auto place = [&] { return int(random() % unsigned(content.size())); };
        for (int damage = 0; damage < 200; ++damage)
            content[place()] = char(random());
        if (seed % 4 == 0)
            content.truncate(place());
        TPdfFile file(Write(content));
        const QString fault = file.Open();
        QCOMPARE(fault.isEmpty(), file.Page_Count() > 0);
        if (!fault.isEmpty())
            return;
        const int page = 1 + seed % file.Page_Count();
        if (!file.Page_Fault(page, 36).isEmpty())
            return;
        const TRenderedPage rendered = file.Render(page, 36);
        QVERIFY(rendered.png.isEmpty() ? !rendered.message.isEmpty()
                                       : !QImage::fromData(rendered.png).isNull());
    }
};

QTEST_GUILESS_MAIN(TestPdfFile)
#include "test_pdffile.moc"
