#include "catalog/ModuleConfiguration.h"

#include <QCoreApplication>
#include <QFile>
#include <QIconEngine>
#include <QLibraryInfo>
#include <QLocale>
#include <QLoggingCategory>
#include <QPainter>
#include <QSvgRenderer>
#include <QTranslator>

namespace ZEVGis
{

namespace
{

Q_LOGGING_CATEGORY(lcConfig, "zevx.catalog.config")

const QString kEnglish = QStringLiteral("en");
const QString kCroatian = QStringLiteral("hr");
constexpr int kDefaultImageSize = 24;

QString iconResourcePath(const QString& name)
{
    return QStringLiteral(":/icons/%1.svg").arg(name);
}

// Resource names are plain identifiers; anything else (a path, "..") never names an icon.
bool isResourceName(const QString& name)
{
    if (name.isEmpty())
        return false;
    for (const QChar c : name)
    {
        if (!(c.isLetterOrNumber() || c == u'_'))
            return false;
    }
    return true;
}

QString unescapeMessage(QStringView text)
{
    QString result;
    result.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i)
    {
        const QChar c = text[i];
        if (c != u'\\' || i + 1 == text.size())
        {
            result += c;
            continue;
        }
        const QChar next = text[++i];
        if (next == u'n')
            result += u'\n';
        else if (next == u't')
            result += u'\t';
        else
            result += next; // "\\" and any other escaped character stand for themselves
    }
    return result;
}

// Reads "number<TAB>text" lines into the table; later tables overwrite earlier ones.
void readMessageTable(const QString& resourcePath, QHash<unsigned, QString>& table)
{
    QFile file(resourcePath);
    if (!file.open(QIODevice::ReadOnly))
    {
        qCWarning(lcConfig) << "message table missing:" << resourcePath;
        return;
    }
    const QString content = QString::fromUtf8(file.readAll());
    int lineNumber = 0;
    for (QStringView line : QStringView(content).split(u'\n'))
    {
        ++lineNumber;
        if (line.endsWith(u'\r'))
            line.chop(1);
        if (line.isEmpty() || line.startsWith(u'#'))
            continue;
        const qsizetype tab = line.indexOf(u'\t');
        bool ok = false;
        const unsigned id = tab > 0 ? line.left(tab).toUInt(&ok) : 0;
        if (!ok)
        {
            qCWarning(lcConfig) << resourcePath << "line" << lineNumber << "is not \"number<TAB>text\"";
            continue;
        }
        table.insert(id, unescapeMessage(line.mid(tab + 1)));
    }
}

QPixmap renderSvg(const QString& path, QSize size)
{
    if (!QFile::exists(path))
        return {};
    QSvgRenderer renderer(path);
    if (!renderer.isValid())
        return {};
    if (size.width() <= 0 || size.height() <= 0)
    {
        const QSize own = renderer.defaultSize();
        size = own.isEmpty() ? QSize(kDefaultImageSize, kDefaultImageSize) : own;
    }
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter, QRectF(QPointF(0, 0), QSizeF(size)));
    painter.end();
    return QPixmap::fromImage(image);
}

// Renders the SVG at each size asked for, so icons stay sharp in 16 px buttons and 24 px
// tree rows alike, and needs no icon-engine plugin at run time. Renderings are cached per
// size and mode because tree views repaint their icons constantly.
class SvgIconEngine : public QIconEngine
{
public:
    explicit SvgIconEngine(const QString& path) : m_path(path) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        const qreal ratio = painter->device() ? painter->device()->devicePixelRatioF() : 1.0;
        painter->drawPixmap(rect, scaledPixmap(rect.size(), mode, state, ratio));
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return scaledPixmap(size, mode, state, 1.0);
    }

    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State, qreal scale) override
    {
        const QSize pixels = (QSizeF(size) * scale).toSize();
        const QString cacheKey = QStringLiteral("%1x%2/%3").arg(pixels.width()).arg(pixels.height()).arg(int(mode));
        const auto cached = m_cache.constFind(cacheKey);
        if (cached != m_cache.constEnd())
            return *cached;
        QPixmap result = renderSvg(m_path, pixels);
        if (!result.isNull() && mode == QIcon::Disabled)
            result = fadedCopy(result);
        result.setDevicePixelRatio(scale);
        m_cache.insert(cacheKey, result);
        return result;
    }

    QIconEngine* clone() const override { return new SvgIconEngine(m_path); }
    QString key() const override { return QStringLiteral("zevx-svg"); }
    bool isNull() override { return false; }

private:
    static QPixmap fadedCopy(const QPixmap& source)
    {
        QPixmap faded(source.size());
        faded.fill(Qt::transparent);
        QPainter painter(&faded);
        painter.setOpacity(0.4);
        painter.drawPixmap(0, 0, source);
        return faded;
    }

    QString m_path;
    QHash<QString, QPixmap> m_cache;
};

} // namespace

CModuleConfiguration* CModuleConfiguration::Instance()
{
    static CModuleConfiguration instance;
    return &instance;
}

CModuleConfiguration::CModuleConfiguration()
    : m_language(QLocale().language() == QLocale::Croatian ? kCroatian : kEnglish)
{
    loadMessages();
    loadQtTranslations();
}

CModuleConfiguration::~CModuleConfiguration() = default;

void CModuleConfiguration::SetLanguage(const QString& language)
{
    const QString normalized = language.trimmed().toLower();
    const QString chosen = normalized == kCroatian ? kCroatian : kEnglish;
    if (!normalized.isEmpty() && normalized != chosen)
        qCWarning(lcConfig) << "unknown language" << language << "- using English";
    const QLocale::Language spoken = chosen == kCroatian ? QLocale::Croatian : QLocale::English;
    if (QLocale().language() != spoken)
        QLocale::setDefault(spoken == QLocale::Croatian ? QLocale(QLocale::Croatian, QLocale::Croatia)
                                                        : QLocale(QLocale::English, QLocale::UnitedStates));
    if (chosen != m_language || m_messages.isEmpty())
    {
        m_language = chosen;
        loadMessages();
    }
    loadQtTranslations();
}

// Qt's translations come with Qt (Debian: qt6-translations-l10n); English needs none.
void CModuleConfiguration::loadQtTranslations()
{
    if (!QCoreApplication::instance() || m_qtTranslatorLanguage == m_language)
        return;
    m_qtTranslator.reset(); // a deleted translator takes itself out of the application
    m_qtTranslatorLanguage = m_language;
    if (m_language == kEnglish)
        return;
    auto translator = std::make_unique<QTranslator>();
    const QString folder = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
    if (!translator->load(QStringLiteral("qtbase_") + m_language, folder))
    {
        qCWarning(lcConfig) << "Qt's own texts stay in English: no qtbase_" + m_language
                            << "translation in" << folder;
        return;
    }
    QCoreApplication::installTranslator(translator.get());
    m_qtTranslator = std::move(translator);
}

void CModuleConfiguration::loadMessages()
{
    m_messages.clear();
    // English first, so a text not yet translated still shows in English rather than as a gap.
    readMessageTable(QStringLiteral(":/messages/en.tsv"), m_messages);
    if (m_language != kEnglish)
        readMessageTable(QStringLiteral(":/messages/%1.tsv").arg(m_language), m_messages);
}

QString CModuleConfiguration::GetMsg(unsigned id) const
{
    const auto found = m_messages.constFind(id);
    if (found != m_messages.constEnd() && !found->isEmpty())
        return *found;
    return QStringLiteral("[message %1]").arg(id);
}

bool CModuleConfiguration::HasMsg(unsigned id) const
{
    const auto found = m_messages.constFind(id);
    return found != m_messages.constEnd() && !found->isEmpty();
}

QIcon CModuleConfiguration::GetIcon(const QString& name) const
{
    if (!isResourceName(name) || !QFile::exists(iconResourcePath(name)))
        return {};
    return QIcon(new SvgIconEngine(iconResourcePath(name)));
}

QPixmap CModuleConfiguration::GetBitmap(const QString& name) const
{
    return LoadImageW(name, ImageBitmap, 0, 0, 0);
}

QPixmap CModuleConfiguration::LoadImageW(const QString& name, unsigned type, int cx, int cy, unsigned flags) const
{
    Q_UNUSED(type);  // icons and bitmaps share one SVG set
    Q_UNUSED(flags); // colour and sharing flags mean nothing for a rendered SVG
    if (!isResourceName(name))
        return {};
    return renderSvg(iconResourcePath(name), QSize(cx, cy));
}

} // namespace ZEVGis
