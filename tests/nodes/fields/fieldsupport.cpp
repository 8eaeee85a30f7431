#include "fieldsupport.h"

#include <ondrel/core/platform.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace OndrelTest
{

NoDataDirectory::NoDataDirectory()
    : m_before(QDir::currentPath())
    , m_directory(std::make_unique<QTemporaryDir>())
{
    EXPECT_TRUE(QDir::setCurrent(m_directory->path()));
    QFile marker("ondrel_debug.txt");
    EXPECT_TRUE(marker.open(QIODevice::WriteOnly));
}

NoDataDirectory::~NoDataDirectory()
{
    QDir::setCurrent(m_before);
}

QString styleSheet(const QString& fileName)
{
    QFile file(Ondrel::Platform::StylesDirectory() + fileName);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return QString::fromLatin1(file.readAll());
}

} // namespace OndrelTest
