// The item display format, as typed or as read from the settings file.

#include "src/model/itemformat.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, size_t size)
{
    const QString typed =
        QString::fromUtf8(reinterpret_cast<const char*>(bytes), static_cast<int>(size));
    const QString cleaned = ItemFormat::Clean(typed);
    // Cleaning a clean format changes nothing, and only the two markers may contain "%".
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
