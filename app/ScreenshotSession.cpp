#include "app/ScreenshotSession.h"

#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QPixmap>
#include <QTimer>
#include <QWidget>

namespace ZEVGis::Program
{

ScreenshotSession::ScreenshotSession(const QString& path, QObject* parent)
    : QObject(parent), m_path(path)
{
    m_report = QStringLiteral("no window was shown");
}

void ScreenshotSession::start()
{
    QTimer::singleShot(0, this, &ScreenshotSession::step);
}

void ScreenshotSession::finish()
{
    m_finished = true;
}

void ScreenshotSession::step()
{
    if (m_finished)
        return;
    QWidget* window = QApplication::activeModalWidget();
    if (!window)
    {
        // The launch has not shown its dialog yet; look again on the next turn.
        start();
        return;
    }
    if (!m_captured)
        capture(window);

    if (auto* dialog = qobject_cast<QDialog*>(window))
        dialog->reject();
    else
        window->close();
    start();
}

void ScreenshotSession::capture(QWidget* window)
{
    m_captured = true;
    m_capturedClass = QString::fromLatin1(window->metaObject()->className());
    if (auto* box = qobject_cast<QMessageBox*>(window))
        m_capturedText = box->text();
    // Let pending layout and polish requests run so the picture shows the settled dialog.
    for (int i = 0; i < 3; ++i)
        QCoreApplication::processEvents();

    const QPixmap picture = window->grab();
    m_saved = !picture.isNull() && picture.save(m_path, "PNG");
    m_report = m_saved ? QStringLiteral("\"%1\" (%2 x %3)")
                             .arg(window->windowTitle())
                             .arg(picture.width())
                             .arg(picture.height())
                       : QStringLiteral("the file could not be written");
}

} // namespace ZEVGis::Program
