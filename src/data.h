#pragma once

#include "src/model/pageitem.h"

#include <QHash>
#include <QImage>
#include <QPointF>

#include <functional>
#include <vector>

/// The open document: an ordered list of pages, one of which may be active.
///
/// Pages are found by page id and labels by item id; all item operations work on the active page
/// unless they take a page id. The model emits no signals. Accessing items or the image while no
/// page is active is a programming error and fails an assertion; call Active_Page, Page_Image_Valid
/// or Page_Has_Data first. An unknown id is not an error: the operation returns -1 or false and
/// changes nothing, except that Set_Active_Page leaves no page active. GUI thread only.
///
/// Finding a label by its id takes constant time, except the first time after a removal.
class TData
{
public:
    /// Constructs an empty document. Restarts the page ids of all documents at 1, since they share
    /// one counter.
    TData();

    /// Appends a page without an image and returns its new id. Does not change the active page.
    int Add_Page();
    /// Appends a page with an image and returns its new id.
    int Add_Page(const QImage& image);
    /// The same for an encoded image.
    int Add_Page(const TPageImage& image);
    /// Erases a page. If it was active, no page is active afterwards.
    void Remove_Page(int page_id);
    /// Makes a page active; an unknown id leaves no page active and returns false.
    bool Set_Active_Page(int page_id);
    /// Id of the active page, -1 when there is none.
    int Active_Page() const;
    /// Index of a page in the document; -1 for an unknown id.
    int Page_Index(int page_id) const;
    /// Id of the page at an index, which must be in range.
    int Page_Id(int index) const;
    /// Number of pages.
    int Page_Count() const;
    /// All pages with their labels. Valid until the next change of the document.
    const std::vector<TPageItem>& Pages() const;
    /// The page with an id, which must exist. Valid as long as Pages().
    const TPageItem& Page(int page_id) const;
    /// The active page with its labels; null if there is none. Valid as long as Pages().
    const TPageItem* Active_Page_Item() const;
    /// Pixels of the active page's image.
    QImage Page_Image() const;
    /// The active page's image, encoded or decoded.
    const TPageImage& Page_Content() const;
    /// Replaces the active page's image.
    void Set_Page_Image(const QImage& image);
    /// The same for an encoded image.
    void Set_Page_Image(const TPageImage& image);
    /// Replaces the image and the labels of a page, which need not be active. Ignores unknown ids.
    void Replace_Content(int page_id, const TPageImage& image, std::vector<TDataItem> items);
    /// Whether a page is active and has an image that is not null.
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
    /// Copy of the label at an index, which must be in range.
    TDataItem Item(int index) const;
    /// Appends a label; false when its id is taken.
    bool Add_Item(const TDataItem& item);
    /// Erases a label, keeping the order of the others; false when there is none with that id.
    bool Remove_Item(int id);
    /// Erases labels in time linear in the size of the page. Skips unknown ids; returns how many
    /// labels it erased.
    int Remove_Items(const std::vector<int>& ids);
    bool Change_Item_Value(int id, int value);
    /// Assigns new values to the labels of a page, in order: each gets the next result of `next`.
    /// The page need not be active.
    /// @param selected_only  skip labels that are not selected.
    void Number_Items(int page_id, bool selected_only, const std::function<int()>& next);
    bool Change_Item_Text(int id, const QString& text);
    /// Stores the code unchecked.
    bool Change_Item_Border(int id, int border_type);
    /// @param position  centre of the label in page-image pixels; may lie outside the image.
    bool Change_Item_Position(int id, const QPointF& position);
    bool Change_Item_Selection(int id, bool selected);
    /// Unselects every label.
    void Clear_Selection();

    /// Receives a page whose labels or image are about to change, or that is about to be removed.
    using TRecorder = std::function<void(const TPageItem&)>;
    /// Sets the recorder; an empty one stops recording. Selections and Clear are not recorded.
    void Set_Recorder(TRecorder recorder);
    /// Replaces the document's pages with those whose ids are in `order`, in this order. Takes a
    /// page from `pages` if it is there, otherwise from the document, and skips unknown ids.
    /// Afterwards `order` and `pages` contain the previous state, so a second call restores it. The
    /// active page stays active unless it is removed, and labels that both states have stay
    /// selected.
    void Swap_Pages(std::vector<int>* order, std::vector<TPageItem>* pages);

private:
    void Make_Active(int page_index);
    void Record(int page_index);
    void Build_Index() const;
    int Find(int id) const;
    template <typename TChange>
    bool Change_Item(int id, const TChange& change);

    std::vector<TPageItem> d_page_items;
    int d_active_page_index = -1;
    static int d_next_page_id;
    static quint64 d_last_revision;

    /// Positions of the active page's labels in its data_items, by id. Stale if the number of
    /// entries is not the number of labels.
    mutable QHash<int, int> d_positions;

    TRecorder d_recorder; ///< may be empty
};
