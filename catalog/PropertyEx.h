#pragma once

#include "catalog/DataBox.h"

#include <atomic>
#include <boost/intrusive_ptr.hpp>
#include <boost/shared_ptr.hpp>

namespace ZEVGis::Data
{

// One typed property of a catalog item. The tag is its key within the item; the caption
// is what the property grid shows (the tag when empty).
//
// A big catalog holds millions of properties, so the seldom-set parts (caption, picture,
// choices, read-only flag) live in one shared, immutable block that copies and equal
// properties share; a setter replaces the block instead of changing it.
class CPropertyEx
{
public:
    // The seldom-set parts of a property.
    struct Extra
    {
        QString caption;
        QString pictureRef;
        QStringList choices;
        bool readOnly = false;

        Extra() = default;
        Extra(const Extra& other)
            : caption(other.caption), pictureRef(other.pictureRef), choices(other.choices),
              readOnly(other.readOnly)
        {
        }
        Extra& operator=(const Extra&) = delete;
        bool operator==(const Extra& other) const
        {
            return caption == other.caption && pictureRef == other.pictureRef
                && choices == other.choices && readOnly == other.readOnly;
        }
        bool isEmpty() const
        {
            return caption.isEmpty() && pictureRef.isEmpty() && choices.isEmpty() && !readOnly;
        }

        // Intrusive count: a property pays one pointer for its block, not two.
        mutable std::atomic<int> refs{0};
        friend void intrusive_ptr_add_ref(const Extra* extra)
        {
            extra->refs.fetch_add(1, std::memory_order_relaxed);
        }
        friend void intrusive_ptr_release(const Extra* extra)
        {
            if (extra->refs.fetch_sub(1, std::memory_order_acq_rel) == 1)
                delete extra;
        }
    };
    using ExtraPtr = boost::intrusive_ptr<const Extra>;

    CPropertyEx() = default;
    CPropertyEx(const QString& tag, const CDataBox& value) : m_tag(tag), m_value(value) {}
    CPropertyEx(const CPropertyEx&) = default;
    CPropertyEx& operator=(const CPropertyEx&) = default;

    QString GetTag() const { return m_tag; }
    void SetTag(const QString& tag) { m_tag = tag; }
    // Compares without copying the tag.
    bool HasTag(const QString& tag) const { return m_tag == tag; }
    QString GetCaption() const
    {
        return !m_extra || m_extra->caption.isEmpty() ? m_tag : m_extra->caption;
    }
    void SetCaption(const QString& caption) { changeExtra([&](Extra& e) { e.caption = caption; }); }
    CDataBox GetValue() const { return m_value; }
    void SetValue(const CDataBox& value) { m_value = value; }
    QString GetPictureRef() const { return m_extra ? m_extra->pictureRef : QString(); }
    void SetPictureRef(const QString& ref) { changeExtra([&](Extra& e) { e.pictureRef = ref; }); }
    // Allowed values of a DataType::Choice property (implicitly shared between copies).
    QStringList GetChoices() const { return m_extra ? m_extra->choices : QStringList(); }
    void SetChoices(const QStringList& choices)
    {
        changeExtra([&](Extra& e) { e.choices = choices; });
    }
    int IsReadOnly() const { return m_extra && m_extra->readOnly; }
    void SetReadOnly(int readOnly) { changeExtra([&](Extra& e) { e.readOnly = readOnly != 0; }); }

    // The shared block of seldom-set parts (empty when none is set). The catalog reader
    // hands equal blocks to many properties.
    ExtraPtr GetExtra() const { return m_extra; }
    void SetExtra(ExtraPtr extra) { m_extra = std::move(extra); }

    bool operator==(const CPropertyEx& other) const
    {
        static const Extra none;
        return m_tag == other.m_tag && m_value == other.m_value
            && (m_extra == other.m_extra
                || (m_extra ? *m_extra : none) == (other.m_extra ? *other.m_extra : none));
    }

private:
    template <typename Change>
    void changeExtra(Change change)
    {
        Extra* extra = m_extra ? new Extra(*m_extra) : new Extra;
        ExtraPtr keep(extra);
        change(*extra);
        if (extra->isEmpty())
            m_extra.reset();
        else
            m_extra = keep;
    }

    QString m_tag;
    CDataBox m_value;
    ExtraPtr m_extra;
};

} // namespace ZEVGis::Data
