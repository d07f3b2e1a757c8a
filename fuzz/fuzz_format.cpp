// The item display format, as typed by a user or as found in the settings file.

#include "src/model/itemformat.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, size_t size)
{
    const QString typed =
        QString::fromUtf8(reinterpret_cast<const char*>(bytes), static_cast<int>(size));
    const QString cleaned = ItemFormat::Clean(typed);
    // Cleaning what is clean changes nothing, and nothing but the two markers keeps its sign.
    if (cleaned.isEmpty() || ItemFormat::Clean(cleaned) != cleaned ||
        cleaned.count(QLatin1Char('%')) > 2)
        std::abort();
    constexpr int value = 7;
    ItemFormat::Row_Text(typed, value, typed);
    if (!ItemFormat::Row_Text(cleaned, value, QStringLiteral("%1%2"))
             .contains(QStringLiteral("%1%2")))
        std::abort();
    return 0;
}
