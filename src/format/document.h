#pragma once

#include "src/data.h"
#include "src/format/filecontent.h"
#include "src/format/projectsurvey.h"
#include "src/model/appearance.h"
#include "src/model/namedpage.h"

#include <QList>
#include <QString>

#include <vector>

/// A whole document without a window. Like every TData, a new one restarts the page ids, so pages
/// may be added to the latest one only.
struct TDocument
{
    TAppearance appearance;
    TData data;
    std::vector<TNamedPage> pages; ///< in the order of the page list

    /// A document with default appearance and no pages.
    TDocument() = default;
    /// The document that the window would show after opening a file with this content.
    explicit TDocument(const TFileContent& content);
    /// Everything that can be read of a project file. The same as the other constructor makes of a
    /// file without defects.
    explicit TDocument(const TProjectSurvey& survey);

    /// Image and labels of a page in the list.
    const TPageItem& Content(const TNamedPage& page) const;
    /// Ids of the pages, in order.
    QList<int> Page_Ids() const;
    /// Names of the pages, in order.
    QStringList Page_Names() const;
    /// Numbers of the pages, from 1.
    std::vector<int> Page_Numbers() const;
    /// Appends a page and returns its id. Does not change the active page.
    int Add_Page(const QString& name, const TPageImage& image);
    /// Appends a page with its labels. Does not change the active page.
    void Add_Page(const TFilePage& page);
    /// Appends the pages of another document, under new ids.
    void Append(const TDocument& other);
    /// Keeps only these pages, in this order.
    /// @param numbers  of pages, from 1, each at most once.
    void Keep_Pages(const std::vector<int>& numbers);
    /// Rotates a page's image and labels; false if it has no image.
    /// @param number        of the page, from 1.
    /// @param right_angles  clockwise, from 1 to 3.
    bool Turn_Page(int number, int right_angles);
};

/// Whether all numbers that Number_Pages would give fit into a label's value.
bool Can_Number_Pages(const QList<int>& page_ids, int first_value, int method, const TData& data);

/// Numbers the labels of pages consecutively.
/// @param method  one of TNumbering::TMethod.
/// @return the next value.
int Number_Pages(const QList<int>& page_ids, int first_value, int method, TData* data);
