// Messages in the status bar after saving, exporting and importing, and when idle.

#include "support/modal.h"
#include "support/pages.h"
#include "support/support.h"
#include "support/widgets.h"
#include "support/window.h"

#include "src/displaywidget.h"
#include "src/pagewidget.h"
#include "src/safety/safetynet.h"
#include "src/widgets/documentname.h"

#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>

using Support::Run_Answering;

class TestStatusLine : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void a_save_names_the_document();
    void a_save_that_fails_shows_only_the_message_box();
    void an_incomplete_save_stays_on_the_status_bar();
    void a_message_about_another_version_is_not_replaced();
    void a_save_over_another_file_names_its_backup();
    void an_import_counts_images_data();
    void an_import_counts_images();
    void a_cancelled_import_shows_no_message();
    void exported_images_are_counted_data();
    void exported_images_are_counted();
    void an_image_that_cannot_be_written_is_named();
    void a_report_is_named_data();
    void a_report_is_named();
    void a_report_that_cannot_be_written_is_named();
    void a_full_disk_is_named_data();
    void a_full_disk_is_named();
    void an_export_without_pages_shows_no_message();
    void the_idle_line_names_the_document();
    void the_idle_line_marks_unsaved_changes();
    void the_idle_line_is_hidden_during_messages();

private:
    QString In(const QString& name) const { return d_folder->filePath(name); }
    QString Line() const { return d_window->statusBar()->currentMessage(); }
    QString Idle_Line() const { return Support::Only<TDocumentName>(*d_window)->text(); }
    void Add_Pages(int count);
    bool Export_Report(const QString& name);

    std::unique_ptr<QTemporaryDir> d_folder;
    std::unique_ptr<TOpenWindow> d_window;
};

void TestStatusLine::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
    d_window = Support::New_Window(32, Qt::red);
}

void TestStatusLine::cleanup()
{
    // The next window would show a notice about unsaved work.
    d_window->d_safety_net->Discard();
    d_window.reset();
    d_folder.reset();
}

void TestStatusLine::Add_Pages(int count)
{
    for (int page = 0; page < count; ++page)
        Support::Add_Page(d_window.get(), Support::Picture(30, 20));
}

/// Exports all pages as a report.
bool TestStatusLine::Export_Report(const QString& name)
{
    TQuillet::TReportSettings settings;
    settings.resolution = 1;
    return d_window->Export_PDF(In(name), d_window->d_page_widget->Page_Ids(), settings);
}

void TestStatusLine::a_save_names_the_document()
{
    Add_Pages(1);
    QCOMPARE(Run_Answering([this] { d_window->File_SaveAs(); },
                           {Support::Choose({In("site-plan.quillet")})}),
             QString());
    QCOMPARE(Line(), QString("Saved site-plan.quillet"));
    d_window->statusBar()->clearMessage();
    d_window->File_Save();
    QCOMPARE(Line(), QString("Saved site-plan.quillet"));
}

void TestStatusLine::a_save_that_fails_shows_only_the_message_box()
{
    d_window->d_file_name = In("missing/a.quillet");
    QCOMPARE(Run_Answering([this] { d_window->File_Save(); }, {Support::Press(QMessageBox::Ok)}),
             QString());
    QCOMPARE(Line(), QString());
}

void TestStatusLine::an_incomplete_save_stays_on_the_status_bar()
{
    d_window->d_file_name = "/dev/full";
    d_window->File_Save();
    QCOMPARE(Line(), QString("full was not written completely"));
}

void TestStatusLine::a_message_about_another_version_is_not_replaced()
{
    Add_Pages(1);
    d_window->d_file_name = In("a.quillet");
    d_window->File_Save();
    Support::Write_File(In("a.quillet"), Support::Empty_Project());
    d_window->File_Save();
    QVERIFY(Line().startsWith("Another program changed the document."));
    d_window->File_Save();
    QCOMPARE(Line(), QString("Saved a.quillet"));
}

void TestStatusLine::a_save_over_another_file_names_its_backup()
{
    Add_Pages(1);
    Support::Write_File(In("a.quillet"), "of another program");
    d_window->d_file_name = In("a.quillet");
    d_window->File_Save();
    const QString begin = "The replaced file is in ";
    QVERIFY(Line().startsWith(begin));
    QCOMPARE(Support::Read_File(Line().mid(begin.size())), QByteArray("of another program"));
    d_window->File_Save();
    QCOMPARE(Line(), QString("Saved a.quillet"));
}

void TestStatusLine::an_import_counts_images_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("line");
    QTest::newRow("one") << QStringList{"1.png"} << "Imported 1 image";
    QTest::newRow("two") << QStringList{"1.png", "2.png"} << "Imported 2 images";
    QTest::newRow("one of them no image") << QStringList{"1.png", "%1.txt", "2.png"}
                                          << "Imported 2 of 3 images; %1.txt is not an image";
    QTest::newRow("several no images")
        << QStringList{"%1.txt", "1.png", "3.png", "4.png"}
        << "Imported 1 of 4 images; %1.txt and 2 more are not images";
}

void TestStatusLine::an_import_counts_images()
{
    QFETCH(QStringList, names);
    for (const char* const name : {"1.png", "2.png"})
        Support::Write_File(In(name), Support::Png(Support::Picture(30, 20)));
    Support::Write_File(In("%1.txt"), "notes");
    QStringList paths;
    for (const QString& name : std::as_const(names))
        paths += In(name);
    d_window->Import_Files(paths);
    QTEST(Line(), "line");
}

void TestStatusLine::a_cancelled_import_shows_no_message()
{
    QCOMPARE(Run_Answering([this] { d_window->File_Import(); }, {Support::Cancel()}), QString());
    QCOMPARE(Line(), QString());
}

void TestStatusLine::exported_images_are_counted_data()
{
    QTest::addColumn<int>("pages");
    QTest::addColumn<QString>("line");
    QTest::newRow("one") << 1 << "Exported 1 page to scans/";
    QTest::newRow("three") << 3 << "Exported 3 pages to scans/";
}

void TestStatusLine::exported_images_are_counted()
{
    QFETCH(int, pages);
    Add_Pages(pages);
    QVERIFY(QDir(d_folder->path()).mkdir("scans"));
    d_window->d_working_dir.setPath(d_folder->path());
    QCOMPARE(
        Run_Answering([this] { d_window->File_Export_Images(); }, {Support::Choose({In("scans")})}),
        QString());
    QTEST(Line(), "line");
}

void TestStatusLine::an_image_that_cannot_be_written_is_named()
{
    Add_Pages(2);
    QVERIFY(!d_window->Export_Images(In("missing"), d_window->d_page_widget->Page_Ids()));
    QVERIFY2(Line().startsWith("Could not write Page 1-") &&
                 Line().endsWith("1.png: No such file or directory"),
             qPrintable(Line()));
}

void TestStatusLine::a_report_is_named_data()
{
    QTest::addColumn<int>("pages");
    QTest::addColumn<QString>("line");
    QTest::newRow("one") << 1 << "Exported 1 page to report %2.pdf";
    QTest::newRow("two") << 2 << "Exported 2 pages to report %2.pdf";
}

void TestStatusLine::a_report_is_named()
{
    QFETCH(int, pages);
    Add_Pages(pages);
    QVERIFY(Export_Report("report %2.pdf"));
    QTEST(Line(), "line");
}

void TestStatusLine::a_report_that_cannot_be_written_is_named()
{
    Add_Pages(1);
    QVERIFY(!Export_Report("missing/report.pdf"));
    QCOMPARE(Line(), QString("Could not write report.pdf: No such file or directory"));
}

void TestStatusLine::a_full_disk_is_named_data()
{
    QTest::addColumn<bool>("is_report");
    QTest::newRow("report") << true;
    QTest::newRow("image") << false;
}

void TestStatusLine::a_full_disk_is_named()
{
    QFETCH(bool, is_report);
    Add_Pages(1);
    const Support::TChildResult result = Support::Run_In_Child([this, is_report] {
        Support::Limit_File_Size(20);
        if (is_report)
            Export_Report("report.pdf");
        else
            d_window->Export_Images(d_folder->path(), d_window->d_page_widget->Page_Ids());
        // The size limit of a process has an error message of its own.
        return Line().endsWith(".p" + QString(is_report ? "df" : "ng") + ": File too large") ? 0
                                                                                             : 1;
    });
    QCOMPARE(result.exit_code, 0);
}

void TestStatusLine::an_export_without_pages_shows_no_message()
{
    QVERIFY(!d_window->Export_Images(d_folder->path(), {}));
    QVERIFY(!Export_Report("report.pdf"));
    QCOMPARE(Line(), QString());
}

void TestStatusLine::the_idle_line_names_the_document()
{
    QCOMPARE(Idle_Line(), QString("New document"));
    Add_Pages(1);
    QCOMPARE(Run_Answering([this] { d_window->File_SaveAs(); },
                           {Support::Choose({In("site-plan.quillet")})}),
             QString());
    QCOMPARE(Idle_Line(), QString("site-plan.quillet"));
    d_window->File_New();
    QCOMPARE(Idle_Line(), QString("New document"));
    d_window->Open_File(In("site-plan.quillet"));
    QCOMPARE(Idle_Line(), QString("site-plan.quillet"));
}

void TestStatusLine::the_idle_line_marks_unsaved_changes()
{
    QVERIFY(QTest::qWaitForWindowActive(d_window.get()));
    Add_Pages(2);
    Support::Show_Page(d_window.get(), 1);
    QCOMPARE(Idle_Line(), QString("New document"));
    d_window->Add_Item(QPointF(10, 10));
    QCOMPARE(Idle_Line(), QString("New document *"));
    Support::Show_Page(d_window.get(), 2);
    QCOMPARE(Idle_Line(), QString("New document *"));
    d_window->d_file_name = In("a.quillet");
    d_window->File_Save();
    QCOMPARE(Idle_Line(), QString("a.quillet"));
    // Showing a page with labels is no change.
    Support::Show_Page(d_window.get(), 1);
    QCOMPARE(Idle_Line(), QString("a.quillet"));
    QTest::keyClick(d_window.get(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(Idle_Line(), QString("a.quillet *"));
}

void TestStatusLine::the_idle_line_is_hidden_during_messages()
{
    QVERIFY(QTest::qWaitForWindowActive(d_window.get()));
    const auto* const name = Support::Only<TDocumentName>(*d_window);
    QVERIFY(name->isVisible());
    Add_Pages(1);
    d_window->d_file_name = In("a long name of a document.quillet");
    d_window->File_Save();
    d_window->statusBar()->clearMessage();
    QCoreApplication::processEvents();
    const QWidget* const zoom = d_window->d_zoom_slider->parentWidget();
    const QRect place = zoom->geometry();
    d_window->File_Save();
    QCoreApplication::processEvents();
    QCOMPARE(Line(), QString("Saved a long name of a document.quillet"));
    QVERIFY(!name->isVisible());
    QCOMPARE(zoom->geometry(), place);
    d_window->statusBar()->clearMessage();
    QVERIFY(name->isVisible());
    QCoreApplication::processEvents();
    QVERIFY(name->x() < zoom->x());
    QCOMPARE(zoom->geometry(), place);
}

QTEST_MAIN(TestStatusLine)
#include "test_statusline.moc"
