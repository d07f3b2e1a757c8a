// The label lists of legacy files, versions 1 and 2.

#include "src/format/legacyfile.h"

#include "core/xmlfile.h"

namespace {

void Read(const TXmlFile& file, int version)
{
    std::vector<TDataItem> items;
    try {
        LegacyFile::Read_Label_Size(file);
        LegacyFile::Read_Color_Name(file);
        LegacyFile::Read_Items(file, version, &items);
    } catch (const TXmlFileException&) {
        // Refusing a document is correct.
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
    Read(file, 1);
    Read(file, 2);
    return 0;
}
