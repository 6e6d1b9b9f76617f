#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace ZEVGis::Host
{

// What the module takes from its host application: message boxes, the keyboard state, the
// wait cursor, file dialogs and the resource-handle scope. Dialogs reach these only through
// this interface, so tests can replace the modal parts with a script (ScriptedHost).
class HostServices
{
public:
    virtual ~HostServices() = default;

    // The host's alert box (acedAlert): an OK box with the text.
    virtual void alert(const QString& text, QWidget* parent = nullptr) = 0;
    // The alert with the reason behind it, which the user can unfold below the text. A host
    // without such a place shows the text alone (the reason is in the log).
    virtual void alertWithDetails(const QString& text, const QString& details,
                                  QWidget* parent = nullptr);
    // A Yes/No question with the question icon; true only for Yes. No is the default
    // button (Enter), Escape and the close box answer No.
    virtual bool askYesNo(const QString& text, const QString& caption = QString(),
                          QWidget* parent = nullptr) = 0;
    // True while Ctrl is held (the key state of VK_CONTROL).
    virtual bool isCtrlPressed() const = 0;
    virtual void beginWaitCursor() = 0;
    virtual void endWaitCursor() = 0;
    // File dialogs; an empty string when the user cancels. `filter` is in Qt's form
    // ("Xml files (*.xml);;All Files (*.*)").
    virtual QString getOpenFileName(const QString& caption, const QString& filter,
                                    QWidget* parent = nullptr) = 0;
    virtual QString getSaveFileName(const QString& caption, const QString& filter,
                                    QWidget* parent = nullptr) = 0;
    // The module's resources are current between push and pop.
    virtual void pushResourceHandle() = 0;
    virtual void popResourceHandle() = 0;

    // The services in use; a Qt implementation unless a test installed another.
    static HostServices& current();
    // Installs `services` (not owned; nullptr restores the Qt implementation).
    static void install(HostServices* services);
};

// Installs `services` for the lifetime of the object and puts back what was current before.
class ScopedHostServices
{
public:
    explicit ScopedHostServices(HostServices& services) : m_previous(&HostServices::current())
    {
        HostServices::install(&services);
    }
    ~ScopedHostServices() { HostServices::install(m_previous); }
    ScopedHostServices(const ScopedHostServices&) = delete;
    ScopedHostServices& operator=(const ScopedHostServices&) = delete;

private:
    HostServices* m_previous;
};

// RAII wait cursor through the host services. The cursor is taken off by the services that
// put it on, even if others were installed in between.
class WaitCursor
{
public:
    WaitCursor() : m_services(HostServices::current()) { m_services.beginWaitCursor(); }
    ~WaitCursor() { m_services.endWaitCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

private:
    HostServices& m_services;
};

// RAII resource-handle scope: popped also when an exception leaves the scope, and from the
// stack it was pushed on.
class ResourceScope
{
public:
    ResourceScope() : m_services(HostServices::current()) { m_services.pushResourceHandle(); }
    ~ResourceScope() { m_services.popResourceHandle(); }
    ResourceScope(const ResourceScope&) = delete;
    ResourceScope& operator=(const ResourceScope&) = delete;

private:
    HostServices& m_services;
};

} // namespace ZEVGis::Host
