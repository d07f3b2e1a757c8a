// "Export web page ..." in the page list's context menu.

#include "support/modal.h"
#include "support/pages.h"
#include "support/project.h"
#include "support/support.h"

#include "src/pagewidget.h"

#include <QAction>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

using Support::Choose;
using Support::Label;
using Support::Run_Answering;

namespace {

QAction* Export_Action(const TOpenWindow& window)
{
    const QList<QAction*> actions = window.d_page_widget->actions();
    const auto found = std::find_if(actions.cbegin(), actions.cend(), [](const QAction* action) {
        return action->text() == QLatin1String("Export web page ...");
    });
    return found == actions.cend() ? nullptr : *found;
}

} // namespace

class TestWebPageExport : public QObject
{
    Q_OBJECT

private slots:
    void the_page_list_shows_its_actions_in_a_context_menu()
    {
        TOpenWindow window;
        QCOMPARE(window.d_page_widget->contextMenuPolicy(), Qt::ActionsContextMenu);
        QVERIFY(Export_Action(window));
    }

    void without_pages_the_action_is_disabled()
    {
        TOpenWindow window;
        QVERIFY(!Export_Action(window)->isEnabled());
        Support::Add_Page(&window, Support::Picture(50, 40));
        window.Update_Document_Actions();
        QVERIFY(Export_Action(window)->isEnabled());
        window.d_data_changed = false;
        window.File_New();
        QVERIFY(!Export_Action(window)->isEnabled());
    }

    void the_page_has_names_images_and_labels_of_the_document()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath("report.html");
        TOpenWindow window;
        const QImage picture = Support::Picture(50, 40);
        const int page_id = Support::Add_Page(
            &window, picture, {Label(1, 17, "text of a label", Square_Border, QPointF(20, 20))});
        window.d_page_widget->Set_Page_Name(page_id, "A & B");
        window.Update_Document_Actions();
        window.d_data_changed = false;
        QCOMPARE(Run_Answering([&] { Export_Action(window)->trigger(); }, {Choose({path})}),
                 QString());
        const QString html = QString::fromUtf8(Support::Read_File(path));
        QVERIFY(html.contains("<title>Quillet</title>"));
        QVERIFY(html.contains("A &amp; B</h2>"));
        QVERIFY(html.contains(QString::fromLatin1(Support::Png(picture).toBase64())));
        QVERIFY(html.contains("text of a label</td>"));
        QVERIFY(html.contains("rgba(247, 151, 65, 1)"));
        QVERIFY(!window.d_data_changed);
        QCOMPARE(window.d_working_dir.path(), folder.path());
    }

    void a_page_that_cannot_be_written_is_reported()
    {
        QTemporaryDir folder;
        QVERIFY(QDir(folder.path()).mkdir("sub"));
        TOpenWindow window;
        Support::Add_Page(&window, Support::Picture(50, 40));
        window.Update_Document_Actions();
        window.d_data_changed = false;
        const auto choose_and_remove_folder = [&folder](QWidget* dialog) {
            Choose({folder.filePath("sub/report.html")})(dialog);
            QVERIFY(QDir(folder.filePath("sub")).removeRecursively());
        };
        QStringList texts;
        const auto read_texts = [&texts](const QMessageBox* box) {
            texts = QStringList{box->text(), box->informativeText(), box->detailedText()};
        };
        QCOMPARE(Run_Answering([&] { Export_Action(window)->trigger(); },
                               {choose_and_remove_folder,
                                Support::Look_And_Press(read_texts, QMessageBox::Ok)}),
                 QString());
        QVERIFY(texts[0].contains("Error Exporting Web Page"));
        QVERIFY(texts[1].contains("The web page cannot be written."));
        QCOMPARE(texts[2], "Cannot write " + folder.filePath("sub/report.html"));
    }
};

QTEST_MAIN(TestWebPageExport)
#include "test_webpageexport.moc"
