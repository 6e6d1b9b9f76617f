#pragma once

#include "impex/ImpexRepository.h"

#include <QStringList>

// Passes every call on to the module's repository client and writes down the sends and
// deletes in their order ("add NAME FLAG", "delete ID", "get ID"). `loseAfter(n)` makes the
// repository unreachable once n sends, deletes or listings went through, as a server that goes
// away would; `failOn`
// makes the sends or deletes of one id fail while the repository stays reachable.
class RecordingRepository : public ZEVGis::Impex::RepositoryAccess
{
public:

    void loseAfter(int calls) { m_loseAfter = calls; }
    void failOn(const QString& id) { m_failing << id; }
    const QStringList& calls() const { return m_calls; }
    void clearCalls() { m_calls.clear(); }

    int IsInitialized() override { return m_inner->IsInitialized(); }
    int IsRepositoryAccessible() override
    {
        if (m_lost)
            return 0;
        return m_inner->IsRepositoryAccessible();
    }
    int GetChildCatalogItems(const QString& reference, const QString& parentId, Records& out) override
    {
        if (!count())
            return 0;
        return m_inner->GetChildCatalogItems(reference, parentId, out);
    }
    ItemPtr GetCatalogItemById(const QString& reference, const QString& id) override
    {
        if (m_lost)
            return {};
        m_calls << QStringLiteral("get %1").arg(id);
        return m_inner->GetCatalogItemById(reference, id);
    }
    int AddCatalogItem(const QString& reference, const QString& name, ItemPtr item, int flag) override
    {
        m_calls << QStringLiteral("add %1 %2").arg(item ? item->GetName() : QString()).arg(flag);
        if (!count() || (item && m_failing.contains(item->GetGUID())))
            return 0;
        return m_inner->AddCatalogItem(reference, name, item, flag);
    }
    int DeleteCatalogItem(const QString& reference, const QString& id) override
    {
        m_calls << QStringLiteral("delete %1").arg(id);
        if (!count() || m_failing.contains(id))
            return 0;
        return m_inner->DeleteCatalogItem(reference, id);
    }
    void BeginAction() override { m_inner->BeginAction(); }
    void EndAction() override { m_inner->EndAction(); }

private:
    // False once the repository is lost; the call that loses it still goes through.
    bool count()
    {
        if (m_lost)
            return false;
        if (m_loseAfter > 0 && --m_loseAfter == 0)
            m_lost = true;
        return true;
    }

    ZEVGis::Impex::RepositoryAccess* m_inner = ZEVGis::Impex::ClientRepository();
    QStringList m_calls;
    QStringList m_failing;
    int m_loseAfter = 0;
    bool m_lost = false;
};
