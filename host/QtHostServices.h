#pragma once

#include "host/HostServices.h"

namespace ZEVGis::Host
{

// The host services of a plain Qt application: message boxes, the real keyboard state,
// the application's override cursor and the platform file dialogs.
class QtHostServices : public HostServices
{
public:
    QtHostServices() = default;
    ~QtHostServices() override;

    void alert(const QString& text, QWidget* parent = nullptr) override;
    void alertWithDetails(const QString& text, const QString& details,
                          QWidget* parent = nullptr) override;
    bool askYesNo(const QString& text, const QString& caption = QString(),
                  QWidget* parent = nullptr) override;
    bool isCtrlPressed() const override;
    void beginWaitCursor() override;
    void endWaitCursor() override;
    QString getOpenFileName(const QString& caption, const QString& filter,
                            QWidget* parent = nullptr) override;
    QString getSaveFileName(const QString& caption, const QString& filter,
                            QWidget* parent = nullptr) override;
    void pushResourceHandle() override;
    void popResourceHandle() override;

    int waitCursorDepth() const { return m_waitCursorDepth; }
    int resourceDepth() const { return m_resourceDepth; }

    // The caption of alerts and of questions asked without one.
    static QString defaultCaption();

private:
    int m_waitCursorDepth = 0;
    int m_resourceDepth = 0;
};

} // namespace ZEVGis::Host
