// The notice about recovered work, and work that was opened from it.

#include "support/modal.h"
#include "support/support.h"
#include "support/widgets.h"
#include "support/window.h"
#include "support/worklogs.h"

#include "src/displaywidget.h"
#include "src/pagewidget.h"
#include "src/safety/keptfiles.h"
#include "src/widgets/documentname.h"
#include "src/widgets/recoverynotice.h"

#include <QApplication>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <QTextDocument>
#include <QToolButton>

#include <csignal>
#include <unistd.h>

using Support::Read_File;
using Support::Run_Answering;

class TestRecoveredWork : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void work_of_a_killed_process_is_announced();
    void there_is_no_notice_without_recovered_work();
    void work_from_another_day_is_announced_with_its_date();
    void work_that_was_never_saved_is_announced_without_a_name();
    void missing_images_are_announced();
    void a_document_that_has_changed_since_is_announced();
    void names_of_documents_are_plain_text();
    void dismiss_hides_the_notice_until_the_next_start();
    void several_documents_are_announced_one_after_the_other();
    void the_zoom_slider_keeps_its_width_in_a_narrow_window();
    void the_notice_can_be_reached_with_the_tab_key();
    void open_loads_unsaved_changes_of_the_document();
    void saving_opened_work_replaces_the_document_and_deletes_the_copy();
    void opened_work_that_was_never_saved_asks_for_a_name_data();
    void opened_work_that_was_never_saved_asks_for_a_name();
    void a_document_that_was_deleted_is_saved_again();
    void open_asks_before_unsaved_changes_are_lost();
    void open_applies_pending_text_first();
    void closing_with_no_deletes_opened_work();
    void closing_with_cancel_keeps_opened_work();
    void opened_work_survives_a_second_crash();
    void file_open_keeps_work_that_was_opened_from_the_notice();
    void a_work_log_that_cannot_be_read_is_announced_once();
    void work_that_cannot_be_read_leaves_the_document();
    void work_that_opens_in_part_does_not_replace_its_document();
    void work_that_another_window_has_saved_is_not_announced_any_more();

private:
    QString In(const QString& name) const { return d_folder->filePath(name); }
    static QString Recovery() { return QDir::homePath() + "/.quillet/recovery"; }
    static QStringList Copies();
    void Open_Window();
    void Save_As(const QString& path);
    void Leave_Work(const QString& document, int labels = 1);
    QString Notice() const;
    QString Details() const;
    void Press(const QString& button);
    static int Labels_In(const QString& path);

    std::unique_ptr<QTemporaryDir> d_folder;
    std::unique_ptr<TOpenWindow> d_window;
};

void TestRecoveredWork::init()
{
    QDir(QDir::homePath() + "/.quillet").removeRecursively();
    d_folder = std::make_unique<QTemporaryDir>();
    Support::Write_File(In("page.png"), Support::Png(Support::Picture(300, 200)));
    Open_Window();
}

void TestRecoveredWork::cleanup()
{
    d_window.reset();
    d_folder.reset();
}

/// Paths of all recovery copies and work logs.
QStringList TestRecoveredWork::Copies()
{
    QStringList paths;
    for (const QString& name : QDir(Recovery()).entryList({"*.quillet", "*.log"}))
        paths += Recovery() + "/" + name;
    return paths;
}

/// Starts the program again. Unsaved work of the previous window is abandoned, as after a crash.
void TestRecoveredWork::Open_Window()
{
    d_window.reset();
    d_window = std::make_unique<TOpenWindow>();
    d_window->show();
    QVERIFY(QTest::qWaitForWindowActive(d_window.get()));
    // Recovers work.
    QCoreApplication::processEvents();
}

void TestRecoveredWork::Save_As(const QString& path)
{
    QCOMPARE(Run_Answering([this] { d_window->File_SaveAs(); }, {Support::Choose({path})}),
             QString());
}

/// Leaves unsaved work of a document with one page: the document has no labels, the work has some.
/// @param document  empty for one that was never saved.
void TestRecoveredWork::Leave_Work(const QString& document, int labels)
{
    d_window->File_New();
    d_window->Import_Files({In("page.png")});
    d_window->d_page_widget->Set_Active_Page(d_window->d_page_widget->Page_Ids().first());
    if (!document.isEmpty())
        Save_As(document);
    for (int label = 0; label < labels; ++label)
        d_window->Add_Item(QPointF(50, 60));
    d_window->Flush_Work();
    Open_Window();
}

/// The text of the notice; empty if it is hidden.
QString TestRecoveredWork::Notice() const
{
    const auto* const notice = d_window->findChild<TRecoveryNotice*>();
    return notice && notice->isVisible() ? notice->Text() : QString();
}

/// The tool tip of the notice.
QString TestRecoveredWork::Details() const
{
    return Support::Only<QLabel>(*d_window->findChild<TRecoveryNotice*>())->toolTip();
}

/// Clicks on a button of the notice.
void TestRecoveredWork::Press(const QString& text)
{
    const auto* const notice = d_window->findChild<TRecoveryNotice*>();
    for (QToolButton* const button : notice->findChildren<QToolButton*>()) {
        if (button->text() == text)
            QTest::mouseClick(button, Qt::LeftButton);
    }
}

/// Number of labels on the first page of a project file or work log; -1 if it does not open.
int TestRecoveredWork::Labels_In(const QString& path)
{
    const bool is_log = path.endsWith(".log");
    const TFileContent content =
        ProjectFile::Read(is_log ? Support::Recovered(path) : Read_File(path));
    const bool is_readable = content.fault.isEmpty() && content.pages && !content.pages->empty();
    return is_readable ? static_cast<int>(content.pages->front().items.size()) : -1;
}

void TestRecoveredWork::work_of_a_killed_process_is_announced()
{
    Leave_Work(In("site-plan.quillet"), 0);
    d_window.reset();
    const Support::TChildResult result = Support::Run_In_Child([this] {
        d_window = std::make_unique<TOpenWindow>();
        d_window->Open_File(In("site-plan.quillet"));
        d_window->Page_Selection_Changed(d_window->d_page_widget->Page_Ids().first());
        d_window->Add_Item(QPointF(50, 60));
        kill(getpid(), SIGKILL);
        return 0;
    });
    QCOMPARE(result.signal, SIGKILL);
    Open_Window();
    const QString time = QFileInfo(Copies().first()).lastModified().toString("hh:mm");
    QCOMPARE(Notice(), "Unsaved changes to site-plan.quillet from " + time + " were recovered");
    QVERIFY(Details().contains(Copies().first()));
    QVERIFY(Details().contains(In("site-plan.quillet")));
    // The notice is on the left, beside the document's name, and there is no dialog.
    const auto* const notice = d_window->findChild<TRecoveryNotice*>();
    QCOMPARE(notice->parentWidget(), d_window->statusBar());
    QVERIFY(notice->x() < d_window->findChild<TDocumentName*>()->geometry().right() + 10);
    QVERIFY(!QApplication::activeModalWidget());
}

void TestRecoveredWork::there_is_no_notice_without_recovered_work()
{
    QCOMPARE(Notice(), QString());
    Open_Window();
    QCOMPARE(Notice(), QString());
}

void TestRecoveredWork::work_from_another_day_is_announced_with_its_date()
{
    Leave_Work(In("a.quillet"));
    const int day = 24 * 60 * 60; // seconds
    Support::Make_Old(Copies().first(), day);
    Open_Window();
    const QString time = QFileInfo(Copies().first()).lastModified().toString("yyyy-MM-dd hh:mm");
    QCOMPARE(Notice(), "Unsaved changes to a.quillet from " + time + " were recovered");
}

void TestRecoveredWork::work_that_was_never_saved_is_announced_without_a_name()
{
    Leave_Work(QString());
    QVERIFY(Notice().startsWith("Unsaved changes to a new document from "));
    QVERIFY(!Details().contains("\nDocument: "));
}

void TestRecoveredWork::missing_images_are_announced()
{
    Leave_Work(In("a.quillet"));
    TKeptNote note;
    const TKeptFolder folder(Recovery());
    QVERIFY(note.Open(folder.Note_Path(TKeptFolder::Name_Of(Copies().first())),
                      TKeptNote::TExisting::Reuse));
    QVERIFY(note.Write({In("a.quillet")}, 2));
    note.Close();
    Open_Window();
    QVERIFY(Notice().startsWith("Unsaved changes to a.quillet from "));
    QVERIFY(Notice().endsWith(" were recovered; missing images: 2"));
}

void TestRecoveredWork::a_document_that_has_changed_since_is_announced()
{
    Leave_Work(In("a.quillet"));
    QVERIFY(Notice().endsWith(" were recovered"));
    QVERIFY(!Details().contains("has changed since"));
    const QByteArray other = Support::Empty_Project(77);
    Support::Write_File(In("a.quillet"), other);
    Open_Window();
    QVERIFY(Notice().endsWith(" were recovered; the document has changed since"));
    QVERIFY(Details().contains("The document has changed since this work began."));
    // Saving keeps the other version.
    Press("Open");
    d_window->File_Save();
    QCOMPARE(Labels_In(In("a.quillet")), 1);
    const QString message = d_window->statusBar()->currentMessage();
    const QString begin = "Another program changed the document. Its version is in ";
    QVERIFY(message.startsWith(begin));
    QCOMPARE(Read_File(message.mid(begin.size())), other);
}

void TestRecoveredWork::names_of_documents_are_plain_text()
{
    Leave_Work(In("<b>%1%2.quillet"));
    QVERIFY(Notice().startsWith("Unsaved changes to <b>%1%2.quillet from "));
    QVERIFY(!Qt::mightBeRichText(Details()));
}

void TestRecoveredWork::dismiss_hides_the_notice_until_the_next_start()
{
    Leave_Work(In("a.quillet"));
    const QString notice = Notice();
    const QByteArray work = Read_File(Copies().first());
    Press("Dismiss");
    QCOMPARE(Notice(), QString());
    Save_As(In("b.quillet"));
    QCOMPARE(Notice(), QString());
    QCOMPARE(Read_File(Copies().first()), work);
    Open_Window();
    QCOMPARE(Notice(), notice);
}

void TestRecoveredWork::several_documents_are_announced_one_after_the_other()
{
    Leave_Work(In("a.quillet"), 1);
    Support::Make_Old(Copies().first(), 20);
    Leave_Work(In("b.quillet"), 2);
    Support::Make_Old(Copies().last(), 10);
    Leave_Work(In("c.quillet"), 3);
    QVERIFY(Notice().startsWith("Unsaved changes to c.quillet"));
    QVERIFY(Notice().endsWith(" were recovered (2 more)"));
    Press("Dismiss");
    QVERIFY(Notice().startsWith("Unsaved changes to b.quillet"));
    Press("Open");
    QCOMPARE(d_window->d_file_name, In("b.quillet"));
    QVERIFY(Notice().startsWith("Unsaved changes to a.quillet"));
    QVERIFY(Notice().endsWith(" were recovered"));
    d_window->File_Save();
    QCOMPARE(Labels_In(In("b.quillet")), 2);
    // The line about the save covers the notice for some seconds.
    d_window->statusBar()->clearMessage();
    QCOMPARE(Copies().size(), 2);
    QVERIFY(Notice().startsWith("Unsaved changes to a.quillet"));
}

void TestRecoveredWork::the_zoom_slider_keeps_its_width_in_a_narrow_window()
{
    Leave_Work(In(QString(200, 'a') + ".quillet"));
    for (const QSize& size : {QSize(800, 600), QSize(640, 480)}) {
        d_window->resize(size);
        QCoreApplication::processEvents();
        QCOMPARE(d_window->width(), size.width());
        const QSlider* const slider = d_window->d_zoom_slider;
        QVERIFY(slider->width() >= slider->sizeHint().width());
        QVERIFY(d_window->findChild<TRecoveryNotice*>()->width() > size.width() / 3);
    }
}

void TestRecoveredWork::the_notice_can_be_reached_with_the_tab_key()
{
    Leave_Work(In("a.quillet"));
    // It comes between the settings and the zoom, which is the last one.
    for (const Qt::Key key :
         {Qt::Key_Backtab, Qt::Key_Backtab, Qt::Key_Backtab, Qt::Key_Backtab, Qt::Key_Tab})
        QTest::keyClick(QApplication::focusWidget(), key);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    QCOMPARE(d_window->d_file_name, In("a.quillet"));
    // The focus leaves the hidden notice.
    QVERIFY(QApplication::focusWidget()->isVisible());
}

void TestRecoveredWork::open_loads_unsaved_changes_of_the_document()
{
    Leave_Work(In("a.quillet"), 2);
    const QByteArray document = Read_File(In("a.quillet"));
    Press("Open");
    QCOMPARE(d_window->d_data.Item_Count(), 2);
    QVERIFY(d_window->d_data_changed);
    QCOMPARE(d_window->d_file_name, In("a.quillet"));
    QCOMPARE(d_window->d_working_dir, QDir(d_folder->path()));
    QVERIFY(d_window->d_action_save->isEnabled());
    QCOMPARE(Notice(), QString());
    QCOMPARE(Read_File(In("a.quillet")), document);
    QCOMPARE(Labels_In(Copies().first()), 2);
}

void TestRecoveredWork::saving_opened_work_replaces_the_document_and_deletes_the_copy()
{
    Leave_Work(In("a.quillet"), 2);
    Press("Open");
    d_window->Page_Selection_Changed(d_window->d_page_widget->Page_Ids().first());
    d_window->Add_Item(QPointF(90, 60));
    QTest::keyClick(d_window.get(), Qt::Key_S, Qt::ControlModifier);
    QVERIFY(!d_window->d_data_changed);
    QCOMPARE(Labels_In(In("a.quillet")), 3);
    QCOMPARE(Copies(), QStringList());
    Open_Window();
    QCOMPARE(Notice(), QString());
}

void TestRecoveredWork::opened_work_that_was_never_saved_asks_for_a_name_data()
{
    QTest::addColumn<QString>("document");
    QTest::newRow("no document") << QString();
    QTest::newRow("a file in the recovery folder") << Recovery() + "/opened.quillet";
}

void TestRecoveredWork::opened_work_that_was_never_saved_asks_for_a_name()
{
    QFETCH(QString, document);
    QDir().mkpath(Recovery());
    Leave_Work(document);
    QFile::remove(document);
    const QDir folder = d_window->d_working_dir;
    Press("Open");
    QCOMPARE(d_window->d_working_dir, folder);
    QCOMPARE(
        Run_Answering([this] { QTest::keyClick(d_window.get(), Qt::Key_S, Qt::ControlModifier); },
                      {Support::Choose({In("named.quillet")})}),
        QString());
    QCOMPARE(Labels_In(In("named.quillet")), 1);
    QCOMPARE(Copies(), QStringList());
}

void TestRecoveredWork::a_document_that_was_deleted_is_saved_again()
{
    Leave_Work(In("a.quillet"));
    QVERIFY(!Details().contains("does not exist"));
    QVERIFY(QFile::remove(In("a.quillet")));
    Open_Window();
    QVERIFY(Details().contains("The document does not exist any more."));
    Press("Open");
    d_window->File_Save();
    QCOMPARE(Labels_In(In("a.quillet")), 1);
    QCOMPARE(Copies(), QStringList());
}

void TestRecoveredWork::open_asks_before_unsaved_changes_are_lost()
{
    Leave_Work(In("a.quillet"));
    const QString work = Copies().first();
    const QString notice = Notice();
    d_window->Label_Size_Changed(50);
    const auto open_answering = [this](QMessageBox::StandardButton button) {
        const auto look = [](QMessageBox* box) { QVERIFY(box->text().contains("Data Not Saved")); };
        QCOMPARE(Run_Answering([this] { Press("Open"); }, {Support::Look_And_Press(look, button)}),
                 QString());
    };
    open_answering(QMessageBox::No);
    QCOMPARE(Notice(), notice);
    QCOMPARE(d_window->d_file_name, QString());
    QCOMPARE(Copies().size(), 2);
    open_answering(QMessageBox::Yes);
    QCOMPARE(d_window->d_file_name, In("a.quillet"));
    // The copy of the changes that were lost is gone.
    QCOMPARE(Copies(), QStringList(work));
}

void TestRecoveredWork::open_applies_pending_text_first()
{
    Leave_Work(In("a.quillet"));
    Press("Open");
    d_window->File_Save();
    Leave_Work(In("b.quillet"));
    d_window->Open_File(In("a.quillet"));
    d_window->Page_Selection_Changed(d_window->d_page_widget->Page_Ids().first());
    d_window->Display_Item_Clicked(d_window->d_data.Item(0).id);
    Support::Type_Over(Support::By_Caption<QLineEdit>(*d_window->d_label_dock, "Item Text:"),
                       "door");
    QVERIFY(!d_window->d_data_changed);
    // Without the text, there would be nothing to ask.
    QCOMPARE(Run_Answering([this] { Press("Open"); }, {Support::Press(QMessageBox::No)}),
             QString());
    QCOMPARE(d_window->d_data.Item(0).text, QString("door"));
}

void TestRecoveredWork::closing_with_no_deletes_opened_work()
{
    Leave_Work(In("a.quillet"));
    Press("Open");
    QCOMPARE(Run_Answering([this] { d_window->close(); }, {Support::Press(QMessageBox::No)}),
             QString());
    QCOMPARE(Copies(), QStringList());
}

void TestRecoveredWork::closing_with_cancel_keeps_opened_work()
{
    Leave_Work(In("a.quillet"));
    Press("Open");
    QCOMPARE(Run_Answering([this] { d_window->close(); }, {Support::Press(QMessageBox::Cancel)}),
             QString());
    QVERIFY(d_window->isVisible());
    QCOMPARE(Copies().size(), 1);
}

void TestRecoveredWork::opened_work_survives_a_second_crash()
{
    Leave_Work(In("a.quillet"), 1);
    Press("Open");
    Open_Window();
    QVERIFY(Notice().startsWith("Unsaved changes to a.quillet"));
    Press("Open");
    d_window->Page_Selection_Changed(d_window->d_page_widget->Page_Ids().first());
    d_window->Add_Item(QPointF(90, 60));
    Open_Window();
    QVERIFY(Notice().startsWith("Unsaved changes to a.quillet"));
    QVERIFY(Notice().endsWith("(1 more)"));
    QCOMPARE(Labels_In(Copies().first()) + Labels_In(Copies().last()), 1 + 2);
}

void TestRecoveredWork::file_open_keeps_work_that_was_opened_from_the_notice()
{
    Leave_Work(In("a.quillet"));
    const QString work = Copies().first();
    Press("Open");
    QCOMPARE(Run_Answering([this] { d_window->File_Open(); },
                           {Support::Press(QMessageBox::Yes), Support::Choose({work})}),
             QString());
    QCOMPARE(Labels_In(work), 1);
    QCOMPARE(d_window->d_file_name, work);
    QVERIFY(!d_window->d_data_changed);
}

void TestRecoveredWork::a_work_log_that_cannot_be_read_is_announced_once()
{
    Leave_Work(In("a.quillet"));
    const QString log = Recovery() + "/damaged.log";
    Support::Write_File(log, QByteArray(5000, 'x'));
    Support::Write_File(Recovery() + "/damaged.note", In("b.quillet").toUtf8());
    Open_Window();
    QVERIFY2(Notice().startsWith("Unsaved changes to b.quillet from ") &&
                 Notice().contains(" were not recovered: " + log + " is not readable") &&
                 Notice().endsWith(" (1 more)"),
             qPrintable(Notice()));
    QVERIFY(Details().contains("\nThe work stays in " + log));
    Press("Dismiss");
    QVERIFY(Notice().startsWith("Unsaved changes to a.quillet from "));
    Press("Open");
    QCOMPARE(d_window->d_file_name, In("a.quillet"));
    d_window->File_Save();
    Open_Window();
    QCOMPARE(Notice(), QString());
    QCOMPARE(Copies(), QStringList(log));
}

void TestRecoveredWork::work_that_cannot_be_read_leaves_the_document()
{
    Leave_Work(In("a.quillet"));
    Support::Write_File(Copies().first(), "12345678");
    const QString work = Copies().first();
    d_window->Open_File(In("a.quillet"));
    QCOMPARE(Run_Answering([this] { Press("Open"); }, {Support::Press(QMessageBox::Ok)}),
             QString());
    QCOMPARE(d_window->d_file_name, In("a.quillet"));
    QVERIFY(!d_window->d_data_changed);
    QVERIFY(d_window->d_data.Page_Count() == 1);
    QCOMPARE(Copies(), QStringList(work));
    QVERIFY(!Notice().isEmpty());
}

void TestRecoveredWork::work_that_opens_in_part_does_not_replace_its_document()
{
    Leave_Work(In("a.quillet"));
    const QByteArray document = Read_File(In("a.quillet"));
    const QString work = Copies().first();
    const QByteArray damaged = Read_File(work).replace("<Item>", "<Text>");
    Support::Write_File(work, damaged);
    QCOMPARE(Run_Answering([this] { Press("Open"); }, {Support::Press(QMessageBox::Ok)}),
             QString());
    QVERIFY(d_window->d_data_changed);
    QCOMPARE(
        Run_Answering([this] { d_window->File_Save(); }, {Support::Choose({In("part.quillet")})}),
        QString());
    QCOMPARE(Read_File(In("a.quillet")), document);
    QCOMPARE(Labels_In(In("part.quillet")), 0);
    QCOMPARE(Read_File(work), damaged);
}

void TestRecoveredWork::work_that_another_window_has_saved_is_not_announced_any_more()
{
    Leave_Work(In("a.quillet"));
    QVERIFY(!Notice().isEmpty());
    QVERIFY(QFile::remove(Copies().first()));
    QCOMPARE(Run_Answering([this] { Press("Open"); }, {Support::Press(QMessageBox::Ok)}),
             QString());
    QCOMPARE(Notice(), QString());
    QCOMPARE(d_window->d_file_name, QString());
}

QTEST_MAIN(TestRecoveredWork)
#include "test_recoveredwork.moc"
