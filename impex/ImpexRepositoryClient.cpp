#include "impex/ImpexRepository.h"

#include "repository/RepositoryStorageManager.h"

namespace ZEVGis::Impex
{

namespace
{

using Repository::CRepositoryStorageManager;

class ClientAccess final : public RepositoryAccess
{
public:
    int IsInitialized() override { return client()->IsInitialized(); }
    int IsRepositoryAccessible() override { return client()->IsRepositoryAccessible(); }
    int GetChildCatalogItems(const QString& catalogReference, const QString& parentId,
                             Records& out) override
    {
        return client()->GetChildCatalogItems(catalogReference, parentId, out, 0);
    }
    ItemPtr GetCatalogItemById(const QString& catalogReference, const QString& catalogueId) override
    {
        return client()->GetCatalogItemById(catalogReference, catalogueId, 1);
    }
    int AddCatalogItem(const QString& catalogReference, const QString& catalogName, ItemPtr item,
                       int flag) override
    {
        return client()->AddCatalogItem(catalogReference, catalogName, item, flag);
    }
    int DeleteCatalogItem(const QString& catalogReference, const QString& catalogueId) override
    {
        return client()->DeleteCatalogItem(catalogReference, catalogueId);
    }
    void BeginAction() override { client()->BeginAction(); }
    void EndAction() override { client()->EndAction(); }

private:
    static CRepositoryStorageManager* client() { return CRepositoryStorageManager::Instance(); }
};

} // namespace

RepositoryAccess* ClientRepository()
{
    static ClientAccess access;
    return &access;
}

} // namespace ZEVGis::Impex
