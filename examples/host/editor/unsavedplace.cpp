#include "unsavedplace.h"

#include "project.h"

#include <QDir>
#include <QStandardPaths>
#include <QUuid>

namespace Host
{
namespace
{

QDir unsavedFolder()
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) + "/unsaved");
}

} // namespace

UnsavedPlace::UnsavedPlace(const QString& file)
    : m_file(file)
    , m_lock(file + ".lock")
{
    m_lock.setStaleLockTime(0); // however long it is edited; what a process leaves that has died is stale all the same
}

std::shared_ptr<UnsavedPlace> UnsavedPlace::make()
{
    const QDir folder = unsavedFolder();
    const QString name = QUuid::createUuid().toString(QUuid::WithoutBraces) + ".ondrel";
    std::shared_ptr<UnsavedPlace> place(new UnsavedPlace(folder.filePath(name)));
    return folder.mkpath(".") && place->m_lock.tryLock(0) ? place : nullptr;
}

std::shared_ptr<UnsavedPlace> UnsavedPlace::findAbandoned()
{
    const QDir folder = unsavedFolder();
    const QString ending = autosaveName(QString());
    for (const QString& name : folder.entryList({"*.ondrel" + ending}, QDir::Files, QDir::Time)) {
        std::shared_ptr<UnsavedPlace> place(new UnsavedPlace(folder.filePath(name.chopped(ending.size()))));
        if (place->m_lock.tryLock(0) && !recoverableAutosave(place->m_file).isEmpty())
            return place;
    }
    return nullptr;
}

} // namespace Host
