#include "exportcommands.h"

#include "document.h"
#include "exportdialog.h"
#include "exporter.h"
#include "projectfiles.h"
#include "scene.h"

#include <QDir>
#include <QFileInfo>
#include <QMessageBox>

namespace Host
{

ExportCommands::ExportCommands(const Document& document, const Scene& scene, const ProjectFiles& files,
                               Exporter& exporter, QWidget& window)
    : QObject(&window)
    , m_document(document)
    , m_scene(scene)
    , m_files(files)
    , m_exporter(exporter)
    , m_window(window)
{
    connect(&exporter, &Exporter::finished, this, &ExportCommands::finish);
}

// What the shown node says itself, if it is an output.
QVariantMap ExportCommands::shownOutputValues() const
{
    const NodeRecord* const record = m_document.graph().node(m_scene.primary());
    const NodeType* const type = record ? m_document.types().find(record->type) : nullptr;
    return type && type->id == "essentials/output" ? completeValues(*record, *type) : QVariantMap();
}

void ExportCommands::chooseAndExport()
{
    const NodeRecord* const record = m_document.graph().node(m_scene.primary());
    if (!record) {
        Q_EMIT message(tr("Show a node first: its picture is exported."));
        return;
    }
    const QVariantMap values = shownOutputValues();
    const QString last = values.value("file").toString();
    const QString folder = m_files.file().isEmpty() ? QDir::homePath() : QFileInfo(m_files.file()).path();
    auto* const dialog = new ExportDialog(last.isEmpty() ? folder + "/" + record->name : last, values, &m_window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this,
            [this, dialog] { exportUnlessKept(dialog->file(), dialog->outputValues()); });
    dialog->open();
}

void ExportCommands::exportUnlessKept(const QString& file, const QVariantMap& outputValues)
{
    if (!QFileInfo::exists(file))
        return exportPicture(file, outputValues);
    auto* const question =
        new QMessageBox(QMessageBox::Question, tr("Export"),
                        tr("There is a file %1 already. Replace it?").arg(QFileInfo(file).fileName()),
                        QMessageBox::Yes | QMessageBox::No, &m_window);
    question->setAttribute(Qt::WA_DeleteOnClose);
    connect(question, &QDialog::finished, this, [this, file, outputValues](int answer) {
        if (answer == QMessageBox::Yes)
            exportPicture(file, outputValues);
    });
    question->open();
}

void ExportCommands::exportPicture(const QString& file, const QVariantMap& outputValues)
{
    ExportOrder order{m_document.graph(), m_scene.primary(), file, formatOf(outputValues), outputValues};
    formatFromName(file, order.format);
    m_exporter.add(order);
}

void ExportCommands::finish(const QString& file, const QString& error)
{
    const QString name = QFileInfo(file).fileName();
    Q_EMIT message(error.isEmpty() ? tr("%1 was exported.").arg(name) : name + ": " + error);
}

} // namespace Host
