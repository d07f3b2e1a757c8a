#pragma once

#include "core/xmlbuilder.h"

#include <QByteArray>
#include <QDomDocument>
#include <QString>

class QIODevice;

/// Thrown by TXmlFile for invalid content and for files that cannot be read or written. The message
/// is meant for the details of an error box.
class TXmlFileException
{
public:
    enum TExceptionType {
        File_Error, ///< a file cannot be read, or is write-protected
        Data_Error  ///< everything else
    };

    TXmlFileException(const QString& message, TExceptionType type)
        : TXmlFileException(message, type, message, 0, 0)
    {
    }
    /// @param reason        the message without the place.
    /// @param line, column  of the fault in the document, from 1; 0 if unknown.
    TXmlFileException(const QString& message, TExceptionType type, const QString& reason, int line,
                      int column)
        : d_message(message)
        , d_type(type)
        , d_reason(reason)
        , d_line(line)
        , d_column(column)
    {
    }

    QString Message() const { return d_message; }
    TExceptionType Type() const { return d_type; }
    /// "line 3, column 7: reason"; the message if the place is unknown.
    QString Placed_Message() const;

private:
    QString d_message;
    TExceptionType d_type;
    QString d_reason;
    int d_line;
    int d_column;
};

/// An XML document. The name of the root element identifies the kind of document, and its attribute
/// "File_Version" the version.
///
/// Reset and the write operations create a document; Open and Open_Data load one. Reading starts at
/// d_root_element. Write_File and Write_Data save the document. Elements and nodes are handles of
/// the DOM; a null handle means that there is no such node.
///
/// The last argument of every reader, `optional`, decides what happens if the requested item is
/// missing. If true, the reader returns an empty string or a null node; if false, it throws
/// TXmlFileException (Data_Error). To iterate over the elements of one name, call Get_Node and then
/// Get_Sibling_Node with `optional` set until the result is null.
///
/// A null pointer is a programming error and fails an assertion, unless documented otherwise. A
/// pointer to a null node throws (Data_Error), except in Get_First_Node and the Get_Sibling_Node
/// without a name: there a null node has no children and no siblings.
class TXmlFile : public QDomDocument
{
public:
    /// Constructs a document without nodes. Sets the DOM's policy for invalid data, which is
    /// global: names and texts that XML does not allow yield null nodes.
    TXmlFile();

    /// Starts a new document with an XML declaration (version 1.0, utf-8) and an empty root
    /// element.
    void Reset(const QString& root_name, int version);
    /// Starts a new document with a document type and an empty root element, but no XML
    /// declaration.
    void Reset(const QString& doctype_name, const QString& root_name, int version);
    /// Removes all nodes, including the root element.
    void Clear();

    /// Loads d_file_path. Throws File_Error when the file cannot be opened; otherwise like
    /// Open_Data.
    void Open(const QString& identification, int* version, bool namespace_processing);
    /// Loads a document from memory. Throws Data_Error if it is not well-formed, if it exceeds the
    /// limits of XmlGuard, if the root element's name is not identification (case-sensitive), or if
    /// "File_Version" is missing and version is not null.
    /// @param version  receives the version, 0 when it is not a number; may be null.
    void Open_Data(const QByteArray& data, const QString& identification, int* version,
                   bool namespace_processing);

    /// The first child of a node, if it is text. Otherwise the text is missing.
    QString Read_Text_Node(const QDomElement* node, bool optional) const;
    QString Read_Text_Node(const QDomNode* node, bool optional) const;
    /// An attribute's value, which may be empty.
    QString Read_Attribute(const QDomElement* node, const QString& name, bool optional) const;
    QString Read_Attribute(const QDomNode* node, const QString& name, bool optional) const;
    /// The first child element with that tag name.
    QDomElement Get_Node(const QDomElement* node, const QString& name, bool optional) const;
    QDomElement Get_Node(const QDomNode* node, const QString& name, bool optional) const;
    /// The next sibling element with that tag name.
    QDomElement Get_Sibling_Node(const QDomElement* current_node, const QString& name,
                                 bool optional) const;
    /// The first child of any kind.
    QDomNode Get_First_Node(const QDomElement* parent, bool optional) const;
    QDomNode Get_First_Node(const QDomNode* parent, bool optional) const;
    /// The next sibling of any kind.
    QDomNode Get_Sibling_Node(const QDomNode* current_node, bool optional) const;

    /// Appends an empty element; throws for an empty name. For a name that XML does not allow,
    /// appends nothing and returns a null element, for which the operations below throw.
    QDomElement Create_Node(QDomElement* parent, const QString& name);
    /// Appends a text; throws for characters that XML does not allow.
    void Write_Text_Node(QDomElement* node, const QString& text);
    /// @param precision  decimals, in fixed notation.
    void Write_Text_Node(QDomElement* node, const double& value, int precision);
    void Write_Text_Node(QDomElement* node, int value);
    /// Appends a text like Write_Text_Node, but preserves its line breaks in a compact document.
    /// Also preserves a text that consists of white space only, except for its line breaks.
    void Write_Lines(QDomElement* node, const QString& text);
    /// Sets an attribute; throws for an empty name.
    void Write_Attribute(QDomElement* node, const QString& name, const QString& value);
    /// @param precision  decimals, in fixed notation.
    void Write_Attribute(QDomElement* node, const QString& name, const double& value,
                         int precision);
    void Write_Attribute(QDomElement* node, const QString& name, int value);

    /// Writes the document to d_file_path like Write_Data. Throws File_Error for a write-protected
    /// file, and Data_Error when the file cannot be opened.
    void Write_File(bool compact) const;
    /// Writes the document to data. The encoding is that of the XML declaration, or UTF-8. Indents
    /// by 4 blanks per level, or, if compact, omits indentation and all line breaks, even those in
    /// texts.
    void Write_Data(QByteArray* data, bool compact) const;

    QDomElement d_root_element;
    QString d_file_path;      ///< file of Open and Write_File; set by the caller
    QString d_identification; ///< expected root name of the last loaded document
    QString d_doctype_name;   ///< document type of the last loaded document; may be empty

private:
    void Create_Root(const QString& root_name, int version);
    void Load(const QByteArray& data, bool namespace_processing, const QString& error_pattern);
    void Identify(const QString& identification, int* version);
    void Save_To(QIODevice* device, bool compact) const;

    XmlBuilder::TPlaces d_places; ///< of the elements of the loaded document
};
