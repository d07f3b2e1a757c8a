#pragma once

#include "core/stepreport.h"
#include "src/data.h"
#include "src/model/appearance.h"
#include "src/model/namedpage.h"

#include <QList>
#include <QString>

#include <vector>

class TProjectWriter;

/// A whole document outside of a window. Like every TData, making one restarts the page ids, so
/// there is only one at a time.
struct TDocument
{
    TAppearance appearance;
    TData data;                    ///< no page is active, unless somebody works on one
    std::vector<TNamedPage> pages; ///< in the order in which people see them

    /// Ids of the pages, in order.
    QList<int> Page_Ids() const;
    /// Appends a page, which does not become the active one, and returns its id.
    int Add_Page(const QString& name, const TPageImage& image);
};

/// What is done to documents as a whole, whoever holds them: these are operations on the model and
/// on what the page list knows besides it.
namespace WholeDocument {

/// What a page is called until somebody gives it another name.
QString Page_Name(int page_id);

/// What a document is written for.
enum class TPurpose {
    Save,         ///< images become PNG; a text that cannot be written is a fault
    Recovery_Copy ///< images as they came; texts lose what cannot be written, and pages that only
                  ///< the list knows are left out: better a copy with less in it than none
};

/// Puts a document into a writer, page after page in the order of the list. The active page stays.
/// @param report  is called before each page.
/// @return why the labels of a page could not be written; empty when all went well.
QString Write(const TAppearance& appearance, const std::vector<TNamedPage>& pages, TPurpose purpose,
              TData* data, const TStepReport& report, TProjectWriter* writer);

/// Gives the labels of pages new values, page after page in the given order.
/// @param method  one of TNumbering::TMethod.
/// @return the value that comes next.
int Number_Pages(const QList<int>& page_ids, int first_value, int method, TData* data);

} // namespace WholeDocument
