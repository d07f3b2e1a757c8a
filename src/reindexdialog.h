#pragma once

#include <QDialog>

class QComboBox;
class QGridLayout;
class QLineEdit;
class QPushButton;
class QRadioButton;

/// Asks how labels are to be renumbered: from which value on, how the count goes over a page break,
/// and which labels.
///
/// The dialog is meant to be kept and run again; it then shows the choices of its last use. It only
/// asks, the renumbering is its user's.
class TReindexDialog : public QDialog
{
    Q_OBJECT

public:
    /// Codes of Reindex_Option.
    enum TOption { All_Pages = 0, Current_Page = 1, Current_Page_Selected = 2 };

    TReindexDialog(const QWidget* parent, Qt::WindowFlags flags);

    /// The value to begin with; 1 when what was typed is not an integer in base 10.
    int Initial_Value() const;
    /// How the count goes over a page break, one of the codes of TNumbering::TMethod.
    int Increment_Over_Page_Method() const;
    /// Which labels are to be renumbered, one of TOption.
    int Reindex_Option() const;

private:
    void Build_Parameters(QGridLayout* grid);
    void Build_Options(QGridLayout* grid);
    void Build_Buttons(QGridLayout* grid);

    QLineEdit* d_initial_value = nullptr;
    QComboBox* d_increment_method = nullptr;
    QRadioButton* d_option_all_pages = nullptr;
    QRadioButton* d_option_current_page = nullptr;
    QRadioButton* d_option_selected = nullptr;
    QPushButton* d_apply_button = nullptr;
};
