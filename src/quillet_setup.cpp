// Builds the parts of the window and connects them: actions, menus, tool bar, status bar, docks,
// panels, and the table of connections.

#include "src/quillet.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/settingswidget.h"
#include "src/widgets/accessibility.h"
#include "src/widgets/documentname.h"
#include "src/widgets/findbar.h"
#include "src/widgets/statusbar.h"

#include <QAction>
#include <QDockWidget>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMetaType>
#include <QSlider>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <utility>

namespace {

/// Adds actions to a menu or a tool bar; a null pointer stands for a separator.
template <typename TBar>
void Add_Actions(TBar* bar, std::initializer_list<QAction*> actions)
{
    for (QAction* action : actions) {
        if (action)
            bar->addAction(action);
        else
            bar->addSeparator();
    }
}

} // namespace

void TQuillet::Create_Actions()
{
    struct TEntry
    {
        QAction*& action;
        const char* icon;
        QKeySequence::StandardKey shortcut;
        QString whats_this;
        bool enabled;
    };
    const TEntry entries[] = {
        {d_action_new, ":/menu/file_new.png", QKeySequence::New, QString(), true},
        {d_action_open, ":/menu/file_open.png", QKeySequence::Open, QString(), true},
        {d_action_save, ":/menu/file_save.png", QKeySequence::Save, QString(), false},
        {d_action_save_as, nullptr, QKeySequence::SaveAs, QString(), true},
        {d_action_import, ":/menu/file_import.png", QKeySequence::UnknownKey,
         tr("Import background image for quillet."), true},
        {d_action_export_images, ":/menu/file_export_image.png", QKeySequence::UnknownKey,
         tr("Export quillet page images."), false},
        {d_action_export_pdf, ":/menu/file_export_pdf.png", QKeySequence::UnknownKey,
         tr("Export quillet pages as PDF."), false},
        {d_action_quit, nullptr, QKeySequence::Quit, QString(), true},
        {d_action_reindex, nullptr, QKeySequence::UnknownKey, QString(), false},
        {d_action_about, nullptr, QKeySequence::UnknownKey, QString(), true},
    };
    for (const TEntry& entry : entries) {
        entry.action = new QAction(this);
        if (entry.icon)
            entry.action->setIcon(QIcon(QString::fromLatin1(entry.icon)));
        if (entry.shortcut != QKeySequence::UnknownKey)
            entry.action->setShortcut(entry.shortcut);
        entry.action->setWhatsThis(entry.whats_this);
        entry.action->setEnabled(entry.enabled);
    }
}

QMenu* TQuillet::Create_Menus()
{
    auto* bar = new QMenuBar(this);
    setMenuBar(bar);

    QMenu* file_menu = bar->addMenu(tr("File"));
    Add_Actions(file_menu, {d_action_new, nullptr, d_action_open, d_action_save, d_action_save_as,
                            nullptr, d_action_import, d_action_export_images, d_action_export_pdf,
                            nullptr, d_action_quit});
    bar->addMenu(tr("Edit"))->addAction(d_action_reindex);
    QMenu* view_menu = bar->addMenu(tr("View"));
    bar->addMenu(tr("Help"))->addAction(d_action_about);
    return view_menu;
}

void TQuillet::Create_Tool_Bar()
{
    auto* tool_bar = new QToolBar(tr("Tool Bar"), this);
    addToolBar(Qt::TopToolBarArea, tool_bar);
    // Qt's extension button, which appears when the others do not fit. It is the only button so
    // far.
    Accessibility::Describe(tool_bar->findChild<QToolButton*>(), tr("More"),
                            tr("Shows the buttons that do not fit on the tool bar."));
    Add_Actions(tool_bar, {d_action_new, nullptr, d_action_open, d_action_save, nullptr,
                           d_action_import, d_action_export_images, d_action_export_pdf});

    const std::pair<QAction*, QString> descriptions[] = {
        {d_action_new, tr("Starts a new document.")},
        {d_action_open, tr("Opens a document.")},
        {d_action_save, tr("Saves the document.")},
        {d_action_import, tr("Adds a page for each image file.")},
        {d_action_export_images, tr("Writes the pages with their labels as image files.")},
        {d_action_export_pdf, tr("Writes the pages with their labels as a report in PDF.")},
    };
    for (const auto& [action, description] : descriptions)
        tool_bar->widgetForAction(action)->setAccessibleDescription(description);
}

void TQuillet::Create_Status_Bar()
{
    auto* zoom = new QWidget(this);
    auto* zoom_caption = new QLabel(tr("Zoom:"), zoom);
    d_zoom_slider = new QSlider(Qt::Horizontal, zoom);
    d_zoom_slider->setRange(-100, 100);
    d_zoom_slider->setValue(0);
    d_zoom_slider->setToolTip(tr("Image Magnification"));
    // Messages and notices beside it must not make it smaller.
    d_zoom_slider->setMinimumWidth(d_zoom_slider->sizeHint().width());
    Accessibility::Describe(
        d_zoom_slider, tr("Image Magnification"),
        tr("The scale of the page. Ctrl and the mouse wheel over the page change it, and so do "
           "Ctrl with plus and minus. Ctrl+0 fits the page, Ctrl+1 shows its original size."));
    d_zoom_label = new QLabel(tr("1.00 X"), zoom);
    zoom_caption->setBuddy(d_zoom_slider);

    auto* layout = new QHBoxLayout(zoom);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(zoom_caption);
    layout->addWidget(d_zoom_slider);
    layout->addWidget(d_zoom_label);

    setStatusBar(new TStatusBar(this));
    statusBar()->addPermanentWidget(zoom);
    d_document_name = new TDocumentName(this);
    statusBar()->addWidget(d_document_name);
}

void TQuillet::Create_Docks(QMenu* view_menu)
{
    struct TEntry
    {
        QDockWidget*& dock;
        Qt::DockWidgetArea area;
    };
    const TEntry entries[] = {
        {d_label_dock, Qt::LeftDockWidgetArea},
        {d_page_dock, Qt::RightDockWidgetArea},
        {d_settings_dock, Qt::RightDockWidgetArea},
    };
    for (const TEntry& entry : entries) {
        entry.dock = new QDockWidget(this);
        entry.dock->setFeatures(QDockWidget::DockWidgetClosable | QDockWidget::DockWidgetMovable |
                                QDockWidget::DockWidgetFloatable);
        entry.dock->setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
        view_menu->addAction(entry.dock->toggleViewAction());
        addDockWidget(entry.area, entry.dock);
    }
}

void TQuillet::Create_Panels()
{
    d_label_widget = new TLabelWidget(this, Qt::WindowFlags());
    d_label_dock->setWidget(d_label_widget);
    d_settings_widget = new TSettingsWidget(this, Qt::WindowFlags());
    d_settings_dock->setWidget(d_settings_widget);
    d_page_widget = new TPageWidget(this, Qt::WindowFlags());
    d_page_dock->setWidget(d_page_widget);
}

void TQuillet::Create_Central_Widget()
{
    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, -1);

    d_display_widget = new TDisplayWidget(central);
    d_display_widget->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    d_display_widget->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    const QString use = tr(
        "The page with its labels. Arrow keys scroll it; with Ctrl they move the labels that are "
        "selected in the item list by one pixel of the page image, with Ctrl and Shift by ten. "
        "Return edits the text of a label.");
    for (QWidget* const widget :
         {static_cast<QWidget*>(d_display_widget), d_display_widget->viewport()})
        Accessibility::Describe(widget, tr("Page"), use);
    d_display_widget->setWhatsThis(tr(
        "The page with its labels. A right click adds a label, dragging moves it. Ctrl+click and "
        "Shift+drag select several labels; Ctrl+drag moves them. Ctrl+Z undoes the last change, "
        "Ctrl+Shift+Z or Ctrl+Y redoes it."));
    layout->addWidget(d_display_widget);

    constexpr int notice_points = 8;
    auto* notice =
        new QLabel(tr("Quillet is made by The Quillet Project - www.quillet.example"), central);
    notice->setFont(QFont(QStringLiteral("Helvetica"), notice_points, QFont::Normal, true));
    notice->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    // On one line, it would make the window too wide for a small screen.
    notice->setWordWrap(true);
    layout->addWidget(notice);
    d_find_bar = new TFindBar(central);
    setCentralWidget(central);
}

void TQuillet::Set_Focus_Order()
{
    // Page, labels, pages, settings, find bar, zoom. Each panel sets the order of its widgets, but
    // loses it when it is moved into a dock.
    QList<QWidget*> order = {d_display_widget};
    for (const QWidget* panel :
         {static_cast<QWidget*>(d_label_widget), static_cast<QWidget*>(d_page_widget),
          static_cast<QWidget*>(d_settings_widget), static_cast<QWidget*>(d_find_bar)})
        order += panel->findChildren<QWidget*>();
    order += d_zoom_slider;

    QWidget* last = d_display_widget;
    for (QWidget* widget : std::as_const(order)) {
        if (!(widget->focusPolicy() & Qt::TabFocus) || widget->window() != this)
            continue;
        setTabOrder(last, widget);
        last = widget;
    }
    d_display_widget->setFocus();
}

void TQuillet::Set_Titles()
{
    setWindowTitle(tr("Quillet"));
    d_action_new->setText(tr("New"));
    d_action_open->setText(tr("Open ..."));
    d_action_save->setText(tr("Save"));
    d_action_save_as->setText(tr("Save As ..."));
    d_action_import->setText(tr("Import ..."));
    d_action_export_images->setText(tr("&Export Images ..."));
    d_action_export_pdf->setText(tr("Export PDF ..."));
    d_action_quit->setText(tr("Quit"));
    d_action_reindex->setText(tr("Reindex Items ..."));
    d_action_about->setText(tr("About ..."));

    d_action_new->setToolTip(tr("New"));
    d_action_open->setToolTip(tr("Open"));
    d_action_save->setToolTip(tr("Save"));
    d_action_save_as->setToolTip(tr("Save As"));
    d_action_import->setToolTip(tr("Import"));
    d_action_export_images->setToolTip(tr("Export Images"));
    d_action_export_pdf->setToolTip(tr("Export PDF"));

    d_label_dock->setWindowTitle(tr("Item List"));
    d_settings_dock->setWindowTitle(tr("Settings"));
    d_page_dock->setWindowTitle(tr("Pages"));
}

void TQuillet::Connect_Signals()
{
    qRegisterMetaType<QList<int>>("QList<int>");
    struct TConnection
    {
        const QObject* sender;
        const char* signal;
        const char* slot;
    };
    const TConnection connections[] = {
        {d_action_new, SIGNAL(triggered()), SLOT(File_New())},
        {d_action_open, SIGNAL(triggered()), SLOT(File_Open())},
        {d_action_import, SIGNAL(triggered()), SLOT(File_Import())},
        {d_action_save, SIGNAL(triggered()), SLOT(File_Save())},
        {d_action_save_as, SIGNAL(triggered()), SLOT(File_SaveAs())},
        {d_action_export_images, SIGNAL(triggered()), SLOT(File_Export_Images())},
        {d_action_export_pdf, SIGNAL(triggered()), SLOT(File_Export_Pdf())},
        {d_action_reindex, SIGNAL(triggered()), SLOT(Edit_Reindex())},
        {d_action_about, SIGNAL(triggered()), SLOT(Help_About())},
        {d_zoom_slider, SIGNAL(valueChanged(int)), SLOT(Image_Zoom_Changed(int))},
        {d_label_widget, SIGNAL(Add_Item()), SLOT(Add_Item())},
        {d_label_widget, SIGNAL(Remove_Item()), SLOT(Remove_Item())},
        {d_label_widget, SIGNAL(Selection_Changed()), SLOT(Item_Selection_Changed())},
        {d_label_widget, SIGNAL(Change_Item_Value(int, int)), SLOT(Change_Item_Value(int, int))},
        {d_label_widget, SIGNAL(Change_Item_Text(int, QString)),
         SLOT(Change_Item_Text(int, QString))},
        {d_label_widget, SIGNAL(Change_Item_Border(int, int)), SLOT(Change_Item_Border(int, int))},
        {d_settings_widget, SIGNAL(Label_Size_Changed(int)), SLOT(Label_Size_Changed(int))},
        {d_settings_widget, SIGNAL(Color_Changed(QColor)), SLOT(Color_Changed(QColor))},
        {d_settings_widget, SIGNAL(Item_Display_Format_Changed(QString)),
         SLOT(Item_Display_Format_Changed(QString))},
        {d_settings_widget, SIGNAL(Track_Item_Option_Changed(bool)),
         SLOT(Track_Item_Option_Changed(bool))},
        {d_page_widget, SIGNAL(Selection_Changed(int)), SLOT(Page_Selection_Changed(int))},
        {d_page_widget, SIGNAL(Add_Page()), SLOT(Add_Page())},
        {d_page_widget, SIGNAL(Remove_Pages(QList<int>)), SLOT(Remove_Pages(QList<int>))},
        {d_display_widget, SIGNAL(Right_Mouse_Click(QPointF)), SLOT(Add_Item(QPointF))},
        {d_display_widget, SIGNAL(Item_Clicked(int)), SLOT(Display_Item_Clicked(int))},
        {d_display_widget, SIGNAL(Update_Item_Position(int, QPointF)),
         SLOT(Update_Item_Position(int, QPointF))},
    };
    for (const TConnection& connection : connections)
        connect(connection.sender, connection.signal, this, connection.slot);
}
