#include <ondrel/core/platform.h>
#include <ondrel/widgets/stylesheet_p.h>

#include <QFile>
#include <QWidget>

namespace Ondrel
{

void applyStyleSheet(QWidget& widget, const QString& fileName)
{
    QFile file(Platform::StylesDirectory() + fileName);
    if (file.open(QIODevice::ReadOnly))
        widget.setStyleSheet(QString::fromLatin1(file.readAll().constData()));
}

} // namespace Ondrel
