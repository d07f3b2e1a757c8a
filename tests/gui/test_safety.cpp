// The window and its safety net: when unsaved work and backups are stored and deleted.

#include "support/modal.h"
#include "support/support.h"
#include "support/widgets.h"
#include "support/window.h"
#include "support/worklogs.h"

#include "src/displaywidget.h"
#include "src/export/printedpdf.h"
#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/reindexdialog.h"
#include "src/reportheaderdialog.h"
#include "src/safety/keptfiles.h"
#include "src/safety/safetynet.h"
#include "src/settingswidget.h"
#include "src/widgets/recoverynotice.h"

#include <QApplication>
#include <QCoreApplication>
#include <QDialog>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QLabel>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sys/stat.h>
#include <unistd.h>

using Support::Entries;
using Support::Read_File;
using Support::Run_Answering;

class TestSafety : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void a_new_window_writes_no_copy_and_shows_no_notice();
    void the_first_change_is_stored_data();
    void the_first_change_is_stored();
    void there_is_no_copy_without_a_change();
    void a_copy_is_a_project_that_opens();
    void a_copy_skips_pages_that_are_only_in_the_list();
    void losing_focus_stores_all_changes();
    void losing_focus_stores_a_new_page_name();
    void a_modal_dialog_stores_all_changes();
    void a_save_deletes_the_copy();
    void a_save_backs_up_the_previous_version();
    void two_windows_on_one_document_keep_both_versions();
    void a_document_that_was_replaced_while_open_is_kept_separately();
    void a_document_that_was_deleted_while_open_is_saved_again();
    void a_document_that_became_unreachable_while_open_leaves_a_copy();
    void a_document_on_another_file_system_is_backed_up();
    void a_saved_document_keeps_its_permissions();
    void a_failed_save_leaves_a_copy();
    void an_incomplete_save_leaves_a_copy_and_counts_as_saved();
    void a_copy_leaves_out_characters_that_xml_does_not_allow();
    void every_image_format_can_be_read_from_the_copy_data();
    void every_image_format_can_be_read_from_the_copy();
    void images_are_stored_in_their_original_encoding();
    void closing_with_no_deletes_the_copy();
    void closing_with_cancel_keeps_the_copy();
    void closing_with_yes_saves_and_deletes_the_copy();
    void closing_with_yes_and_no_name_leaves_the_copy();
    void agreeing_to_lose_changes_deletes_the_copy_data();
    void agreeing_to_lose_changes_deletes_the_copy();
    void declining_to_lose_changes_keeps_the_copy();
    void a_refused_file_leaves_the_copy_and_the_document();
    void a_refused_file_leaves_the_opened_recovery_copy_to_be_deleted_by_a_save();
    void a_partly_opened_file_ends_the_copy_of_the_previous_document();
    void a_partly_opened_recovery_copy_is_not_deleted_by_a_save();
    void new_after_a_failed_save_leaves_the_copy();
    void opening_a_document_is_not_a_change();
    void the_status_bar_shows_the_copy_of_a_killed_process();
    void a_recovery_copy_opens_like_any_project_and_is_deleted_after_a_save_elsewhere();
    void a_recovery_copy_stays_when_only_the_original_is_opened();
    void a_recovery_copy_that_is_saved_in_place_stays();
    void two_windows_have_separate_copies();
    void renumbering_is_stored();
    void an_unusable_settings_folder_does_not_stop_the_program_data();
    void an_unusable_settings_folder_does_not_stop_the_program();
    void a_full_disk_leaves_the_old_report();
    void a_full_disk_leaves_no_partial_image();
    void an_export_leaves_no_unfinished_files();

private:
    QString In(const QString& name) const { return d_folder->filePath(name); }
    static QString Settings() { return QDir::homePath() + "/.quillet"; }
    QStringList Copies() const;
    QString Only_Copy() const;
    void Open_Window();
    void Make_Document();
    void Save_As(const QString& path);
    void Open(const QString& path);
    int Labels_In(const QString& path);
    QString Notice() const;
    QString Other_Version() const;
    void Mark_Saved();

    std::unique_ptr<QTemporaryDir> d_folder;
    QTemporaryDir d_recovered; ///< copies of the work in logs
    std::unique_ptr<TOpenWindow> d_window;
};

void TestSafety::init()
{
    QDir(Settings()).removeRecursively();
    QFile::remove(Settings());
    d_folder = std::make_unique<QTemporaryDir>();
    Open_Window();
}

void TestSafety::cleanup()
{
    d_window.reset();
    d_folder.reset();
}

void TestSafety::Open_Window()
{
    d_window.reset();
    d_window = std::make_unique<TOpenWindow>();
    d_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(d_window.get()));
    // Recovers work.
    QCoreApplication::processEvents();
}

/// Paths of all recovery copies: those that exist, and those that work logs would be recovered to.
QStringList TestSafety::Copies() const
{
    QStringList paths;
    for (const QString& name : QDir(Settings() + "/recovery").entryList({"*.log"})) {
        paths += d_recovered.filePath(QString(name).replace(".log", ".quillet"));
        Support::Write_File(paths.last(), Support::Recovered(Settings() + "/recovery/" + name));
    }
    for (const QString& name : QDir(Settings() + "/recovery").entryList({"*.quillet"}))
        paths += Settings() + "/recovery/" + name;
    return paths;
}

QString TestSafety::Only_Copy() const
{
    const QStringList copies = Copies();
    return copies.size() == 1 ? copies.first() : QString();
}

/// A document of one page without labels that counts as saved and has no recovery copy.
void TestSafety::Make_Document()
{
    Support::Write_File(In("page.png"), Support::Png(Support::Picture(300, 200)));
    d_window->Load_Image(In("page.png"));
    d_window->d_page_widget->Set_Active_Page(d_window->d_page_widget->Page_Ids().first());
    d_window->Update_Document_Actions();
    Mark_Saved();
}

/// Makes the document count as saved, without a recovery copy.
void TestSafety::Mark_Saved()
{
    d_window->End_Recovery(true);
    d_window->d_data_changed = false;
}

void TestSafety::Save_As(const QString& path)
{
    QCOMPARE(Run_Answering([this] { d_window->File_SaveAs(); }, {Support::Choose({path})}),
             QString());
}

void TestSafety::Open(const QString& path)
{
    QCOMPARE(Run_Answering([this] { d_window->File_Open(); }, {Support::Choose({path})}),
             QString());
}

/// Number of labels that a second window finds in a project file; -1 when it does not open.
int TestSafety::Labels_In(const QString& path)
{
    if (!ProjectFile::Is_Whole(path))
        return -1;
    TOpenWindow reader;
    if (!reader.Load_Data(path))
        return -1;
    int count = 0;
    for (const int id : reader.d_page_widget->Page_Ids()) {
        reader.d_data.Set_Active_Page(id);
        count += reader.d_data.Item_Count();
    }
    return count;
}

/// The tool tip of the recovery notice, which has the path of the copy; empty if there is none.
QString TestSafety::Notice() const
{
    const auto* const notice = d_window->statusBar()->findChild<TRecoveryNotice*>();
    return notice && notice->isVisible() ? Support::Only<QLabel>(*notice)->toolTip() : QString();
}

void TestSafety::a_new_window_writes_no_copy_and_shows_no_notice()
{
    QVERIFY(!d_window->d_data_changed);
    QCOMPARE(Notice(), QString());
    d_window->close();
    Open_Window();
    QCOMPARE(Copies(), QStringList());
    QCOMPARE(Notice(), QString());
}

void TestSafety::the_first_change_is_stored_data()
{
    QTest::addColumn<QString>("change");
    for (const char* const change :
         {"label", "label at a point", "value", "text", "border", "position", "page", "label size",
          "color", "pages removed", "page removal declined", "import"})
        QTest::newRow(change) << change;
}

void TestSafety::the_first_change_is_stored()
{
    QFETCH(QString, change);
    Make_Document();
    d_window->d_data.Add_Item({5, 1, "", 1, {10, 10}, false});
    d_window->d_display_widget->Add_Item(5, 1, "", 1);
    Mark_Saved();
    QVERIFY(Copies().isEmpty());
    const auto remove_pages = [this](QMessageBox::StandardButton button) {
        QCOMPARE(Run_Answering([this] { d_window->Remove_Pages({}); }, {Support::Press(button)}),
                 QString());
    };
    const QHash<QString, std::function<void()>> changes = {
        {"label", [this] { d_window->Add_Item(); }},
        {"label at a point", [this] { d_window->Add_Item(QPointF(50, 50)); }},
        {"value", [this] { d_window->Change_Item_Value(5, 7); }},
        {"text", [this] { d_window->Change_Item_Text(5, "text"); }},
        {"border", [this] { d_window->Change_Item_Border(5, 4); }},
        {"position", [this] { d_window->Update_Item_Position(5, QPointF(20, 20)); }},
        {"page", [this] { d_window->Add_Page(); }},
        {"label size", [this] { d_window->Label_Size_Changed(40); }},
        {"color", [this] { d_window->Color_Changed(Qt::red); }},
        {"pages removed", [&] { remove_pages(QMessageBox::Yes); }},
        {"page removal declined", [&] { remove_pages(QMessageBox::No); }},
        {"import",
         [this] {
             QCOMPARE(Run_Answering([this] { d_window->File_Import(); },
                                    {Support::Choose({In("page.png")})}),
                      QString());
         }},
    };
    changes.value(change)();
    QVERIFY(ProjectFile::Is_Whole(Only_Copy()));
}

void TestSafety::there_is_no_copy_without_a_change()
{
    Make_Document();
    d_window->Page_Selection_Changed(d_window->d_data.Active_Page());
    d_window->Item_Display_Format_Changed("%1");
    d_window->Track_Item_Option_Changed(false);
    d_window->Image_Zoom_Changed(10);
    d_window->Item_Selection_Changed();
    d_window->Flush_Work();
    QCOMPARE(Copies(), QStringList());
}

void TestSafety::a_copy_is_a_project_that_opens()
{
    Make_Document();
    d_window->d_page_widget->Set_Page_Name(1, "Front");
    d_window->Add_Item(QPointF(50, 60));
    const int id = d_window->d_data.Item(0).id;
    d_window->Change_Item_Text(id, "text");
    d_window->Flush_Work();
    const QString copy = Only_Copy();
    TOpenWindow reader;
    QVERIFY(reader.Load_Data(copy));
    QCOMPARE(reader.d_page_widget->Page_Name(1), QString("Front"));
    QCOMPARE(reader.d_data.Item(0).text, QString("text"));
    QCOMPARE(reader.d_data.Item(0).position, QPointF(50, 60));
    QCOMPARE(Support::Difference(reader.d_data.Page_Image(), Support::Picture(300, 200)),
             QString());
}

void TestSafety::a_copy_skips_pages_that_are_only_in_the_list()
{
    Make_Document();
    const QList<int> known_pages = d_window->d_page_widget->Page_Ids();
    d_window->d_page_widget->Add_Page(99);
    d_window->Record_Change();
    TOpenWindow reader;
    QVERIFY(ProjectFile::Is_Whole(Only_Copy()));
    QVERIFY(reader.Load_Data(Only_Copy()));
    QCOMPARE(reader.d_data.Page_Count(), known_pages.size());
}

void TestSafety::losing_focus_stores_all_changes()
{
    Make_Document();
    d_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(d_window.get()));
    d_window->Add_Item(QPointF(50, 60));
    for (int i = 0; i < 3; ++i)
        d_window->Add_Item(QPointF(70 + i, 60));
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    QCOMPARE(Labels_In(Only_Copy()), 4);
}

void TestSafety::losing_focus_stores_a_new_page_name()
{
    Make_Document();
    d_window->d_page_widget->Set_Page_Name(1, "Another name");
    d_window->Flush_Work();
    QVERIFY(Read_File(Only_Copy()).contains("Another name"));
}

void TestSafety::a_modal_dialog_stores_all_changes()
{
    const std::vector<std::function<void()>> commands = {
        [this] { d_window->File_Import(); },     [this] { d_window->File_SaveAs(); },
        [this] { d_window->File_Export_Pdf(); }, [this] { d_window->File_Export_Images(); },
        [this] { d_window->Edit_Reindex(); },    [this] { d_window->Help_About(); }};
    Make_Document();
    int labels = 0;
    for (const auto& command : commands) {
        d_window->Add_Item(QPointF(10 + labels, 10));
        d_window->Add_Item(QPointF(10 + labels, 20));
        labels += 2;
        QCOMPARE(Run_Answering(command, {[this, labels](QWidget* dialog) {
                                   QCOMPARE(Labels_In(Only_Copy()), labels);
                                   dialog->close();
                               }}),
                 QString());
    }
}

void TestSafety::a_save_deletes_the_copy()
{
    Make_Document();
    d_window->Add_Item(QPointF(50, 60));
    QCOMPARE(Copies().size(), 1);
    Save_As(In("a.quillet"));
    QVERIFY(Entries(Settings() + "/recovery").isEmpty());
    d_window->Add_Item(QPointF(80, 60));
    QCOMPARE(Copies().size(), 1);
    d_window->File_Save();
    QVERIFY(Entries(Settings() + "/recovery").isEmpty());
    QCOMPARE(Labels_In(In("a.quillet")), 2);
}

void TestSafety::a_save_backs_up_the_previous_version()
{
    Make_Document();
    const TBackup backup(Settings() + "/backup");
    Save_As(In("a.quillet"));
    QVERIFY(backup.List().empty());
    const QByteArray first = Read_File(In("a.quillet"));
    d_window->Add_Item(QPointF(50, 60));
    d_window->File_Save();
    QVERIFY(Read_File(backup.Path_For(In("a.quillet"))) == first);
    QVERIFY(Read_File(In("a.quillet")) != first);
}

void TestSafety::two_windows_on_one_document_keep_both_versions()
{
    Make_Document();
    Save_As(In("a.quillet"));
    TOpenWindow other;
    other.Open_File(In("a.quillet"));
    other.statusBar()->clearMessage();
    other.Add_Item(QPointF(10, 10));
    other.Add_Item(QPointF(20, 20));
    other.File_Save();
    QCOMPARE(other.statusBar()->currentMessage(), QString("Saved a.quillet"));

    d_window->Add_Item(QPointF(50, 60));
    d_window->File_Save();
    QCOMPARE(Labels_In(In("a.quillet")), 1);
    QCOMPARE(Labels_In(Other_Version()), 2);
    // The previous version that this window saved still exists, too.
    QCOMPARE(Labels_In(TBackup(Settings() + "/backup").Path_For(In("a.quillet"))), 0);

    const QString kept = Other_Version();
    d_window->statusBar()->clearMessage();
    d_window->Add_Item(QPointF(70, 60));
    d_window->File_Save();
    QCOMPARE(Other_Version(), QString());
    QCOMPARE(Labels_In(kept), 2);
}

/// Path of the backup in the status bar's message; empty if there is none.
QString TestSafety::Other_Version() const
{
    const QString begin = "Another program changed the document. Its version is in ";
    const QString message = d_window->statusBar()->currentMessage();
    return message.startsWith(begin) ? message.mid(begin.size()) : QString();
}

void TestSafety::a_document_that_was_replaced_while_open_is_kept_separately()
{
    Make_Document();
    Save_As(In("a.quillet"));
    Open_Window();
    Open(In("a.quillet"));
    Support::Write_File(In("new"), Support::Empty_Project(77));
    QVERIFY(QFile::remove(In("a.quillet")) && QFile::rename(In("new"), In("a.quillet")));
    d_window->Add_Item(QPointF(50, 60));
    d_window->File_Save();
    QCOMPARE(Labels_In(In("a.quillet")), 1);
    QCOMPARE(Read_File(Other_Version()), Support::Empty_Project(77));
}

void TestSafety::a_document_that_was_deleted_while_open_is_saved_again()
{
    Make_Document();
    Save_As(In("a.quillet"));
    QVERIFY(QFile::remove(In("a.quillet")));
    d_window->Add_Item(QPointF(50, 60));
    d_window->File_Save();
    QCOMPARE(Labels_In(In("a.quillet")), 1);
    QCOMPARE(Copies(), QStringList());
    QCOMPARE(Other_Version(), QString());
}

void TestSafety::a_document_that_became_unreachable_while_open_leaves_a_copy()
{
    Make_Document();
    QVERIFY(QDir(d_folder->path()).mkdir("disk"));
    Save_As(In("disk/a.quillet"));
    QVERIFY(QDir(d_folder->path()).rename("disk", "unmounted"));
    d_window->Add_Item(QPointF(50, 60));
    QCOMPARE(Run_Answering([this] { d_window->File_Save(); }, {Support::Press(QMessageBox::Ok)}),
             QString());
    QCOMPARE(d_window->d_error_text, QString("Cannot open file for writing"));
    QCOMPARE(Labels_In(Only_Copy()), 1);
    QCOMPARE(Labels_In(In("unmounted/a.quillet")), 0);

    QVERIFY(QDir(d_folder->path()).rename("unmounted", "disk"));
    d_window->File_Save();
    QCOMPARE(Labels_In(In("disk/a.quillet")), 1);
    QCOMPARE(Copies(), QStringList());
    QCOMPARE(Other_Version(), QString());
}

void TestSafety::a_document_on_another_file_system_is_backed_up()
{
    QTemporaryDir other("/dev/shm/quillet-XXXXXX");
    QVERIFY(other.isValid());
    const QString path = other.filePath("a.quillet");
    Make_Document();
    Save_As(path);
    d_window->Add_Item(QPointF(50, 60));
    d_window->File_Save();
    QCOMPARE(Labels_In(path), 1);
    QCOMPARE(Labels_In(TBackup(Settings() + "/backup").Path_For(path)), 0);
    QCOMPARE(Other_Version(), QString());
}

void TestSafety::a_saved_document_keeps_its_permissions()
{
    Make_Document();
    Save_As(In("a.quillet"));
    for (const mode_t mode : {0640, 0600, 0666}) {
        QVERIFY(chmod(QFile::encodeName(In("a.quillet")).constData(), mode) == 0);
        d_window->File_Save();
        QCOMPARE(Support::Mode(In("a.quillet")), QString::number(mode, 8));
    }
}

void TestSafety::a_failed_save_leaves_a_copy()
{
    Make_Document();
    d_window->Add_Item(QPointF(50, 60));
    d_window->d_file_name = In("no such folder/a.quillet");
    QCOMPARE(Run_Answering([this] { d_window->File_Save(); }, {Support::Press(QMessageBox::Ok)}),
             QString());
    QVERIFY(!d_window->d_data_changed);
    QCOMPARE(Labels_In(Only_Copy()), 1);
}

void TestSafety::an_incomplete_save_leaves_a_copy_and_counts_as_saved()
{
    // /dev/full accepts no bytes.
    Make_Document();
    d_window->Add_Item(QPointF(50, 60));
    d_window->Add_Item(QPointF(80, 60));
    d_window->d_file_name = "/dev/full";
    QVERIFY(d_window->Save_Data("/dev/full"));
    d_window->File_Save();
    QVERIFY(!d_window->d_data_changed);
    QCOMPARE(Labels_In(Only_Copy()), 2);
    // Closing does not ask, and the next start shows the copy.
    d_window->close();
    Open_Window();
    QVERIFY(Notice().contains(Only_Copy()));
}

void TestSafety::a_copy_leaves_out_characters_that_xml_does_not_allow()
{
    Make_Document();
    d_window->Add_Item(QPointF(50, 60));
    Save_As(In("a.quillet"));
    const QString face = QString::fromUtf8("\xf0\x9f\x98\x80");
    const QString bad =
        QString("be") + QChar(1) + "fo" + QChar(0xd800) + "re " + face + QChar(0xffff);
    d_window->Change_Item_Text(d_window->d_data.Item(0).id, bad);
    QCOMPARE(Run_Answering([this] { d_window->File_Save(); }, {Support::Press(QMessageBox::Ok)}),
             QString());
    QVERIFY(!d_window->d_data_changed);
    QCOMPARE(QFileInfo(In("a.quillet")).size(), 0);
    TOpenWindow reader;
    QVERIFY(reader.Load_Data(Only_Copy()));
    QCOMPARE(reader.d_data.Item(0).text, "before " + face);
    QCOMPARE(reader.d_data.Item(0).position, QPointF(50, 60));
    // The backup has the version from before the failed save.
    QCOMPARE(Labels_In(TBackup(Settings() + "/backup").Path_For(In("a.quillet"))), 1);
}

void TestSafety::every_image_format_can_be_read_from_the_copy_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("suffix");
    const QStringList formats = {"bmp", "jpg", "pbm", "pgm", "png", "ppm", "xbm", "xpm"};
    for (const QString& format : formats) {
        for (const QString& suffix : {format, QString("png"), QString("xbm")})
            QTest::newRow(qPrintable(format + " named " + suffix)) << format << suffix;
    }
    for (const char* const suffix : {"cur", "ico"})
        QTest::newRow(suffix) << "ico" << suffix;
}

void TestSafety::every_image_format_can_be_read_from_the_copy()
{
    QFETCH(QString, format);
    QFETCH(QString, suffix);
    const QString path = In("page." + suffix);
    QVERIFY(Support::Picture(40, 30).save(path, format.toLatin1().constData()));
    const QImage expected(path);
    d_window->Load_Image(path);
    d_window->Add_Page();
    TOpenWindow reader;
    QVERIFY(reader.Load_Data(Only_Copy()));
    reader.d_data.Set_Active_Page(reader.d_data.Page_Id(0));
    QCOMPARE(Support::Difference(reader.d_data.Page_Image(), expected), QString());
}

void TestSafety::images_are_stored_in_their_original_encoding()
{
    for (const char* const format : {"jpg", "bmp", "ppm", "png"}) {
        const QString path = In(QString("page.") + format);
        QVERIFY(Support::Picture(64, 48).save(path));
        d_window->Load_Image(path);
    }
    d_window->Mark_Changed();
    d_window->Flush_Work();
    const QByteArray copy = Read_File(Only_Copy());
    for (const char* const format : {"jpg", "bmp", "ppm", "png"})
        QVERIFY2(copy.contains(Read_File(In(QString("page.") + format))), format);
}

void TestSafety::closing_with_no_deletes_the_copy()
{
    Make_Document();
    d_window->Add_Item(QPointF(50, 60));
    QCOMPARE(Run_Answering([this] { d_window->close(); }, {Support::Press(QMessageBox::No)}),
             QString());
    QVERIFY(Entries(Settings() + "/recovery").isEmpty());
    Open_Window();
    QVERIFY(Entries(Settings() + "/recovery").isEmpty());
}

void TestSafety::closing_with_cancel_keeps_the_copy()
{
    Make_Document();
    d_window->Add_Item(QPointF(50, 60));
    d_window->Add_Item(QPointF(80, 60));
    QCOMPARE(Run_Answering([this] { d_window->close(); }, {Support::Press(QMessageBox::Cancel)}),
             QString());
    QCOMPARE(Labels_In(Only_Copy()), 2);
}

void TestSafety::closing_with_yes_saves_and_deletes_the_copy()
{
    Make_Document();
    Save_As(In("a.quillet"));
    d_window->Add_Item(QPointF(50, 60));
    QCOMPARE(Run_Answering([this] { d_window->close(); }, {Support::Press(QMessageBox::Yes)}),
             QString());
    QVERIFY(Entries(Settings() + "/recovery").isEmpty());
    QCOMPARE(Labels_In(In("a.quillet")), 1);
}

void TestSafety::closing_with_yes_and_no_name_leaves_the_copy()
{
    Make_Document();
    d_window->Add_Item(QPointF(50, 60));
    QCOMPARE(Run_Answering([this] { d_window->close(); },
                           {Support::Press(QMessageBox::Yes), Support::Cancel()}),
             QString());
    QVERIFY(!d_window->isVisible());
    QCOMPARE(Labels_In(Only_Copy()), 1);
    Open_Window();
    QVERIFY(Notice().contains(Only_Copy()));
}

void TestSafety::agreeing_to_lose_changes_deletes_the_copy_data()
{
    QTest::addColumn<bool>("open");
    QTest::newRow("new") << false;
    QTest::newRow("open") << true;
}

void TestSafety::agreeing_to_lose_changes_deletes_the_copy()
{
    QFETCH(bool, open);
    Make_Document();
    Save_As(In("a.quillet"));
    d_window->Add_Item(QPointF(50, 60));
    const QString fault =
        open ? Run_Answering([this] { d_window->File_Open(); },
                             {Support::Press(QMessageBox::Yes), Support::Choose({In("a.quillet")})})
             : Run_Answering([this] { d_window->File_New(); }, {Support::Press(QMessageBox::Yes)});
    QCOMPARE(fault, QString());
    QVERIFY(Entries(Settings() + "/recovery").isEmpty());
    d_window->Flush_Work();
    QVERIFY(Copies().isEmpty());
}

void TestSafety::declining_to_lose_changes_keeps_the_copy()
{
    Make_Document();
    d_window->Add_Item(QPointF(50, 60));
    for (const auto& command : {std::function<void()>([this] { d_window->File_New(); }),
                                std::function<void()>([this] { d_window->File_Open(); })}) {
        QCOMPARE(Run_Answering(command, {Support::Press(QMessageBox::No)}), QString());
        QCOMPARE(Labels_In(Only_Copy()), 1);
    }
}

void TestSafety::a_refused_file_leaves_the_copy_and_the_document()
{
    Make_Document();
    d_window->Add_Item(QPointF(50, 60));
    Support::Write_File(In("bad.quillet"), "no project");
    QCOMPARE(Run_Answering([this] { d_window->File_Open(); },
                           {Support::Press(QMessageBox::Yes), Support::Choose({In("bad.quillet")}),
                            Support::Press(QMessageBox::Ok)}),
             QString());
    QVERIFY(!d_window->d_data_changed);
    QCOMPARE(d_window->d_data.Item_Count(), 1);
    QCOMPARE(Labels_In(Only_Copy()), 1);
}

void TestSafety::a_refused_file_leaves_the_opened_recovery_copy_to_be_deleted_by_a_save()
{
    Make_Document();
    d_window->Add_Item(QPointF(50, 60));
    Open_Window();
    Open(Only_Copy());
    Support::Write_File(In("bad.quillet"), "no project");
    QCOMPARE(Run_Answering([this] { d_window->File_Open(); },
                           {Support::Choose({In("bad.quillet")}), Support::Press(QMessageBox::Ok)}),
             QString());
    // The document is still the one from the recovery copy.
    Save_As(In("a.quillet"));
    QCOMPARE(Labels_In(In("a.quillet")), 1);
    QCOMPARE(Copies(), QStringList());
}

void TestSafety::a_partly_opened_file_ends_the_copy_of_the_previous_document()
{
    Make_Document();
    d_window->Add_Item(QPointF(50, 60));
    const QString copy = Only_Copy();
    Support::Write_File(In("bad.quillet"), Read_File(copy).replace("</Item>", "</Itme>"));
    QCOMPARE(Run_Answering([this] { d_window->File_Open(); },
                           {Support::Press(QMessageBox::Yes), Support::Choose({In("bad.quillet")}),
                            Support::Press(QMessageBox::Ok)}),
             QString());
    QCOMPARE(d_window->d_data.Page_Count(), 1);
    QCOMPARE(Copies(), QStringList());
}

void TestSafety::a_partly_opened_recovery_copy_is_not_deleted_by_a_save()
{
    Make_Document();
    d_window->Add_Item(QPointF(50, 60));
    Open_Window();
    const QString copy = Only_Copy();
    // The page is read, its labels are not.
    const QByteArray damaged = Read_File(copy).replace("</Item>", "</Itme>");
    Support::Write_File(copy, damaged);
    QCOMPARE(Run_Answering([this] { d_window->File_Open(); },
                           {Support::Choose({copy}), Support::Press(QMessageBox::Ok)}),
             QString());
    QCOMPARE(d_window->d_data.Page_Count(), 1);
    Save_As(In("a.quillet"));
    QCOMPARE(Only_Copy(), copy);
    QVERIFY(Read_File(copy) == damaged);
}

void TestSafety::new_after_a_failed_save_leaves_the_copy()
{
    Make_Document();
    d_window->Add_Item(QPointF(50, 60));
    d_window->d_file_name = In("no such folder/a.quillet");
    QCOMPARE(Run_Answering([this] { d_window->File_Save(); }, {Support::Press(QMessageBox::Ok)}),
             QString());
    const QString copy = Only_Copy();
    // The document counts as saved, so there is no question.
    QCOMPARE(Run_Answering([this] { d_window->File_New(); }, {}), QString());
    QCOMPARE(d_window->d_data.Page_Count(), 0);
    d_window->Add_Page();
    QCOMPARE(Copies().size(), 2);
    QCOMPARE(Labels_In(copy), 1);
}

void TestSafety::opening_a_document_is_not_a_change()
{
    Make_Document();
    d_window->Add_Item(QPointF(50, 60));
    d_window->Label_Size_Changed(50);
    Save_As(In("a.quillet"));
    Open_Window();
    Open(In("a.quillet"));
    QVERIFY(!d_window->d_data_changed);
    d_window->Flush_Work();
    QCOMPARE(Copies(), QStringList());
}

void TestSafety::the_status_bar_shows_the_copy_of_a_killed_process()
{
    d_window.reset();
    const Support::TChildResult result = Support::Run_In_Child([this] {
        d_window = std::make_unique<TOpenWindow>();
        Make_Document();
        d_window->Add_Item(QPointF(50, 60));
        kill(getpid(), SIGKILL);
        return 0;
    });
    QCOMPARE(result.signal, SIGKILL);
    Open_Window();
    QVERIFY(Notice().contains(Only_Copy()));
    QCOMPARE(Labels_In(Only_Copy()), 1);
    QVERIFY(!QApplication::activeModalWidget());
}

void TestSafety::a_recovery_copy_opens_like_any_project_and_is_deleted_after_a_save_elsewhere()
{
    Make_Document();
    d_window->Add_Item(QPointF(50, 60));
    Open_Window();
    const QString kept = Only_Copy();
    QVERIFY(!Notice().isEmpty());
    const QByteArray content = Read_File(kept);
    Open(kept);
    QCOMPARE(d_window->d_file_name, kept);
    QVERIFY(!d_window->d_data_changed);
    QCOMPARE(d_window->d_data.Item_Count(), 1);
    d_window->Add_Item(QPointF(80, 60));
    QVERIFY(Read_File(kept) == content);
    QCOMPARE(Copies().size(), 2);
    Save_As(In("a.quillet"));
    QVERIFY(Entries(Settings() + "/recovery").isEmpty());
    QCOMPARE(Notice(), QString());
    QCOMPARE(Labels_In(In("a.quillet")), 2);
}

void TestSafety::a_recovery_copy_stays_when_only_the_original_is_opened()
{
    Make_Document();
    Save_As(In("a.quillet"));
    d_window->Add_Item(QPointF(50, 60));
    Open_Window();
    const QString kept = Only_Copy();
    const QByteArray content = Read_File(kept);
    Open(In("a.quillet"));
    d_window->Add_Item(QPointF(80, 60));
    d_window->File_Save();
    d_window->Add_Item(QPointF(90, 60));
    QCOMPARE(Run_Answering([this] { d_window->File_New(); }, {Support::Press(QMessageBox::Yes)}),
             QString());
    d_window->close();
    QCOMPARE(Only_Copy(), kept);
    QVERIFY(Read_File(kept) == content);
    Open_Window();
    QVERIFY(Notice().contains(kept));
}

void TestSafety::a_recovery_copy_that_is_saved_in_place_stays()
{
    Make_Document();
    d_window->Add_Item(QPointF(50, 60));
    Open_Window();
    const QString kept = Only_Copy();
    Open(kept);
    d_window->Add_Item(QPointF(80, 60));
    d_window->File_Save();
    QCOMPARE(Only_Copy(), kept);
    QCOMPARE(Labels_In(kept), 2);
    QCOMPARE(Support::Mode(kept), QString("600"));
}

void TestSafety::two_windows_have_separate_copies()
{
    Make_Document();
    d_window->Add_Item(QPointF(50, 60));
    const QString first = Only_Copy();
    {
        TOpenWindow other;
        QVERIFY(other.d_safety_net->Abandoned().empty());
        other.Add_Page();
        QCOMPARE(Copies().size(), 2);
        other.d_safety_net->Discard();
    }
    QCOMPARE(Only_Copy(), first);
    QCOMPARE(Labels_In(first), 1);
}

void TestSafety::renumbering_is_stored()
{
    Make_Document();
    d_window->d_data.Add_Item({5, 41, "", 1, {10, 10}, false});
    QCOMPARE(Run_Answering([this] { d_window->Edit_Reindex(); },
                           {[](QWidget* dialog) { qobject_cast<QDialog*>(dialog)->accept(); }}),
             QString());
    d_window->Flush_Work();
    // The dialog starts with 100.
    QVERIFY(Read_File(Only_Copy()).contains("<Value>100</Value>"));
}

void TestSafety::an_unusable_settings_folder_does_not_stop_the_program_data()
{
    QTest::addColumn<QString>("defect");
    for (const char* const defect : {"link", "not writable", "full"})
        QTest::newRow(defect) << defect;
}

void TestSafety::an_unusable_settings_folder_does_not_stop_the_program()
{
    QFETCH(QString, defect);
    d_window.reset();
    QDir(Settings()).removeRecursively();
    QVERIFY(QDir(d_folder->path()).mkdir("elsewhere"));
    if (defect == "link")
        QVERIFY(QFile::link(In("elsewhere"), Settings()));
    else
        QVERIFY(QDir::home().mkdir(".quillet"));
    const Support::TChildResult result = Support::Run_In_Child([this, defect] {
        if (defect == "not writable")
            chmod(QFile::encodeName(Settings()).constData(), 0500);
        Support::Obey_File_Permissions();
        d_window = std::make_unique<TOpenWindow>();
        Make_Document();
        d_window->Save_Data(In("a.quillet"));
        if (defect == "full")
            Support::Limit_File_Size(1000);
        for (int i = 0; i < 3; ++i) {
            d_window->Add_Item(QPointF(10 * i, 60));
            d_window->Flush_Work();
        }
        if (defect != "full")
            d_window->Save_Data(In("a.quillet"));
        return d_window->d_data.Item_Count();
    });
    chmod(QFile::encodeName(Settings()).constData(), 0700);
    QCOMPARE(result.exit_code, 3);
    QCOMPARE(result.error_output,
             QByteArray("quillet: cannot write unsaved work to the settings folder\n"));
    QCOMPARE(Labels_In(In("a.quillet")), defect == "full" ? 0 : 3);
    QCOMPARE(Copies(), QStringList());
    QVERIFY(!Entries(In("elsewhere")).contains("recovery"));
    QFile::remove(Settings());
}

void TestSafety::a_full_disk_leaves_the_old_report()
{
    Make_Document();
    Support::Write_File(In("report.pdf"), "the old report");
    const Support::TChildResult result = Support::Run_In_Child([this] {
        Support::Limit_File_Size(2000);
        const TQuillet::TReportSettings settings{0, 2, "Header", QString()};
        return d_window->Export_PDF(In("report.pdf"), d_window->d_page_widget->Page_Ids(), settings)
                   ? 0
                   : 1;
    });
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(Read_File(In("report.pdf")), QByteArray("the old report"));
    QCOMPARE(Entries(d_folder->path()), QStringList({"page.png", "report.pdf"}));
}

void TestSafety::a_full_disk_leaves_no_partial_image()
{
    Make_Document();
    QVERIFY(QDir(d_folder->path()).mkdir("out"));
    const Support::TChildResult result = Support::Run_In_Child([this] {
        Support::Limit_File_Size(200);
        return d_window->Export_Images(In("out"), d_window->d_page_widget->Page_Ids()) ? 1 : 0;
    });
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(Entries(In("out")), QStringList());
}

void TestSafety::an_export_leaves_no_unfinished_files()
{
    Make_Document();
    QVERIFY(QDir(d_folder->path()).mkdir("out"));
    const QList<int> pages = d_window->d_page_widget->Page_Ids();
    QVERIFY(d_window->Export_PDF(In("out/a.pdf"), pages, {0, 1, QString(), QString()}));
    QCOMPARE(Entries(In("out")), QStringList{"a.pdf"});
    QVERIFY(PrintedPdf::Is_Complete(In("out/a.pdf")));
    QVERIFY(d_window->Export_Images(In("out"), pages));
    QCOMPARE(Entries(In("out")).size(), 2);
}

QTEST_MAIN(TestSafety)
#include "test_safety.moc"
