#include "host/ScriptedHost.h"

#include <algorithm>

namespace ZEVGis::Host
{

void ScriptedHost::queueAnswers(std::initializer_list<bool> answers)
{
    for (bool answer : answers)
        m_answers.enqueue(answer);
}

int ScriptedHost::unscriptedQuestions() const
{
    return int(std::count_if(m_questions.cbegin(), m_questions.cend(),
                             [](const Question& q) { return !q.scripted; }));
}

void ScriptedHost::clear()
{
    m_answers.clear();
    m_openNames.clear();
    m_saveNames.clear();
    m_alerts.clear();
    m_alertDetails.clear();
    m_questions.clear();
    m_fileRequests.clear();
    m_waitCursorDepth = 0;
    m_maxWaitCursorDepth = 0;
    m_pushes = 0;
    m_pops = 0;
}

void ScriptedHost::alert(const QString& text, QWidget* parent)
{
    alertWithDetails(text, QString(), parent);
}

void ScriptedHost::alertWithDetails(const QString& text, const QString& details, QWidget*)
{
    m_alerts.append(text);
    m_alertDetails.append(details);
}

bool ScriptedHost::askYesNo(const QString& text, const QString& caption, QWidget*)
{
    Question question{text, caption, false, !m_answers.isEmpty()};
    if (question.scripted)
        question.answer = m_answers.dequeue();
    m_questions.append(question);
    return question.answer;
}

void ScriptedHost::beginWaitCursor()
{
    ++m_waitCursorDepth;
    m_maxWaitCursorDepth = std::max(m_maxWaitCursorDepth, m_waitCursorDepth);
}

void ScriptedHost::endWaitCursor()
{
    // Unbalanced ends show up as a negative depth.
    --m_waitCursorDepth;
}

QString ScriptedHost::getOpenFileName(const QString& caption, const QString& filter, QWidget*)
{
    return nextFileName(FileRequest::Open, caption, filter);
}

QString ScriptedHost::getSaveFileName(const QString& caption, const QString& filter, QWidget*)
{
    return nextFileName(FileRequest::Save, caption, filter);
}

QString ScriptedHost::nextFileName(FileRequest::Kind kind, const QString& caption,
                                   const QString& filter)
{
    QQueue<QString>& names = kind == FileRequest::Open ? m_openNames : m_saveNames;
    FileRequest request{kind, caption, filter, QString(), !names.isEmpty()};
    if (request.scripted)
        request.answer = names.dequeue();
    m_fileRequests.append(request);
    return request.answer;
}

} // namespace ZEVGis::Host
