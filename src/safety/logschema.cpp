#include "src/safety/logschema.h"

#include <QDataStream>
#include <QIODevice>

namespace {

constexpr QDataStream::Version stream_version = QDataStream::Qt_5_15;

} // namespace

QByteArray LogSchema::Encode_Labels(std::vector<TDataItem>::const_iterator first,
                                    std::vector<TDataItem>::const_iterator last)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(stream_version);
    for (; first != last; ++first)
        stream << qint32{first->id} << qint32{first->value} << qint32{first->border_type}
               << first->position.x() << first->position.y() << first->text;
    return bytes;
}

bool LogSchema::Decode_Labels(const QByteArray& bytes, std::vector<TDataItem>* items)
{
    QDataStream stream(bytes);
    stream.setVersion(stream_version);
    while (!stream.atEnd()) {
        qint32 id = 0;
        qint32 value = 0;
        qint32 border_type = 0;
        double x = 0.0;
        double y = 0.0;
        QString text;
        stream >> id >> value >> border_type >> x >> y >> text;
        if (stream.status() != QDataStream::Ok)
            return false;
        items->push_back({id, value, text, border_type, QPointF(x, y), false});
    }
    return true;
}
