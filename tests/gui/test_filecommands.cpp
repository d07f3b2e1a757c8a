// New, Open, Save and Save As: their dialogs and questions, the file name and the working folder.

#include "support/modal.h"
#include "support/project.h"
#include "support/support.h"
#include "support/window.h"

#include "src/labelwidget.h"
#include "src/messagebox.h"
#include "src/pagewidget.h"
#include "src/settingswidget.h"

#include <QAction>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using Support::Cancel;
using Support::Choose;
using Support::Describe;
using Support::Look_And_Press;
using Support::Press;
using Support::Run_Answering;
using Support::TAnswer;

namespace {

QString Box_Line(const QString& text, const QString& informative_text, const QString& detailed_text,
                 int buttons, int default_button, int icon)
{
    return QStringList{text,
                       informative_text,
                       detailed_text,
                       QString::number(buttons, 16),
                       QString::number(default_button, 16),
                       QString::number(icon)}
        .join(QLatin1Char('|'));
}

/// A message box as one line: text, informative text, detailed text, buttons, default, icon. Leaves
/// out the markup that the box puts around its texts.
QString Describe_Box(const QMessageBox& box)
{
    const QRegularExpression markup(QStringLiteral("</?span[^>]*>"));
    return Box_Line(box.text().remove(markup), box.informativeText().remove(markup),
                    box.detailedText(), box.standardButtons(),
                    box.standardButton(box.defaultButton()), box.icon());
}

QString Loss_Question()
{
    return Box_Line(QStringLiteral("Data Not Saved"),
                    QStringLiteral("Current data will be lost.  Do you want to continue?"),
                    QString(), QMessageBox::Yes | QMessageBox::No, QMessageBox::No,
                    QMessageBox::Question);
}

QString File_Error(const char* text, const char* informative_text, const QString& reason)
{
    return Box_Line(QLatin1String(text), QLatin1String(informative_text), reason, QMessageBox::Ok,
                    QMessageBox::Ok, QMessageBox::Critical);
}

/// Records what a box shows, then answers it.
TAnswer Note_And_Press(QString* note, QMessageBox::StandardButton button)
{
    return Look_And_Press([note](QMessageBox* box) { *note = Describe_Box(*box); }, button);
}

/// Records caption, folder and filters of a file dialog, then answers it.
TAnswer Note_And(QString* note, const TAnswer& answer)
{
    return [note, answer](QWidget* widget) {
        const auto* dialog = qobject_cast<QFileDialog*>(widget);
        QVERIFY(dialog);
        *note =
            QStringList{dialog->windowTitle(), dialog->directory().absolutePath(),
                        dialog->nameFilters().join(QLatin1Char(';')),
                        dialog->acceptMode() == QFileDialog::AcceptSave ? QStringLiteral("save")
                                                                        : QStringLiteral("open")}
                .join(QLatin1Char('|'));
        answer(widget);
    };
}

} // namespace

class TestFileCommands : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir d_folder;

    QString Path(const QString& name) const { return d_folder.filePath(name); }

    static void Add_Document(TOpenWindow* window)
    {
        const QList<int> ids =
            Support::Add_Pages(window, {{QStringLiteral("mine"), Support::Picture(9, 9), {}}});
        window->d_page_widget->Set_Active_Page(ids.first());
        window->d_data_changed = false;
    }

    /// The actions that need a page, as "enabled" or "disabled"; "mixed" is an error.
    static QString Page_Actions(const TOpenWindow& window)
    {
        const QList<QAction*> actions{window.d_action_save, window.d_action_export_images,
                                      window.d_action_export_pdf, window.d_action_reindex};
        int enabled = 0;
        for (const QAction* action : actions)
            enabled += action->isEnabled() ? 1 : 0;
        if (enabled == actions.size())
            return QStringLiteral("enabled");
        return enabled == 0 ? QStringLiteral("disabled") : QStringLiteral("mixed");
    }

    /// A project file with one page without an image.
    static QByteArray Project()
    {
        return Support::Header(40, "#0a141e", "", "", 1) +
               Support::Page_Record("read", "", Support::Item_List());
    }

    void Write_Legacy_Pair(const QString& list, const QString& image) const
    {
        Support::Write_File(Path(list), "<Quillet_Data File_Version=\"3\"/>");
        Support::Write_File(Path(image), Support::Png(Support::Picture(5, 5)));
    }

private slots:
    void initTestCase() { QVERIFY(d_folder.isValid()); }

    void init()
    {
        QDir folder(d_folder.path());
        for (const QString& name : folder.entryList(QDir::Files))
            QVERIFY(folder.remove(name));
        QVERIFY(QDir(Path(QStringLiteral("sub"))).removeRecursively());
        QVERIFY(folder.mkpath(QStringLiteral("sub")));
    }

    void open_asks_for_a_file_in_the_working_folder()
    {
        TOpenWindow window;
        window.d_working_dir.setPath(d_folder.path());
        QString note;
        QCOMPARE(Run_Answering([&] { window.File_Open(); }, {Note_And(&note, Cancel())}),
                 QString());
        QCOMPARE(note, QStringLiteral("Select a Quillet file to open|%1|Quillet files (*.quillet "
                                      "*.qld)|open")
                           .arg(d_folder.path()));
    }

    void open_loads_a_project()
    {
        Support::Write_File(Path("sub/a.quillet"), Project());
        TOpenWindow window;
        QCOMPARE(Run_Answering([&] { window.File_Open(); }, {Choose({Path("sub/a.quillet")})}),
                 QString());
        QCOMPARE(Describe(&window), QStringList{"page 1 read 0x0"});
        QCOMPARE(window.d_file_name, Path("sub/a.quillet"));
        QCOMPARE(window.d_working_dir.absolutePath(), Path("sub"));
        QVERIFY(!window.d_data_changed);
        QCOMPARE(Page_Actions(window), QStringLiteral("enabled"));
    }

    void opening_a_document_without_pages_disables_the_document_actions()
    {
        Support::Write_File(Path("a.quillet"), Support::Header(40, "#0a141e", "", "", 0));
        TOpenWindow window;
        Add_Document(&window);
        window.Update_Document_Actions();
        QCOMPARE(Page_Actions(window), QStringLiteral("enabled"));
        QCOMPARE(Run_Answering([&] { window.File_Open(); }, {Choose({Path("a.quillet")})}),
                 QString());
        QCOMPARE(Page_Actions(window), QStringLiteral("disabled"));
    }

    void cancelling_open_changes_only_the_actions_data()
    {
        QTest::addColumn<bool>("changed");
        QTest::newRow("saved") << false;
        QTest::newRow("changed") << true;
    }

    void cancelling_open_changes_only_the_actions()
    {
        QFETCH(const bool, changed);
        TOpenWindow window;
        Add_Document(&window);
        window.d_file_name = QStringLiteral("/some/name");
        window.d_working_dir.setPath(d_folder.path());
        window.d_data_changed = changed;
        QCOMPARE(Page_Actions(window), QStringLiteral("disabled"));
        std::vector<TAnswer> answers{Cancel()};
        if (changed)
            answers.insert(answers.begin(), Press(QMessageBox::Yes));
        QCOMPARE(Run_Answering([&] { window.File_Open(); }, answers), QString());
        QCOMPARE(window.d_file_name, QStringLiteral("/some/name"));
        QCOMPARE(window.d_working_dir.path(), d_folder.path());
        QCOMPARE(window.d_data_changed, changed);
        QCOMPARE(Page_Actions(window), QStringLiteral("enabled"));
        QCOMPARE(Describe(&window), QStringList{"page 1 mine 9x9"});
    }

    void declining_to_lose_changes_keeps_the_document_data()
    {
        QTest::addColumn<bool>("escape");
        QTest::newRow("No") << false;
        QTest::newRow("Escape") << true;
    }

    void declining_to_lose_changes_keeps_the_document()
    {
        QFETCH(const bool, escape);
        TOpenWindow window;
        Add_Document(&window);
        window.d_file_name = QStringLiteral("/some/name");
        window.d_data_changed = true;
        QString note;
        const TAnswer answer = escape ? TAnswer([&note](QWidget* box) {
            note = Describe_Box(*qobject_cast<QMessageBox*>(box));
            QTest::keyClick(box, Qt::Key_Escape);
        })
                                      : Note_And_Press(&note, QMessageBox::No);
        QCOMPARE(Run_Answering([&] { window.File_Open(); }, {answer}), QString());
        QCOMPARE(note, Loss_Question());
        QVERIFY(window.d_data_changed);
        QCOMPARE(window.d_file_name, QStringLiteral("/some/name"));
        QCOMPARE(Page_Actions(window), QStringLiteral("disabled"));
        QCOMPARE(Describe(&window), QStringList{"page 1 mine 9x9"});
    }

    void agreeing_to_lose_changes_opens_the_file()
    {
        Support::Write_File(Path("a.quillet"), Project());
        TOpenWindow window;
        Add_Document(&window);
        window.d_data_changed = true;
        QCOMPARE(Run_Answering([&] { window.File_Open(); },
                               {Press(QMessageBox::Yes), Choose({Path("a.quillet")})}),
                 QString());
        QCOMPARE(Describe(&window), QStringList{"page 1 read 0x0"});
        QVERIFY(!window.d_data_changed);
    }

    void an_unreadable_project_is_reported()
    {
        Support::Write_File(Path("sub/a.quillet"), "no project at all");
        TOpenWindow window;
        Add_Document(&window);
        QString note;
        QCOMPARE(
            Run_Answering([&] { window.File_Open(); }, {Choose({Path("sub/a.quillet")}),
                                                        Note_And_Press(&note, QMessageBox::Ok)}),
            QString());
        QCOMPARE(note, File_Error("Error Loading Data", "The Quillet file cannot be loaded",
                                  QStringLiteral("Invalid file.")));
        QCOMPARE(window.d_file_name, Path("sub/a.quillet"));
        QCOMPARE(window.d_working_dir.absolutePath(), Path("sub"));
        QVERIFY(!window.d_data_changed);
        QCOMPARE(Page_Actions(window), QStringLiteral("enabled"));
        QCOMPARE(Describe(&window), QStringList{"page 1 mine 9x9"});
    }

    void a_partly_loaded_project_stays_and_counts_as_unchanged()
    {
        Support::Write_File(Path("a.quillet"),
                            Support::Header(41, "#0a141e", "", "", 1) +
                                Support::Page_Record("read", "", "<Other File_Version=\"1\"/>"));
        TOpenWindow window;
        Add_Document(&window);
        QString note;
        QCOMPARE(
            Run_Answering([&] { window.File_Open(); },
                          {Choose({Path("a.quillet")}), Note_And_Press(&note, QMessageBox::Ok)}),
            QString());
        QCOMPARE(note, File_Error("Error Loading Data", "The Quillet file cannot be loaded",
                                  QStringLiteral("ERR:  Identification 'Quillet_Data' does not "
                                                 "match 'Other'")));
        QCOMPARE(Describe(&window), QStringList{"page 1 read 0x0"});
        QVERIFY(!window.d_data_changed);
    }

    void a_failed_open_sets_name_and_folder_after_the_message_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("name");
        QTest::newRow("project") << QStringLiteral("sub/a.quillet") << Path("sub/a.quillet");
        QTest::newRow("legacy") << QStringLiteral("sub/old.qld") << QString();
    }
    void a_failed_open_sets_name_and_folder_after_the_message()
    {
        QFETCH(QString, file);
        QFETCH(QString, name);
        Support::Write_File(Path(file), "neither of them");
        TOpenWindow window;
        window.d_file_name = QStringLiteral("/some/name");
        window.d_working_dir.setPath(d_folder.path());
        window.d_data_changed = true;
        QStringList meanwhile;
        const auto look = [&](QMessageBox*) {
            meanwhile << window.d_file_name << window.d_working_dir.path()
                      << (window.d_data_changed ? "changed" : "unchanged");
        };
        QCOMPARE(Run_Answering([&] { window.File_Open(); },
                               {Press(QMessageBox::Yes), Choose({Path(file)}),
                                Support::Look_And_Press(look, QMessageBox::Ok)}),
                 QString());
        QCOMPARE(meanwhile, (QStringList{"/some/name", d_folder.path(), "changed"}));
        QCOMPARE(window.d_file_name, name);
        QCOMPARE(window.d_working_dir.path(), Path("sub"));
        QVERIFY(!window.d_data_changed);
    }

    void a_legacy_file_is_loaded_and_never_overwritten_data()
    {
        QTest::addColumn<QString>("list");
        QTest::addColumn<QString>("image");
        QTest::newRow("lower case")
            << QStringLiteral("sub/old.qld") << QStringLiteral("sub/old.qli");
        QTest::newRow("two dots") << QStringLiteral("sub/old.x.qld")
                                  << QStringLiteral("sub/old.x.qli");
    }

    void a_legacy_file_is_loaded_and_never_overwritten()
    {
        QFETCH(const QString, list);
        QFETCH(const QString, image);
        Write_Legacy_Pair(list, image);
        TOpenWindow window;
        window.d_file_name = QStringLiteral("/some/name");
        QCOMPARE(Run_Answering([&] { window.File_Open(); }, {Choose({Path(list)})}), QString());
        QCOMPARE(Describe(&window), QStringList{"page 1 Page 1 5x5"});
        QCOMPARE(window.d_file_name, QString());
        QCOMPARE(window.d_working_dir.absolutePath(), Path("sub"));
        QVERIFY(!window.d_data_changed);
        QCOMPARE(Page_Actions(window), QStringLiteral("enabled"));

        QString note;
        QCOMPARE(Run_Answering([&] { window.File_Save(); }, {Note_And(&note, Cancel())}),
                 QString());
        QVERIFY2(note.startsWith(QStringLiteral("Save quillet file|")), qPrintable(note));
    }

    void the_suffix_of_a_legacy_file_may_be_upper_case()
    {
        // The names in the pair have lower-case suffixes, so it is found only if both spellings
        // exist.
        Write_Legacy_Pair(QStringLiteral("old.QLD"), QStringLiteral("old.qli"));
        TOpenWindow window;
        window.d_file_name = QStringLiteral("/some/name");
        QString note;
        window.d_working_dir.setPath(d_folder.path());
        QCOMPARE(Run_Answering([&] { window.Open_File(Path("old.QLD")); },
                               {Note_And_Press(&note, QMessageBox::Ok)}),
                 QString());
        QCOMPARE(
            note,
            File_Error(
                "Error Loading Data", "The legacy Quillet file cannot be loaded",
                QStringLiteral("ERR:  Cannot open file '%1' for reading.").arg(Path("old.qld"))));
        QCOMPARE(window.d_file_name, QString());

        Support::Write_File(Path("old.qld"), "<Quillet_Data File_Version=\"3\"/>");
        QCOMPARE(Run_Answering([&] { window.Open_File(Path("old.QLD")); }, {}), QString());
        QCOMPARE(Describe(&window), QStringList{"page 1 Page 1 5x5"});
    }

    void an_unreadable_legacy_file_is_reported()
    {
        Support::Write_File(Path("sub/old.qld"), "<Quillet_Data File_Version=\"3\"/>");
        QFile::remove(Path("sub/old.qli"));
        TOpenWindow window;
        Add_Document(&window);
        window.d_file_name = QStringLiteral("/some/name");
        window.d_data_changed = true;
        QString note;
        QCOMPARE(Run_Answering([&] { window.File_Open(); },
                               {Press(QMessageBox::Yes), Choose({Path("sub/old.qld")}),
                                Note_And_Press(&note, QMessageBox::Ok)}),
                 QString());
        QCOMPARE(note, File_Error("Error Loading Data", "The legacy Quillet file cannot be loaded",
                                  QStringLiteral("Background image not found")));
        QCOMPARE(window.d_file_name, QString());
        QCOMPARE(window.d_working_dir.absolutePath(), Path("sub"));
        QVERIFY(!window.d_data_changed);
        QCOMPARE(Page_Actions(window), QStringLiteral("enabled"));
        QCOMPARE(Describe(&window), QStringList{"page 1 mine 9x9"});
    }

    void a_name_without_a_folder_becomes_the_working_folder()
    {
        TOpenWindow window;
        QCOMPARE(Run_Answering([&] { window.Open_File(QStringLiteral("nowhere.quillet")); },
                               {Press(QMessageBox::Ok)}),
                 QString());
        QCOMPARE(window.d_working_dir.path(), QStringLiteral("nowhere.quillet"));
        QCOMPARE(Run_Answering([&] { window.Open_File(QStringLiteral("nowhere.qld")); },
                               {Press(QMessageBox::Ok)}),
                 QString());
        QCOMPARE(window.d_working_dir.path(), QStringLiteral("nowhere"));
    }

    void save_writes_the_known_file_without_a_question()
    {
        TOpenWindow window;
        Add_Document(&window);
        window.d_file_name = Path("a.quillet");
        window.d_working_dir.setPath(QStringLiteral("/"));
        window.d_data_changed = true;
        QCOMPARE(Run_Answering([&] { window.File_Save(); }, {}), QString());
        QCOMPARE(Support::Byte_Difference(
                     Support::Read_File(Path("a.quillet")),
                     Support::Header(32, "#f79741", "", "", 1) +
                         Support::Page_Record("mine", Support::Png(Support::Picture(9, 9)),
                                              Support::Item_List())),
                 QString());
        QVERIFY(!window.d_data_changed);
        QCOMPARE(window.d_file_name, Path("a.quillet"));
        QCOMPARE(window.d_working_dir.path(), QStringLiteral("/"));
    }

    void a_failed_save_is_reported_and_counts_as_saved()
    {
        TOpenWindow window;
        Add_Document(&window);
        window.d_file_name = Path("missing/a.quillet");
        window.d_data_changed = true;
        QString note;
        QCOMPARE(
            Run_Answering([&] { window.File_Save(); }, {Note_And_Press(&note, QMessageBox::Ok)}),
            QString());
        QCOMPARE(note, File_Error("Error Saving Data", "The Quillet file cannot be saved.",
                                  QStringLiteral("Cannot open file for writing")));
        QVERIFY(!window.d_data_changed);
        QCOMPARE(window.d_file_name, Path("missing/a.quillet"));
    }

    void save_without_a_name_asks_for_one()
    {
        TOpenWindow window;
        Add_Document(&window);
        window.d_working_dir.setPath(d_folder.path());
        window.d_data_changed = true;
        QString note;
        QCOMPARE(Run_Answering([&] { window.File_Save(); },
                               {Note_And(&note, Choose({Path("sub/a.quillet")}))}),
                 QString());
        QCOMPARE(note, QStringLiteral("Save quillet file|%1|Quillet Files (*.quillet)|save")
                           .arg(d_folder.path()));
        QVERIFY(QFile::exists(Path("sub/a.quillet")));
        QCOMPARE(window.d_file_name, Path("sub/a.quillet"));
        QCOMPARE(window.d_working_dir.absolutePath(), Path("sub"));
        QVERIFY(!window.d_data_changed);
    }

    void save_as_appends_no_extension()
    {
        TOpenWindow window;
        Add_Document(&window);
        window.d_file_name = Path("before.quillet");
        QCOMPARE(Run_Answering([&] { window.File_SaveAs(); }, {Choose({Path("plain")})}),
                 QString());
        QVERIFY(QFile::exists(Path("plain")));
        QVERIFY(!QFile::exists(Path("plain.quillet")));
        QVERIFY(!QFile::exists(Path("before.quillet")));
        QCOMPARE(window.d_file_name, Path("plain"));
        QCOMPARE(window.windowTitle(), QStringLiteral("Quillet"));
    }

    void cancelling_save_as_changes_nothing()
    {
        TOpenWindow window;
        Add_Document(&window);
        window.d_file_name = QStringLiteral("/some/name");
        window.d_working_dir.setPath(d_folder.path());
        window.d_data_changed = true;
        QCOMPARE(Run_Answering([&] { window.File_SaveAs(); }, {Cancel()}), QString());
        QVERIFY(window.d_data_changed);
        QCOMPARE(window.d_file_name, QStringLiteral("/some/name"));
        QCOMPARE(window.d_working_dir.path(), d_folder.path());
    }

    void a_failed_save_as_sets_the_file_name()
    {
        TOpenWindow window;
        Support::Add_Pages(&window, {{QStringLiteral("a"),
                                      QImage(),
                                      {Support::Label(1, 1, QStringLiteral("\u0001"), 0, {})}}});
        window.d_data_changed = true;
        QString note;
        QCOMPARE(
            Run_Answering([&] { window.File_SaveAs(); }, {Choose({Path("sub/failed.quillet")}),
                                                          Note_And_Press(&note, QMessageBox::Ok)}),
            QString());
        QCOMPARE(note,
                 File_Error("Error Saving Data", "The Quillet file cannot be saved.",
                            QStringLiteral("ERR:  Cannot write node 'Text' with data '\u0001'")));
        QCOMPARE(window.d_file_name, Path("sub/failed.quillet"));
        QCOMPARE(window.d_working_dir.absolutePath(), Path("sub"));
        QVERIFY(!window.d_data_changed);
        QVERIFY(QFile::exists(Path("sub/failed.quillet")));
        QCOMPARE(QFileInfo(Path("sub/failed.quillet")).size(), 0);
    }

    void each_answer_to_the_close_question_has_its_effect_in_the_next_window()
    {
        const std::vector<std::pair<QString, QMessageBox::StandardButton>> answers{
            {QStringLiteral("first"), QMessageBox::Cancel},
            {QStringLiteral("second"), QMessageBox::No},
            {QStringLiteral("third"), QMessageBox::Yes}};
        {
            TOpenWindow window;
            Add_Document(&window);
            QCOMPARE(Run_Answering([&] { window.File_SaveAs(); }, {Choose({Path("a.quillet")})}),
                     QString());
            window.d_settings_widget->Set_Label_Size(50);
        }
        for (const auto& [name, answer] : answers) {
            TOpenWindow window;
            window.show();
            QCOMPARE(Run_Answering([&] { window.File_Open(); }, {Choose({Path("a.quillet")})}),
                     QString());
            QCOMPARE(Describe(&window), QStringList{"page 1 mine 9x9"});
            window.d_page_widget->Set_Page_Name(1, name);
            window.d_data_changed = true;
            bool closed = true;
            QCOMPARE(Run_Answering([&] { closed = window.close(); }, {Press(answer)}), QString());
            QCOMPARE(closed, answer != QMessageBox::Cancel);
            QCOMPARE(window.isVisible(), answer == QMessageBox::Cancel);
            window.d_data_changed = false;
        }
        TOpenWindow window;
        QVERIFY(window.Load_Data(Path("a.quillet")));
        QCOMPARE(Describe(&window), QStringList{"page 1 third 9x9"});
    }
};

QTEST_MAIN(TestFileCommands)
#include "test_filecommands.moc"
