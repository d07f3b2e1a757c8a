#pragma once

#include <QDialog>

class QComboBox;
class QGridLayout;
class QLineEdit;
class QPushButton;
class QRadioButton;

/// Asks how to renumber labels: the first value, how to continue on the next page, and which
/// labels.
///
/// The dialog only returns the choices; the caller renumbers. A dialog that is shown again keeps
/// the choices of its last use.
class TReindexDialog : public QDialog
{
    Q_OBJECT

public:
    /// Codes of Reindex_Option.
    enum TOption { All_Pages = 0, Current_Page = 1, Current_Page_Selected = 2 };

    TReindexDialog(const QWidget* parent, Qt::WindowFlags flags);

    /// The first value; 1 when the typed text is not a decimal integer.
    int Initial_Value() const;
    /// How to continue on the next page, one of TNumbering::TMethod.
    int Increment_Over_Page_Method() const;
    /// Which labels to renumber, one of TOption.
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
