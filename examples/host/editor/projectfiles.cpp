#include "projectfiles.h"

#include "clipboardgraph.h"
#include "unsavedplace.h"

#include <ondrel/resources/resourceengine.h>

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

#include <algorithm>
#include <utility>

namespace Host
{
namespace
{

constexpr int kAutosaveTime = 60000;

} // namespace

ProjectFiles::ProjectFiles(Document& document, QWidget& window)
    : QObject(&window)
    , m_document(document)
    , m_window(window)
{
    m_autosaveTimer.setSingleShot(true);
    m_autosaveTimer.setInterval(kAutosaveTime);
    connect(&m_autosaveTimer, SIGNAL(timeout()), this, SLOT(autosave()));
    connect(&document, &Document::changed, this, [this] {
        if (!m_autosaveTimer.isActive())
            m_autosaveTimer.start();
    });
    connect(&document.undoStack(), SIGNAL(cleanChanged(bool)), this, SIGNAL(nameChanged()));
    connect(&m_worker, SIGNAL(failed(QString)), this, SIGNAL(message(QString)));
}

void ProjectFiles::setView(std::function<QString(const nlohmann::ordered_json&)> show,
                           std::function<void(nlohmann::ordered_json&)> write)
{
    m_showView = std::move(show);
    m_writeView = std::move(write);
}

bool ProjectFiles::mayLeave(std::function<void()> again)
{
    if (m_document.undoStack().isClean())
        return true;
    const auto answer = QMessageBox::question(&m_window, tr("Unsaved changes"), tr("Save the project first?"),
                                              QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
    if (answer == QMessageBox::Save) {
        m_afterSaving = std::move(again);
        save();
    }
    return answer == QMessageBox::Discard;
}

void ProjectFiles::startNew()
{
    if (!mayLeave([this] { startNew(); }))
        return;
    beginOpening({});
    take(Source(), ProjectReading{Project(), QString(), QStringList()});
}

void ProjectFiles::chooseAndOpen()
{
    if (!mayLeave([this] { chooseAndOpen(); }))
        return;
    const QString file =
        QFileDialog::getOpenFileName(&m_window, tr("Open project"), QString(), tr("Projects (*.ondrel)"));
    if (!file.isEmpty())
        open(file);
}

void ProjectFiles::openAfterAsking(const QString& file)
{
    openAfterAsking(file, {});
}

void ProjectFiles::openAfterAsking(const QString& file, std::function<void()> then)
{
    if (mayLeave([this, file, then] { open(file, then); }))
        open(file, std::move(then));
}

void ProjectFiles::failOpening(const QString& reason)
{
    m_window.setEnabled(true);
    Q_EMIT message(reason);
    endOpening();
}

void ProjectFiles::endOpening()
{
    if (const std::function<void()> then = std::exchange(m_afterOpening, nullptr))
        then();
}

int ProjectFiles::beginOpening(std::function<void()> then)
{
    m_afterOpening = std::move(then);
    m_window.setEnabled(false);
    return ++m_opening;
}

std::function<void()> ProjectFiles::ofOpening(int opening, std::function<void()> then)
{
    return [this, opening, then] {
        if (opening == m_opening)
            then();
    };
}

void ProjectFiles::open(const QString& file, std::function<void()> then)
{
    const int opening = beginOpening(std::move(then));
    const auto look = [this, file, opening]() -> std::function<void()> {
        const QFileInfo info(file);
        if (info.exists() && !info.isFile()) // opening a pipe would wait for its writer
            return ofOpening(opening, [this, file] { failOpening(tr("%1 is no file.").arg(file)); });
        const QString autosave = recoverableAutosave(file);
        return ofOpening(opening, [this, file, autosave] { chooseSource(file, autosave); });
    };
    m_worker.run(look, [this, opening](const QString& reason) {
        ofOpening(opening, [this, reason] { failOpening(reason); })();
    });
}

void ProjectFiles::chooseSource(const QString& file, const QString& autosave)
{
    if (autosave.isEmpty())
        return read({file, file, nullptr});
    const QString name = QFileInfo(file).fileName();
    askForRecovery(tr("There are newer changes to %1 that were not saved. Open them?").arg(name),
                   [this, file, autosave, opening = m_opening](bool recovers) {
                       ofOpening(opening, [this, file, autosave, recovers] {
                           read({file, recovers ? autosave : file, nullptr});
                       })();
                   });
}

void ProjectFiles::offerUnsaved()
{
    m_worker.run([this]() -> std::function<void()> {
        const std::shared_ptr<UnsavedPlace> place = UnsavedPlace::findAbandoned();
        if (!place)
            return {};
        return [this, place] {
            askForRecovery(tr("There is a project that was never saved when the editor ended. Open it?"),
                           [this, place](bool recovers) {
                               if (!recovers)
                                   return discardAutosave(place->file());
                               beginOpening({});
                               read({QString(), autosaveName(place->file()), place});
                           });
        };
    });
}

void ProjectFiles::askForRecovery(const QString& text, std::function<void(bool)> then)
{
    auto* const question =
        new QMessageBox(QMessageBox::Question, tr("Recovery"), text, QMessageBox::Yes | QMessageBox::No, &m_window);
    question->setAttribute(Qt::WA_DeleteOnClose);
    m_window.setEnabled(true); // for the question
    connect(question, &QDialog::finished, this, [then](int answer) { then(answer == QMessageBox::Yes); });
    question->open();
}

void ProjectFiles::read(const Source& source)
{
    m_window.setEnabled(false);
    const auto load = [this, source, opening = m_opening]() -> std::function<void()> {
        const ProjectReading reading = loadProject(source.from, m_document.types());
        return ofOpening(opening, [this, source, reading] { take(source, reading); });
    };
    m_worker.run(load, [this, opening = m_opening](const QString& reason) {
        ofOpening(opening, [this, reason] { failOpening(reason); })();
    });
}

void ProjectFiles::take(const Source& source, const ProjectReading& reading)
{
    if (!reading.project)
        return failOpening(reading.error);
    m_window.setEnabled(true);
    ++m_saves; // an autosave that still waits is of what goes now
    if (autosaveName(autosavedAs()) != source.from)
        leave();
    dropResources();
    m_document.load(reading.project->graph);
    m_view = reading.project->view;
    m_file = source.file;
    m_unsaved = source.unsaved;
    m_autosaveTimer.stop(); // loading is no change
    if (source.from != source.file)
        m_document.undoStack().resetClean();
    QStringList notes = reading.notes;
    if (const QString note = m_showView ? m_showView(m_view) : QString(); !note.isEmpty())
        notes.append(note);
    if (!source.file.isEmpty())
        Q_EMIT used(source.file);
    Q_EMIT nameChanged();
    if (!notes.isEmpty())
        Q_EMIT message(notes.join("  "));
    endOpening();
}

// Those of the document; a project that is read brings handles of its own.
void ProjectFiles::dropResources()
{
    if (m_isStillUsed && m_isStillUsed())
        return;
    std::vector<Ondrel::ResourceId> kept;
    if (const std::optional<Graph> copied = graphOnClipboard())
        kept = resourcesOf(*copied);
    std::vector<Ondrel::ResourceId> dropped;
    for (const Ondrel::ResourceId id : resourcesOf(m_document.graph())) {
        const auto isSame = [id](Ondrel::ResourceId other) { return other.id == id.id; };
        if (std::none_of(kept.begin(), kept.end(), isSame))
            dropped.push_back(id);
    }
    m_worker.run([dropped]() -> std::function<void()> {
        for (const Ondrel::ResourceId id : dropped)
            ResourceEngine::Get().RemoveResource(id);
        return {};
    });
}

QString ProjectFiles::autosavedAs() const
{
    return !m_file.isEmpty() ? m_file : m_unsaved ? m_unsaved->file() : QString();
}

// The lock of a place that was never saved to goes when its autosave has gone.
void ProjectFiles::leave()
{
    m_autosaveTimer.stop();
    ++m_saves;
    if (autosavedAs().isEmpty())
        return;
    m_worker.run([name = autosavedAs(), unsaved = m_unsaved]() -> std::function<void()> {
        discardAutosave(name);
        return {};
    });
    m_unsaved.reset();
}

Project ProjectFiles::project() const
{
    Project project;
    project.graph = m_document.graph();
    project.view = m_view;
    if (m_writeView)
        m_writeView(project.view);
    return project;
}

void ProjectFiles::save(const QString& file)
{
    m_window.setEnabled(false);
    m_autosaveTimer.stop();
    ++m_saves;
    const auto write = [this, file, project = project()]() -> std::function<void()> {
        const QString reason = saveProject(project, file);
        if (reason.isEmpty())
            discardAutosave(file);
        return [this, file, reason, graph = project.graph] {
            m_window.setEnabled(true);
            const std::function<void()> afterwards = std::exchange(m_afterSaving, nullptr);
            if (!reason.isEmpty()) {
                Q_EMIT message(reason);
                return;
            }
            if (m_file != file)
                leave();
            m_file = file;
            if (m_document.graph() == graph) // an import may have come to its end meanwhile
                m_document.undoStack().setClean();
            Q_EMIT used(file);
            Q_EMIT nameChanged();
            if (afterwards)
                afterwards();
        };
    };
    m_worker.run(write, [this](const QString& reason) {
        m_window.setEnabled(true);
        m_afterSaving = nullptr;
        Q_EMIT message(reason);
    });
}

void ProjectFiles::setAutosaveInterval(int milliseconds)
{
    m_autosaveTimer.setInterval(milliseconds);
}

// Beside the file, or where there is none in a place of its own.
void ProjectFiles::autosave()
{
    if (m_document.undoStack().isClean())
        return;
    if (autosavedAs().isEmpty())
        m_unsaved = UnsavedPlace::make();
    if (autosavedAs().isEmpty())
        return;
    m_worker.run([this, file = autosaveName(autosavedAs()), project = project(),
                  saves = m_saves.load()]() -> std::function<void()> {
        if (saves != m_saves)
            return {};
        const QString reason = saveProject(project, file);
        return [this, reason] {
            if (!reason.isEmpty())
                Q_EMIT message(reason);
        };
    });
}

void ProjectFiles::save()
{
    if (m_file.isEmpty())
        chooseAndSave();
    else
        save(m_file);
}

void ProjectFiles::chooseAndSave()
{
    const QString file = QFileDialog::getSaveFileName(&m_window, tr("Save project"), m_file, tr("Projects (*.ondrel)"));
    if (!file.isEmpty())
        save(file);
    else
        m_afterSaving = nullptr;
}

} // namespace Host
