#pragma once

#include <QString>

class CXmlDocument;

// The outcome of checking one XML file for well-formedness.
struct XmlFileCheck
{
    bool wellFormed = false;
    QString result; // the load report and the first error, as CXmlDocument::GetResult gives it
};

// Loads path into doc and reports its verdict. On success doc holds the text, ready to be read
// as a catalog.
XmlFileCheck CheckXmlFile(CXmlDocument& doc, const QString& path);

// One line for a report: "<path>: well formed (<result>)" or "<path>: not well formed (<result>)".
QString FormatXmlFileCheck(const QString& path, const XmlFileCheck& check);
