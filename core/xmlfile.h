#pragma once

#include <QByteArray>
#include <QDomDocument>
#include <QString>

class QIODevice;

/// What TXmlFile throws when the content of a document, or its file, is not as it has to be. Thrown
/// by value, caught by reference. The message is meant for the details of an error box.
class TXmlFileException
{
public:
    enum TExceptionType {
        File_Error, ///< a file cannot be read, or must not be written
        Data_Error  ///< everything else
    };

    TXmlFileException(const QString& message, TExceptionType type)
        : d_message(message)
        , d_type(type)
    {
    }

    QString Message() const { return d_message; }
    TExceptionType Type() const { return d_type; }

private:
    QString d_message;
    TExceptionType d_type;
};

/// An XML document that names its kind by its root element and its version by the root's attribute
/// "File_Version".
///
/// A document is made by Reset and the write operations, or loaded by Open or Open_Data; it is read
/// from d_root_element downwards, and written by Write_File or Write_Data. Elements and nodes are
/// the DOM's own handles: a null one stands for "there is none".
///
/// The last argument of every reader, optional, says what happens when the piece is missing: an
/// empty string or null node is returned, or TXmlFileException (Data_Error) is thrown. A list of
/// like elements is walked with an optional Get_Node and then optional Get_Sibling_Node calls up to
/// the first null element.
///
/// A null pointer is a programming error and stops the program by an assertion, except where an
/// operation says otherwise. A pointer to a null element or node throws (Data_Error), except in
/// the operations that take or return a node of any kind without a name: there it has no child and
/// no sibling.
class TXmlFile : public QDomDocument
{
public:
    /// A document without any node. Sets the DOM's policy for invalid data, which is one for the
    /// whole process, so that names and texts that XML cannot hold yield null nodes.
    TXmlFile();

    /// Starts a document anew: an XML declaration (version 1.0, utf-8) and an empty root element.
    void Reset(const QString& root_name, int version);
    /// Starts a document anew: a document type, no XML declaration, and an empty root element.
    void Reset(const QString& doctype_name, const QString& root_name, int version);
    /// Removes all nodes; there is no root element afterwards.
    void Clear();

    /// Loads d_file_path. Besides what Open_Data throws: File_Error when the file cannot be opened.
    void Open(const QString& identification, int* version, bool namespace_processing);
    /// Loads a document from memory. Throws Data_Error for a document that is not well formed, one
    /// beyond the limits of XmlGuard, another root element than the one named by identification
    /// (upper and lower case differ), and, if version is given, a missing "File_Version".
    /// @param version  receives the version, 0 when it is no number; may be null, and then the
    ///                 attribute is not needed.
    void Open_Data(const QByteArray& data, const QString& identification, int* version,
                   bool namespace_processing);

    /// The first child of a node when it is text; an element, or nothing, in its place is missing
    /// text.
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

    /// Appends an empty element; throws for an empty name. A name that XML does not allow appends
    /// nothing and yields a null element, which the operations below refuse.
    QDomElement Create_Node(QDomElement* parent, const QString& name);
    /// Appends a text; throws for characters that XML cannot hold.
    void Write_Text_Node(QDomElement* node, const QString& text);
    /// @param precision  decimals, in fixed notation.
    void Write_Text_Node(QDomElement* node, const double& value, int precision);
    void Write_Text_Node(QDomElement* node, int value);
    /// Sets an attribute; throws for an empty name.
    void Write_Attribute(QDomElement* node, const QString& name, const QString& value);
    /// @param precision  decimals, in fixed notation.
    void Write_Attribute(QDomElement* node, const QString& name, const double& value,
                         int precision);
    void Write_Attribute(QDomElement* node, const QString& name, int value);

    /// Writes the document to d_file_path, indented by 4 blanks per level or compactly, as
    /// Write_Data does. Throws File_Error for an existing file that must not be written, Data_Error
    /// when it cannot be opened.
    void Write_File(bool compact) const;
    /// Replaces data by the document. The encoding is the one of the XML declaration, UTF-8 when
    /// there is none. A compact document has no indentation and no line breaks at all, not even
    /// those of its texts.
    void Write_Data(QByteArray* data, bool compact) const;

    QDomElement d_root_element;
    QString d_file_path;      ///< what Open reads and Write_File writes; set it before
    QString d_identification; ///< root name that the last document was loaded by
    QString d_doctype_name;   ///< document type of the last document loaded, empty without one

private:
    void Create_Root(const QString& root_name, int version);
    void Load(const QByteArray& data, bool namespace_processing, const QString& error_pattern);
    void Identify(const QString& identification, int* version);
    void Save_To(QIODevice* device, bool compact) const;
};
