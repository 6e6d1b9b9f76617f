// Built instead of ImpexRepositoryClient.cpp while the tree has no repository client.
#include "impex/ImpexRepository.h"

namespace ZEVGis::Impex
{

RepositoryAccess* ClientRepository()
{
    return nullptr;
}

} // namespace ZEVGis::Impex
