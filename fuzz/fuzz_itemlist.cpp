// The label list of a page. Writing the labels that were read and reading them again must return
// the same number of labels.

#include "src/format/itemlist.h"

#include "core/xmlfile.h"

#include <cstdlib>

namespace {

/// Reads a document. Returns false if it is refused.
bool Read(const QByteArray& document, std::vector<TDataItem>* items)
{
    try {
        ItemList::Read(document, [items](const TDataItem& item) { items->push_back(item); });
        return true;
    } catch (const TXmlFileException&) {
        return false;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, size_t size)
{
    const QByteArray document(reinterpret_cast<const char*>(bytes), static_cast<int>(size));
    std::vector<TDataItem> items;
    if (!Read(document, &items))
        return 0;
    QByteArray written;
    try {
        written = ItemList::Write(items);
    } catch (const TXmlFileException&) {
        return 0;
    }
    std::vector<TDataItem> copy;
    if (!Read(written, &copy) || copy.size() != items.size())
        std::abort();
    return 0;
}
