#include "host/HostServices.h"

#include "host/QtHostServices.h"

namespace ZEVGis::Host
{

namespace
{

HostServices*& installedServices()
{
    static HostServices* services = nullptr;
    return services;
}

HostServices& qtServices()
{
    static QtHostServices services;
    return services;
}

} // namespace

HostServices& HostServices::current()
{
    HostServices* services = installedServices();
    return services ? *services : qtServices();
}

void HostServices::install(HostServices* services)
{
    installedServices() = services;
}

} // namespace ZEVGis::Host
