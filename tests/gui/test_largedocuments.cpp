// Large documents, whose images stay in the file, and what other programs do to that file.

#include "support/project.h"
#include "support/support.h"
#include "support/window.h"

#include "src/labelwidget.h"
#include "src/model/pixelstore.h"
#include "src/pagewidget.h"
#include "src/safety/backup.h"
#include "src/safety/safetynet.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <unistd.h>

using Support::Describe;
using Support::Field;
using Support::Header;
using Support::Item_Element;
using Support::Item_List;
using Support::Number;
using Support::Page_Record;

namespace {

constexpr int pages = 3;

QImage Picture(int page)
{
    return Support::Picture(60, 40, page);
}

/// A picture followed by so many bytes that three of them are a large document. Decoders ignore
/// what follows the end of a PNG image.
QByteArray Large_Png(int page)
{
    return Support::Png(Picture(page)) + QByteArray(6 * 1024 * 1024, char('a' + page));
}

QByteArray Labels(int value)
{
    return Item_List(Item_Element("1", QByteArray::number(value), "", "2", "1.00,2.00"));
}

/// @param first_value  of the label on the first page.
QByteArray Large_Document(int first_value = 100)
{
    QByteArray bytes = Header(40, "#0a141e", "", "", pages);
    for (int page = 0; page < pages; ++page)
        bytes += Page_Record("p" + QByteArray::number(page), Large_Png(page),
                             Labels(page == 0 ? first_value : 100 + page));
    return bytes;
}

/// Makes the next use of each image read its bytes.
void Empty_Pixel_Store()
{
    TPixelStore& store = TPixelStore::Shared();
    store.Insert(&store, QImage(8192, 8192, QImage::Format_RGB32));
    store.Remove(&store);
    QCOMPARE(store.Bytes(), qint64(0));
}

QStringList Contents()
{
    QStringList lines;
    for (int page = 0; page < pages; ++page)
        lines += {QStringLiteral("page %1 p%2 60x40").arg(page + 1).arg(page),
                  QStringLiteral("label 1 %1 '' 2 1,2").arg(100 + page)};
    return lines;
}

} // namespace

class TestLargeDocuments : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void a_file_beyond_2_gib_is_opened();
    void the_images_of_a_large_file_stay_in_it();
    void the_images_of_a_small_file_are_in_memory();
    void images_survive_a_file_that_another_program_data();
    void images_survive_a_file_that_another_program();
    void lost_images_are_placeholders_and_named_data();
    void lost_images_are_placeholders_and_named();
    void labels_of_lost_images_are_saved_and_the_other_version_is_kept();
    void a_lost_image_whose_pixels_are_cached_is_saved();
    void a_file_with_two_names_is_overwritten_without_losing_images();
    void a_file_with_two_names_is_saved_again_and_again();
    void without_room_for_its_images_a_file_with_two_names_is_not_opened_for_saving();
    void an_unchanged_document_is_saved_with_the_same_bytes();
    void saving_under_another_name_keeps_the_images();

private:
    QString Path(const QString& name = QStringLiteral("large.quillet")) const
    {
        return d_folder->filePath(name);
    }
    QString Line() const { return d_window->statusBar()->currentMessage(); }
    void Open();
    void Overwrite_In_Place() const;
    QImage Image(int page) const { return d_window->d_data.Pages()[std::size_t(page)].image; }
    QString Wrong_Images() const;

    std::unique_ptr<QTemporaryDir> d_folder;
    std::unique_ptr<TOpenWindow> d_window;
};

void TestLargeDocuments::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
    d_window = std::make_unique<TOpenWindow>();
    Support::Write_File(Path(), Large_Document());
}

void TestLargeDocuments::cleanup()
{
    d_window.reset();
    d_folder.reset();
    qunsetenv("TMPDIR");
}

void TestLargeDocuments::Open()
{
    d_window->Open_Arguments({Path()});
    QCOMPARE(Describe(d_window.get()), Contents());
}

/// Writes another document of the same size into the file, as cp does.
void TestLargeDocuments::Overwrite_In_Place() const
{
    QByteArray other = Large_Document();
    other.replace(Support::Png(Picture(0)), QByteArray(Support::Png(Picture(0)).size(), 'x'));
    // A change within a clock tick would leave the time as it is.
    QTest::qSleep(20);
    QFile file(Path());
    QVERIFY(file.open(QIODevice::ReadWrite));
    QCOMPARE(file.write(other), qint64(other.size()));
}

/// Names the pages whose image is not their picture.
QString TestLargeDocuments::Wrong_Images() const
{
    QString names;
    for (int page = 0; page < pages; ++page) {
        if (!Support::Difference(Image(page), Picture(page)).isEmpty())
            names += QString::number(page);
    }
    return names;
}

void TestLargeDocuments::a_file_beyond_2_gib_is_opened()
{
    // Two images of 1.5 GiB, which take no space on the disk and cannot be decoded.
    constexpr int hole = 1536 * 1024 * 1024;
    QFile file(Path());
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(Header(40, "#0a141e", "", "", 3));
    for (int page = 0; page < 2; ++page) {
        file.write(Field("p" + QByteArray::number(page)) + Number(hole));
        QVERIFY(file.seek(file.pos() + hole));
        file.write(Field(Labels(100 + page)));
    }
    file.write(Page_Record("p2", Support::Png(Picture(2)), Labels(102)));
    file.close();
    QVERIFY(file.size() > 0xc0000000);
    QVERIFY(d_window->Load_Data(Path()));
    QCOMPARE(Describe(d_window.get()),
             QStringList({"page 1 p0 0x0", "label 1 100 '' 2 1,2", "page 2 p1 0x0",
                          "label 1 101 '' 2 1,2", "page 3 p2 60x40", "label 1 102 '' 2 1,2"}));
    QCOMPARE(Support::Difference(Image(2), Picture(2)), QString());
}

void TestLargeDocuments::the_images_of_a_large_file_stay_in_it()
{
    Open();
    for (const TPageItem& page : d_window->d_data.Pages())
        QVERIFY(!page.image.Stored_Source().Is_In_Memory());
}

void TestLargeDocuments::the_images_of_a_small_file_are_in_memory()
{
    Support::Write_File(Path(), Header(40, "#0a141e", "", "", 1) +
                                    Page_Record("p0", Support::Png(Picture(0)), Labels(100)));
    d_window->Open_Arguments({Path()});
    QVERIFY(d_window->d_data.Pages()[0].image.Stored_Source().Is_In_Memory());
    Support::Write_File(Path(), "other content");
    QCOMPARE(Support::Difference(Image(0), Picture(0)), QString());
}

void TestLargeDocuments::images_survive_a_file_that_another_program_data()
{
    QTest::addColumn<QString>("action");
    QTest::newRow("deletes") << "delete";
    QTest::newRow("renames") << "rename";
    QTest::newRow("replaces") << "replace";
}

void TestLargeDocuments::images_survive_a_file_that_another_program()
{
    QFETCH(const QString, action);
    Open();
    Empty_Pixel_Store();
    if (action == "delete")
        QVERIFY(QFile::remove(Path()));
    if (action == "rename")
        QVERIFY(QFile::rename(Path(), Path("other")));
    if (action == "replace") {
        Support::Write_File(Path("new"), "other content");
        QCOMPARE(std::rename(qPrintable(Path("new")), qPrintable(Path())), 0);
    }
    QCOMPARE(Wrong_Images(), QString());
    QVERIFY(d_window->Save_Data(Path("saved")));
    QVERIFY(Support::Read_File(Path("saved")) == Large_Document());
}

void TestLargeDocuments::lost_images_are_placeholders_and_named_data()
{
    QTest::addColumn<bool>("is_truncated");
    QTest::newRow("truncates") << true;
    QTest::newRow("overwrites in place") << false;
}

void TestLargeDocuments::lost_images_are_placeholders_and_named()
{
    QFETCH(const bool, is_truncated);
    Open();
    const QList<int> ids = d_window->d_page_widget->Page_Ids();
    d_window->d_page_widget->Set_Active_Page(ids[0]);
    Empty_Pixel_Store();
    if (is_truncated)
        QVERIFY(QFile::resize(Path(), 100));
    else
        Overwrite_In_Place();
    // Of the size that the page had, gray, with two lines from corner to corner.
    for (int page = 0; page < pages; ++page) {
        QCOMPARE(Image(page).size(), QSize(60, 40));
        QCOMPARE(Image(page).pixelColor(30, 2), QColor(Qt::lightGray));
        QCOMPARE(Image(page).pixelColor(30, 20), QColor(Qt::gray));
    }
    d_window->d_page_widget->Set_Active_Page(ids[1]);
    QCOMPARE(Line(), QString("Another program has overwritten the images of p0, p1, p2"));
    QCOMPARE(Describe(d_window.get()), Contents());
}

void TestLargeDocuments::labels_of_lost_images_are_saved_and_the_other_version_is_kept()
{
    Open();
    Empty_Pixel_Store();
    Overwrite_In_Place();
    const QByteArray other = Support::Read_File(Path());
    d_window->d_action_save->trigger();
    const TBackup backup(
        TSafetyNet::Backup_Folder(QDir::home().filePath(QStringLiteral(".quillet"))));
    const QStringList kept = backup.Separate_Paths_For(Path());
    QCOMPARE(kept.size(), 1);
    QVERIFY(Support::Read_File(kept.first()) == other);
    QCOMPARE(Line(), "Another program changed the document. Its version is in " + kept.first() +
                         ". Another program has overwritten the images of p0, p1, p2");
    QByteArray expected = Header(40, "#0a141e", "", "", pages);
    for (int page = 0; page < pages; ++page)
        expected += Page_Record("p" + QByteArray::number(page), "", Labels(100 + page));
    QCOMPARE(Support::Byte_Difference(Support::Read_File(Path()), expected), QString());
}

void TestLargeDocuments::a_lost_image_whose_pixels_are_cached_is_saved()
{
    Open();
    Empty_Pixel_Store();
    QCOMPARE(Support::Difference(Image(1), Picture(1)), QString());
    QVERIFY(QFile::resize(Path(), 100));
    QVERIFY(d_window->Save_Data(Path("saved")));
    QByteArray expected = Header(40, "#0a141e", "", "", pages);
    for (int page = 0; page < pages; ++page)
        expected +=
            Page_Record("p" + QByteArray::number(page),
                        page == 1 ? Support::Png(Picture(1)) : QByteArray(), Labels(100 + page));
    QCOMPARE(Support::Byte_Difference(Support::Read_File(Path("saved")), expected), QString());
    QCOMPARE(Line(), QString("Another program has overwritten the images of p0, p2"));
}

void TestLargeDocuments::a_file_with_two_names_is_overwritten_without_losing_images()
{
    QCOMPARE(link(qPrintable(Path()), qPrintable(Path("second"))), 0);
    Open();
    d_window->d_data.Set_Active_Page(d_window->d_page_widget->Page_Ids()[0]);
    QVERIFY(d_window->d_data.Change_Item_Value(1, 7));
    Empty_Pixel_Store();
    QVERIFY(d_window->Save_Data(Path()));
    QCOMPARE(Wrong_Images(), QString());
    QVERIFY(Support::Read_File(Path("second")) == Large_Document(7));
    QCOMPARE(Line(), QString());
}

void TestLargeDocuments::a_file_with_two_names_is_saved_again_and_again()
{
    QCOMPARE(link(qPrintable(Path()), qPrintable(Path("second"))), 0);
    Open();
    for (int time = 0; time < 3; ++time) {
        QVERIFY(d_window->Save_Data(Path()));
        QVERIFY(Support::Read_File(Path("second")) == Large_Document());
    }
    QCOMPARE(Wrong_Images(), QString());
}

void TestLargeDocuments::
    without_room_for_its_images_a_file_with_two_names_is_not_opened_for_saving()
{
    QCOMPARE(link(qPrintable(Path()), qPrintable(Path("second"))), 0);
    Open();
    qputenv("TMPDIR", QFile::encodeName(Path("missing folder")));
    QVERIFY(!d_window->Save_Data(Path()));
    QCOMPARE(d_window->d_error_text, QString("Cannot open file for writing"));
    QVERIFY(Support::Read_File(Path("second")) == Large_Document());
    QCOMPARE(Wrong_Images(), QString());
}

void TestLargeDocuments::an_unchanged_document_is_saved_with_the_same_bytes()
{
    Open();
    for (int time = 0; time < 2; ++time) {
        d_window->d_action_save->trigger();
        QCOMPARE(Support::Byte_Difference(Support::Read_File(Path()), Large_Document()), QString());
    }
    QCOMPARE(Wrong_Images(), QString());
}

void TestLargeDocuments::saving_under_another_name_keeps_the_images()
{
    Open();
    QVERIFY(d_window->Save_Data(Path("other")));
    QVERIFY(QFile::remove(Path()));
    Empty_Pixel_Store();
    QCOMPARE(Wrong_Images(), QString());
    QVERIFY(Support::Read_File(Path("other")) == Large_Document());
}

QTEST_MAIN(TestLargeDocuments)
#include "test_largedocuments.moc"
