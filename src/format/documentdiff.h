#pragma once

#include <QJsonValue>
#include <QString>

#include <optional>
#include <vector>

struct TDocument;

/// A difference between two documents, the left and the right one.
struct TDifference
{
    enum class TKind {
        Changed, ///< property
        Added,   ///< the page or label is only on the right
        Removed, ///< the page or label is only on the left
        Moved    ///< the page has another place, or the labels of a page have another order
    };

    TKind kind = TKind::Changed;
    int left_page = 0;  ///< number of the page, from 1; 0 if it is not about a page on the left
    int right_page = 0; ///< the same on the right
    QString page_name;
    std::optional<int> label_id;
    int label_value = 0; ///< number on that label, on the left if it is there
    QString property{};  ///< of the document, page or label
    QJsonValue left{};   ///< value of the property
    QJsonValue right{};
    /// Number of pixels that differ in two images of the same size; 0 if the images cannot be
    /// decoded.
    std::optional<qint64> pixels{};
};

/// Compares two documents by what users see.
///
/// Pages correspond if they have the same name. Pages with the same name correspond in their order;
/// after that, pages with other names do if their images have the same bytes. Labels correspond if
/// they have the same id. Images are equal if their pixels are.
namespace DocumentDiff {

/// All differences: first those of the document, then those of each page in the order of the left
/// document, then the added pages.
std::vector<TDifference> Compare(const TDocument& left, const TDocument& right);

} // namespace DocumentDiff
