#pragma once

#include "src/undo/documentstep.h"
#include "src/undo/stepkind.h"

#include <QObject>
#include <QString>
#include <QVector>

#include <deque>
#include <functional>
#include <optional>
#include <vector>

class QAbstractItemModel;

/// What the panels show and select. It does not belong to the document, but undo and redo restore
/// it, so that users find what they worked on.
struct TShownState
{
    QVector<int> pages;              ///< ids of the selected pages; a single one is shown
    QVector<int> labels;             ///< ids of the selected labels
    int next_value = 0;              ///< value of the next new label
    int value_without_selection = 0; ///< what the value editor shows when no label is selected
};

/// What the window must show after undo or redo.
struct TStepOutcome
{
    TRowsAndLook rows_and_look;
    TShownState shown;           ///< as it was before the step (undo) or after it (redo)
    bool sets_values = false;    ///< whether the step changed the values in `shown`
    bool marks_document = false; ///< whether the step marks the document as changed
    std::vector<int> pages;      ///< pages that the step touched; empty if it only moved pages
    QString message;
};

/// Records the steps of one document, and undoes and redoes them.
///
/// A step lasts as long as a TStepScope. The model reports pages before they change; everything
/// else is read when the step begins and when it ends. The history uses the model and plain values,
/// never the widgets: after undo and redo the window displays the outcome.
///
/// Changes of the same kind to the same subject, such as keystrokes in one editor, become one step.
/// A step that changes nothing is not recorded. The oldest steps are dropped when all steps
/// together use more memory than the budget, but Minimum_Steps are always kept.
class TUndoHistory : public QObject
{
    Q_OBJECT

public:
    static constexpr qint64 Memory_Budget = 256LL * 1024 * 1024; ///< in bytes
    static constexpr std::size_t Minimum_Steps = 200;

    /// Reads the parts of the document that are outside the model, and what is shown.
    struct TSource
    {
        std::function<TPageRows()> rows;
        std::function<TLabelLook()> look;
        std::function<TShownState()> shown;
    };

    /// @param data    not owned.
    /// @param budget  in bytes.
    TUndoHistory(TData* data, TSource source, qint64 budget = Memory_Budget);

    /// Starts to record that pages are renamed or moved in the page list. The list reports neither,
    /// so the history compares its rows.
    /// @param rows  the model behind the list.
    void Watch_Page_List(const QAbstractItemModel& rows);
    /// Records changes of the page list now instead of on return to the event loop.
    void Record_Page_List();
    /// Ends the last step: the next change begins another step, even one of the same kind.
    void Finish_Step();
    /// Removes all steps. Call this when another document was opened.
    void Clear();

    bool Can_Undo() const { return d_done_count > 0; }
    bool Can_Redo() const { return d_done_count < d_steps.size(); }
    /// Name of the step that Undo() would undo; empty if there is none.
    QString Undo_Name() const;
    /// The same for Redo.
    QString Redo_Name() const;
    /// Undoes the last step in the model; empty if there is none.
    std::optional<TStepOutcome> Undo();
    /// Redoes the step that was undone last; empty if there is none.
    std::optional<TStepOutcome> Redo();

signals:
    /// A step was recorded, or continued.
    void Step_Recorded();
    /// Undo_Name or Redo_Name may have changed.
    void Names_Changed();
    /// The user renamed or moved pages.
    void Page_List_Changed();

private:
    friend class TStepScope;

    struct TStep
    {
        TStepKind kind;
        int subject;
        int count;
        TDocumentStep document;
        TShownState before;
        TShownState after;
        qint64 bytes; ///< as last measured
    };

    void Begin(TStepKind kind, int subject, int count);
    void End();
    void Push_New_Step();
    void Drop_Newest_Step();
    void Measure(TStep* step);
    TStep& Current_Step();
    TRowsAndLook Rows_And_Look() const;
    TShownState Shown();
    TStepOutcome Swap(TStep* step, const TShownState& shown);

    TData* d_data;
    TSource d_source;
    qint64 d_budget;

    std::deque<TStep> d_steps;     ///< oldest first
    qint64 d_bytes = 0;            ///< of all steps
    std::size_t d_done_count = 0;  ///< how many of them are done; the others were undone
    std::optional<TStep> d_new;    ///< a step that began and has changed nothing so far
    bool d_may_continue = false;   ///< whether further changes may belong to the last step
    int d_depth = 0;               ///< of nested scopes
    TShownState d_shown;           ///< as last read
    TPageRows d_rows;              ///< as last recorded
    bool d_has_stale_rows = false; ///< the page list may have changed since
};

/// Records a step for as long as it lives. Scopes within it belong to the same step.
class TStepScope
{
public:
    /// @param history  may be null: nothing is recorded then.
    /// @param subject  what the step changes: the id of a label or page, or a border; 0 if the kind
    ///                 is enough.
    /// @param count    how many labels, pages or images the step affects.
    TStepScope(TUndoHistory* history, TStepKind kind, int subject, int count);
    ~TStepScope();
    Q_DISABLE_COPY(TStepScope)

private:
    TUndoHistory* d_history;
};
