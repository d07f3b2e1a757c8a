#include "support/inputfiles.h"
#include "support/project.h"
#include "support/support.h"
#include "support/tool.h"

#include <QBuffer>
#include <QColor>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTest>

#include <cstdio>

using Support::TToolResult;

/// Tests that hostile input gives neither a wrong result with exit status 0 nor a lost file.
class TestCliHostile : public Support::TToolTest
{
    Q_OBJECT

    static QByteArray Picture(int seed = 0) { return Support::Png(Support::Picture(60, 40, seed)); }

    /// A label with the number 7.
    static QByteArray Label(const QByteArray& border, const QByteArray& position)
    {
        return Support::Item_Element("5", "7", "", border, position);
    }

    /// A document with one page.
    static QByteArray Project(const QByteArray& image = Picture(),
                              const QByteArray& labels = QByteArray())
    {
        return Support::Header(32, "#0a141e", "", "", 1) +
               Support::Page_Record("a", image, Support::Item_List(labels));
    }

    /// Two pages of which the second has this image.
    static QByteArray Second_Page(const QByteArray& image)
    {
        return Support::Header(32, "#0a141e", "", "", 2) +
               Support::Page_Record("a", Picture(), Support::Item_List()) +
               Support::Page_Record("b", image, Support::Item_List());
    }

    static QByteArray Encoded(const QImage& image, const char* format)
    {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        image.save(&buffer, format);
        return bytes;
    }

    /// A picture that PNG hardly compresses.
    static QImage Noise()
    {
        QImage image(300, 200, QImage::Format_RGB32);
        quint32 state = 1;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                state = state * 1664525 + 1013904223;
                image.setPixel(x, y, state >> 8);
            }
        }
        return image;
    }

    /// A PNG image without its lower half.
    static QByteArray Cut_Picture()
    {
        const QByteArray bytes = Support::Png(Noise());
        return bytes.left(bytes.size() / 2);
    }

private slots:
    void the_suffix_of_an_image_is_not_guessed()
    {
        Write("page.png", Picture());
        const TToolResult result = Run({"create", "page", "--output", "page.png", "--force"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors,
                 QString("quillet-cli: page: cannot be read: No such file or directory\n"));
        QCOMPARE(Content("page.png"), Picture());
    }

    void a_project_is_never_written_under_an_earlier_suffix_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::newRow("create") << "create image.png --output out.qld";
        QTest::newRow("recover") << "recover a.quillet --output out.QLI";
        QTest::newRow("reindex") << "reindex a.quillet --first 1 --over-page 1 --output out.qli";
        QTest::newRow("import-items") << "import-items a.quillet --csv items.csv --output out.qld";
    }
    void a_project_is_never_written_under_an_earlier_suffix()
    {
        QFETCH(const QString, arguments);
        Write("image.png", Picture());
        Write("a.quillet", Project());
        Write("items.csv", "page,value,x,y\r\n1,3,4,5\r\n");
        const QStringList before = Support::Entries(d_folder->path());
        const TToolResult result = Run(arguments.split(' ') + QStringList{"--force"});
        QCOMPARE(result.status, 1);
        QVERIFY2(result.errors.contains("has the suffix of a file of an earlier generation"),
                 qPrintable(result.errors));
        QCOMPARE(Support::Entries(d_folder->path()), before);
    }

    void one_document_does_not_replace_the_images_of_another_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::newRow("new") << QStringList();
        QTest::newRow("with --force") << QStringList{"--force"};
    }
    void one_document_does_not_replace_the_images_of_another()
    {
        QFETCH(const QStringList, options);
        Write("a.quillet", Project());
        Write("b.quillet", Project(Picture(1)));
        QDir(d_folder->path()).mkdir("out");
        const TToolResult result = Run(QStringList{"export-images", "a.quillet", "b.quillet",
                                                   "--folder", "out", "--name", "{page}"} +
                                       options);
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors, QString("quillet-cli: out/a.png: would be written twice\n"));
        QCOMPARE(Support::Entries(Path("out")), QStringList());
    }

    void one_document_does_not_replace_the_images_of_another_through_a_link()
    {
        Write("a.quillet", Project());
        Write("b.quillet", Project(Picture(1)));
        QDir(d_folder->path()).mkdir("out");
        Write("out/a.png", "old");
        QVERIFY(QFile::link("a.png", Path("out/b.png")));
        const TToolResult result = Run({"export-images", "a.quillet", "b.quillet", "--folder",
                                        "out", "--name", "{document}", "--force"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors, QString("quillet-cli: out/b.png: would be written twice\n"));
    }

    void a_file_that_appears_during_the_work_is_kept()
    {
        Write("a.pdf", Support::Pdf({"0 0 100 50"}));
        // This page renders slowly, so that another program can write the output meanwhile.
        Write("pdftoppm", "#!/bin/sh\necho other > out\nPATH=$OLD_PATH exec pdftoppm \"$@\"\n");
        QFile::setPermissions(Path("pdftoppm"), QFile::ReadUser | QFile::ExeUser);
        const Support::TScriptResult result =
            Shell("OLD_PATH=$PATH PATH=$PWD:$PATH $tool create a.pdf -o out");
        QCOMPARE(result.errors,
                 QByteArray("quillet-cli: out: already exists; use --force to overwrite it\n"));
        QCOMPARE(result.status, 1);
        QCOMPARE(Content("out"), QByteArray("other\n"));
    }

    void a_file_name_that_begins_with_a_hyphen_is_no_request_for_help()
    {
        const TToolResult result = Run({"create", "-photo.png", "--output", "out"});
        QCOMPARE(result.status, 2);
        QCOMPARE(result.output, QString());
        QVERIFY2(result.errors.startsWith("quillet-cli: Unknown option"),
                 qPrintable(result.errors));
    }

    void a_file_name_is_never_read_as_options()
    {
        Write("a.png", Picture());
        // These could be read as "--output a.png", and as "--help --output to.png".
        for (const QString& name : {QString("-oa.png"), QString("-hoto.png")}) {
            Write(name, Picture());
            for (const QStringList& arguments :
                 {QStringList{"create", name, "a.png", "--output", "out"},
                  QStringList{"create", name, "a.png"}}) {
                const TToolResult result = Run(arguments + QStringList{"--force"});
                QCOMPARE(result.status, 2);
                QCOMPARE(result.output, QString());
                QCOMPARE(result.errors.section('\n', 0, 0),
                         QString("quillet-cli: Unknown option '%1'; a file of this name is "
                                 "'./%1'.")
                             .arg(name));
            }
            QCOMPARE(Content("a.png"), Picture());
            QVERIFY(!QFile::exists(Path("out")));
            QCOMPARE(Run({"create", "-f", "-o", "after", "--", name}).status, 0);
        }
    }

    void a_damaged_picture_fails_with_its_page_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::newRow("export-images") << "export-images a.quillet --folder .";
        QTest::newRow("export-pdf") << "export-pdf a.quillet --output out";
        QTest::newRow("export-html") << "export-html a.quillet --output out";
        QTest::newRow("pages") << "pages a.quillet --rotate 2=left --output out";
    }
    void a_damaged_picture_fails_with_its_page()
    {
        QFETCH(const QString, arguments);
        Write("a.quillet", Second_Page(Cut_Picture()));
        const QStringList before = Support::Entries(d_folder->path());
        const TToolResult result = Run(arguments.split(' '));
        QCOMPARE(result.status, 1);
        QVERIFY2(QRegularExpression("^quillet-cli: a\\.quillet: page 2: the image is damaged from "
                                    "row \\d+ of 200 on; 'quillet-cli recover' saves what can be "
                                    "read\n$")
                     .match(result.errors)
                     .hasMatch(),
                 qPrintable(result.errors));
        QCOMPARE(Support::Entries(d_folder->path()), before);
    }

    void pages_with_sound_pictures_can_be_exported()
    {
        Write("a.quillet", Second_Page(Cut_Picture()));
        for (const QStringList& command :
             {QStringList{"export-pdf", "--pages", "1", "--output", "out"},
              QStringList{"export-images", "--pages", "1", "--folder", "."},
              QStringList{"thumbnail", "--output", "thumbnail"}}) {
            const TToolResult result = Run(command + QStringList{"a.quillet"});
            QCOMPARE(result.errors, QString());
            QCOMPARE(result.status, 0);
        }
        Write("b.quillet", Project(Cut_Picture()));
        QCOMPARE(Run({"thumbnail", "b.quillet", "--output", "thumbnail", "--force"}).status, 1);
    }

    void a_damaged_picture_becomes_no_page_data()
    {
        QTest::addColumn<QByteArray>("image");
        QTest::addColumn<QString>("defect");
        const QImage picture = Noise();
        const auto cut = [&picture](const char* format) {
            const QByteArray bytes = Encoded(picture, format);
            return bytes.left(bytes.size() * 2 / 3);
        };
        const QString damaged = "the image is damaged";
        QTest::newRow("BMP") << cut("BMP") << damaged;
        QTest::newRow("JPEG") << cut("JPEG") << damaged;
        QTest::newRow("PPM") << cut("PPM") << "the image cannot be decoded";
        QTest::newRow("XBM") << cut("XBM") << damaged;
        QTest::newRow("GIF") << Support::Gif(20, 10).chopped(4) << damaged;
        const QByteArray tiff = Support::Tiff({picture});
        QTest::newRow("TIFF") << tiff.chopped(1000) << "the image cannot be decoded\n";
        QTest::newRow("TIFF that Qt decodes")
            << Support::Read_File(QUILLET_TEST_DATA "/jpeg_data_changed.tif") << damaged + '\n';
        QTest::newRow("TIFF header") << tiff.left(20) << damaged + '\n';
        QTest::newRow("TIFF without its second page")
            << Support::Tiff({picture, picture}).left(tiff.size() + 20) << damaged + '\n';
        QTest::newRow("second page of a TIFF")
            << Support::Tiff({picture, picture}).chopped(1000) << "page 2: the image is damaged\n";
        QTest::newRow("PNG") << Cut_Picture() << "the image is damaged from row 1";
        QByteArray flipped = Support::Png(picture);
        flipped[flipped.size() / 2] = static_cast<char>(~flipped.at(flipped.size() / 2));
        QTest::newRow("changed byte") << flipped << "the image is damaged from row ";
        QTest::newRow("no end") << Support::Png(picture).chopped(12)
                                << "the end of the image is missing or damaged\n";
        QTest::newRow("PNG header") << Picture().left(30) << "is not a readable image; ";
    }
    void a_damaged_picture_becomes_no_page()
    {
        QFETCH(const QByteArray, image);
        QFETCH(const QString, defect);
        Write("good.png", Picture());
        Write("image", image);
        const TToolResult result = Run({"create", "good.png", "image", "--output", "out"});
        QCOMPARE(result.status, 1);
        QVERIFY2(result.errors.startsWith("quillet-cli: image: " + defect),
                 qPrintable(result.errors));
        QCOMPARE(result.errors.count('\n'), 1);
        QVERIFY(!QFile::exists(Path("out")));
    }

    void a_whole_picture_becomes_a_page_data()
    {
        QTest::addColumn<QByteArray>("image");
        for (const char* const format : {"BMP", "JPEG", "PPM", "XBM", "XPM", "TIFF", "WEBP", "PNG"})
            QTest::newRow(format) << Encoded(Support::Picture(301, 200), format);
        const QByteArray tiff = Support::Tiff({Support::Picture(301, 200)});
        QTest::newRow("TIFF with an unknown tag") << QByteArray(tiff).replace(
            QByteArray("\x12\x01\x03\0", 4), QByteArray("\x13\x01\x03\0", 4));
        QTest::newRow("GIF") << Support::Gif(20, 10);
        QTest::newRow("GIF without its last byte") << Support::Gif(20, 10).chopped(1);
        QTest::newRow("monochrome BMP")
            << Encoded(Support::Picture(301, 200).convertToFormat(QImage::Format_Mono), "BMP");
        QTest::newRow("JPEG with more bytes at its end")
            << Encoded(Support::Picture(300, 200), "JPEG") + "more";
        QTest::newRow("PNG without its last checksum")
            << Support::Png(Support::Picture(300, 200)).chopped(4);
    }
    void a_whole_picture_becomes_a_page()
    {
        QFETCH(const QByteArray, image);
        Write("image", image);
        const TToolResult result = Run({"create", "image", "--output", "out"});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.status, 0);
        QCOMPARE(Run({"check", "out"}).errors, QString());
    }

    void check_names_page_and_row_of_a_damaged_picture()
    {
        Write("a.quillet", Second_Page(Cut_Picture()));
        const TToolResult result = Run({"check", "a.quillet"});
        QCOMPARE(result.status, 1);
        QVERIFY2(QRegularExpression("^quillet-cli: a\\.quillet: byte \\d+: page 2: the image is "
                                    "damaged from row \\d+ of 200 on\n$")
                     .match(result.errors)
                     .hasMatch(),
                 qPrintable(result.errors));
    }

    void recover_keeps_the_rows_that_can_be_decoded()
    {
        const QImage picture = Noise();
        Write("a.quillet", Second_Page(Cut_Picture()));
        const QString errors = Run({"check", "a.quillet"}).errors;
        const int whole_rows = errors.section("from row ", 1).section(' ', 0, 0).toInt() - 1;
        QVERIFY(whole_rows > 80 && whole_rows < 110);
        const TToolResult result = Run({"recover", "a.quillet", "--output", "out"});
        QCOMPARE(result.errors, QString());
        QVERIFY2(result.output.contains(
                     QString("\na.quillet: page 2: %1 of 200 rows of the image are incomplete\n")
                         .arg(200 - whole_rows)),
                 qPrintable(result.output));
        QCOMPARE(Run({"check", "out"}).status, 0);
        const QByteArray recovered = Content("out");
        const QImage rest = QImage::fromData(recovered.mid(recovered.lastIndexOf("\x89PNG")));
        QCOMPARE(rest.size(), picture.size());
        const QRect upper(0, 0, 300, whole_rows);
        QCOMPARE(Support::Difference(rest.copy(upper), picture.copy(upper)), QString());
        QCOMPARE(rest.pixelColor(0, 199), QColor(Qt::white));
    }

    void recover_keeps_the_damaged_file()
    {
        const QByteArray project = Second_Page(Cut_Picture());
        Write("a.quillet", project);
        const TToolResult result =
            Run({"recover", "a.quillet", "--output", "a.quillet", "--force"});
        QCOMPARE(result.errors,
                 QString("quillet-cli: a.quillet: is an input and cannot be overwritten\n"));
        QCOMPARE(result.status, 1);
        QCOMPARE(Content("a.quillet"), project);
    }

    void the_picture_of_a_legacy_document_must_be_whole()
    {
        Write("a.qli", Cut_Picture());
        Write("a.qld", "<Quillet_Data File_Version=\"3\"/>");
        const TToolResult result = Run({"check", "a.qld"});
        QCOMPARE(result.status, 1);
        QVERIFY2(result.errors.startsWith("quillet-cli: a.qld: a.qli: the image is damaged from"),
                 qPrintable(result.errors));
    }

    void lost_labels_of_a_legacy_document_are_reported()
    {
        const QByteArray label = "<Item><ID>1</ID><Border_Type>1</Border_Type><Position>3,4"
                                 "</Position></Item>";
        Write("a.qli", Picture());
        Write("a.qld", "<Quillet_Data File_Version=\"1\"><Item_Size><Width>20</Width></Item_Size>"
                       "<Colors><Foreground>red</Foreground></Colors>" +
                           label + label + QByteArray(label).replace("3,4", "3,4,5") +
                           "</Quillet_Data>");
        const QString loss = "labels without a valid position: 1, with the id of an earlier one: 1";
        const TToolResult check = Run({"check", "a.qld"});
        QCOMPARE(check.errors, "quillet-cli: a.qld: " + loss + '\n');
        QCOMPARE(check.status, 1);
        const TToolResult info = Run({"info", "a.qld"});
        QCOMPARE(info.errors, "quillet-cli: a.qld: warning: " + loss + '\n');
        QCOMPARE(info.status, 0);
        QVERIFY2(info.output.endsWith(", labels: 1, Page 1\n"), qPrintable(info.output));
    }

    void harmless_defects_are_warnings()
    {
        Write("a.quillet", Project(Picture(), Label("3", "5.00,6.00")) + "xyz");
        const TToolResult check = Run({"check", "a.quillet"});
        QCOMPARE(check.status, 0);
        QCOMPARE(check.output, QString("a.quillet: no defects, warnings: 2\n"));
        QCOMPARE(check.errors.count(": warning: byte "), 2);
        const TToolResult result =
            Run({"reindex", "a.quillet", "--first", "9", "--over-page", "1", "--output", "out"});
        QCOMPARE(result.status, 0);
        QCOMPARE(result.errors, check.errors);
        QVERIFY(Content("out").contains("<Value>9</Value><Text></Text><Border_Type>3<"));
        QVERIFY(!Content("out").contains("xyz"));
        const QString report = Run({"recover", "a.quillet", "--output", "recovered"}).output;
        QCOMPARE(report.count("a.quillet: warning: byte "), 2);
        QVERIFY2(report.endsWith(", labels: 1, defects: 0\n"), qPrintable(report));
    }

    void a_refused_document_comes_with_advice()
    {
        const QByteArray project = Project(Picture(), Label("1", "5.00,6.00"));
        Write("a.quillet", project.left(project.size() - 3));
        QVERIFY(Run({"info", "a.quillet"})
                    .errors.endsWith("; 'quillet-cli recover' saves what can be read\n"));
        Write("a.quillet", "This is a letter.");
        QVERIFY(!Run({"info", "a.quillet"}).errors.contains("recover"));
    }

    void check_lists_labels_outside_the_page_data()
    {
        QTest::addColumn<QByteArray>("position");
        QTest::addColumn<bool>("is_outside");
        // The drawing has 37 pixels, and the position is pixel 18.
        QTest::newRow("centre") << QByteArray("30.00,20.00") << false;
        QTest::newRow("left edge") << QByteArray("-18.50,20.00") << false;
        QTest::newRow("left") << QByteArray("-19.00,20.00") << true;
        QTest::newRow("right edge") << QByteArray("77.50,20.00") << false;
        QTest::newRow("right") << QByteArray("78.00,20.00") << true;
        QTest::newRow("above") << QByteArray("30.00,-500.00") << true;
        QTest::newRow("below") << QByteArray("30.00,1000000.00") << true;
    }
    void check_lists_labels_outside_the_page()
    {
        QFETCH(const QByteArray, position);
        QFETCH(const bool, is_outside);
        Write("a.quillet", Project(Picture(), Label("1", position)));
        const TToolResult result = Run({"check", "a.quillet"});
        QCOMPARE(result.status, 0);
        QCOMPARE(result.errors.startsWith("quillet-cli: a.quillet: warning: page 1: label 7 at "),
                 is_outside);
        QCOMPARE(result.errors.endsWith(" is outside the image\n"), is_outside);
    }

    void import_items_refuses_positions_far_outside_the_page_data()
    {
        QTest::addColumn<QByteArray>("position");
        QTest::addColumn<bool>("is_refused");
        QTest::newRow("far right") << QByteArray("601,20") << true;
        QTest::newRow("far left") << QByteArray("-601,20") << true;
        QTest::newRow("far below") << QByteArray("30,401") << true;
        QTest::newRow("just near enough") << QByteArray("600,-400") << false;
    }
    void import_items_refuses_positions_far_outside_the_page()
    {
        QFETCH(const QByteArray, position);
        QFETCH(const bool, is_refused);
        Write("a.quillet", Project());
        Write("items.csv", "page,value,x,y\r\n1,2,30,20\r\n1,3," + position + "\r\n");
        const QStringList import{"import-items", "a.quillet", "--csv",
                                 "items.csv",    "--output",  "out"};
        const TToolResult result = Run(import);
        QCOMPARE(result.status, is_refused ? 1 : 0);
        QCOMPARE(result.errors.contains("items.csv: line 3, column 1: the position "), is_refused);
        QCOMPARE(QFile::exists(Path("out")), !is_refused);
        QCOMPARE(Run(import + QStringList{"--any-place", "--force"}).status, 0);
    }

    void file_names_that_are_not_utf_8_are_not_skipped()
    {
        QDir(d_folder->path()).mkdir("images");
        Write("images/a.png", Picture());
        const QByteArray name = QFile::encodeName(Path("images/b")) + "\xff.png";
        QCOMPARE(rename(QFile::encodeName(Path("images/a.png")).constData(), name.constData()), 0);
        const TToolResult result = Run({"create", "images", "--output", "out"});
        QCOMPARE(result.status, 1);
        QVERIFY2(result.errors.startsWith("quillet-cli: images/b") &&
                     result.errors.endsWith(".png: the name is not valid UTF-8\n"),
                 qPrintable(result.errors));
        QVERIFY(!QFile::exists(Path("out")));
        // Qt does not find this file to remove it.
        QCOMPARE(std::remove(name.constData()), 0);
    }

    void lost_characters_of_a_name_are_a_warning()
    {
        const QString name = QString::fromUtf8("Ω\x01");
        Write(name + ".png", Picture());
        const TToolResult result =
            Run({"create", name + ".png", "--names-from-files", "--output", "out"});
        QCOMPARE(result.status, 0);
        QCOMPARE(result.errors,
                 QString("quillet-cli: out: warning: name of page 1: characters that a project "
                         "cannot store are lost\n"));
    }

    void reindex_refuses_numbers_that_overflow_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("step");
        QTest::addColumn<int>("status");
        QTest::newRow("last number") << "2147483647"
                                     << "1" << 0;
        QTest::newRow("within a page") << "2147483647"
                                       << "10" << 1;
        QTest::newRow("by a step") << "2147483640"
                                   << "100" << 1;
    }
    void reindex_refuses_numbers_that_overflow()
    {
        QFETCH(const QString, first);
        QFETCH(const QString, step);
        QFETCH(const int, status);
        const QByteArray one = Support::Item_List(Label("1", "1.00,1.00"));
        const int count = status == 0 ? 1 : 2;
        Write("a.quillet", Support::Header(32, "#0a141e", "", "", count) +
                               Support::Page_Record("a", Picture(), one).repeated(count));
        const TToolResult result =
            Run({"reindex", "a.quillet", "--first", first, "--over-page", step, "--output", "out"});
        QCOMPARE(result.status, status);
        QCOMPARE(result.errors.contains("the numbers would become larger than 2147483647"),
                 status == 1);
        QCOMPARE(QFile::exists(Path("out")), status == 0);
    }

    void check_prints_json()
    {
        Write("a.quillet", Project(Cut_Picture()) + "x");
        const TToolResult result = Run({"check", "a.quillet", "missing", "--json"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors, QString());
        const QJsonArray files = QJsonDocument::fromJson(result.output.toUtf8()).array();
        QCOMPARE(files.size(), 2);
        const QJsonObject file = files.at(0).toObject();
        QCOMPARE(file["file"].toString(), QString("a.quillet"));
        const QJsonObject defect = file["defects"].toArray().at(0).toObject();
        QCOMPARE(defect["page"].toInt(), 1);
        QCOMPARE(defect["byte"].toInt(), 40);
        QVERIFY(defect["message"].toString().startsWith("page 1: the image is damaged from row "));
        QCOMPARE(file["warnings"].toArray().size(), 1);
        QCOMPARE(files.at(1).toObject()["defects"].toArray().at(0).toObject()["message"].toString(),
                 QString("cannot be read: No such file or directory"));
    }
};

QTEST_MAIN(TestCliHostile)
#include "test_clihostile.moc"
