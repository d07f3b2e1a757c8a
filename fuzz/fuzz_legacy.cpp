// The item lists of the two earlier generations.

#include "src/format/legacyfile.h"

#include "core/xmlfile.h"

namespace {

using TReadItems = void (*)(const TXmlFile&, std::vector<TDataItem>*);

void Read(const TXmlFile& file, TReadItems read_items)
{
    std::vector<TDataItem> items;
    try {
        LegacyFile::Read_Label_Size(file);
        LegacyFile::Read_Color_Name(file);
        read_items(file, &items);
    } catch (const TXmlFileException&) {
        // A refused document is a fine end.
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, size_t size)
{
    TXmlFile file;
    int version = 0;
    try {
        file.Open_Data(QByteArray(reinterpret_cast<const char*>(bytes), static_cast<int>(size)),
                       QStringLiteral("Quillet_Data"), &version, true);
    } catch (const TXmlFileException&) {
        return 0;
    }
    Read(file, LegacyFile::Read_Items_V1);
    Read(file, LegacyFile::Read_Items_V2);
    return 0;
}
