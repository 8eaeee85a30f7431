#pragma once

#include <QLockFile>
#include <QString>

#include <memory>

namespace Host
{

// A file name for a project that was never saved, so that it has an autosave like any other. No file of that name is
// ever made. A lock beside it tells for as long as this object lives that its project is being edited.
class UnsavedPlace
{
public:
    // A new one, in the user's folder for data; null if that cannot be written.
    static std::shared_ptr<UnsavedPlace> make();
    // The one whose autosave is the newest of those that nobody edits any more: after a crash. Null if there is none.
    static std::shared_ptr<UnsavedPlace> findAbandoned();

    QString file() const { return m_file; }

private:
    explicit UnsavedPlace(const QString& file);

    QString m_file;
    QLockFile m_lock;
};

} // namespace Host
