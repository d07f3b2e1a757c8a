// The project file. Surveys arbitrary bytes, and reads those without defects as a document.

#include "src/format/document.h"
#include "src/format/projectfile.h"
#include "src/format/projectsurvey.h"

#include <cstdlib>

namespace {

/// Whether another integer can be read. Reading past the end would fail an assertion.
bool Has_Integer(const TProjectReader& reader)
{
    return reader.Is_Valid() && reader.Bytes_Left() >= ProjectLayout::Integer_Size;
}

/// Reads the fields of a damaged file up to its end.
void Read_Fields(const QByteArray& file)
{
    TProjectReader reader(file);
    if (!reader.Read_Magic() || !Has_Integer(reader))
        return;
    reader.Read_Integer();
    for (int text = 0; text < ProjectLayout::Header_Texts && Has_Integer(reader); ++text)
        reader.Read_Text();
    if (Has_Integer(reader))
        reader.Read_Integer();
    while (Has_Integer(reader)) {
        const TPageImage image = reader.Read_Image();
        image.isNull();
        image.Png();
    }
}

/// Reads a file without defects. The document must have the pages and labels of the survey.
void Read_Document(const QByteArray& file, const TProjectSurvey& survey)
{
    const TDocument document(ProjectFile::Read(file));
    if (document.pages.size() != survey.pages.size())
        std::abort();
    for (std::size_t index = 0; index < survey.pages.size(); ++index) {
        if (document.Content(document.pages[index]).data_items.size() !=
            survey.pages[index].items.size())
            std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, size_t size)
{
    const QByteArray file(reinterpret_cast<const char*>(bytes), static_cast<int>(size));
    const TProjectSurvey survey = ProjectSurvey::Survey(file);
    if (survey.defects.empty())
        Read_Document(file, survey);
    else
        Read_Fields(file);
    return 0;
}
