#pragma once

#include <QColor>
#include <QIcon>
#include <QWidget>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QSlider;
class QToolButton;

/// Dock panel for the look of the labels and the item list, for tracking the selected label, and
/// for the options of the PDF report.
class TSettingsWidget : public QWidget
{
    Q_OBJECT

public:
    TSettingsWidget(const QWidget* parent, Qt::WindowFlags flags);

    /// Width and height of a label in pixels of the page image.
    int Label_Size() const;
    /// @param size  in pixels; clamped to the limits in TAppearance.
    void Set_Label_Size(int size);
    QColor Label_Color() const;
    /// Sets the colour without reporting it.
    void Set_Label_Color(const QColor& color);
    /// Whether the page view scrolls to the selected label.
    bool Track_Label() const;
    void Set_Track_Label(bool track);
    /// The item display format in the editor.
    QString Display_Format() const;
    /// Sets the format unchanged, without reporting it.
    void Set_Display_Format(const QString& format);
    /// Commits a format that the user has typed but not finished, as the Return key does.
    void Commit_Display_Format();
    /// 0 portrait, 1 landscape.
    int PDF_Orientation() const;
    /// @param orientation  0 for portrait; any other code for landscape.
    void Set_PDF_Orientation(int orientation);
    /// Code of the resolution, from 1 to 4. The combo box shows them as 96, 180, 276 and 372 DPI; a
    /// report has 96 times the code in dots per inch.
    int PDF_Resolution() const;
    /// @param resolution  code from 1 to 4; any other code counts as 1.
    void Set_PDF_Resolution(int resolution);
    /// Creates an icon of one colour.
    /// @param size  in pixels.
    QIcon Create_Icon(const QSize& size, const QColor& color) const;

Q_SIGNALS:
    /// The label size has changed, by the user or by Set_Label_Size.
    void Label_Size_Changed(int size);
    /// The user chose a colour, possibly the same again.
    void Color_Changed(QColor color);
    /// The user finished editing the format, changed or not.
    /// @param format  the cleaned format, see ItemFormat::Clean.
    void Item_Display_Format_Changed(const QString& format);
    /// The tracking option has changed, by the user or by Set_Track_Label.
    void Track_Item_Option_Changed(bool track);

protected:
    void resizeEvent(QResizeEvent* event) override;

private Q_SLOTS:
    void Select_Color();
    void Display_Format_Updated();

private:
    void Create_Widgets();
    void Arrange_Widgets();
    void Connect_Widgets();
    void Show_Color();

    QLineEdit* d_format_editor = nullptr;
    QToolButton* d_color_button = nullptr;
    QSlider* d_size_slider = nullptr;
    QComboBox* d_orientation_box = nullptr;
    QComboBox* d_resolution_box = nullptr;
    QCheckBox* d_track_box = nullptr;
    QString d_format; ///< the last one that was set or reported
    QColor d_label_color;
    bool d_first_resize = true;
};
