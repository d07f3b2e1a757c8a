#include "src/pageinput/inputfile.h"

#include "src/model/imagefiles.h"
#include "support/inputfiles.h"
#include "support/support.h"

#include <QTemporaryDir>
#include <QTest>

#include <memory>

/// Pages from images, TIFFs and PDFs.
class TestInputFile : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> d_folder;

    QString Write(const QString& name, const QByteArray& content) const
    {
        const QString path = d_folder->filePath(name);
        Support::Write_File(path, content);
        return path;
    }

    QString Three_Pages() const
    {
        return Write("report.pdf", Support::Pdf({"0 0 100 50", "0 0 200 60", "0 0 300 70"}));
    }

    /// The name and size of each page, or why it could not be read.
    static QStringList Pages(TInputFile* file)
    {
        QStringList pages;
        for (int index = 0; index < file->Page_Count(); ++index) {
            const TInputPage page = file->Read(index);
            pages += page.image ? QStringLiteral("%1: %2 x %3")
                                      .arg(page.name)
                                      .arg(page.image->width())
                                      .arg(page.image->height())
                                : page.message;
        }
        return pages;
    }

    static QStringList Pages(const QString& path, const TInputOptions& options = {})
    {
        TInputFile file(path, options);
        const QString fault = file.Open();
        return fault.isEmpty() ? Pages(&file) : QStringList{fault};
    }

private slots:
    void init() { d_folder = std::make_unique<QTemporaryDir>(); }

    void an_image_is_one_page()
    {
        const QString path = Write("first.scan.png", Support::Png(Support::Picture(40, 30)));
        QCOMPARE(Pages(path), QStringList({"first.scan: 40 x 30"}));
    }

    void each_page_of_a_pdf_is_a_page_with_a_number()
    {
        TInputOptions options;
        options.resolution = 72;
        QCOMPARE(Pages(Three_Pages(), options),
                 QStringList({"report 1: 100 x 50", "report 2: 200 x 60", "report 3: 300 x 70"}));
    }

    void pages_of_a_pdf_have_150_dpi_by_default()
    {
        QCOMPARE(Pages(Three_Pages()).first(), QStringLiteral("report 1: 209 x 105"));
    }

    void chosen_pages_of_a_pdf_keep_their_numbers()
    {
        TInputOptions options;
        options.resolution = 36;
        options.pdf_pages = {{3, 3}, {1, 2}};
        QCOMPARE(Pages(Three_Pages(), options),
                 QStringList({"report 3: 150 x 35", "report 1: 50 x 25", "report 2: 100 x 30"}));
    }

    void chosen_pages_must_exist()
    {
        TInputOptions options;
        options.pdf_pages = {{2, 2147483647}};
        QCOMPARE(Pages(Three_Pages(), options),
                 QStringList({"page 2147483647: does not exist; the file has 3 pages"}));
    }

    void chosen_pages_concern_only_pdfs()
    {
        TInputOptions options;
        options.pdf_pages = {{2, 2}};
        const QString path = Write("a.png", Support::Png(Support::Picture(40, 30)));
        QCOMPARE(Pages(path, options), QStringList({"a: 40 x 30"}));
    }

    void pages_before_a_bad_one_are_read()
    {
        const QString path =
            Write("b.pdf", Support::Pdf({"0 0 72 36", "0 0 99999999999 99999999999"}));
        QCOMPARE(Pages(path), QStringList({"b 1: 150 x 75",
                                           "page 2: is larger than 500 megapixels at 150 dpi"}));
    }

    void an_incomplete_page_has_a_message()
    {
        TInputFile file(Write("c.pdf", Support::Pdf({"0 0 72 36"}, "nonsense")), {});
        QCOMPARE(file.Open(), QString());
        const TInputPage page = file.Read(0);
        QVERIFY(page.image);
        QVERIFY2(page.message.startsWith("page 1: may be incomplete: Syntax Error"),
                 qPrintable(page.message));
    }

    void an_unreadable_pdf_is_refused()
    {
        QCOMPARE(Pages(Write("d.pdf", QByteArray())),
                 QStringList({"pdfinfo failed: Syntax Error: Document stream is empty"}));
    }

    void each_page_of_a_tiff_is_a_page_with_a_number()
    {
        const QByteArray bytes =
            Support::Tiff({Support::Picture(40, 30), Support::Picture(50, 20)});
        QCOMPARE(Pages(Write("scan.tif", bytes)),
                 QStringList({"scan 1: 40 x 30", "scan 2: 50 x 20"}));
        QCOMPARE(Pages(Write("single.tif", Support::Tiff({Support::Picture(40, 30)}))),
                 QStringList({"single: 40 x 30"}));
    }

    void a_damaged_page_of_a_tiff_is_named()
    {
        const QByteArray bytes =
            Support::Tiff({Support::Picture(40, 30), Support::Picture(50, 20)});
        const QStringList pages = Pages(Write("scan.tif", bytes.left(bytes.size() - 2000)));
        QCOMPARE(pages.size(), 2);
        QCOMPARE(pages.first(), QStringLiteral("scan 1: 40 x 30"));
        QVERIFY2(pages.last().startsWith("page 2: is not a readable image"),
                 qPrintable(pages.last()));
    }

    void webp_is_read()
    {
        const QString path = d_folder->filePath("a.webp");
        QVERIFY(Support::Picture(40, 30).save(path));
        QCOMPARE(Pages(path), QStringList({"a: 40 x 30"}));
    }

    void photos_are_turned_upright_unless_read_as_stored()
    {
        const QString path = Write("a.jpg", Support::Exif_Jpeg(Support::Picture(40, 30), 6));
        QCOMPARE(Pages(path), QStringList({"a: 30 x 40"}));
        TInputOptions options;
        options.orientation = TPageImage::TOrientation::As_Stored;
        QCOMPARE(Pages(path, options), QStringList({"a: 40 x 30"}));
    }

    void an_unreadable_image_is_explained()
    {
        QCOMPARE(Pages(Write("notes.txt", "notes")),
                 QStringList({"is not a readable image; accepted formats: " +
                              ImageFiles::Suffixes_And_Pdf().join(", ")}));
        QCOMPARE(Pages(d_folder->filePath("none.png")), QStringList({"No such file or directory"}));
    }
};

QTEST_GUILESS_MAIN(TestInputFile)
#include "test_inputfile.moc"
