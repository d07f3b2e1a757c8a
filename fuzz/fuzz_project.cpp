// The project container, field by field, with its images and label documents; and a survey of it.

#include "src/data.h"
#include "src/format/itemlist.h"
#include "src/format/projectfile.h"
#include "src/format/projectsurvey.h"

#include "core/xmlfile.h"

namespace {

constexpr int integer_size = 4;

/// Whether a further integer can be read. Reading past the end is stopped by an assertion, which is
/// what is meant to happen and no finding.
bool Goes_On(const TProjectReader& reader)
{
    return reader.Is_Valid() && reader.Bytes_Left() >= integer_size;
}

void Read_Page(TProjectReader* reader, TData* data)
{
    reader->Read_Text();
    if (!Goes_On(*reader))
        return;
    const TPageImage image = reader->Read_Image();
    if (!Goes_On(*reader))
        return;
    data->Set_Active_Page(data->Add_Page(image));
    try {
        ItemList::Read(reader->Read_Bytes(), data);
    } catch (const TXmlFileException&) {
        // A refused label document is a fine end; the page goes on to be written back.
    }
    data->Page_Image_Valid();
    image.Png();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, size_t size)
{
    const QByteArray file(reinterpret_cast<const char*>(bytes), static_cast<int>(size));
    ProjectSurvey::Survey(file);
    TProjectReader reader(file);
    if (!reader.Read_Magic() || !Goes_On(reader))
        return 0;
    reader.Read_Integer();
    constexpr int header_texts = 3;
    for (int i = 0; i < header_texts; ++i) {
        if (!Goes_On(reader))
            return 0;
        reader.Read_Text();
    }
    if (!Goes_On(reader))
        return 0;
    TData data;
    for (int page = reader.Read_Integer(); page > 0 && Goes_On(reader); --page)
        Read_Page(&reader, &data);
    return 0;
}
