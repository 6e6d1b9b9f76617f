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

void HostServices::alertWithDetails(const QString& text, const QString&, QWidget* parent)
{
    alert(text, parent);
}

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
