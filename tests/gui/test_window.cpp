// The new main window: its actions, menus, docks, connections, zoom and About box.

#include "support/modal.h"
#include "support/support.h"
#include "support/widgets.h"
#include "support/window.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/messagebox.h"
#include "src/pagewidget.h"
#include "src/safety/safetynet.h"
#include "src/settingswidget.h"

#include <QAction>
#include <QCoreApplication>
#include <QDockWidget>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHash>
#include <QIcon>
#include <QKeySequence>
#include <QLabel>
#include <QMessageBox>
#include <QMetaMethod>
#include <QPushButton>
#include <QScreen>
#include <QSlider>
#include <QStyle>
#include <QTest>
#include <QToolBar>
#include <QVBoxLayout>

#include <cmath>

class TestWindow : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void the_window_starts_with_an_empty_document();
    void the_window_starts_with_its_size_and_title();
    void actions_have_their_icon_shortcut_and_texts_data();
    void actions_have_their_icon_shortcut_and_texts();
    void actions_are_created_in_order();
    void the_menu_bar_reads_file_edit_view_help();
    void menus_contain_their_entries_in_order_data();
    void menus_contain_their_entries_in_order();
    void the_tool_bar_contains_its_actions_in_order();
    void docks_contain_their_panels_data();
    void docks_contain_their_panels();
    void the_settings_dock_is_below_the_page_dock();
    void the_status_bar_shows_the_zoom();
    void the_central_widget_contains_the_view_and_the_notice();
    void slots_are_declared_in_their_order();
    void every_signal_is_connected_data();
    void every_signal_is_connected();
    void lists_of_integers_are_known_to_the_meta_type_system();
    void the_slider_sets_scale_and_text_data();
    void the_slider_sets_scale_and_text();
    void one_step_of_the_slider_scales_by_a_fixed_factor();
    void about_shows_one_box();
    void quit_does_nothing();
    void a_closed_dock_keeps_its_contents();
    void the_page_view_of_the_first_window_shows_the_whole_width_of_the_start_image();
    void no_caption_is_cut_off();

private:
    QAction* Action(const QString& text) const;
    QStringList Entries(const QList<QAction*>& actions) const;

    std::unique_ptr<TOpenWindow> d_window;
};

void TestWindow::init()
{
    d_window = std::make_unique<TOpenWindow>();
}

void TestWindow::cleanup()
{
    // Otherwise the next window would report a recovery copy.
    d_window->d_safety_net->Discard();
    d_window.reset();
}

QAction* TestWindow::Action(const QString& text) const
{
    const QList<QAction*> actions =
        d_window->findChildren<QAction*>(QString(), Qt::FindDirectChildrenOnly);
    for (QAction* action : actions) {
        if (action->text() == text)
            return action;
    }
    return nullptr;
}

QStringList TestWindow::Entries(const QList<QAction*>& actions) const
{
    QStringList texts;
    for (const QAction* action : actions)
        texts += action->isSeparator() ? QStringLiteral("-") : action->text();
    return texts;
}

void TestWindow::the_window_starts_with_an_empty_document()
{
    QCOMPARE(d_window->d_data.Page_Count(), 0);
    QCOMPARE(d_window->d_data.Active_Page(), -1);
    QVERIFY(d_window->d_file_name.isEmpty());
    QVERIFY(!d_window->d_data_changed);
    QVERIFY(!d_window->d_display_click);
    QVERIFY(!d_window->d_reindex_dialog);
    QVERIFY(!d_window->d_header_dialog);
    QVERIFY(!d_window->d_label_widget->isEnabled());
    QVERIFY(d_window->d_page_widget->isEnabled());
}

void TestWindow::the_window_starts_with_its_size_and_title()
{
    QCOMPARE(d_window->windowTitle(), QStringLiteral("Quillet"));
    QCOMPARE(d_window->iconSize(), QSize(32, 32));
    const QRect wanted =
        QRect(30, 30, 800, 600) & QGuiApplication::primaryScreen()->availableGeometry();
    QCOMPARE(QRect(d_window->pos(), d_window->size()), wanted);
    QCOMPARE(d_window->d_message_box->parentWidget(), d_window.get());
}

void TestWindow::actions_have_their_icon_shortcut_and_texts_data()
{
    QTest::addColumn<QString>("icon");
    QTest::addColumn<int>("shortcut");
    QTest::addColumn<QString>("tool_tip");
    QTest::addColumn<QString>("whats_this");
    QTest::addColumn<bool>("enabled");
    const int none = QKeySequence::UnknownKey;
    QTest::newRow("New") << ":/menu/file_new.png" << int(QKeySequence::New) << "New"
                         << "" << true;
    QTest::newRow("Open ...") << ":/menu/file_open.png" << int(QKeySequence::Open) << "Open"
                              << "" << true;
    QTest::newRow("Save") << ":/menu/file_save.png" << int(QKeySequence::Save) << "Save"
                          << "" << false;
    QTest::newRow("Save As ...") << "" << int(QKeySequence::SaveAs) << "Save As"
                                 << "" << true;
    QTest::newRow("Import ...") << ":/menu/file_import.png" << none << "Import"
                                << "Import background image for quillet." << true;
    QTest::newRow("&Export Images ...") << ":/menu/file_export_image.png" << none << "Export Images"
                                        << "Export quillet page images." << false;
    QTest::newRow("Export PDF ...") << ":/menu/file_export_pdf.png" << none << "Export PDF"
                                    << "Export quillet pages as PDF." << false;
    QTest::newRow("Quit") << "" << int(QKeySequence::Quit) << "Quit"
                          << "" << true;
    QTest::newRow("Reindex Items ...") << "" << none << "Reindex Items"
                                       << "" << false;
    QTest::newRow("About ...") << "" << none << "About"
                               << "" << true;
}

void TestWindow::actions_have_their_icon_shortcut_and_texts()
{
    QFETCH(QString, icon);
    QFETCH(int, shortcut);
    QFETCH(QString, tool_tip);
    QFETCH(QString, whats_this);
    QFETCH(bool, enabled);
    const QAction* action = Action(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(action);
    QCOMPARE(action->icon().isNull(), icon.isEmpty());
    if (!icon.isEmpty()) {
        const QSize size(32, 32);
        QCOMPARE(Support::Difference(action->icon().pixmap(size).toImage(),
                                     QIcon(icon).pixmap(size).toImage()),
                 QString());
    }
    QCOMPARE(action->shortcut(),
             shortcut == QKeySequence::UnknownKey
                 ? QKeySequence()
                 : QKeySequence(static_cast<QKeySequence::StandardKey>(shortcut)));
    QCOMPARE(action->toolTip(), tool_tip);
    QCOMPARE(action->whatsThis(), whats_this);
    QCOMPARE(action->isEnabled(), enabled);
}

void TestWindow::actions_are_created_in_order()
{
    const QList<QAction*> actions =
        d_window->findChildren<QAction*>(QString(), Qt::FindDirectChildrenOnly);
    QCOMPARE(Entries(actions), QStringList({"New", "Open ...", "Save", "Save As ...", "Import ...",
                                            "&Export Images ...", "Export PDF ...", "Quit",
                                            "Reindex Items ...", "About ..."}));
    QCOMPARE(actions.value(0), d_window->d_action_new);
    QCOMPARE(actions.value(3), d_window->d_action_save_as);
    QCOMPARE(actions.value(7), d_window->d_action_quit);
}

void TestWindow::the_menu_bar_reads_file_edit_view_help()
{
    QCOMPARE(Entries(d_window->menuBar()->actions()),
             QStringList({"File", "Edit", "View", "Help"}));
}

void TestWindow::menus_contain_their_entries_in_order_data()
{
    QTest::addColumn<QStringList>("entries");
    QTest::newRow("File") << QStringList({"New", "-", "Open ...", "Save", "Save As ...", "-",
                                          "Import ...", "&Export Images ...", "Export PDF ...", "-",
                                          "Quit"});
    QTest::newRow("Edit") << QStringList({"Reindex Items ..."});
    QTest::newRow("View") << QStringList({"Item List", "Pages", "Settings"});
    QTest::newRow("Help") << QStringList({"About ..."});
}

void TestWindow::menus_contain_their_entries_in_order()
{
    QFETCH(QStringList, entries);
    for (const QAction* action : d_window->menuBar()->actions()) {
        if (action->text() == QLatin1String(QTest::currentDataTag()))
            QCOMPARE(Entries(action->menu()->actions()), entries);
    }
}

void TestWindow::the_tool_bar_contains_its_actions_in_order()
{
    auto* tool_bar = Support::Only<QToolBar>(*d_window);
    QVERIFY(tool_bar);
    QCOMPARE(d_window->toolBarArea(tool_bar), Qt::TopToolBarArea);
    QCOMPARE(Entries(tool_bar->actions()),
             QStringList({"New", "-", "Open ...", "Save", "-", "Import ...", "&Export Images ...",
                          "Export PDF ..."}));
}

void TestWindow::docks_contain_their_panels_data()
{
    QTest::addColumn<QString>("panel");
    QTest::addColumn<int>("area");
    QTest::newRow("Item List") << "TLabelWidget" << int(Qt::LeftDockWidgetArea);
    QTest::newRow("Pages") << "TPageWidget" << int(Qt::RightDockWidgetArea);
    QTest::newRow("Settings") << "TSettingsWidget" << int(Qt::RightDockWidgetArea);
}

void TestWindow::docks_contain_their_panels()
{
    QFETCH(QString, panel);
    QFETCH(int, area);
    for (QDockWidget* dock : d_window->findChildren<QDockWidget*>()) {
        if (dock->windowTitle() != QLatin1String(QTest::currentDataTag()))
            continue;
        QCOMPARE(dock->features(), QDockWidget::DockWidgetClosable |
                                       QDockWidget::DockWidgetMovable |
                                       QDockWidget::DockWidgetFloatable);
        QCOMPARE(dock->allowedAreas(), Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
        QCOMPARE(int(d_window->dockWidgetArea(dock)), area);
        QCOMPARE(QString::fromLatin1(dock->widget()->metaObject()->className()), panel);
        QVERIFY(!dock->isFloating());
        return;
    }
    QFAIL("no such dock");
}

void TestWindow::the_settings_dock_is_below_the_page_dock()
{
    d_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(d_window.get()));
    QVERIFY(d_window->d_settings_dock->y() > d_window->d_page_dock->y());
    QCOMPARE(d_window->d_settings_dock->x(), d_window->d_page_dock->x());
}

void TestWindow::the_status_bar_shows_the_zoom()
{
    const QSlider* slider = d_window->d_zoom_slider;
    QCOMPARE(slider->orientation(), Qt::Horizontal);
    QCOMPARE(slider->minimum(), -100);
    QCOMPARE(slider->maximum(), 100);
    QCOMPARE(slider->value(), 0);
    QCOMPARE(slider->toolTip(), QStringLiteral("Image Magnification"));
    QCOMPARE(d_window->d_zoom_label->text(), QStringLiteral("1.00 X"));

    const QWidget* container = slider->parentWidget();
    QCOMPARE(container->parentWidget(), d_window->statusBar());
    QVERIFY(qobject_cast<QHBoxLayout*>(container->layout()));
    QCOMPARE(container->layout()->count(), 3);
    auto* caption = qobject_cast<QLabel*>(container->layout()->itemAt(0)->widget());
    QVERIFY(caption);
    QCOMPARE(caption->text(), QStringLiteral("Zoom:"));
    QCOMPARE(container->layout()->itemAt(1)->widget(), slider);
    QCOMPARE(container->layout()->itemAt(2)->widget(), d_window->d_zoom_label);
}

void TestWindow::the_central_widget_contains_the_view_and_the_notice()
{
    auto* layout = qobject_cast<QVBoxLayout*>(d_window->centralWidget()->layout());
    QVERIFY(layout);
    QCOMPARE(layout->count(), 2);
    QCOMPARE(layout->itemAt(0)->widget(), d_window->d_display_widget);
    int left = -1;
    int top = -1;
    int right = -1;
    int bottom = -1;
    layout->getContentsMargins(&left, &top, &right, &bottom);
    QCOMPARE(QVector<int>({left, top, right}), QVector<int>({0, 0, 0}));
    QCOMPARE(bottom, d_window->style()->pixelMetric(QStyle::PM_LayoutBottomMargin));

    auto* notice = qobject_cast<QLabel*>(layout->itemAt(1)->widget());
    QVERIFY(notice);
    QVERIFY(notice->text().contains(QStringLiteral("The Quillet Project")));
    QCOMPARE(notice->font().family(), QStringLiteral("Helvetica"));
    QCOMPARE(notice->font().pointSize(), 8);
    QVERIFY(notice->font().italic());
    QCOMPARE(notice->alignment(), Qt::AlignLeft | Qt::AlignVCenter);
    QCOMPARE(d_window->d_display_widget->horizontalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
    QCOMPARE(d_window->d_display_widget->verticalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
}

void TestWindow::slots_are_declared_in_their_order()
{
    QStringList signatures;
    const QMetaObject& meta = TQuillet::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
        signatures += QString::fromLatin1(meta.method(i).methodSignature());
    }
    QCOMPARE(signatures, QStringList({"File_New()",
                                      "File_Open()",
                                      "File_Import()",
                                      "File_Save()",
                                      "File_SaveAs()",
                                      "File_Export_Images()",
                                      "File_Export_Pdf()",
                                      "Edit_Reindex()",
                                      "Help_About()",
                                      "Image_Zoom_Changed(int)",
                                      "Label_Size_Changed(int)",
                                      "Color_Changed(QColor)",
                                      "Item_Display_Format_Changed(QString)",
                                      "Track_Item_Option_Changed(bool)",
                                      "Add_Item()",
                                      "Add_Item(QPointF)",
                                      "Remove_Item()",
                                      "Change_Item_Value(int,int)",
                                      "Change_Item_Text(int,QString)",
                                      "Change_Item_Border(int,int)",
                                      "Item_Selection_Changed()",
                                      "Display_Item_Clicked(int)",
                                      "Update_Item_Position(int,QPointF)",
                                      "Add_Page()",
                                      "Remove_Pages(QList<int>)",
                                      "Page_Selection_Changed(int)"}));
}

void TestWindow::every_signal_is_connected_data()
{
    QTest::addColumn<QString>("sender");
    QTest::addColumn<QByteArray>("signal");
    const auto row = [](const char* sender, const char* signal) {
        QTest::addRow("%s %s", sender, signal + 1) << sender << QByteArray(signal);
    };
    for (const char* action :
         {"New", "Open ...", "Import ...", "Save", "Save As ...", "&Export Images ...",
          "Export PDF ...", "Reindex Items ...", "About ..."})
        row(action, SIGNAL(triggered()));
    row("zoom", SIGNAL(valueChanged(int)));
    row("labels", SIGNAL(Add_Item()));
    row("labels", SIGNAL(Remove_Item()));
    row("labels", SIGNAL(Selection_Changed()));
    row("labels", SIGNAL(Change_Item_Value(int, int)));
    row("labels", SIGNAL(Change_Item_Text(int, QString)));
    row("labels", SIGNAL(Change_Item_Border(int, int)));
    row("settings", SIGNAL(Label_Size_Changed(int)));
    row("settings", SIGNAL(Color_Changed(QColor)));
    row("settings", SIGNAL(Item_Display_Format_Changed(QString)));
    row("settings", SIGNAL(Track_Item_Option_Changed(bool)));
    row("pages", SIGNAL(Selection_Changed(int)));
    row("pages", SIGNAL(Add_Page()));
    row("pages", SIGNAL(Remove_Pages(QList<int>)));
    row("view", SIGNAL(Right_Mouse_Click(QPointF)));
    row("view", SIGNAL(Item_Clicked(int)));
    row("view", SIGNAL(Update_Item_Position(int, QPointF)));
}

void TestWindow::every_signal_is_connected()
{
    QFETCH(QString, sender);
    QFETCH(QByteArray, signal);
    const QHash<QString, QObject*> senders = {{"zoom", d_window->d_zoom_slider},
                                              {"labels", d_window->d_label_widget},
                                              {"settings", d_window->d_settings_widget},
                                              {"pages", d_window->d_page_widget},
                                              {"view", d_window->d_display_widget}};
    QObject* object = senders.value(sender, Action(sender));
    QVERIFY(object);
    // disconnect() returns whether there was a connection.
    QVERIFY(QObject::disconnect(object, signal.constData(), d_window.get(), nullptr));
}

void TestWindow::lists_of_integers_are_known_to_the_meta_type_system()
{
    QVERIFY(Support::Is_Meta_Type("QList<int>"));
}

void TestWindow::the_slider_sets_scale_and_text_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("scale");
    QTest::newRow("smallest") << -100 << "0.14 X" << 0.1353352832366127;
    QTest::newRow("middle") << 0 << "1.00 X" << 1.0;
    QTest::newRow("largest") << 100 << "7.39 X" << 7.38905609893065;
    QTest::newRow("half way down") << -50 << "0.37 X" << 0.36787944117144233;
}

void TestWindow::the_slider_sets_scale_and_text()
{
    QFETCH(int, value);
    QFETCH(QString, text);
    QFETCH(double, scale);
    d_window->d_zoom_slider->setValue(1);
    d_window->d_zoom_slider->setValue(value);
    QCOMPARE(d_window->d_zoom_label->text(), text);
    QCOMPARE(d_window->d_display_widget->transform().m11(), scale);
    QCOMPARE(d_window->d_display_widget->transform().m22(), scale);
}

void TestWindow::one_step_of_the_slider_scales_by_a_fixed_factor()
{
    const auto scale_at = [this](int value) {
        d_window->d_zoom_slider->setValue(value);
        return d_window->d_display_widget->transform().m11();
    };
    QCOMPARE(scale_at(11) / scale_at(10), std::exp(1.0 / 50.0));
    QCOMPARE(scale_at(-89) / scale_at(-90), std::exp(1.0 / 50.0));
}

void TestWindow::about_shows_one_box()
{
    const QString fault = Support::Run_Answering(
        [this] { Action(QStringLiteral("About ..."))->trigger(); },
        {Support::Look_And_Press(
            [this](QMessageBox* box) {
                QCOMPARE(static_cast<QWidget*>(box),
                         static_cast<QWidget*>(d_window->d_message_box));
                QVERIFY(box->text().contains(QStringLiteral(">Help - About</span>")));
                QVERIFY(box->informativeText().contains(
                    QStringLiteral(">Quillet - Version 3.0</span>")));
                QCOMPARE(box->detailedText(), QString());
                QCOMPARE(box->icon(), QMessageBox::Information);
                QCOMPARE(box->standardButtons(), QMessageBox::Ok);
                QCOMPARE(box->defaultButton(), box->button(QMessageBox::Ok));
            },
            QMessageBox::Ok)});
    QCOMPARE(fault, QString());
}

void TestWindow::quit_does_nothing()
{
    d_window->show();
    QVERIFY(QTest::qWaitForWindowActive(d_window.get()));
    d_window->d_page_widget->Add_Page(d_window->d_data.Add_Page());
    Action(QStringLiteral("Quit"))->trigger();
    QTest::keyClick(d_window.get(), Qt::Key_Q, Qt::ControlModifier);
    QCoreApplication::processEvents();
    QVERIFY(d_window->isVisible());
    QCOMPARE(d_window->d_data.Page_Count(), 1);
    QVERIFY(!d_window->d_data_changed);
}

void TestWindow::a_closed_dock_keeps_its_contents()
{
    d_window->show();
    d_window->Add_Page();
    d_window->d_page_dock->close();
    QVERIFY(!d_window->d_page_dock->isVisible());
    for (QAction* action : d_window->menuBar()->actions().at(2)->menu()->actions()) {
        if (action->text() == QLatin1String("Pages"))
            action->trigger();
    }
    QVERIFY(d_window->d_page_dock->isVisible());
    QCOMPARE(d_window->d_page_widget->Page_Ids(), QList<int>({1}));
}

void TestWindow::the_page_view_of_the_first_window_shows_the_whole_width_of_the_start_image()
{
    d_window->resize(800, 600);
    d_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(d_window.get()));
    QCOMPARE(d_window->width(), 800);
    const TDisplayWidget& view = *d_window->d_display_widget;
    QVERIFY2(view.viewport()->width() >= view.Background_Pixmap().width(),
             qPrintable(QString::number(view.viewport()->width())));
    // Dragging can still enlarge a dock.
    d_window->resizeDocks({d_window->d_label_dock}, {300}, Qt::Horizontal);
    QCoreApplication::processEvents();
    QVERIFY(d_window->d_label_dock->width() > 250);
}

void TestWindow::no_caption_is_cut_off()
{
    d_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(d_window.get()));
    for (const QLabel* label : d_window->findChildren<QLabel*>()) {
        if (!label->isVisible() || label->text().isEmpty())
            continue;
        const QRect needed = label->fontMetrics().boundingRect(
            QRect(0, 0, label->width(), 10000), label->wordWrap() ? int(Qt::TextWordWrap) : 0,
            label->text());
        QVERIFY2(needed.width() <= label->width() && needed.height() <= label->height(),
                 qPrintable(label->text()));
    }
}

QTEST_MAIN(TestWindow)
#include "test_window.moc"
