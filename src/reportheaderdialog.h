#pragma once

#include <QDialog>

class QGridLayout;
class QLineEdit;

/// Asks for the two header lines of the report.
///
/// The texts are part of the document. A dialog that is shown again keeps them.
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
