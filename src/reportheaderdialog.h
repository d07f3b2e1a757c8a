#pragma once

#include <QDialog>

class QGridLayout;
class QLineEdit;

/// Asks for the two header lines of the report.
///
/// The dialog is meant to be kept: the texts typed once are offered again the next time, and belong
/// to the document, which brings them along when it is opened.
class TReportHeaderDialog : public QDialog
{
    Q_OBJECT

public:
    TReportHeaderDialog(const QWidget* parent, Qt::WindowFlags flags);

    QString Header1_Text() const;
    QString Header2_Text() const;
    void Set_Header1_Text(const QString& text);
    void Set_Header2_Text(const QString& text);

private:
    QLineEdit* Add_Header(const QString& text, int row, QGridLayout* grid);

    QLineEdit* d_header_1 = nullptr;
    QLineEdit* d_header_2 = nullptr;
};
