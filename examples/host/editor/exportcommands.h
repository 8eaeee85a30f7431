#pragma once

#include <QObject>
#include <QVariantMap>

class QWidget;

namespace Host
{

class Document;
class Exporter;
class ProjectFiles;
class Scene;

// Exports what the window shows. User-interface thread only.
class ExportCommands : public QObject
{
    Q_OBJECT
public:
    ExportCommands(const Document& document, const Scene& scene, const ProjectFiles& files, Exporter& exporter,
                   QWidget& window);

    // The picture of the node that is shown, at full size, in the background. The name's ending decides on the format.
    void exportPicture(const QString& file, const QVariantMap& outputValues);

public Q_SLOTS:
    void chooseAndExport();

Q_SIGNALS:
    void message(const QString& text);

private Q_SLOTS:
    void finish(const QString& file, const QString& error);

private:
    QVariantMap shownOutputValues() const;
    void exportUnlessKept(const QString& file, const QVariantMap& outputValues);

    const Document& m_document;
    const Scene& m_scene;
    const ProjectFiles& m_files;
    Exporter& m_exporter;
    QWidget& m_window;
};

} // namespace Host
