#pragma once

#include <QObject>
#include <QString>

namespace ZEVGis::Program
{

// Renders the first modal window that comes up (the editor, or an alert it shows first) to
// a PNG file, then closes every modal window until the launch returns. Start it right
// before the launch; nothing has to be clicked.
class ScreenshotSession : public QObject
{
    Q_OBJECT
public:
    explicit ScreenshotSession(const QString& path, QObject* parent = nullptr);

    void start();
    // The launch returned; stop closing windows.
    void finish();

    bool saved() const { return m_saved; }
    // The class of the window rendered, and its text when it was a message box.
    QString capturedClass() const { return m_capturedClass; }
    QString capturedText() const { return m_capturedText; }
    // What was rendered (its window title), or why nothing was saved.
    QString report() const { return m_report; }

private:
    void step();
    void capture(QWidget* window);

    QString m_path;
    QString m_report;
    QString m_capturedClass;
    QString m_capturedText;
    bool m_captured = false;
    bool m_saved = false;
    bool m_finished = false;
};

} // namespace ZEVGis::Program
