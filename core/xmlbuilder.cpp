#include "core/xmlbuilder.h"

#include <QBuffer>
#include <QDomImplementation>
#include <QXmlDefaultHandler>
#include <QXmlInputSource>
#include <QXmlSimpleReader>

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

namespace {

/// What all handles of a node have in common.
class TIdentity : public QDomNode
{
public:
    explicit TIdentity(const QDomNode& node)
        : QDomNode(node)
    {
    }
    const void* Get() const { return impl; }
};

/// Appends a node for each event of the reader.
class TBuilder : public QXmlDefaultHandler
{
public:
    TBuilder(bool namespace_processing, QDomDocument* document, XmlBuilder::TPlaces* places)
        : d_namespace_processing(namespace_processing)
        , d_document(document)
        , d_places(places)
        , d_current(*document)
    {
    }

    const std::optional<XmlGuard::TDefect>& Error() const { return d_error; }

    void setDocumentLocator(QXmlLocator* locator) override { d_locator = locator; }

    bool startDTD(const QString& name, const QString& public_id, const QString& system_id) override;
    bool startElement(const QString& uri, const QString& local_name, const QString& name,
                      const QXmlAttributes& attributes) override;
    bool endElement(const QString&, const QString&, const QString&) override
    {
        d_current = d_current.parentNode();
        return true;
    }
    bool startCDATA() override
    {
        d_in_cdata = true;
        return true;
    }
    bool endCDATA() override
    {
        d_in_cdata = false;
        return true;
    }
    bool characters(const QString& text) override
    {
        // A document has no text outside of its root element.
        if (d_current.isDocument())
            return false;
        return d_in_cdata ? Append(d_document->createCDATASection(text))
                          : Append(d_document->createTextNode(text));
    }
    bool comment(const QString& text) override { return Append(d_document->createComment(text)); }
    bool processingInstruction(const QString& target, const QString& text) override
    {
        return Append(d_document->createProcessingInstruction(target, text));
    }
    bool skippedEntity(const QString& name) override
    {
        // One in an attribute of the root element or in the declaration is not kept.
        return d_current.isDocument() || Append(d_document->createEntityReference(name));
    }

    bool fatalError(const QXmlParseException& exception) override
    {
        d_error = {exception.message(), exception.lineNumber(), exception.columnNumber()};
        return false;
    }

private:
    bool Append(const QDomNode& node)
    {
        d_current.appendChild(node);
        return true;
    }

    const bool d_namespace_processing;
    QDomDocument* const d_document;
    XmlBuilder::TPlaces* const d_places;
    QDomNode d_current; ///< innermost open element; the document outside of the root element
    const QXmlLocator* d_locator = nullptr;
    std::optional<XmlGuard::TDefect> d_error;
    bool d_in_cdata = false;
};

/// The type of a DOM document cannot change, so its nodes move to a new document.
bool TBuilder::startDTD(const QString& name, const QString& public_id, const QString& system_id)
{
    QDomDocument typed(QDomImplementation().createDocumentType(name, public_id, system_id));
    while (d_document->hasChildNodes())
        typed.appendChild(d_document->firstChild());
    *d_document = typed;
    d_current = typed;
    return true;
}

bool TBuilder::startElement(const QString& uri, const QString& /*local_name*/, const QString& name,
                            const QXmlAttributes& attributes)
{
    QDomElement element = d_namespace_processing ? d_document->createElementNS(uri, name)
                                                 : d_document->createElement(name);
    for (int i = 0; i < attributes.count(); ++i) {
        if (d_namespace_processing)
            element.setAttributeNS(attributes.uri(i), attributes.qName(i), attributes.value(i));
        else
            element.setAttribute(attributes.qName(i), attributes.value(i));
    }
    d_places->Add(element, {d_locator->lineNumber(), d_locator->columnNumber()});
    Append(element);
    d_current = element;
    return true;
}

} // namespace

void XmlBuilder::TPlaces::Add(const QDomNode& element, const TPlace& place)
{
    d_places.insert(TIdentity(element).Get(), place);
}

XmlBuilder::TPlace XmlBuilder::TPlaces::Find(const QDomNode& node) const
{
    return d_places.value(TIdentity(node).Get());
}

std::optional<XmlGuard::TDefect> XmlBuilder::Build(const QByteArray& data,
                                                   bool namespace_processing,
                                                   QDomDocument* document, TPlaces* places)
{
    *document = QDomDocument(QString());
    places->Clear();
    TBuilder builder(namespace_processing, document, places);
    QXmlSimpleReader reader;
    reader.setFeature(QStringLiteral("http://xml.org/sax/features/namespaces"),
                      namespace_processing);
    reader.setFeature(QStringLiteral("http://xml.org/sax/features/namespace-prefixes"),
                      !namespace_processing);
    // The white space between elements is indentation.
    reader.setFeature(
        QStringLiteral("http://qt-project.org/xml/features/report-whitespace-only-CharData"),
        false);
    reader.setContentHandler(&builder);
    reader.setLexicalHandler(&builder);
    reader.setErrorHandler(&builder);
    QBuffer buffer;
    buffer.setData(data);
    const QXmlInputSource source(&buffer);
    reader.parse(source);
    return builder.Error();
}

QT_WARNING_POP
