#include "application.h"

#include <QCoreApplication>

namespace Host
{

void nameApplication()
{
    QCoreApplication::setOrganizationName("Ondrel");
    QCoreApplication::setApplicationName("Ondrel");
    QCoreApplication::setApplicationVersion("0.1.0");
}

} // namespace Host
