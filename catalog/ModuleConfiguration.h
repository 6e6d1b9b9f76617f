#pragma once

#include <QHash>
#include <QIcon>
#include <QPixmap>
#include <QString>
#include <memory>

class QTranslator;

namespace ZEVGis
{

// Numbered user messages in English and Croatian, and the module's icons and bitmaps by
// their resource names ("IDI_BOX_OPEN", "IDB_DRAG").
class CModuleConfiguration
{
public:
    enum ImageType : unsigned
    {
        ImageBitmap = 0,
        ImageIcon = 1
    };

    static CModuleConfiguration* Instance();

    // "en" or "hr"; anything else falls back to English. Without a call the locale decides.
    // Qt's own texts (standard buttons, file dialogs) follow, once an application object
    // exists; a call also makes the language's locale the default, so numbers are written
    // as its speakers write them.
    void SetLanguage(const QString& language);
    QString Language() const { return m_language; }

    // The text of a message; an unknown number gives a visible placeholder, never "".
    QString GetMsg(unsigned id) const;
    bool HasMsg(unsigned id) const;
    // Null icon / pixmap for an unknown name.
    QIcon GetIcon(const QString& name) const;
    QPixmap GetBitmap(const QString& name) const;
    // The named icon or bitmap rendered at cx x cy (its own size when 0).
    QPixmap LoadImageW(const QString& name, unsigned type, int cx, int cy, unsigned flags) const;

private:
    CModuleConfiguration();
    ~CModuleConfiguration();
    void loadMessages();
    void loadQtTranslations();

    QString m_language;
    QHash<unsigned, QString> m_messages;
    std::unique_ptr<QTranslator> m_qtTranslator;
    QString m_qtTranslatorLanguage;
};

} // namespace ZEVGis
