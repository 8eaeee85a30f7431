#include "recentmenu.h"

#include <QFileInfo>
#include <QSettings>

namespace Host
{
namespace
{

constexpr int kMost = 10;
const char* const kKey = "recentProjects";

} // namespace

RecentMenu::RecentMenu(QWidget* parent)
    : QMenu(tr("Open &recent"), parent)
{
    fill();
}

void RecentMenu::add(const QString& file)
{
    const QString path = QFileInfo(file).absoluteFilePath();
    QSettings settings;
    QStringList files = settings.value(kKey).toStringList();
    files.removeAll(path);
    files.prepend(path);
    settings.setValue(kKey, QStringList(files.mid(0, kMost)));
    fill();
}

void RecentMenu::fill()
{
    clear();
    for (const QString& file : QSettings().value(kKey).toStringList()) {
        QAction* const action = addAction(QFileInfo(file).fileName());
        action->setToolTip(file);
        action->setStatusTip(file);
        connect(action, &QAction::triggered, this, [this, file] { Q_EMIT chosen(file); });
    }
    setEnabled(!isEmpty());
}

} // namespace Host
