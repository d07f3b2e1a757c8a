#pragma once

#include "src/data.h"
#include "src/format/document.h"
#include "src/format/projectfile.h"
#include "src/model/reportoptions.h"
#include "src/widgets/progress.h"

#include <QColor>
#include <QDir>
#include <QList>
#include <QMainWindow>
#include <QMessageBox>
#include <QPointF>
#include <QRect>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QAction;
class QByteArray;
class QCloseEvent;
class QDockWidget;
class QFile;
class QLabel;
class QMenu;
class QSettings;
class QSlider;
class TDisplayWidget;
class TDocumentName;
class TFindBar;
class TImageEncoder;
class TLabelWidget;
class TMessageBox;
class TOpenMark;
class TPageImage;
class TPageWidget;
class TRecoveryNotice;
class TReindexDialog;
class TReportHeaderDialog;
class TSafetyNet;
class TSettingsWidget;
class TStepScope;
class TUndoHistory;
class TUndoKeys;
class TXmlFile;
enum class TStepKind;
namespace LabelSearch {
enum class TDirection;
}
namespace PageTurn {
enum class TDirection;
}
struct TInputOptions;
struct TKeptFile;
struct TLabelLook;
struct TShownState;
struct TStepOutcome;

/// The main window: connects the document with the view and the panels.
///
/// Model, view and panels are independent of each other. The view and the panels emit signals; the
/// slots update the model first, then the view, then the panels, and mark the document as changed.
/// Each concern has a translation unit of its own (quillet_*.cpp).
class TQuillet : public QMainWindow
{
    Q_OBJECT

public:
    /// The options of a PDF report.
    struct TReportSettings : TReportOptions
    {
    };

    /// Builds the window, restores it from the settings file and connects everything.
    TQuillet(const QWidget* parent, Qt::WindowFlags flags);
    ~TQuillet() override;

    /// Shows or hides the window, below its floating docks.
    void setVisible(bool visible) override;

    /// Adds a page with the image from a file, or sets the image of the active page if that has no
    /// labels. Ignores files that are not images.
    void Load_Image(const QString& path);

    /// The labels of the active page as an item-list document.
    /// @throws TXmlFileException when a text cannot be written.
    QByteArray Write_Items() const;
    /// Adds the labels of an item-list document to the active page.
    /// @throws TXmlFileException on bad content; labels read before the fault stay.
    void Read_Items(const QByteArray& document);

    /// Writes the document to a project file. On failure, returns false and sets d_error_text.
    bool Save_Data(const QString& file_name);
    /// Opens a project file. On failure, returns false, sets d_error_text, and keeps everything
    /// read before the fault.
    bool Load_Data(const QString& file_name);
    /// Opens a document of an earlier generation.
    /// @param base_name  path of the pair of files without ".qld" and ".qli".
    bool Load_Legacy_Data(const QString& base_name);
    /// Applies label size and colour of an opened version 1 document and collects its labels.
    void Load_Legacy_V1(TXmlFile* xml_file, std::vector<TDataItem>* items);
    /// The same for version 2.
    void Load_Legacy_V2(TXmlFile* xml_file, std::vector<TDataItem>* items);

    /// Opens the first document among these paths, and inserts the pages of images and PDFs.
    /// @param arguments  of the program; those that begin with "-" are ignored.
    void Open_Arguments(const QStringList& arguments);

    /// Writes each page with its labels as a PNG file into a folder. Stops and returns false when a
    /// file cannot be written. Returns false when there are no pages.
    bool Export_Images(const QString& folder, const QList<int>& page_ids);
    /// Writes pages as a PDF report, in the given order; false if nothing could be written.
    bool Export_PDF(const QString& file, const QList<int>& pages, const TReportSettings& settings);

public slots:
    void File_New();
    void File_Open();
    void File_Import();
    void File_Save();
    void File_SaveAs();
    void File_Export_Images();
    void File_Export_Pdf();
    void Edit_Reindex();
    void Help_About();
    void Image_Zoom_Changed(int value);
    void Label_Size_Changed(int size);
    void Color_Changed(QColor color);
    void Item_Display_Format_Changed(const QString& format);
    void Track_Item_Option_Changed(bool track);
    void Add_Item();
    void Add_Item(const QPointF& position);
    void Remove_Item();
    void Change_Item_Value(int id, int value);
    void Change_Item_Text(int id, const QString& text);
    void Change_Item_Border(int id, int border);
    void Item_Selection_Changed();
    void Display_Item_Clicked(int id);
    void Update_Item_Position(int id, const QPointF& position);
    void Add_Page();
    void Remove_Pages(const QList<int>& pages);
    void Page_Selection_Changed(int page);

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    friend class TOpenWindow; ///< makes members visible to tests

    // Construction, in this order.
    void Prepare_Settings();
    static constexpr QPoint Default_Position{30, 30};
    static constexpr QSize Default_Size{800, 600};
    void Restore_Geometry();
    void Create_Actions();
    QMenu* Create_Menus(); ///< returns the View menu, which lists the docks
    void Create_Tool_Bar();
    void Create_Status_Bar();
    void Create_Docks(QMenu* view_menu);
    void Create_Panels();
    void Create_Central_Widget();
    void Set_Focus_Order();
    void Set_Titles();
    void Restore_Settings();
    void Restore_Docks();
    void Narrow_Docks();
    void Connect_Signals();
    void Add_Gestures();
    void Add_Keys();
    void Add_Text_Keys();
    void Add_Selection_Mouse();
    void Add_Page_List_Menu();
    void Add_Item_List_Menu();
    void Add_Find_Bar();

    // Settings.
    QRect Saved_Geometry() const;
    void Write_Settings();

    // The safety net.
    void Set_Up_Safety_Net();
    bool Open_For_Saving(QFile* file, qint64 size);
    void Record_Change();
    void Flush_Work();
    void Show_Lost_Images();
    void End_Recovery(bool loss_confirmed, const QString& opened = QString());

    // Recovered work.
    void Recover_Work();
    void Show_Recovery_Notice(const std::vector<TKeptFile>& recovered);
    void Update_Recovery_Notice();
    void Dismiss_Recovered();
    void Open_Recovered();

    // Undo and redo.
    void Start_History();
    TStepScope Record_Step(TStepKind kind, int subject = 0, int count = 1);
    void Finish_Step();
    TLabelLook Label_Look() const;
    TShownState Shown_State() const;
    void Show_Outcome(const std::optional<TStepOutcome>& outcome);
    void Show_Page_Rows(const std::vector<TNamedPage>& rows);
    void Show_Look(const TLabelLook& look);
    std::vector<int> Pages_To_Show(const TStepOutcome& outcome) const;
    void Show_Selection(const TShownState& shown, const std::vector<int>& pages);

    // Questions and messages.
    static constexpr int Message_Milliseconds = 5000; ///< in the status bar
    QMessageBox::StandardButton Show_Message(const QString& text, const QString& informative_text,
                                             const QString& detailed_text,
                                             QMessageBox::StandardButtons buttons,
                                             QMessageBox::StandardButton default_button,
                                             QMessageBox::Icon icon);
    bool Confirm(const QString& text, const QString& question);
    bool Confirm_Loss();
    bool Confirm_Close();
    void Show_File_Error(const QString& text, const QString& informative_text);
    void Show_Status(const QString& text);
    TProgress New_Progress(const QString& pattern) const;

    // The document, and what depends on it.
    void Commit_Editors();
    void Mark_Changed();
    void Set_Changed(bool is_changed);
    void Show_Document_Name();
    void Update_Document_Actions();
    void Enable_Document_Actions(bool enable);
    void Set_Working_File(const QString& path);
    void Import_Files(const QStringList& paths);
    bool Import_Image(const QString& path);
    void Set_File_Name(const QString& path);
    void Export_Web_Page();
    void Show_Label_Size(int size);
    void Fill_View();
    void Refresh_Active_Page();

    // Pages from image files and PDFs.
    void Insert_Images_Here();
    void Insert_Pdf_Pages();
    void Insert_Dropped_Files(const QStringList& paths);
    void Drop_Files(const QStringList& paths);
    static bool Can_Open(const QString& path);
    void Open_Files(const QStringList& paths);
    void Insert_Files(const QStringList& paths, const TInputOptions& options, int row);
    void Insert_Pages(const std::vector<TPageImage>& images, int row);
    int Row_After_Selected_Pages() const;
    QList<int> Selected_Pages() const;
    void Start_Encoder();
    void Encode_Images();
    void Turn_Pages(PageTurn::TDirection direction);
    void Duplicate_Pages();

    // Keys.
    double Zoom_Value(double scale) const;
    void Fit_Page();
    void Show_Page_Beside(int rows);
    void Edit_Text();
    void Return_To_Page();

    // The clipboard.
    std::size_t Copy_To_Clipboard();
    void Copy_Labels();
    void Cut_Labels();
    void Paste_Labels();
    void Duplicate_Labels();
    std::vector<TDataItem> Selected_Labels();
    std::size_t Insert_Labels(TStepKind kind, std::vector<TDataItem>* items);
    int Free_Id() const;

    // Labels.
    void Add_Label(const QPointF* point);
    std::optional<int> Add_Label_To_View(int value, int border);
    void Remove_Labels(TStepKind kind, const std::vector<int>& ids);
    void Nudge_Labels(const QPointF& distance);
    void Move_Onto_Page();
    void Select_In_Data(const std::vector<int>& ids);
    void Select_On_Page(const std::vector<int>& ids);
    void Toggle_On_Page(int id);
    int Renumber_Active_Page(int first_value, bool selected_only);
    void Renumber_In_Order(const std::vector<int>& ids);

    // Finding labels.
    void Find_Label(const QString& text, LabelSearch::TDirection direction);
    void Show_Label(int page_id, int item_id);

    // Exports.
    template <typename TExport>
    auto Export(const TExport& run, QString* problem);
    QString Stray_Text(const QList<int>& page_ids) const;

    // Project files.
    bool Fail(const QString& reason);
    TReportHeaderDialog* Header_Dialog();
    void Open_File(const QString& name);
    bool Replace_Document(const QString& name);
    bool Load_Quietly(const std::function<bool()>& load);
    TAppearance Appearance() const;
    std::vector<TNamedPage> Named_Pages() const;
    bool Show_Content(const TFileContent& content, TProgress* progress);
    void Show_Pages(const std::vector<TFilePage>& pages, int* largest_value);
    void Set_Label_Color(const QString& name);
    void Read_Legacy_List(const TXmlFile& xml_file, int version, std::vector<TDataItem>* items);
    void Save_To(const QString& file_name);
    bool Write_Data(const QString& file_name);

    QAction* d_action_export_images = nullptr;
    QAction* d_action_export_pdf = nullptr;
    QAction* d_action_import = nullptr;
    QAction* d_action_new = nullptr;
    QAction* d_action_open = nullptr;
    QAction* d_action_quit = nullptr;
    QAction* d_action_reindex = nullptr;
    QAction* d_action_save = nullptr;
    QAction* d_action_save_as = nullptr;
    QAction* d_action_about = nullptr;
    QDockWidget* d_label_dock = nullptr;
    QDockWidget* d_settings_dock = nullptr;
    QDockWidget* d_page_dock = nullptr;
    QLabel* d_zoom_label = nullptr;
    QSlider* d_zoom_slider = nullptr;
    TLabelWidget* d_label_widget = nullptr;
    TSettingsWidget* d_settings_widget = nullptr;
    TPageWidget* d_page_widget = nullptr;
    TDisplayWidget* d_display_widget = nullptr;
    TReindexDialog* d_reindex_dialog = nullptr;     ///< created when first needed, then kept
    TReportHeaderDialog* d_header_dialog = nullptr; ///< created when first needed, then kept
    TMessageBox* d_message_box = nullptr;
    QSettings* d_settings = nullptr;
    QDir d_working_dir{QString()}; ///< where file dialogs open
    QString d_file_name;           ///< path of the project file; empty for a new document
    bool d_display_click = false;  ///< passing a click in the view on to the list
    TData d_data;
    bool d_data_changed = false; ///< has unsaved changes
    QString d_error_text;        ///< why the last file operation failed

    std::unique_ptr<TSafetyNet> d_safety_net; ///< null while the window is being built
    std::unique_ptr<TOpenMark> d_open_mark;   ///< of the document in d_file_name
    TProgress::TClock d_progress_clock = TProgress::Machine_Time; ///< times long operations
    TFilePlaces d_file_places;       ///< of the pages of the file that was opened
    bool d_was_visible = false;      ///< the window was shown before
    bool d_filling_view = false;     ///< view is being filled from the document or a file
    bool d_has_new_document = false; ///< the last file operation replaced the document
    QAction* d_action_export_web_page = nullptr; ///< in the page list's context menu
    std::optional<int> d_new_label;              ///< added since the last change of the selection
    TFindBar* d_find_bar = nullptr;
    TDocumentName* d_document_name = nullptr; ///< in the status bar

    std::vector<TKeptFile> d_recovered;           ///< copies and logs that the notice is about
    TRecoveryNotice* d_recovery_notice = nullptr; ///< null until one is shown

    std::unique_ptr<TImageEncoder> d_image_encoder; ///< of the images of the document

    std::unique_ptr<TUndoHistory> d_history; ///< null while the window is being built
    std::unique_ptr<TUndoKeys> d_undo_keys;
};
