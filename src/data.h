#pragma once

#include "src/model/pageitem.h"

#include <QHash>
#include <QImage>
#include <QPointF>

#include <functional>
#include <vector>

class TDataChange;

/// The open document: an ordered list of pages, one of which may be active.
///
/// Pages are found by page id and labels by item id; all item operations act on the active page.
/// The model tells nobody of its changes. Asking for items or for the image while no page is active
/// is a programming error and stops the program by an assertion; Active_Page, Page_Image_Valid and
/// Page_Has_Data are the questions to ask first. An unknown id is no error: the operation returns
/// -1 or false and changes nothing. GUI thread only.
///
/// Finding a label by its id takes constant time, except the first time after a removal.
class TData
{
public:
    /// An empty document. Restarts the page ids at 1 for all documents, since they share one count.
    TData();

    /// Appends a page without an image and returns its new id. The active page stays.
    int Add_Page();
    /// Appends a page with an image and returns its new id.
    int Add_Page(const QImage& image);
    /// The same, for an image that is known by its bytes.
    int Add_Page(const TPageImage& image);
    /// Erases a page. No page is active afterwards if it was the active one.
    void Remove_Page(int page_id);
    /// Makes a page active; an unknown id leaves no page active and returns false.
    bool Set_Active_Page(int page_id);
    /// Id of the active page, -1 when there is none.
    int Active_Page() const;
    /// Place of a page in the document, from 0; -1 for an unknown id.
    int Page_Index(int page_id) const;
    /// Id of the page at a place, which has to exist.
    int Page_Id(int index) const;
    /// Number of pages.
    int Page_Count() const;
    /// All pages with their labels. Valid until the next change of the document.
    const std::vector<TPageItem>& Pages() const;
    /// Pixels of the active page's image.
    QImage Page_Image() const;
    /// The active page's image with whatever is known of it.
    const TPageImage& Page_Content() const;
    /// Replaces the active page's image.
    void Set_Page_Image(const QImage& image);
    /// The same, for an image that is known by its bytes.
    void Set_Page_Image(const TPageImage& image);
    /// Whether a page is active and has an image that can be shown.
    bool Page_Image_Valid() const;
    /// Whether a page is active and has at least one label.
    bool Page_Has_Data() const;
    /// Erases all pages and restarts the page ids at 1.
    void Clear();

    /// Number of labels.
    int Item_Count() const;
    /// Largest value among the labels, at least 0.
    int Item_Max_Value() const;
    bool Item_Exists(int id) const;
    /// Copy of the label at a place, from 0, which has to exist.
    TDataItem Item(int index) const;
    /// Appends a label; false when its id is taken.
    bool Add_Item(const TDataItem& item);
    /// Erases a label, keeping the order of the others; false when there is none with that id.
    bool Remove_Item(int id);
    /// Erases labels in time linear in the size of the page. Skips unknown ids; returns how many
    /// labels it erased.
    int Remove_Items(const std::vector<int>& ids);
    bool Change_Item_Value(int id, int value);
    /// Gives the labels of a page new values, in their order: each gets what `next` returns. The
    /// page need not be active.
    /// @param selected_only  skip labels that are not selected.
    void Number_Items(int page_id, bool selected_only, const std::function<int()>& next);
    bool Change_Item_Text(int id, const QString& text);
    /// The code is stored as it is given.
    bool Change_Item_Border(int id, int border_type);
    /// @param position  centre of the label in page-image pixels; may lie outside of the image.
    bool Change_Item_Position(int id, const QPointF& position);
    bool Change_Item_Selection(int id, bool selected);
    /// Unselects every label.
    void Clear_Selection();

    /// From now on notes in a record what changes: pages, images, labels and what they are. Null
    /// ends that. The record is not owned. Clear is not noted: it begins another document.
    void Set_Record(TDataChange* record);
    /// Exchanges what is noted in a change with what the document has. The first time takes the
    /// change back, the second makes it again, and so on. Notes about pages or labels that are not
    /// there are passed over. The active page stays active unless it goes.
    void Swap(TDataChange* change);
    /// Whether a page has a label with this id that is the same in all but its selection.
    bool Has_Content(int page_id, const TDataItem& item) const;

private:
    const TPageItem* Active_Page_Item() const;
    void Make_Active(int page_index);
    void Build_Index() const;
    int Find(int id) const;
    template <typename TChange>
    bool Change_Item(int id, const TChange& change);

    std::vector<TPageItem> d_page_items;
    int d_active_page_index = -1;
    static int d_next_page_id;

    /// Positions of the active page's labels in its data_items, by id. Out of date when it has
    /// another number of entries.
    mutable QHash<int, int> d_positions;

    TDataChange* d_record = nullptr; ///< where changes are noted; null when nobody wants to know
};
