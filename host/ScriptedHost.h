#pragma once

#include "host/HostServices.h"

#include <QList>
#include <QQueue>

namespace ZEVGis::Host
{

// Host services for tests: nothing is shown and nothing blocks. Alerts and questions are
// recorded, questions are answered from a queue (No once it is empty, and the question is
// marked as unscripted), file dialogs return queued paths ("" = cancelled once empty),
// and the wait-cursor and resource-handle calls are counted.
class ScriptedHost : public HostServices
{
public:
    struct Question
    {
        QString text;
        QString caption;
        bool answer = false;
        bool scripted = false;
    };

    struct FileRequest
    {
        enum Kind
        {
            Open,
            Save
        };
        Kind kind = Open;
        QString caption;
        QString filter;
        QString answer;
        bool scripted = false;
    };

    ScriptedHost() = default;

    // --- the script
    void queueAnswer(bool yes) { m_answers.enqueue(yes); }
    void queueAnswers(std::initializer_list<bool> answers);
    void setCtrlPressed(bool pressed) { m_ctrlPressed = pressed; }
    void queueOpenFileName(const QString& path) { m_openNames.enqueue(path); }
    void queueSaveFileName(const QString& path) { m_saveNames.enqueue(path); }

    // --- what happened
    const QStringList& alerts() const { return m_alerts; }
    // The details of each alert, in step with alerts() ("" for an alert without).
    const QStringList& alertDetails() const { return m_alertDetails; }
    const QList<Question>& questions() const { return m_questions; }
    int unscriptedQuestions() const;
    int pendingAnswers() const { return int(m_answers.size()); }
    const QList<FileRequest>& fileRequests() const { return m_fileRequests; }
    int waitCursorDepth() const { return m_waitCursorDepth; }
    int maxWaitCursorDepth() const { return m_maxWaitCursorDepth; }
    int resourceDepth() const { return m_pushes - m_pops; }
    int pushCount() const { return m_pushes; }
    int popCount() const { return m_pops; }
    // Forgets the records and the remaining script; the Ctrl state stays.
    void clear();

    // --- HostServices
    void alert(const QString& text, QWidget* parent = nullptr) override;
    void alertWithDetails(const QString& text, const QString& details,
                          QWidget* parent = nullptr) override;
    bool askYesNo(const QString& text, const QString& caption = QString(),
                  QWidget* parent = nullptr) override;
    bool isCtrlPressed() const override { return m_ctrlPressed; }
    void beginWaitCursor() override;
    void endWaitCursor() override;
    QString getOpenFileName(const QString& caption, const QString& filter,
                            QWidget* parent = nullptr) override;
    QString getSaveFileName(const QString& caption, const QString& filter,
                            QWidget* parent = nullptr) override;
    void pushResourceHandle() override { ++m_pushes; }
    void popResourceHandle() override { ++m_pops; }

private:
    QString nextFileName(FileRequest::Kind kind, const QString& caption, const QString& filter);

    QQueue<bool> m_answers;
    QQueue<QString> m_openNames;
    QQueue<QString> m_saveNames;
    bool m_ctrlPressed = false;

    QStringList m_alerts;
    QStringList m_alertDetails;
    QList<Question> m_questions;
    QList<FileRequest> m_fileRequests;
    int m_waitCursorDepth = 0;
    int m_maxWaitCursorDepth = 0;
    int m_pushes = 0;
    int m_pops = 0;
};

} // namespace ZEVGis::Host
