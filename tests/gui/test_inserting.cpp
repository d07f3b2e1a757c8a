// Pages from image files and PDFs: drops, the page list's context menu, and the command line.

#include "support/inputfiles.h"
#include "support/modal.h"
#include "support/pages.h"
#include "support/project.h"
#include "support/support.h"
#include "support/window.h"

#include "src/displaywidget.h"
#include "src/pagewidget.h"
#include "src/undo/undohistory.h"
#include "src/widgets/rowlist.h"

#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QProgressBar>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <memory>

using Support::Run_Answering;

namespace {

const char* const small = "0 0 72 36"; // 150 x 75 pixels at 150 dpi
const char* const billions_of_pixels = "0 0 99999999999 99999999999";

QAction* Menu_Action(const TOpenWindow& window, const QString& text)
{
    const QList<QAction*> actions = window.d_page_widget->actions();
    const auto found =
        std::find_if(actions.cbegin(), actions.cend(),
                     [&text](const QAction* action) { return action->text() == text; });
    return found == actions.cend() ? nullptr : *found;
}

} // namespace

class TestInserting : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> d_folder;
    std::unique_ptr<TOpenWindow> d_window;

    QString Write(const QString& name, const QByteArray& content) const
    {
        const QString path = d_folder->filePath(name);
        Support::Write_File(path, content);
        return path;
    }

    QString Image(const QString& name, int width) const
    {
        return Write(name, Support::Png(Support::Picture(width, 40)));
    }

    QString Project(const QString& name) const
    {
        return Write(name, Support::Header(32, "#0a141e", "", "", 1) +
                               Support::Page_Record("Plan", Support::Png(Support::Picture(60, 40)),
                                                    Support::Item_List()));
    }

    /// Name and image size of each page, in the order of the list.
    QStringList Pages() const
    {
        QStringList pages;
        const QList<int> page_ids = d_window->d_page_widget->Page_Ids();
        for (const int page_id : page_ids) {
            const QSize size = d_window->d_data.Page(page_id).image.size();
            pages += QStringLiteral("%1 %2x%3")
                         .arg(d_window->d_page_widget->Page_Name(page_id))
                         .arg(size.width())
                         .arg(size.height());
        }
        return pages;
    }

    QString Message() const { return d_window->statusBar()->currentMessage(); }

    void Drop(const QStringList& paths) const { d_window->Insert_Dropped_Files(paths); }

    /// Triggers an action of the page list's menu and answers the dialogs.
    QString Trigger(const QString& text, std::vector<Support::TAnswer> answers) const
    {
        return Run_Answering([&] { Menu_Action(*d_window, text)->trigger(); }, std::move(answers));
    }

    /// Drops files and returns the informative text of the message box that opens.
    QString Message_Of_Drop(const QStringList& paths) const
    {
        QString text;
        const auto look = [&text](QMessageBox* box) { text = box->informativeText(); };
        const QString fault =
            Run_Answering([&] { Drop(paths); }, {Support::Look_And_Press(look, QMessageBox::Ok)});
        return fault.isEmpty() ? text : fault;
    }

    void Undo() const
    {
        // A message box stays the active window on the offscreen platform.
        QApplication::setActiveWindow(d_window.get());
        d_window->d_display_widget->setFocus();
        QTest::keyClick(d_window->d_display_widget, Qt::Key_Z, Qt::ControlModifier);
    }

private slots:
    void init()
    {
        d_folder = std::make_unique<QTemporaryDir>();
        d_window = std::make_unique<TOpenWindow>();
        d_window->show();
        QVERIFY(QTest::qWaitForWindowActive(d_window.get()));
    }

    void cleanup()
    {
        d_window->d_data_changed = false;
        d_window.reset();
    }

    void dropped_files_become_pages_at_the_end_sorted_by_name()
    {
        Support::Add_Page(d_window.get(), Support::Picture(50, 40));
        d_window->d_page_widget->Set_Active_Page(1);
        d_window->d_data_changed = false;
        Drop({Image("page 10.png", 61), Write("page 3.pdf", Support::Pdf({small, small})),
              Image("page 2.png", 62)});
        QCOMPARE(Pages(), QStringList({"Page 1 50x40", "Page 2 62x40", "Page 3 150x75",
                                       "Page 4 150x75", "Page 5 61x40"}));
        QVERIFY(d_window->d_data_changed);
        QVERIFY(d_window->d_action_save->isEnabled());
        QCOMPARE(d_window->d_working_dir.absolutePath(), d_folder->path());
    }

    void a_drop_never_fills_an_empty_page()
    {
        d_window->Add_Page();
        d_window->d_page_widget->Set_Active_Page(1);
        Drop({Image("a.png", 61)});
        QCOMPARE(Pages(), QStringList({"Page 1 0x0", "Page 2 61x40"}));
    }

    void a_drop_is_one_step()
    {
        Drop({Write("a.pdf", Support::Pdf({small, small, small})), Image("b.png", 61)});
        QCOMPARE(Message(), QStringLiteral("Inserted 4 pages"));
        QCOMPARE(Pages().size(), 4);
        Undo();
        QCOMPARE(Message(), QStringLiteral("Undone: insert 4 pages"));
        QCOMPARE(Pages(), QStringList());
        QTest::keyClick(d_window.get(), Qt::Key_Y, Qt::ControlModifier);
        QCOMPARE(Message(), QStringLiteral("Redone: insert 4 pages"));
        QCOMPARE(Pages().size(), 4);
    }

    void dropped_photos_are_turned_upright()
    {
        Drop({Write("a.jpg", Support::Exif_Jpeg(Support::Picture(60, 40), 6))});
        QCOMPARE(Pages(), QStringList({"Page 1 40x60"}));
    }

    void import_leaves_photos_as_stored()
    {
        d_window->Import_Files({Write("a.jpg", Support::Exif_Jpeg(Support::Picture(60, 40), 6))});
        QCOMPARE(Pages(), QStringList({"Page 1 60x40"}));
    }

    void all_pages_of_a_tiff_are_inserted()
    {
        Drop(
            {Write("a.tiff", Support::Tiff({Support::Picture(60, 40), Support::Picture(30, 20)}))});
        QCOMPARE(Pages(), QStringList({"Page 1 60x40", "Page 2 30x20"}));
    }

    void pages_before_a_bad_one_are_kept_and_the_error_is_shown()
    {
        QStringList texts;
        const auto look = [&texts](QMessageBox* box) {
            texts = QStringList{box->text(), box->informativeText()};
        };
        const QStringList paths{Write("a.pdf", Support::Pdf({small, billions_of_pixels, small})),
                                Write("b.pdf", QByteArray()), Image("c.png", 61)};
        QCOMPARE(
            Run_Answering([&] { Drop(paths); }, {Support::Look_And_Press(look, QMessageBox::Ok)}),
            QString());
        QVERIFY(texts[0].contains("Error Inserting Pages"));
        QVERIFY2(texts[1].contains("b.pdf: pdfinfo failed: Syntax Error: Document stream is empty"),
                 qPrintable(texts[1]));
        QVERIFY2(texts[1].contains("a.pdf: page 2: is larger than 500 megapixels at 150 dpi"),
                 qPrintable(texts[1]));
        QCOMPARE(Pages(), QStringList({"Page 1 150x75", "Page 2 61x40"}));
        Undo();
        QCOMPARE(Message(), QStringLiteral("Undone: insert 2 pages"));
        QCOMPARE(Pages(), QStringList());
    }

    void each_message_has_a_line_of_its_own()
    {
        const QString text =
            Message_Of_Drop({Write("a.pdf", QByteArray()), Write("b.pdf", QByteArray())});
        const QString fault = ": pdfinfo failed: Syntax Error: Document stream is empty";
        QVERIFY2(text.contains(">a.pdf" + fault + "<br>b.pdf" + fault + "<"), qPrintable(text));
    }

    void a_file_name_is_not_interpreted_as_rich_text()
    {
        const QString text = Message_Of_Drop({Write("<b>&amp;.pdf", QByteArray())});
        QVERIFY2(text.contains(">&lt;b&gt;&amp;amp;.pdf: "), qPrintable(text));
    }

    void a_message_box_shows_the_faults_first_and_only_five_messages()
    {
        const QVector<QByteArray> warned(29, small);
        const QString text = Message_Of_Drop({Write("a.pdf", Support::Pdf(warned, "nonsense")),
                                              Write("b.pdf", Support::Pdf({billions_of_pixels}))});
        const QStringList lines = text.split("<br>");
        QCOMPARE(lines.size(), 6);
        QVERIFY2(lines[0].contains("b.pdf: page 1: is larger than"), qPrintable(text));
        QVERIFY2(lines[4].startsWith("a.pdf: page 4: may be incomplete: "), qPrintable(text));
        QVERIFY2(lines[5].startsWith("and 25 more"), qPrintable(text));
        QCOMPARE(Pages().size(), 29);
    }

    void an_unreadable_image_is_skipped_with_a_line_in_the_status_bar()
    {
        Drop({Write("a.png", "no image"), Image("b.png", 61)});
        QCOMPARE(Pages(), QStringList({"Page 1 61x40"}));
        QCOMPARE(Message(), QString("Inserted 1 page. a.png is not an image"));
    }

    void a_dropped_file_that_is_no_image_is_named()
    {
        Drop({Image("a.png", 60), Write("notes.txt", "text"), Image("b.png", 61)});
        QCOMPARE(Pages(), QStringList({"Page 1 60x40", "Page 2 61x40"}));
        QCOMPARE(Message(), QString("Inserted 2 pages. notes.txt is not an image"));
    }

    void an_incomplete_page_is_kept_with_a_line_in_the_status_bar()
    {
        Drop({Write("a.pdf", Support::Pdf({small}, "nonsense"))});
        QCOMPARE(Pages(), QStringList({"Page 1 150x75"}));
        QVERIFY2(Message().startsWith("Inserted 1 page. a.pdf: page 1: may be incomplete: "),
                 qPrintable(Message()));
        QVERIFY2(!Message().contains("more"), qPrintable(Message()));
    }

    void the_status_bar_gives_the_first_of_many_messages()
    {
        Drop({Write("a.pdf", Support::Pdf({small, small, small}, "nonsense"))});
        QVERIFY2(Message().startsWith("Inserted 3 pages. a.pdf: page 1: may be incomplete: "),
                 qPrintable(Message()));
        QVERIFY2(Message().endsWith(" and 2 more"), qPrintable(Message()));
    }

    void files_without_any_page_change_nothing()
    {
        Drop({Write("a.png", "no image")});
        QCOMPARE(Message(), QString("No page inserted. a.png is not an image"));
        Drop({});
        QVERIFY(!d_window->d_data_changed);
        QVERIFY(!d_window->d_history->Can_Undo());
    }

    void a_long_insertion_shows_progress()
    {
        qint64 time = 0;
        QStringList texts;
        d_window->d_progress_clock = [&] {
            if (const auto* const bar = d_window->findChild<QProgressBar*>())
                texts += bar->text();
            return time += 600;
        };
        Drop({Write("a.pdf", Support::Pdf({small, small})), Image("b.png", 61)});
        texts.removeDuplicates();
        QCOMPARE(texts, QStringList(
                            {"Reading page 1 of 3", "Reading page 2 of 3", "Reading page 3 of 3"}));
        QVERIFY(!d_window->findChild<QProgressBar*>());
    }

    void the_menu_inserts_images_after_the_selected_pages()
    {
        for (const int width : {51, 52, 53})
            Support::Add_Page(d_window.get(), Support::Picture(width, 40));
        d_window->d_page_widget->Select_Pages({2, 1});
        QCOMPARE(Trigger("Insert Images Here ...",
                         {Support::Choose({Image("b.png", 62), Image("a.webp.png", 61)})}),
                 QString());
        QCOMPARE(Pages(), QStringList({"Page 1 51x40", "Page 2 52x40", "Page 4 61x40",
                                       "Page 5 62x40", "Page 3 53x40"}));
        Undo();
        QCOMPARE(Pages(), QStringList({"Page 1 51x40", "Page 2 52x40", "Page 3 53x40"}));
    }

    void the_menu_offers_all_accepted_images()
    {
        QStringList filters;
        const auto look = [&filters](QWidget* dialog) {
            filters = qobject_cast<QFileDialog*>(dialog)->nameFilters();
            Support::Cancel()(dialog);
        };
        QCOMPARE(Trigger("Insert Images Here ...", {look}), QString());
        QCOMPARE(filters,
                 QStringList({"Image Files (*.bmp *.gif *.jpeg *.jpg *.pbm *.pgm *.png *.ppm "
                              "*.tif *.tiff *.webp *.xbm *.xpm)"}));
        QVERIFY(!d_window->d_data_changed);
    }

    void the_menu_inserts_pages_of_a_pdf_in_the_chosen_resolution()
    {
        Support::Add_Page(d_window.get(), Support::Picture(51, 40));
        const auto resolution = [](QWidget* dialog) {
            auto* const editor = dialog->findChild<QSpinBox*>();
            QVERIFY(editor);
            QCOMPARE(editor->value(), 150);
            QCOMPARE(editor->minimum(), 36);
            QCOMPARE(editor->maximum(), 1200);
            editor->setValue(72);
        };
        QCOMPARE(Trigger("Insert pages from PDF ...",
                         {Support::Choose({Write("a.pdf", Support::Pdf({small, "0 0 50 60"}))}),
                          Support::Click("OK", resolution)}),
                 QString());
        QCOMPARE(Pages(), QStringList({"Page 1 51x40", "Page 2 72x36", "Page 3 50x60"}));
    }

    void no_page_is_inserted_without_a_resolution()
    {
        QCOMPARE(
            Trigger("Insert pages from PDF ...",
                    {Support::Choose({Write("a.pdf", Support::Pdf({small}))}), Support::Cancel()}),
            QString());
        QCOMPARE(Trigger("Insert pages from PDF ...", {Support::Cancel()}), QString());
        QCOMPARE(Pages(), QStringList());
    }

    void a_document_on_the_command_line_is_opened()
    {
        const QString path = Project("a.quillet");
        d_window->Open_Arguments({path});
        QCOMPARE(Pages(), QStringList({"Plan 60x40"}));
        QCOMPARE(d_window->d_file_name, path);
        QVERIFY(!d_window->d_data_changed);
        QVERIFY(d_window->d_action_save->isEnabled());
        QVERIFY(!d_window->d_history->Can_Undo());
    }

    void a_relative_path_on_the_command_line_becomes_absolute()
    {
        const QString before = QDir::currentPath();
        QDir::setCurrent(d_folder->path());
        Project("a.quillet");
        d_window->Open_Arguments({"a.quillet"});
        QDir::setCurrent(before);
        QCOMPARE(d_window->d_file_name, d_folder->filePath("a.quillet"));
        QCOMPARE(d_window->d_working_dir.absolutePath(), d_folder->path());
    }

    void images_and_pdfs_on_the_command_line_are_inserted()
    {
        d_window->Open_Arguments({Image("b.png", 61), Write("a.pdf", Support::Pdf({small}))});
        QCOMPARE(Pages(), QStringList({"Page 1 150x75", "Page 2 61x40"}));
        QVERIFY(d_window->d_data_changed);
        QCOMPARE(d_window->d_file_name, QString());
    }

    void a_pdf_on_the_command_line_needs_no_suffix()
    {
        const QString path = Write("report", Support::Pdf({small}));
        QCOMPARE(Run_Answering([&] { d_window->Open_Arguments({path}); }, {}), QString());
        QCOMPARE(Pages(), QStringList({"Page 1 150x75"}));
        QCOMPARE(d_window->d_file_name, QString());
    }

    void a_document_that_contains_the_signature_of_a_pdf_is_opened()
    {
        const QString path = Write("a.quillet", Support::Header(32, "#0a141e", "%PDF-1.4", "", 0));
        QCOMPARE(Run_Answering([&] { d_window->Open_Arguments({path}); }, {}), QString());
        QCOMPARE(d_window->d_file_name, path);
    }

    void images_are_inserted_into_the_document_on_the_command_line()
    {
        const QString image = Image("b.png", 61);
        d_window->Open_Arguments({image, Project("c.quillet")});
        QCOMPARE(Pages(), QStringList({"Plan 60x40", "Page 2 61x40"}));
    }

    void only_the_first_document_on_the_command_line_is_opened()
    {
        const QString first = Project("a.quillet");
        d_window->Open_Arguments({first, Project("b.quillet")});
        QCOMPARE(d_window->d_file_name, first);
        QCOMPARE(Message(),
                 QStringLiteral("b.quillet was not opened: a window shows one document"));
    }

    void options_on_the_command_line_are_ignored()
    {
        d_window->Open_Arguments({"--help", "-v", "-"});
        QCOMPARE(Pages(), QStringList());
        QCOMPARE(Message(), QString());
        QVERIFY(!d_window->d_data_changed);
    }

    void a_document_that_cannot_be_opened_is_reported_as_by_file_open()
    {
        QStringList texts;
        const auto look = [&texts](QMessageBox* box) {
            texts = QStringList{box->text(), box->informativeText(), box->detailedText()};
        };
        const QString path = Write("a.quillet", "nonsense");
        QCOMPARE(Run_Answering([&] { d_window->Open_Arguments({path}); },
                               {Support::Look_And_Press(look, QMessageBox::Ok)}),
                 QString());
        QVERIFY(texts[0].contains("Error Loading Data"));
        QVERIFY(texts[1].contains("The Quillet file cannot be loaded"));
        QCOMPARE(texts[2], QStringLiteral("Invalid file."));
    }

    void the_status_bar_says_if_a_document_is_open_in_another_window()
    {
        const QString path = Project("a.quillet");
        d_window->Open_Arguments({path});
        QCOMPARE(Message(), QString());
        {
            TOpenWindow other;
            other.Open_Arguments({path});
            QCOMPARE(other.statusBar()->currentMessage(),
                     QStringLiteral("a.quillet is already open in another window"));
            QCOMPARE(Support::Describe(&other).size(), 1);
        }
        d_window->d_data_changed = false;
        d_window->File_New();
        TOpenWindow third;
        third.Open_Arguments({path});
        QCOMPARE(third.statusBar()->currentMessage(), QString());
    }
};

QTEST_MAIN(TestInserting)
#include "test_inserting.moc"
