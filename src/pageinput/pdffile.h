#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QSizeF>
#include <QString>

#include <vector>

/// A page of a PDF as a picture.
struct TRenderedPage
{
    QByteArray png;  ///< empty if the page could not be rendered
    QString message; ///< why not; or, for a page with a picture, what may be missing in it
};

/// A PDF whose pages are rendered by poppler's command-line tools, one process for each page.
class TPdfFile
{
    Q_DECLARE_TR_FUNCTIONS(TPdfFile)

public:
    static constexpr int Lowest_Resolution = 36;    ///< dots per inch
    static constexpr int Highest_Resolution = 1200; ///< dots per inch
    static constexpr int Default_Resolution = 150;  ///< dots per inch

    explicit TPdfFile(const QString& path);

    /// Reads the number and sizes of the pages.
    /// @return why that failed; empty on success.
    QString Open();

    int Page_Count() const { return static_cast<int>(d_sizes.size()); }

    /// Why a page cannot be rendered, as far as its size tells; empty if it can.
    /// @param page  from 1.
    QString Page_Fault(int page, int resolution) const;

    /// Renders a page. The picture is the one that "pdftoppm -r RESOLUTION -png" makes.
    TRenderedPage Render(int page, int resolution) const;

private:
    QString Read_Sizes(const QString& output);

    QString d_path;
    std::vector<QSizeF> d_sizes; ///< in points; invalid for a page that cannot be read
};
