// The settings file, and the slots of the settings panel.

#include "src/quillet.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/model/itemformat.h"
#include "src/pagewidget.h"
#include "src/paint/labelpainter.h"
#include "src/settingswidget.h"
#include "src/undo/undohistory.h"

#include <QDockWidget>
#include <QSettings>

namespace {

/// A setting of the wanted type. A stored text that does not convert counts as missing.
template <typename TValue>
TValue Read_Setting(const QSettings& settings, const char* key, const TValue& default_value)
{
    const QVariant value = settings.value(QString::fromLatin1(key));
    // A text with a comma is a list, which Qt 6 converts to an empty text.
    const bool is_list =
        value.userType() == QMetaType::QStringList && value.toStringList().size() != 1;
    return value.canConvert<TValue>() && !is_list ? value.value<TValue>() : default_value;
}

/// QVariant truncates numbers that are too large for an integer.
template <>
int Read_Setting(const QSettings& settings, const char* key, const int& default_value)
{
    bool is_integer = false;
    const int value = settings.value(QString::fromLatin1(key)).toString().toInt(&is_integer);
    return is_integer ? value : default_value;
}

/// QVariant converts almost any text to true.
template <>
bool Read_Setting(const QSettings& settings, const char* key, const bool& default_value)
{
    const QString text = settings.value(QString::fromLatin1(key)).toString().toLower();
    if (text == QLatin1String("true") || text == QLatin1String("1"))
        return true;
    if (text == QLatin1String("false") || text == QLatin1String("0"))
        return false;
    return default_value;
}

} // namespace

void TQuillet::Prepare_Settings()
{
    const QString folder_name = QStringLiteral(".quillet");
    const QDir home = QDir::home();
    if (!home.exists(folder_name))
        home.mkdir(folder_name);
    const QDir folder(home.filePath(folder_name));
    d_settings = new QSettings(folder.absolutePath() + QStringLiteral("/Settings.ini"),
                               QSettings::IniFormat, this);
}

/// The geometry of the window when it was closed last.
QRect TQuillet::Saved_Geometry() const
{
    return QRect(Read_Setting(*d_settings, "Mainwindow_Position", Default_Position),
                 Read_Setting(*d_settings, "Mainwindow_Size", Default_Size));
}

void TQuillet::Restore_Settings()
{
    const QSettings& settings = *d_settings;
    d_working_dir.setPath(Read_Setting(settings, "Working_Path", QDir::home().absolutePath()));

    const bool track = Read_Setting(settings, "Track_Selected_Label", true);
    d_display_widget->d_track_item = track;
    d_settings_widget->Set_Track_Label(track);

    const TAppearance defaults;
    const int label_size = Read_Setting(settings, "Label_Size", defaults.label_size);
    d_settings_widget->Set_Label_Size(label_size);
    // Unlike the panel, the view accepts every size that can be drawn.
    constexpr int smallest_view_size = 1 - LabelPainter::Margin; // pixmap of 1 pixel
    constexpr int largest_view_size = 8192;                      // pixmap of 256 MiB
    Label_Size_Changed(qBound(smallest_view_size, label_size, largest_view_size));

    d_settings_widget->Set_Display_Format(Read_Setting(
        settings, "Item_Display_Format", QString::fromLatin1(ItemFormat::Initial_Format)));
    Set_Label_Color(Read_Setting(settings, "Label_Color", defaults.color_name));
    d_settings_widget->Set_PDF_Orientation(Read_Setting(settings, "PDF_Orientation", 0));
    d_settings_widget->Set_PDF_Resolution(Read_Setting(settings, "PDF_Resolution", 2));
    d_label_widget->Set_Border_Type(Read_Setting<int>(settings, "Border_Type", Ellipse_Border));
    Restore_Docks();
}

void TQuillet::Restore_Docks()
{
    const QSettings& settings = *d_settings;
    d_label_dock->setVisible(Read_Setting(settings, "Label_Visible", true));
    d_settings_dock->setVisible(Read_Setting(settings, "Settings_Visible", true));
    d_page_dock->setVisible(Read_Setting(settings, "Page_Visible", true));
    const auto restore_floating = [this, &settings](QDockWidget* dock, const char* key) {
        const bool is_floating = Read_Setting(settings, key, false);
        // A floating dock is shown at once, which requires that its parent window exists.
        if (is_floating)
            create();
        dock->setFloating(is_floating);
    };
    restore_floating(d_label_dock, "Label_Floating");
    restore_floating(d_settings_dock, "Settings_Floating");
    restore_floating(d_page_dock, "Page_Floating");

    const auto restore_position = [&settings](QDockWidget* dock, const char* key) {
        if (dock->isFloating())
            dock->move(Read_Setting(settings, key, QPoint(0, 0)));
    };
    restore_position(d_label_dock, "Label_Position");
    restore_position(d_settings_dock, "Settings_Position");
    restore_position(d_page_dock, "Page_Position");
    Narrow_Docks();
}

void TQuillet::Write_Settings()
{
    const std::pair<const char*, QVariant> values[] = {
        {"Mainwindow_Position", pos()},
        {"Mainwindow_Size", size()},
        {"Working_Path", d_working_dir.absolutePath()},
        {"Track_Selected_Label", d_settings_widget->Track_Label()},
        {"Label_Size", d_settings_widget->Label_Size()},
        {"Item_Display_Format", d_settings_widget->Display_Format()},
        {"Label_Color", d_settings_widget->Label_Color().name()},
        {"PDF_Orientation", d_settings_widget->PDF_Orientation()},
        {"PDF_Resolution", d_settings_widget->PDF_Resolution()},
        {"Border_Type", d_label_widget->Border_Type()},
        {"Label_Visible", d_label_dock->isVisible()},
        {"Settings_Visible", d_settings_dock->isVisible()},
        {"Page_Visible", d_page_dock->isVisible()},
        {"Label_Floating", d_label_dock->isFloating()},
        {"Settings_Floating", d_settings_dock->isFloating()},
        {"Page_Floating", d_page_dock->isFloating()},
        {"Label_Position", d_label_dock->pos()},
        {"Settings_Position", d_settings_dock->pos()},
        {"Page_Position", d_page_dock->pos()},
    };
    for (const auto& [key, value] : values)
        d_settings->setValue(QString::fromLatin1(key), value);
    // The settings survive if the program is killed while it asks about unsaved data.
    d_settings->sync();
}

void TQuillet::Label_Size_Changed(int size)
{
    const TStepScope step = Record_Step(TStepKind::Change_Size);
    Show_Label_Size(size);
    Mark_Changed();
}

/// @param size  of a label in page-image pixels.
void TQuillet::Show_Label_Size(int size)
{
    d_display_widget->Set_Label_Size(QSize(size, size), TAppearance::Font_Size(size));
}

void TQuillet::Color_Changed(QColor color)
{
    const TStepScope step = Record_Step(TStepKind::Change_Color);
    d_display_widget->Set_Label_Color(color);
    // A colour does not mark the document as changed, but it is saved with it.
    if (d_data.Page_Count() > 0)
        Record_Change();
}

void TQuillet::Item_Display_Format_Changed(const QString& format)
{
    d_label_widget->d_display_format = format;
    Page_Selection_Changed(d_data.Active_Page());
}

void TQuillet::Track_Item_Option_Changed(bool track)
{
    d_display_widget->d_track_item = track;
}

void TQuillet::Set_Label_Color(const QString& name)
{
    const QColor color = TAppearance::Color(name);
    d_settings_widget->Set_Label_Color(color);
    d_display_widget->Set_Label_Color(color);
}
