#pragma once

#include "catalog/CatalogItem.h"
#include "repository/NetCatalogueItem.h"

#include <QString>
#include <boost/shared_ptr.hpp>
#include <vector>

namespace ZEVGis::Impex
{

// The calls of the repository client that the import/export dialog makes, one to one. The
// dialog and the transfers go through this so that a test can watch the calls, in their
// order, on their way to the real client.
class RepositoryAccess
{
public:
    using Records = std::vector<boost::shared_ptr<Repository::CNetCatalogueItem>>;
    using ItemPtr = boost::shared_ptr<Data::CCatalogItem>;

    virtual ~RepositoryAccess() = default;

    virtual int IsInitialized() = 0;
    virtual int IsRepositoryAccessible() = 0;
    virtual int GetChildCatalogItems(const QString& catalogReference, const QString& parentId,
                                     Records& out) = 0;
    virtual ItemPtr GetCatalogItemById(const QString& catalogReference,
                                       const QString& catalogueId) = 0;
    virtual int AddCatalogItem(const QString& catalogReference, const QString& catalogName,
                               ItemPtr item, int flag) = 0;
    virtual int DeleteCatalogItem(const QString& catalogReference, const QString& catalogueId) = 0;
    // One user action's sends: the client spares the records it already wrote in it.
    virtual void BeginAction() = 0;
    virtual void EndAction() = 0;
};

// BeginAction and EndAction around a scope.
class RepositoryAction
{
public:
    explicit RepositoryAction(RepositoryAccess& repository) : m_repository(repository)
    {
        m_repository.BeginAction();
    }
    ~RepositoryAction() { m_repository.EndAction(); }
    RepositoryAction(const RepositoryAction&) = delete;
    RepositoryAction& operator=(const RepositoryAction&) = delete;

private:
    RepositoryAccess& m_repository;
};

// The module's repository client (Repository::CRepositoryStorageManager::Instance()).
RepositoryAccess* ClientRepository();

} // namespace ZEVGis::Impex
