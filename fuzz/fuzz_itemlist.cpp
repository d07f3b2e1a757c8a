// The label document of a page: what is read has to be written back the same.

#include "src/data.h"
#include "src/format/itemlist.h"

#include "core/xmlfile.h"

#include <cstdlib>

namespace {

/// Reads a document into a page of its own; true when all of it was accepted.
bool Read(const QByteArray& document, TData* data)
{
    data->Set_Active_Page(data->Add_Page());
    try {
        ItemList::Read(document, data);
        return true;
    } catch (const TXmlFileException&) {
        return false;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, size_t size)
{
    TData data;
    if (!Read(QByteArray(reinterpret_cast<const char*>(bytes), static_cast<int>(size)), &data))
        return 0;
    QByteArray written;
    try {
        written = ItemList::Write(data);
    } catch (const TXmlFileException&) {
        return 0;
    }
    const int count = data.Item_Count();
    if (!Read(written, &data) || data.Item_Count() != count)
        std::abort();
    return 0;
}
