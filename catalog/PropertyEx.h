#pragma once

#include "catalog/DataBox.h"

#include <boost/shared_ptr.hpp>

namespace ZEVGis::Data
{

// One typed property of a catalog item. The tag is its key within the item; the caption
// is what the property grid shows (the tag when empty).
class CPropertyEx
{
public:
    CPropertyEx() = default;
    CPropertyEx(const QString& tag, const CDataBox& value) : m_tag(tag), m_value(value) {}
    CPropertyEx(const CPropertyEx&) = default;
    CPropertyEx& operator=(const CPropertyEx&) = default;

    QString GetTag() const { return m_tag; }
    void SetTag(const QString& tag) { m_tag = tag; }
    QString GetCaption() const { return m_caption.isEmpty() ? m_tag : m_caption; }
    void SetCaption(const QString& caption) { m_caption = caption; }
    CDataBox GetValue() const { return m_value; }
    void SetValue(const CDataBox& value) { m_value = value; }
    QString GetPictureRef() const { return m_pictureRef; }
    void SetPictureRef(const QString& ref) { m_pictureRef = ref; }
    // Allowed values of a DataType::Choice property (implicitly shared between copies).
    QStringList GetChoices() const { return m_choices; }
    void SetChoices(const QStringList& choices) { m_choices = choices; }
    int IsReadOnly() const { return m_readOnly; }
    void SetReadOnly(int readOnly) { m_readOnly = readOnly != 0; }

    bool operator==(const CPropertyEx& other) const = default;

private:
    QString m_tag;
    QString m_caption;
    CDataBox m_value;
    QString m_pictureRef;
    QStringList m_choices;
    bool m_readOnly = false;
};

} // namespace ZEVGis::Data
