// Import of page images: the dialog, the new pages, and skipped files.

#include "support/modal.h"
#include "support/support.h"
#include "support/window.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/safety/safetynet.h"

#include <QAction>
#include <QFileDialog>
#include <QTemporaryDir>
#include <QTest>

class TestImport : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void the_dialog_opens_in_the_working_folder_for_several_images();
    void cancelling_only_updates_the_actions();
    void three_images_become_three_pages_in_order();
    void an_import_marks_the_document_as_changed_and_sets_the_working_folder();
    void the_next_dialog_opens_in_that_folder();
    void a_file_that_is_not_an_image_is_skipped();
    void an_unreadable_first_file_still_sets_the_working_folder();
    void an_empty_active_page_is_filled();
    void the_second_image_of_a_selection_fills_the_page_again_while_it_has_no_labels();
    void an_import_never_fills_a_page_with_labels();
    void every_format_of_the_filter_is_read_data();
    void every_format_of_the_filter_is_read();
    void an_image_that_declares_too_many_pixels_is_not_decoded();

private:
    QString Import(const QStringList& paths);
    QString Picture_File(const QString& name, int seed) const;
    QImage Page_Image(int page_id) const;

    std::unique_ptr<TOpenWindow> d_window;
    std::unique_ptr<QTemporaryDir> d_folder;
};

void TestImport::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
    d_window = std::make_unique<TOpenWindow>();
    d_window->d_working_dir.setPath(d_folder->path());
}

void TestImport::cleanup()
{
    d_window->d_safety_net->Discard();
    d_window.reset();
    d_folder.reset();
}

/// Imports through the menu's action and the dialog.
QString TestImport::Import(const QStringList& paths)
{
    return Support::Run_Answering([this] { d_window->d_action_import->trigger(); },
                                  {Support::Choose(paths)});
}

QString TestImport::Picture_File(const QString& name, int seed) const
{
    const QString path = d_folder->filePath(name);
    if (!Support::Picture(60 + seed, 40, seed).save(path))
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

QImage TestImport::Page_Image(int page_id) const
{
    const int active = d_window->d_data.Active_Page();
    d_window->d_data.Set_Active_Page(page_id);
    const QImage image = d_window->d_data.Page_Image();
    d_window->d_data.Set_Active_Page(active);
    return image;
}

void TestImport::the_dialog_opens_in_the_working_folder_for_several_images()
{
    const QString fault = Support::Run_Answering(
        [this] { d_window->File_Import(); }, {[this](QWidget* widget) {
            auto* dialog = qobject_cast<QFileDialog*>(widget);
            QVERIFY(dialog);
            QCOMPARE(dialog->windowTitle(),
                     QStringLiteral("Import one or more supported image files"));
            QCOMPARE(dialog->fileMode(), QFileDialog::ExistingFiles);
            QCOMPARE(dialog->acceptMode(), QFileDialog::AcceptOpen);
            QCOMPARE(dialog->nameFilters(), QStringList({"Image Files (*.bmp *.gif *.jpg *.jpeg "
                                                         "*.png *.pbm *.pgm *.ppm *.xbm *.xpm)"}));
            QCOMPARE(dialog->directory().absolutePath(), d_folder->path());
            QCOMPARE(dialog->parentWidget(), static_cast<QWidget*>(d_window.get()));
            dialog->reject();
        }});
    QCOMPARE(fault, QString());
}

void TestImport::cancelling_only_updates_the_actions()
{
    d_window->d_action_save->setEnabled(true);
    QCOMPARE(Support::Run_Answering([this] { d_window->File_Import(); }, {Support::Cancel()}),
             QString());
    QVERIFY(!d_window->d_action_save->isEnabled());
    QCOMPARE(d_window->d_data.Page_Count(), 0);
    QVERIFY(!d_window->d_data_changed);
    QCOMPARE(d_window->d_working_dir.absolutePath(), d_folder->path());
}

void TestImport::three_images_become_three_pages_in_order()
{
    QCOMPARE(Import({Picture_File("c.png", 1), Picture_File("a.png", 2), Picture_File("b.png", 3)}),
             QString());
    QCOMPARE(d_window->d_page_widget->Page_Ids(), QList<int>({1, 2, 3}));
    QCOMPARE(d_window->d_page_widget->Page_Name(2), QStringLiteral("Page 2"));
    for (int page = 1; page <= 3; ++page)
        QCOMPARE(Support::Difference(Page_Image(page), Support::Picture(60 + page, 40, page)),
                 QString());
    for (QAction* action : {d_window->d_action_export_images, d_window->d_action_export_pdf,
                            d_window->d_action_reindex, d_window->d_action_save})
        QVERIFY(action->isEnabled());
    // A new page is not selected.
    QCOMPARE(d_window->d_data.Active_Page(), -1);
}

void TestImport::an_import_marks_the_document_as_changed_and_sets_the_working_folder()
{
    QDir(d_folder->path()).mkdir("scans");
    QCOMPARE(Import({Picture_File("scans/a.png", 1)}), QString());
    QVERIFY(d_window->d_data_changed);
    QCOMPARE(d_window->d_working_dir.absolutePath(), d_folder->filePath("scans"));
}

void TestImport::the_next_dialog_opens_in_that_folder()
{
    QDir(d_folder->path()).mkdir("scans");
    QCOMPARE(Import({Picture_File("scans/a.png", 1)}), QString());
    QString folder;
    QCOMPARE(Support::Run_Answering(
                 [this] { d_window->File_Import(); }, {[&folder](QWidget* dialog) {
                     folder = qobject_cast<QFileDialog*>(dialog)->directory().absolutePath();
                     qobject_cast<QFileDialog*>(dialog)->reject();
                 }}),
             QString());
    QCOMPARE(folder, d_folder->filePath("scans"));
}

void TestImport::a_file_that_is_not_an_image_is_skipped()
{
    Support::Write_File(d_folder->filePath("broken.png"), "no image at all");
    QCOMPARE(Import({Picture_File("a.png", 1), d_folder->filePath("broken.png"),
                     Picture_File("b.png", 2)}),
             QString());
    QCOMPARE(d_window->d_page_widget->Page_Ids(), QList<int>({1, 2}));
    QCOMPARE(Support::Difference(Page_Image(2), Support::Picture(62, 40, 2)), QString());
}

void TestImport::an_unreadable_first_file_still_sets_the_working_folder()
{
    QDir(d_folder->path()).mkdir("scans");
    Support::Write_File(d_folder->filePath("scans/broken.png"), "no image at all");
    QCOMPARE(Import({d_folder->filePath("scans/broken.png")}), QString());
    QCOMPARE(d_window->d_data.Page_Count(), 0);
    QVERIFY(d_window->d_data_changed);
    QCOMPARE(d_window->d_working_dir.absolutePath(), d_folder->filePath("scans"));
    QVERIFY(!d_window->d_action_save->isEnabled());
}

void TestImport::an_empty_active_page_is_filled()
{
    d_window->Add_Page();
    d_window->d_page_widget->Set_Active_Page(1);
    QVERIFY(!d_window->d_label_widget->isEnabled());
    QCOMPARE(Import({Picture_File("a.png", 1)}), QString());
    QCOMPARE(d_window->d_page_widget->Page_Ids(), QList<int>({1}));
    QVERIFY(d_window->d_label_widget->isEnabled());
    const QImage shown = d_window->d_display_widget->Background_Pixmap().toImage();
    QCOMPARE(Support::Difference(shown, Support::Picture(61, 40, 1)), QString());
}

void TestImport::the_second_image_of_a_selection_fills_the_page_again_while_it_has_no_labels()
{
    d_window->Add_Page();
    d_window->d_page_widget->Set_Active_Page(1);
    QCOMPARE(Import({Picture_File("a.png", 1), Picture_File("b.png", 2)}), QString());
    QCOMPARE(d_window->d_page_widget->Page_Ids(), QList<int>({1}));
    QCOMPARE(Support::Difference(Page_Image(1), Support::Picture(62, 40, 2)), QString());
}

void TestImport::an_import_never_fills_a_page_with_labels()
{
    QCOMPARE(Import({Picture_File("a.png", 1)}), QString());
    d_window->d_page_widget->Set_Active_Page(1);
    d_window->Add_Item();
    QCOMPARE(Import({Picture_File("b.png", 2)}), QString());
    QCOMPARE(d_window->d_page_widget->Page_Ids(), QList<int>({1, 2}));
    QCOMPARE(d_window->d_data.Active_Page(), 1);
    QCOMPARE(Support::Difference(Page_Image(1), Support::Picture(61, 40, 1)), QString());
}

void TestImport::every_format_of_the_filter_is_read_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<bool>("monochrome");
    for (const char* suffix : {"bmp", "jpg", "jpeg", "png", "ppm", "xpm"})
        QTest::newRow(suffix) << suffix << false;
    for (const char* suffix : {"pbm", "pgm", "xbm"})
        QTest::newRow(suffix) << suffix << true;
    QTest::newRow("gif") << "gif" << false;
}

void TestImport::every_format_of_the_filter_is_read()
{
    QFETCH(QString, suffix);
    QFETCH(bool, monochrome);
    const QString path = d_folder->filePath("picture." + suffix);
    // Qt reads GIF but cannot write it. This file has two pixels, black and white.
    const QByteArray gif = QByteArray::fromHex("4749463839610200010080000000000"
                                               "0ffffff2c000000000200010000020204"
                                               "0a003b");
    const QImage picture = monochrome
                               ? Support::Picture(20, 10).convertToFormat(QImage::Format_Mono)
                               : Support::Picture(20, 10);
    if (suffix == "gif")
        Support::Write_File(path, gif);
    else
        QVERIFY(picture.save(path));
    d_window->Load_Image(path);
    QCOMPARE(d_window->d_data.Page_Count(), 1);
    QCOMPARE(Support::Difference(Page_Image(1), QImage(path)), QString());
}

void TestImport::an_image_that_declares_too_many_pixels_is_not_decoded()
{
    // Qt could decode both images: black and white, 400 and 501.76 megapixels.
    const auto save = [this](const QString& name, int edge) {
        QImage picture(edge, edge, QImage::Format_Mono);
        picture.fill(0);
        QVERIFY(picture.save(d_folder->filePath(name)));
    };
    save("large.png", 20000);
    save("huge.png", 22400);
    d_window->Load_Image(d_folder->filePath("large.png"));
    QCOMPARE(d_window->d_data.Page_Count(), 1);
    d_window->Load_Image(d_folder->filePath("huge.png"));
    QCOMPARE(d_window->d_data.Page_Count(), 1);
}

QTEST_MAIN(TestImport)
#include "test_import.moc"
