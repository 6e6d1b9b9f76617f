#include "host/QtHostServices.h"

#include <QApplication>
#include <QFileDialog>
#include <QGuiApplication>
#include <QMessageBox>

namespace ZEVGis::Host
{

QtHostServices::~QtHostServices()
{
    // A wait cursor left on by an unbalanced begin must not outlive its owner.
    if (qobject_cast<QApplication*>(QCoreApplication::instance()))
    {
        while (m_waitCursorDepth-- > 0)
            QApplication::restoreOverrideCursor();
    }
}

QString QtHostServices::defaultCaption()
{
    const QString name = QGuiApplication::applicationDisplayName();
    return name.isEmpty() ? QStringLiteral("zevxcatalogeditor") : name;
}

void QtHostServices::alert(const QString& text, QWidget* parent)
{
    alertWithDetails(text, QString(), parent);
}

void QtHostServices::alertWithDetails(const QString& text, const QString& details,
                                      QWidget* parent)
{
    QMessageBox box(QMessageBox::Warning, defaultCaption(), text, QMessageBox::Ok, parent);
    box.setDetailedText(details);
    box.exec();
}

bool QtHostServices::askYesNo(const QString& text, const QString& caption, QWidget* parent)
{
    QMessageBox box(QMessageBox::Question, caption.isEmpty() ? defaultCaption() : caption, text,
                    QMessageBox::Yes | QMessageBox::No, parent);
    // Enter answers No: a question may be about deleting a whole catalog, and Yes must be
    // a deliberate choice.
    box.setDefaultButton(QMessageBox::No);
    // Closing the box by Escape or its close box counts as No.
    box.setEscapeButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

bool QtHostServices::isCtrlPressed() const
{
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return false;
    return QGuiApplication::queryKeyboardModifiers().testFlag(Qt::ControlModifier);
}

void QtHostServices::beginWaitCursor()
{
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        return;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    ++m_waitCursorDepth;
}

void QtHostServices::endWaitCursor()
{
    // An end without a begin is ignored rather than restoring someone else's cursor.
    if (m_waitCursorDepth == 0)
        return;
    --m_waitCursorDepth;
    if (qobject_cast<QApplication*>(QCoreApplication::instance()))
        QApplication::restoreOverrideCursor();
}

QString QtHostServices::getOpenFileName(const QString& caption, const QString& filter,
                                        QWidget* parent)
{
    return QFileDialog::getOpenFileName(parent, caption, QString(), filter);
}

QString QtHostServices::getSaveFileName(const QString& caption, const QString& filter,
                                        QWidget* parent)
{
    return QFileDialog::getSaveFileName(parent, caption, QString(), filter);
}

// Outside the host the dialogs' resources are always at hand; only the balance is kept.
void QtHostServices::pushResourceHandle()
{
    ++m_resourceDepth;
}

void QtHostServices::popResourceHandle()
{
    if (m_resourceDepth > 0)
        --m_resourceDepth;
}

} // namespace ZEVGis::Host
