// Settings that the window and its settings panel keep between runs.

#include "support/modal.h"
#include "support/project.h"
#include "support/support.h"
#include "support/window.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/messagebox.h"
#include "src/pagewidget.h"
#include "src/settingswidget.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDockWidget>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using Support::Press;
using Support::Run_Answering;

namespace {

/// Every key with its value after the first window closes without having been shown.
const QVector<QPair<QString, QVariant>>& First_Values()
{
    static const QVector<QPair<QString, QVariant>> values{
        {QStringLiteral("Mainwindow_Position"), QPoint(30, 30)},
        {QStringLiteral("Mainwindow_Size"), QSize(770, 570)},
        {QStringLiteral("Working_Path"), QDir::homePath()},
        {QStringLiteral("Track_Selected_Label"), QStringLiteral("true")},
        {QStringLiteral("Label_Size"), QStringLiteral("32")},
        {QStringLiteral("Item_Display_Format"), QStringLiteral("Item[%1]")},
        {QStringLiteral("Label_Color"), QStringLiteral("#f79741")},
        {QStringLiteral("PDF_Orientation"), QStringLiteral("0")},
        {QStringLiteral("PDF_Resolution"), QStringLiteral("2")},
        {QStringLiteral("Border_Type"), QStringLiteral("2")},
        {QStringLiteral("Label_Visible"), QStringLiteral("false")},
        {QStringLiteral("Settings_Visible"), QStringLiteral("false")},
        {QStringLiteral("Page_Visible"), QStringLiteral("false")},
        {QStringLiteral("Label_Floating"), QStringLiteral("false")},
        {QStringLiteral("Settings_Floating"), QStringLiteral("false")},
        {QStringLiteral("Page_Floating"), QStringLiteral("false")},
        {QStringLiteral("Label_Position"), QPoint()},
        {QStringLiteral("Settings_Position"), QPoint()},
        {QStringLiteral("Page_Position"), QPoint()},
    };
    return values;
}

std::unique_ptr<TOpenWindow> New_Window()
{
    return std::make_unique<TOpenWindow>();
}

/// Describes the restored state of a window except its docks, in one line.
QString Describe_State(const TOpenWindow& window)
{
    const QColor color = window.d_settings_widget->Label_Color();
    const auto number = [](int value) { return QString::number(value); };
    return QStringList{number(window.x()) + QLatin1Char(',') + number(window.y()),
                       number(window.width()) + QLatin1Char('x') + number(window.height()),
                       window.d_working_dir.absolutePath(),
                       QStringLiteral("track"),
                       number(window.d_settings_widget->Track_Label()),
                       number(window.d_display_widget->d_track_item),
                       QStringLiteral("size"),
                       number(window.d_settings_widget->Label_Size()),
                       QStringLiteral("view"),
                       number(window.d_display_widget->Label_Size().width()),
                       QStringLiteral("format"),
                       window.d_settings_widget->Display_Format(),
                       color.isValid() ? color.name() : QStringLiteral("invalid"),
                       QStringLiteral("pdf"),
                       number(window.d_settings_widget->PDF_Orientation()),
                       number(window.d_settings_widget->PDF_Resolution()),
                       QStringLiteral("border"),
                       number(window.d_label_widget->Border_Type())}
        .join(QLatin1Char(' '));
}

/// The docks in the order of the settings: hidden or shown, floating or docked.
QStringList Describe_Docks(const TOpenWindow& window)
{
    QStringList states;
    for (const QDockWidget* dock :
         {window.d_label_dock, window.d_settings_dock, window.d_page_dock})
        states += (dock->isHidden() ? QStringLiteral("hidden ") : QStringLiteral("shown ")) +
                  (dock->isFloating() ? QStringLiteral("floating") : QStringLiteral("docked"));
    return states;
}

const QStringList all_docked{"shown docked", "shown docked", "shown docked"};

} // namespace

class TestSettings : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> d_home;

    QString Settings_Path() const
    {
        return d_home->filePath(QStringLiteral(".quillet/Settings.ini"));
    }

    QString First_State() const
    {
        return QStringLiteral("30,30 770x570 ") + d_home->path() +
               QStringLiteral(
                   " track 1 1 size 32 view 32 format Item[%1] #f79741 pdf 0 2 border 2");
    }

    /// Writes a settings file with these lines.
    void Write_Settings(const QByteArray& lines) const
    {
        QVERIFY(QDir(d_home->path()).mkpath(QStringLiteral(".quillet")));
        Support::Write_File(Settings_Path(), "[General]\n" + lines + "\n");
    }

    static bool Close(TOpenWindow* window)
    {
        QCloseEvent event;
        QCoreApplication::sendEvent(window, &event);
        return event.isAccepted();
    }

private slots:
    void initTestCase()
    {
        // The numbers below are for the screen of Qt's offscreen platform.
        QCOMPARE(QGuiApplication::primaryScreen()->availableGeometry(), QRect(0, 0, 800, 600));
    }

    void init()
    {
        d_home = std::make_unique<QTemporaryDir>();
        QVERIFY(d_home->isValid());
        qputenv("HOME", QFile::encodeName(d_home->path()));
    }

    void a_first_start_has_the_defaults()
    {
        const auto window = New_Window();
        QCOMPARE(Describe_State(*window), First_State());
        QCOMPARE(Describe_Docks(*window), all_docked);
        QVERIFY(QFileInfo(d_home->filePath(QStringLiteral(".quillet"))).isDir());
        QCOMPARE(window->d_settings->fileName(), Settings_Path());
        QCOMPARE(window->d_settings->format(), QSettings::IniFormat);
        QCOMPARE(window->d_settings->parent(), window.get());
        QCOMPARE(Support::View_Difference(*window, 32, QColor(0xf7, 0x97, 0x41)), QString());
        QVERIFY(!window->d_data_changed);
    }

    void closing_writes_every_key_without_groups()
    {
        const auto window = New_Window();
        QVERIFY(Close(window.get()));
        QVERIFY(Support::Read_File(Settings_Path()).startsWith("[General]\n"));
        const QSettings settings(Settings_Path(), QSettings::IniFormat);
        QVERIFY(settings.childGroups().isEmpty());
        QCOMPARE(settings.allKeys().size(), 19);
        for (const auto& [key, value] : First_Values()) {
            QVERIFY2(settings.contains(key), qPrintable(key));
            if (!key.endsWith(QStringLiteral("_Position")) || key.startsWith("Mainwindow"))
                QCOMPARE(settings.value(key), value);
            else
                QCOMPARE(settings.value(key).userType(), static_cast<int>(QMetaType::QPoint));
        }
    }

    void points_sizes_and_booleans_are_written_in_the_format_of_qt()
    {
        const auto window = New_Window();
        QVERIFY(Close(window.get()));
        const QList<QByteArray> lines = Support::Read_File(Settings_Path()).split('\n');
        for (const char* line :
             {"Mainwindow_Position=@Point(30 30)", "Mainwindow_Size=@Size(770 570)",
              "Track_Selected_Label=true", "Label_Floating=false", "Label_Size=32",
              "Item_Display_Format=Item[%1]", "Label_Color=#f79741", "Page_Visible=false"})
            QVERIFY2(lines.contains(line), line);
    }

    void a_round_trip_keeps_every_value()
    {
        {
            const auto window = New_Window();
            window->setGeometry(40, 50, 780, 700);
            window->d_working_dir.setPath(QStringLiteral("/usr"));
            window->d_settings_widget->Set_Track_Label(false);
            window->d_settings_widget->Set_Label_Size(64);
            window->d_settings_widget->Set_Display_Format(QStringLiteral("%2; \"%1\", 100%"));
            window->d_settings_widget->Set_Label_Color(QColor(1, 2, 3, 4));
            window->d_settings_widget->Set_PDF_Orientation(1);
            window->d_settings_widget->Set_PDF_Resolution(4);
            window->d_label_widget->Set_Border_Type(8);
            window->d_data_changed = false;
            QVERIFY(Close(window.get()));
        }
        const auto window = New_Window();
        QCOMPARE(Describe_State(*window),
                 QStringLiteral("40,50 760x550 /usr track 0 0 size 64 view 64 format %2; \"%1\", "
                                "100% #010203 pdf 1 4 border 8"));
        QCOMPARE(Support::View_Difference(*window, 64, QColor(1, 2, 3)), QString());
        QVERIFY(!window->d_data_changed);
    }

    void closing_a_shown_window_stores_which_docks_are_visible()
    {
        {
            const auto window = New_Window();
            window->show();
            window->d_settings_dock->hide();
            QVERIFY(Close(window.get()));
        }
        const QSettings settings(Settings_Path(), QSettings::IniFormat);
        QCOMPARE(settings.value(QStringLiteral("Label_Visible")).toString(),
                 QStringLiteral("true"));
        QCOMPARE(settings.value(QStringLiteral("Settings_Visible")).toString(),
                 QStringLiteral("false"));
        QCOMPARE(settings.value(QStringLiteral("Page_Visible")).toString(), QStringLiteral("true"));
        const auto window = New_Window();
        QCOMPARE(Describe_Docks(*window),
                 (QStringList{"shown docked", "hidden docked", "shown docked"}));
    }

    void floating_docks_are_restored_to_their_positions()
    {
        Write_Settings("Label_Floating=true\nLabel_Position=@Point(111 122)\n"
                       "Settings_Position=@Point(133 144)\n"
                       "Page_Floating=true\nPage_Position=@Point(155 166)");
        const auto window = New_Window();
        QCOMPARE(Describe_Docks(*window),
                 (QStringList{"shown floating", "shown docked", "shown floating"}));
        QCOMPARE(window->d_label_dock->pos(), QPoint(111, 122));
        QCOMPARE(window->d_page_dock->pos(), QPoint(155, 166));
        QVERIFY(window->d_settings_dock->pos() != QPoint(133, 144));
    }

    void a_window_larger_than_the_screen_is_restored_within_it_data()
    {
        QTest::addColumn<QByteArray>("position");
        QTest::addColumn<QByteArray>("size");
        QTest::addColumn<QRect>("geometry");
        const QRect fallback(30, 30, 800, 600);
        QTest::newRow("within") << QByteArray("10 20") << QByteArray("700 550")
                                << QRect(10, 20, 700, 550);
        QTest::newRow("beyond right and bottom")
            << QByteArray("50 150") << QByteArray("900 900") << QRect(50, 150, 750, 450);
        QTest::newRow("beyond left and top")
            << QByteArray("-10 -20") << QByteArray("800 600") << QRect(0, 0, 790, 580);
        QTest::newRow("larger than the screen")
            << QByteArray("-100 -100") << QByteArray("2000 2000") << QRect(0, 0, 800, 600);
        QTest::newRow("off to the right")
            << QByteArray("800 0") << QByteArray("700 600") << fallback;
        QTest::newRow("off to the left")
            << QByteArray("-700 0") << QByteArray("700 600") << fallback;
        QTest::newRow("far below") << QByteArray("0 99999") << QByteArray("700 600") << fallback;
        QTest::newRow("empty") << QByteArray("100 100") << QByteArray("0 0") << fallback;
    }

    void a_window_larger_than_the_screen_is_restored_within_it()
    {
        QFETCH(const QByteArray, position);
        QFETCH(const QByteArray, size);
        Write_Settings("Mainwindow_Position=@Point(" + position + ")\nMainwindow_Size=@Size(" +
                       size + ")");
        const auto window = New_Window();
        QTEST(QRect(window->pos(), window->size()), "geometry");
    }

    void a_setting_of_the_wrong_type_counts_as_missing_data()
    {
        QTest::addColumn<QByteArray>("line");
        for (const char* key : {"Mainwindow_Position", "Mainwindow_Size", "Track_Selected_Label",
                                "Label_Size", "PDF_Orientation", "PDF_Resolution", "Border_Type",
                                "Label_Visible", "Settings_Visible", "Page_Visible",
                                "Label_Floating", "Settings_Floating", "Page_Floating"}) {
            for (const char* value : {"text", "@Invalid()", "1x", "", "a, b", "@ByteArray(\\0)"})
                QTest::newRow(qPrintable(QStringLiteral("%1=%2").arg(key, value)))
                    << QByteArray(key) + '=' + value;
        }
        for (const char* line :
             {"Mainwindow_Position=7", "Mainwindow_Position=@Size(1 1)",
              "Mainwindow_Size=@Point(1 1)", "Mainwindow_Size=true", "Label_Size=@Point(64 64)",
              "Label_Size=99999999999", "Label_Size=true", "PDF_Orientation=@Size(1 1)",
              "Border_Type=4.5", "Label_Visible=@Point(0 0)", "Label_Floating=2",
              "Track_Selected_Label=no", "Working_Path=a, b", "Item_Display_Format=@Point(1 1)",
              "Item_Display_Format=a, b", "Label_Color=@Size(1 1)", "Label_Color=a, b",
              "Label_Color=@Invalid()"})
            QTest::newRow(line) << QByteArray(line);
    }

    void a_setting_of_the_wrong_type_counts_as_missing()
    {
        QFETCH(const QByteArray, line);
        Write_Settings(line);
        const auto window = New_Window();
        QCOMPARE(Describe_State(*window), First_State());
        QCOMPARE(Describe_Docks(*window), all_docked);
    }

    void a_floating_dock_with_a_wrong_position_is_at_the_origin()
    {
        Write_Settings("Page_Floating=true\nPage_Position=here");
        const auto window = New_Window();
        QCOMPARE(window->d_page_dock->pos(), QPoint(0, 0));
    }

    void a_number_is_read_as_a_boolean_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("track");
        QTest::newRow("1") << QByteArray("1") << true;
        QTest::newRow("0") << QByteArray("0") << false;
        QTest::newRow("TRUE") << QByteArray("TRUE") << true;
        QTest::newRow("False") << QByteArray("False") << false;
    }

    void a_number_is_read_as_a_boolean()
    {
        QFETCH(const QByteArray, text);
        Write_Settings("Track_Selected_Label=" + text);
        QTEST(New_Window()->d_settings_widget->Track_Label(), "track");
    }

    void an_unknown_colour_name_is_invalid()
    {
        Write_Settings("Label_Color=no colour");
        const auto window = New_Window();
        QVERIFY(!window->d_settings_widget->Label_Color().isValid());
        QCOMPARE(Support::View_Difference(*window, 32, QColor()), QString());
    }

    void panels_clamp_values_out_of_range_data()
    {
        QTest::addColumn<QByteArray>("lines");
        QTest::addColumn<QString>("state");
        QTest::newRow("label size")
            << QByteArray("Label_Size=500") << QStringLiteral("size 128 view 500");
        QTest::newRow("small label size")
            << QByteArray("Label_Size=10") << QStringLiteral("size 16 view 10");
        QTest::newRow("label of one pixel")
            << QByteArray("Label_Size=1") << QStringLiteral("size 16 view 1");
        QTest::newRow("label as large as a page")
            << QByteArray("Label_Size=4000") << QStringLiteral("size 128 view 4000");
        QTest::newRow("label without an area")
            << QByteArray("Label_Size=-99") << QStringLiteral("size 16 view -4");
        QTest::newRow("label that is too large to draw")
            << QByteArray("Label_Size=2147483647") << QStringLiteral("size 128 view 8192");
        QTest::newRow("orientation")
            << QByteArray("PDF_Orientation=7") << QStringLiteral("pdf 1 2");
        QTest::newRow("resolution") << QByteArray("PDF_Resolution=7") << QStringLiteral("pdf 0 1");
        QTest::newRow("border") << QByteArray("Border_Type=4") << QStringLiteral("border 4");
    }

    // The view gets the stored size unless it cannot draw a label of that size.
    void panels_clamp_values_out_of_range()
    {
        QFETCH(const QByteArray, lines);
        QFETCH(const QString, state);
        Write_Settings(lines);
        const auto window = New_Window();
        QVERIFY2(Describe_State(*window).contains(state), qPrintable(Describe_State(*window)));
    }

    void a_file_without_settings_gives_the_defaults()
    {
        QVERIFY(QDir(d_home->path()).mkpath(QStringLiteral(".quillet")));
        Support::Write_File(Settings_Path(), QByteArray("\x00\xff[[[=\n\x80", 9));
        QCOMPARE(Describe_State(*New_Window()), First_State());
    }

    void every_close_request_writes_the_file()
    {
        const auto window = New_Window();
        QVERIFY(Close(window.get()));
        QVERIFY(QFile::remove(Settings_Path()));
        window->d_data_changed = true;
        bool closed = true;
        QCOMPARE(Run_Answering([&] { closed = Close(window.get()); }, {Press(QMessageBox::Cancel)}),
                 QString());
        QVERIFY(!closed);
        QVERIFY(window->d_data_changed);
        QVERIFY(QFile::exists(Settings_Path()));

        window->d_settings_widget->Set_PDF_Resolution(3);
        QCOMPARE(Run_Answering([&] { closed = Close(window.get()); }, {Press(QMessageBox::No)}),
                 QString());
        QVERIFY(closed);
        const QSettings settings(Settings_Path(), QSettings::IniFormat);
        QCOMPARE(settings.value(QStringLiteral("PDF_Resolution")).toInt(), 3);
        QCOMPARE(settings.allKeys().size(), 19);
    }

    void settings_are_written_before_the_question()
    {
        const auto window = New_Window();
        window->d_data_changed = true;
        bool was_there = false;
        const Support::TAnswer answer = Support::Look_And_Press(
            [&](QMessageBox*) { was_there = QFile::exists(Settings_Path()); }, QMessageBox::Cancel);
        QCOMPARE(Run_Answering([&] { Close(window.get()); }, {answer}), QString());
        QVERIFY(was_there);
    }

    void the_close_question_has_three_answers_of_which_yes_is_the_default()
    {
        const auto window = New_Window();
        window->d_data_changed = true;
        bool closed = true;
        const Support::TAnswer answer = Support::Look_And_Press(
            [](QMessageBox* box) {
                const QRegularExpression markup(QStringLiteral("</?span[^>]*>"));
                QCOMPARE(box->text().remove(markup), QStringLiteral("Data Not Saved"));
                QCOMPARE(box->informativeText().remove(markup),
                         QStringLiteral("Do you want to save the Quillet data?"));
                QCOMPARE(box->detailedText(), QString());
                QCOMPARE(box->standardButtons(),
                         QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
                QCOMPARE(box->standardButton(box->defaultButton()), QMessageBox::Yes);
                QCOMPARE(box->icon(), QMessageBox::Question);
            },
            QMessageBox::No);
        QCOMPARE(Run_Answering([&] { closed = Close(window.get()); }, {answer}), QString());
        QVERIFY(closed);
    }

    void escape_at_the_close_question_keeps_the_window_open()
    {
        const auto window = New_Window();
        window->d_data_changed = true;
        bool closed = true;
        QCOMPARE(Run_Answering([&] { closed = Close(window.get()); }, {Support::Cancel()}),
                 QString());
        QVERIFY(!closed);
        QVERIFY(window->d_data_changed);
    }

    void an_unchanged_document_closes_without_a_question()
    {
        const auto window = New_Window();
        bool closed = false;
        QCOMPARE(Run_Answering([&] { closed = Close(window.get()); }, {}), QString());
        QVERIFY(closed);
    }

    void answering_yes_saves_and_closes()
    {
        const QString path = d_home->filePath(QStringLiteral("a.quillet"));
        const auto window = New_Window();
        window->d_file_name = path;
        window->d_data_changed = true;
        bool closed = false;
        QCOMPARE(Run_Answering([&] { closed = Close(window.get()); }, {Press(QMessageBox::Yes)}),
                 QString());
        QVERIFY(closed);
        QVERIFY(!window->d_data_changed);
        QCOMPARE(Support::Read_File(path), Support::Header(32, "#f79741", "", "", 0));
    }

    void answering_yes_closes_even_after_a_failed_save()
    {
        const auto window = New_Window();
        window->d_file_name = d_home->filePath(QStringLiteral("missing/a.quillet"));
        window->d_data_changed = true;
        bool closed = false;
        QCOMPARE(Run_Answering([&] { closed = Close(window.get()); },
                               {Press(QMessageBox::Yes), Press(QMessageBox::Ok)}),
                 QString());
        QVERIFY(closed);

        window->d_file_name.clear();
        window->d_data_changed = true;
        closed = false;
        QCOMPARE(Run_Answering([&] { closed = Close(window.get()); },
                               {Press(QMessageBox::Yes), Support::Cancel()}),
                 QString());
        QVERIFY(closed);
        QVERIFY(window->d_data_changed);
    }

    void answering_no_closes_without_saving()
    {
        const QString path = d_home->filePath(QStringLiteral("a.quillet"));
        const auto window = New_Window();
        window->d_file_name = path;
        window->d_data_changed = true;
        bool closed = false;
        QCOMPARE(Run_Answering([&] { closed = Close(window.get()); }, {Press(QMessageBox::No)}),
                 QString());
        QVERIFY(closed);
        QVERIFY(!QFile::exists(path));
    }

    void a_file_in_place_of_the_settings_folder_is_not_changed()
    {
        const QString folder = d_home->filePath(QStringLiteral(".quillet"));
        Support::Write_File(folder, "in the way");
        const auto window = New_Window();
        QCOMPARE(Describe_State(*window), First_State());
        QVERIFY(Close(window.get()));
        QCOMPARE(Support::Read_File(folder), QByteArray("in the way"));
        QCOMPARE(
            QDir(d_home->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
            QStringList{QStringLiteral(".quillet")});
    }

    void an_unwritable_home_keeps_no_settings_and_shows_no_message_data()
    {
        QTest::addColumn<bool>("has_folder");
        QTest::newRow("home") << false;
        QTest::newRow("settings folder") << true;
    }

    void an_unwritable_home_keeps_no_settings_and_shows_no_message()
    {
        QFETCH(const bool, has_folder);
        const QString folder = d_home->filePath(QStringLiteral(".quillet"));
        if (has_folder)
            QVERIFY(QDir().mkpath(folder));
        const QString locked = has_folder ? folder : d_home->path();
        QVERIFY(QFile::setPermissions(locked, QFile::ReadOwner | QFile::ExeOwner));
        const QString first_state = First_State();
        const Support::TChildResult result = Support::Run_In_Child([&first_state] {
            Support::Obey_File_Permissions();
            const auto window = New_Window();
            const bool is_first = Describe_State(*window) == first_state;
            return is_first && Close(window.get()) ? 0 : 1;
        });
        QVERIFY(
            QFile::setPermissions(locked, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        QCOMPARE(result.exit_code, 0);
        QCOMPARE(result.error_output, QByteArray());
        QVERIFY(!QFile::exists(Settings_Path()));
    }
};

QTEST_MAIN(TestSettings)
#include "test_settings.moc"
