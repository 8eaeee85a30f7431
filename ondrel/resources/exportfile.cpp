#include <ondrel/resources/exportfile_p.h>

#include <QFile>

#include <filesystem>
#include <system_error>

namespace Ondrel
{

OwnedFile openForExport(const QString& fileName)
{
    return OwnedFile(std::fopen(fileName.toUtf8().constData(), "wb"));
}

bool closeExport(OwnedFile file)
{
    const bool written = std::fflush(file.get()) == 0 && std::ferror(file.get()) == 0;
    return std::fclose(file.release()) == 0 && written;
}

bool exportOutcome(bool complete, const ExportProgress& progress, const QString& fileName)
{
    if (!progress.stopped())
        return complete;
    std::error_code error;
    const auto status = std::filesystem::symlink_status(fileName.toStdString(), error);
    if (std::filesystem::is_regular_file(status))
        QFile::remove(fileName);
    return true;
}

} // namespace Ondrel
