#include "support/modal.h"
#include "support/pages.h"
#include "support/support.h"
#include "support/view.h"
#include "support/widgets.h"

#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/paint/labelpainter.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QFileDialog>
#include <QListWidget>
#include <QModelIndex>
#include <QPainter>
#include <QPixmap>
#include <QRegularExpression>
#include <QRegularExpressionMatch>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

namespace {

const QSize page_size(240, 160);
const QColor label_color(10, 60, 200);
constexpr int label_size = 24;
/// 40 percent of the label size, rounded.
constexpr int font_size = 10;

/// The parts of an exported file's name.
struct TName
{
    QString page;
    QDateTime time;
    int counter = 0;
};

TName Parse(const QString& file_name)
{
    const QRegularExpression pattern(QStringLiteral("^(.*)-(\\d{14})(\\d+)\\.png$"),
                                     QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = pattern.match(file_name);
    return {match.captured(1),
            QDateTime::fromString(match.captured(2), QStringLiteral("ddMMyyyyhhmmss")),
            match.captured(3).toInt()};
}

QString Time_Stamp(const QDateTime& time)
{
    return time.toString(QStringLiteral("ddMMyyyyhhmmss"));
}

/// The labels of a test page: one of each border, with values and texts.
std::vector<TDataItem> Labels_Of_All_Kinds()
{
    return {{11, 1, QString(), 0, QPointF(20, 20), false},
            {12, 22, QString(), 1, QPointF(60, 40), false},
            {13, 333, QString(), 2, QPointF(120, 80), false},
            {14, 4, QStringLiteral("A%1"), 4, QPointF(180, 100), false},
            {15, -5, QStringLiteral("Pumpe"), 8, QPointF(125, 85), false}};
}

/// A page with its labels, drawn by hand on white. Labels enlarge the image.
QImage Composition(const QImage& page, const std::vector<TDataItem>& items)
{
    const TLabelStyle style{label_size + LabelPainter::Margin, label_size + LabelPainter::Margin,
                            font_size, label_color};
    const QSize size(style.width, style.height);
    QRect all = page.rect();
    for (const TDataItem& item : items)
        all |= QRect(item.position.toPoint() - LabelPainter::Centre(style), size);
    QImage canvas(all.size(), QImage::Format_RGB32);
    canvas.fill(Qt::white);
    QPainter painter(&canvas);
    painter.translate(-all.topLeft());
    painter.drawImage(0, 0, page);
    for (const TDataItem& item : items) {
        QPixmap label = LabelPainter::Template(style);
        const QString text = item.text.isEmpty() ? QString::number(item.value) : item.text;
        LabelPainter::Paint(&label, style, text, item.border_type, false);
        painter.drawPixmap(item.position.toPoint() - LabelPainter::Centre(style), label);
    }
    return canvas;
}

} // namespace

/// Export of annotated page images, from the menu and by Export_Images.
class TestImageExport : public QObject
{
    Q_OBJECT

    std::unique_ptr<TOpenWindow> d_window;
    std::unique_ptr<QTemporaryDir> d_folder;

    int Add_Page(const std::vector<TDataItem>& items = {})
    {
        const int seed = d_window->d_data.Page_Count();
        return Support::Add_Page(
            d_window.get(), Support::Picture(page_size.width(), page_size.height(), seed), items);
    }

    void Show_Page(int page_id) { Support::Show_Page(d_window.get(), page_id); }

    void Rename(int page_id, const QString& name)
    {
        d_window->d_page_widget->Set_Page_Name(page_id, name);
    }

    QList<int> Page_Ids() const { return d_window->d_page_widget->Page_Ids(); }

    /// All files of the folder, including hidden ones, by running number.
    QStringList Files() const
    {
        QStringList names = QDir(d_folder->path()).entryList(QDir::Files | QDir::Hidden);
        std::sort(names.begin(), names.end(), [](const QString& first, const QString& second) {
            return Parse(first).counter < Parse(second).counter;
        });
        return names;
    }

    QImage Exported(const QString& name) const { return QImage(d_folder->filePath(name), "png"); }

private slots:
    void init()
    {
        d_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(d_folder->isValid());
        d_window = Support::New_Window(label_size, label_color);
    }

    void cleanup()
    {
        d_window.reset();
        d_folder.reset();
    }

    void the_command_needs_a_page()
    {
        QVERIFY(!d_window->d_action_export_images->isEnabled());
        Add_Page();
        QVERIFY(d_window->d_action_export_images->isEnabled());
    }

    void the_command_asks_for_a_folder()
    {
        Add_Page();
        Add_Page();
        d_window->d_working_dir.setPath(QDir::tempPath());
        const auto look_and_choose = [this](QWidget* widget) {
            const auto* const dialog = qobject_cast<QFileDialog*>(widget);
            QVERIFY(dialog);
            QCOMPARE(dialog->windowTitle(), QStringLiteral("Export image files"));
            QCOMPARE(dialog->parentWidget(), d_window.get());
            QCOMPARE(dialog->directory(), QDir(QDir::tempPath()));
            QVERIFY(dialog->testOption(QFileDialog::ShowDirsOnly));
            Support::Choose({d_folder->path()})(widget);
        };
        QCOMPARE(Support::Run_Answering([this] { d_window->d_action_export_images->trigger(); },
                                        {look_and_choose}),
                 QString());
        QCOMPARE(d_window->d_working_dir.absolutePath(), d_folder->path());
        const QStringList files = Files();
        QCOMPARE(files.size(), 2);
        QCOMPARE(Parse(files[0]).page, QStringLiteral("Page 1"));
        QCOMPARE(Parse(files[1]).page, QStringLiteral("Page 2"));
    }

    void a_cancelled_choice_does_nothing()
    {
        Show_Page(Add_Page(Labels_Of_All_Kinds()));
        d_window->d_working_dir.setPath(d_folder->path());
        QCOMPARE(Support::Run_Answering([this] { d_window->d_action_export_images->trigger(); },
                                        {Support::Cancel()}),
                 QString());
        QCOMPARE(Files(), QStringList());
        QCOMPARE(d_window->d_working_dir.path(), d_folder->path());
        QVERIFY(!d_window->d_data_changed);
    }

    void a_failure_is_not_reported()
    {
        Add_Page();
        Rename(Page_Ids().first(), QString(300, QLatin1Char('x')));
        d_window->d_working_dir.setPath(d_folder->path());
        QCOMPARE(Support::Run_Answering([this] { d_window->File_Export_Images(); },
                                        {Support::Choose({d_folder->path()})}),
                 QString());
        QCOMPARE(Files(), QStringList());
        QCOMPARE(d_window->d_working_dir.absolutePath(), d_folder->path());
    }

    void without_pages_the_command_shows_nothing()
    {
        const QStringList view = Support::View_In_Words(*d_window);
        QCOMPARE(Support::Run_Answering([this] { d_window->File_Export_Images(); },
                                        {Support::Choose({d_folder->path()})}),
                 QString());
        QCOMPARE(Files(), QStringList());
        QCOMPARE(Support::View_In_Words(*d_window), view);
    }

    void an_export_without_pages_fails()
    {
        Show_Page(Add_Page(Labels_Of_All_Kinds()));
        Support::Click_Row(Support::Only<QListWidget>(*d_window->d_label_widget), 0);
        const QStringList view = Support::View_In_Words(*d_window);
        QVERIFY(view[1].endsWith(QStringLiteral("selected")));
        QVERIFY(!d_window->Export_Images(d_folder->path(), {}));
        QCOMPARE(Files(), QStringList());
        QCOMPARE(Support::View_In_Words(*d_window), view);
        QVERIFY(!d_window->d_data_changed);
    }

    void files_are_named_after_page_time_and_number()
    {
        for (int i = 0; i < 11; ++i)
            Add_Page();
        const QDateTime before = QDateTime::currentDateTime();
        QVERIFY(d_window->Export_Images(d_folder->path(), Page_Ids()));
        const QDateTime after = QDateTime::currentDateTime();
        const QStringList files = Files();
        QCOMPARE(files.size(), 11);
        const QDateTime time = Parse(files.first()).time;
        QVERIFY(time.isValid());
        QVERIFY(time.toSecsSinceEpoch() >= before.toSecsSinceEpoch());
        QVERIFY(time.toSecsSinceEpoch() <= after.toSecsSinceEpoch());
        for (int number = 1; number <= 11; ++number) {
            const QString digits = QString::number(number);
            QCOMPARE(files[number - 1],
                     "Page " + digits + "-" + Time_Stamp(time) + digits + ".png");
        }
    }

    void page_names_become_parts_of_file_names_data()
    {
        QTest::addColumn<QString>("page_name");
        QTest::addColumn<QString>("file_part");
        QTest::newRow("plain") << "Cover"
                               << "Cover";
        QTest::newRow("slash and colon") << "a/b:c"
                                         << "a_b_c";
        QTest::newRow("all replaced") << "/\\:><"
                                      << "_____";
        QTest::newRow("blanks stay") << "  two  words "
                                     << "  two  words ";
        QTest::newRow("others stay") << "a*b?c|d\"e%f.png"
                                     << "a*b?c|d\"e%f.png";
        QTest::newRow("markers stay") << "%1 of %2"
                                      << "%1 of %2";
        QTest::newRow("beyond ASCII")
            << QStringLiteral("Übersicht – 総覧") << QStringLiteral("Übersicht – 総覧");
        QTest::newRow("empty") << ""
                               << "Image_2";
    }
    void page_names_become_parts_of_file_names()
    {
        QFETCH(const QString, page_name);
        QFETCH(const QString, file_part);
        Add_Page();
        const int page = Add_Page();
        QCOMPARE(page, 2);
        Rename(page, page_name);
        QVERIFY(d_window->Export_Images(d_folder->path(), {page}));
        QCOMPARE(Files().size(), 1);
        QCOMPARE(Parse(Files().first()).page, file_part);
        QCOMPARE(Parse(Files().first()).counter, 1);
    }

    void a_folder_may_end_with_a_separator()
    {
        Add_Page();
        QVERIFY(d_window->Export_Images(d_folder->path() + QLatin1Char('/'), Page_Ids()));
        QCOMPARE(Files().size(), 1);
        QCOMPARE(Parse(Files().first()).page, QStringLiteral("Page 1"));
    }

    void a_backslash_counts_as_a_separator()
    {
        Add_Page();
        const QString current = QDir::currentPath();
        QVERIFY(QDir::setCurrent(d_folder->path()));
        const bool exported = d_window->Export_Images(QStringLiteral("C:\\out\\"), Page_Ids());
        QVERIFY(QDir::setCurrent(current));
        QVERIFY(exported);
        QCOMPARE(Files().size(), 1);
        QCOMPARE(Parse(Files().first()).page, QStringLiteral("C:\\out\\Page 1"));
    }

    void pages_are_exported_in_the_order_of_the_list()
    {
        const int first = Add_Page();
        const int second = Add_Page();
        const int third = Add_Page();
        // The same as dragging the first row to the end.
        auto* const pages = Support::Only<QListWidget>(*d_window->d_page_widget);
        QVERIFY(pages->model()->moveRow(QModelIndex(), 0, QModelIndex(), 3));
        QCOMPARE(Page_Ids(), QList<int>({second, third, first}));
        QCOMPARE(Support::Run_Answering([this] { d_window->d_action_export_images->trigger(); },
                                        {Support::Choose({d_folder->path()})}),
                 QString());
        const QStringList files = Files();
        QCOMPARE(files.size(), 3);
        QCOMPARE(Parse(files[0]).page, QStringLiteral("Page 2"));
        QCOMPARE(Parse(files[1]).page, QStringLiteral("Page 3"));
        QCOMPARE(Parse(files[2]).page, QStringLiteral("Page 1"));
        for (int i = 0; i < 3; ++i) {
            const QImage image =
                Support::Picture(page_size.width(), page_size.height(), (i + 1) % 3);
            QCOMPARE(Support::Difference(Exported(files[i]), image), QString());
        }
    }

    void labels_are_drawn_unselected_at_their_positions()
    {
        const std::vector<TDataItem> items = Labels_Of_All_Kinds();
        const int page = Add_Page(items);
        Show_Page(page);
        // Selection and zoom must not appear in the image.
        Support::Click_Row(Support::Only<QListWidget>(*d_window->d_label_widget), 2);
        d_window->d_display_widget->Change_Scale(2.5);
        QVERIFY(d_window->Export_Images(d_folder->path(), {page}));
        const QImage exported = Exported(Files().first());
        QCOMPARE(exported.size(), page_size);
        const QImage image = Support::Picture(page_size.width(), page_size.height());
        QCOMPARE(Support::Difference(exported, Composition(image, items)), QString());
    }

    void labels_beyond_the_edge_enlarge_the_picture()
    {
        // A label is 29 x 29 pixels with its margin. It extends from 14 pixels before its centre to
        // 15 after it. The image grows by 3 + 14 to the left, 14 - 5 upward, 242 + 15 - 240 to the
        // right and 170 + 15 - 160 downward.
        QCOMPARE(label_size + LabelPainter::Margin, 29);
        const std::vector<TDataItem> items{{1, 1, QString(), 1, QPointF(-3, 50), false},
                                           {2, 2, QString(), 2, QPointF(50, 5), false},
                                           {3, 3, QString(), 4, QPointF(242, 100), false},
                                           {4, 4, QString(), 8, QPointF(100, 170), false}};
        const int page = Add_Page(items);
        QVERIFY(d_window->Export_Images(d_folder->path(), {page}));
        const QImage exported = Exported(Files().first());
        QCOMPARE(exported.size(), QSize(17 + 240 + 17, 9 + 160 + 25));
        const QImage image = Support::Picture(page_size.width(), page_size.height());
        QCOMPARE(Support::Difference(exported, Composition(image, items)), QString());
        QCOMPARE(exported.pixelColor(0, 0), QColor(Qt::white));
    }

    void a_file_of_the_same_name_is_overwritten()
    {
        Add_Page();
        // The export happens in one of the next seconds.
        const QByteArray old_content("old");
        const QDateTime now = QDateTime::currentDateTime();
        constexpr int seconds = 60;
        for (int second = 0; second < seconds; ++second) {
            const QString stamp = Time_Stamp(now.addSecs(second));
            Support::Write_File(d_folder->filePath("Page 1-" + stamp + "1.png"), old_content);
        }
        QVERIFY(d_window->Export_Images(d_folder->path(), Page_Ids()));
        QCOMPARE(Files().size(), seconds);
        int overwritten = 0;
        const QStringList files = Files();
        for (const QString& name : files) {
            if (Support::Read_File(d_folder->filePath(name)) == old_content)
                continue;
            ++overwritten;
            QCOMPARE(Support::Difference(Exported(name),
                                         Support::Picture(page_size.width(), page_size.height())),
                     QString());
        }
        QCOMPARE(overwritten, 1);
    }

    void the_first_failure_ends_the_export()
    {
        const int first = Add_Page(Labels_Of_All_Kinds());
        const int second = Add_Page();
        const int third = Add_Page({{7, 70, QString(), 2, QPointF(30, 30), false}});
        // The name is too long for every file system.
        Rename(second, QString(300, QLatin1Char('x')));
        Show_Page(third);
        const QStringList view = Support::View_In_Words(*d_window);
        QVERIFY(!d_window->Export_Images(d_folder->path(), {first, second, third}));
        QCOMPARE(Files().size(), 1);
        QCOMPARE(Parse(Files().first()).page, QStringLiteral("Page 1"));
        QCOMPARE(d_window->d_data.Active_Page(), third);
        QCOMPARE(Support::View_In_Words(*d_window), view);
    }

    void an_unwritable_folder_is_a_failure_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::newRow("missing") << "/missing/folder";
        QTest::newRow("not a folder for files") << "/proc";
        QTest::newRow("a file") << QCoreApplication::applicationFilePath();
    }
    void an_unwritable_folder_is_a_failure()
    {
        QFETCH(const QString, folder);
        Show_Page(Add_Page(Labels_Of_All_Kinds()));
        const QStringList view = Support::View_In_Words(*d_window);
        QVERIFY(!d_window->Export_Images(folder, Page_Ids()));
        QCOMPARE(Support::View_In_Words(*d_window), view);
    }

    void a_write_protected_folder_is_a_failure()
    {
        Add_Page();
        QVERIFY(QFile::setPermissions(d_folder->path(), QFile::ReadOwner | QFile::ExeOwner));
        const Support::TChildResult result = Support::Run_In_Child([this] {
            Support::Obey_File_Permissions();
            return d_window->Export_Images(d_folder->path(), Page_Ids()) ? 1 : 0;
        });
        QVERIFY(QFile::setPermissions(d_folder->path(),
                                      QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        QVERIFY2(result.exited, result.error_output.constData());
        QCOMPARE(result.exit_code, 0);
        QCOMPARE(Files(), QStringList());
    }

    void afterwards_the_active_page_is_shown_without_a_selection()
    {
        const int first = Add_Page(Labels_Of_All_Kinds());
        Add_Page({{7, 70, QString(), 2, QPointF(30, 30), false}});
        Show_Page(first);
        auto* const list = Support::Only<QListWidget>(*d_window->d_label_widget);
        const QStringList unselected = Support::View_In_Words(*d_window);
        Support::Click_Row(list, 1);
        QVERIFY(Support::View_In_Words(*d_window) != unselected);
        QVERIFY(d_window->Export_Images(d_folder->path(), Page_Ids()));
        QCOMPARE(d_window->d_data.Active_Page(), first);
        QCOMPARE(Support::View_In_Words(*d_window), unselected);
        // List and document keep their selection.
        QCOMPARE(list->count(), 5);
        QCOMPARE(d_window->d_label_widget->Selected_Items(), std::vector<int>({12}));
        QVERIFY(d_window->d_data.Item(1).selected);
    }

    void the_view_is_not_painted_during_an_export()
    {
        const int first = Add_Page(Labels_Of_All_Kinds());
        Add_Page(Labels_Of_All_Kinds());
        Show_Page(first);
        TDisplayWidget* const view = d_window->d_display_widget;
        QList<int> pages;
        const QObject listener;
        connect(view, &TDisplayWidget::Update_Item_Position, &listener, [&] {
            QVERIFY(!view->updatesEnabled());
            pages += d_window->d_data.Active_Page();
        });
        QVERIFY(d_window->Export_Images(d_folder->path(), Page_Ids()));
        QVERIFY(view->updatesEnabled());
        // Five labels each: both pages, then the first again.
        QCOMPARE(pages.size(), 15);
        QCOMPARE(pages, QList<int>({1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 1, 1, 1, 1, 1}));
    }

    void the_view_stays_without_an_active_page_data()
    {
        QTest::addColumn<QList<int>>("selected");
        QTest::newRow("none selected") << QList<int>{};
        QTest::newRow("several selected") << QList<int>{0, 2};
        QTest::newRow("a page without an image") << QList<int>{1};
    }

    void the_view_stays_without_an_active_page()
    {
        QFETCH(QList<int>, selected);
        Add_Page(Labels_Of_All_Kinds());
        Support::Add_Page(d_window.get(), QImage());
        Add_Page(Labels_Of_All_Kinds());
        for (const int row : std::as_const(selected))
            Support::Click_Row(Support::Only<QListWidget>(*d_window->d_page_widget), row,
                               Qt::ControlModifier);
        const int active_page = d_window->d_data.Active_Page();
        QVERIFY(!d_window->d_data.Page_Image_Valid());
        const QStringList view = Support::View_In_Words(*d_window);
        const QImage background = d_window->d_display_widget->Background_Pixmap().toImage();
        QVERIFY(d_window->Export_Images(d_folder->path(), Page_Ids()));
        QCOMPARE(d_window->d_data.Active_Page(), active_page);
        QCOMPARE(Support::View_In_Words(*d_window), view);
        QCOMPARE(Support::Difference(d_window->d_display_widget->Background_Pixmap().toImage(),
                                     background),
                 QString());
        QVERIFY(d_window->d_display_widget->updatesEnabled());
    }

    void the_view_stays_where_it_was_scrolled_to()
    {
        Show_Page(Support::Add_Page(d_window.get(), Support::Picture(2000, 3000)));
        const TDisplayWidget* const view = d_window->d_display_widget;
        view->horizontalScrollBar()->setValue(100);
        view->verticalScrollBar()->setValue(200);
        QVERIFY(d_window->Export_Images(d_folder->path(), Page_Ids()));
        QCOMPARE(view->horizontalScrollBar()->value(), 100);
        QCOMPARE(view->verticalScrollBar()->value(), 200);
    }

    void a_page_without_an_image_is_exported_as_a_white_image()
    {
        const int empty = Support::Add_Page(d_window.get(), QImage());
        const int page = Add_Page(Labels_Of_All_Kinds());
        Show_Page(page);
        const QStringList view = Support::View_In_Words(*d_window);
        // The image has the size of the view's scene, which an empty scene keeps.
        QVERIFY(d_window->Export_Images(d_folder->path(), {empty, page}));
        const QStringList files = Files();
        QCOMPARE(files.size(), 2);
        QImage white(Exported(files[0]).size(), QImage::Format_RGB32);
        white.fill(Qt::white);
        QCOMPARE(Support::Difference(Exported(files[0]), white), QString());
        const QImage image = Support::Picture(page_size.width(), page_size.height(), 1);
        QCOMPARE(Support::Difference(Exported(files[1]), Composition(image, Labels_Of_All_Kinds())),
                 QString());
        QCOMPARE(Support::View_In_Words(*d_window), view);
    }

    void exporting_labels_marks_the_document_as_changed_data()
    {
        QTest::addColumn<bool>("has_labels");
        QTest::newRow("labels report their positions") << true;
        QTest::newRow("no labels") << false;
    }
    void exporting_labels_marks_the_document_as_changed()
    {
        QFETCH(const bool, has_labels);
        Add_Page(has_labels ? Labels_Of_All_Kinds() : std::vector<TDataItem>());
        QVERIFY(d_window->Export_Images(d_folder->path(), Page_Ids()));
        QCOMPARE(d_window->d_data_changed, has_labels);
    }

    void exporting_does_not_change_positions()
    {
        const QPointF position(33.25, 44.75);
        const int page = Add_Page({{1, 1, QString(), 1, position, false}});
        QVERIFY(d_window->Export_Images(d_folder->path(), Page_Ids()));
        d_window->d_data.Set_Active_Page(page);
        QCOMPARE(d_window->d_data.Item(0).position, position);
    }
};

QTEST_MAIN(TestImageExport)
#include "test_imageexport.moc"
