#pragma once

#include "src/data.h"

#include <QPair>
#include <QSet>

#include <utility>
#include <variant>
#include <vector>

/// What a step changed in the document's pages and labels: enough to take it back, and to do it
/// again from there.
///
/// A TData that was told of it by Set_Record notes each change here, in the order in which they
/// happen, and TData::Swap has what is noted exchanged with what the document has. Memory is in
/// proportion to what was changed. Which page is active and which labels are selected is no part of
/// it.
class TDataChange
{
public:
    /// A label's value, text, border and position.
    struct TContent
    {
        int page_id;
        TDataItem other; ///< content of the other state; the selection is not used
    };

    /// Labels that one of the two states does not have.
    struct TLabels
    {
        int page_id;
        bool are_present; ///< whether the document has them now
        /// Each with its place on a page that has all of them; what a label is counts only while
        /// the document does not have it, and its id always.
        std::vector<std::pair<int, TDataItem>> labels;
    };

    /// Values of the labels of a page, each with the label's place.
    struct TValues
    {
        int page_id;
        std::vector<std::pair<int, int>> others;
    };

    /// A page that one of the two states does not have.
    struct TPage
    {
        int place;       ///< in a document that has it
        bool is_present; ///< whether the document has it now
        TPageItem page;  ///< while the document has it, its id alone; otherwise all of it
    };

    /// The image of a page.
    struct TImage
    {
        int page_id;
        TPageImage other;
    };

    using TEdit = std::variant<TContent, TLabels, TValues, TPage, TImage>;

    /// Whether nothing was noted.
    bool Is_Empty() const { return d_edits.empty(); }
    /// Whether the document is as it was all the same: every label that was changed has got back
    /// what it had.
    bool Is_Void(const TData& data) const;
    /// Ids of the pages that were changed, each once.
    std::vector<int> Touched_Pages() const;

    /// Exchanges what is noted with what the pages have, from the state after the changes to the
    /// one before them the first time, and back the second. What is not there is passed over.
    void Swap(std::vector<TPageItem>* pages);
    /// No more will be noted: lets go of what only serves that.
    void Close() { d_noted = {}; }

    /// The notes, each to be called before (content, image) or after (all others) its change.
    void Note_Content(int page_id, const TDataItem& before);
    void Note_Added_Label(int page_id, int place, int id);
    void Note_Removed_Label(int page_id, int place, const TDataItem& label);
    void Note_Values(TValues values);
    void Note_Added_Page(int place, int page_id);
    void Note_Removed_Page(int place, TPageItem page);
    void Note_Image(int page_id, const TPageImage& before);

    /// Labels removed one after the other belong together as long as the places of those that stay
    /// are still counted with them.
    bool Is_Removing(int page_id) const;
    /// The places of labels are counted anew from now on.
    void End_Removing() { d_is_removing = false; }

private:
    std::vector<TEdit> d_edits; ///< in the order in which they were made last
    /// Page and label ids of the contents noted so far: the first note has the oldest content.
    QSet<QPair<int, int>> d_noted;
    bool d_is_removing = false;
};
