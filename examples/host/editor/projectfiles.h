#pragma once

#include "document.h"
#include "project.h"
#include "worker.h"

#include <QObject>
#include <QTimer>

#include <atomic>
#include <functional>
#include <memory>

class QWidget;

namespace Host
{

class UnsavedPlace;

// The file of the document that a window edits: reading and writing it, asking before changes are lost, and saving
// beside it from time to time. Files are read and written in the background; the window cannot be edited meanwhile. A
// failure is told, and the document stays. User-interface thread only.
class ProjectFiles : public QObject
{
    Q_OBJECT
public:
    ProjectFiles(Document& document, QWidget& window);

    QString file() const { return m_file; } // empty: never saved
    bool isBusy() const { return m_worker.isBusy(); }

    // How the project is looked at, which the document does not hold. `show` is called once the document has been
    // loaded, and gives a sentence if it does not understand everything; `write` adds to what is saved.
    void setView(std::function<QString(const nlohmann::ordered_json& view)> show,
                 std::function<void(nlohmann::ordered_json& view)> write);

    // Pictures of a project that another one replaces go from the store, unless the clipboard names them or this says
    // that work on the old project goes on.
    void setStillUsed(std::function<bool()> isStillUsed) { m_isStillUsed = std::move(isStillUsed); }

    // Where an autosave is newer than the file, the user is asked which of them is opened. `then` is called when the
    // project is open, or could not be opened; not if another is opened before that.
    void open(const QString& file, std::function<void()> then = {});
    // Unless the user wants to keep what is open.
    void openAfterAsking(const QString& file, std::function<void()> then);
    void save(const QString& file);
    void setAutosaveInterval(int milliseconds); // a minute at first; counted from the first change after a save
    // Offers what was being edited without ever having been saved when another process died.
    void offerUnsaved();
    // True if nothing would be lost, or the user wants it lost. If the user wants it saved first, false; `again` is
    // called once it is.
    bool mayLeave(std::function<void()> again);
    void leave(); // for good: what was not saved is wanted no more

public Q_SLOTS:
    void startNew(); // an empty project, unless the user wants to keep what is open
    void chooseAndOpen();
    void openAfterAsking(const QString& file); // unless the user wants to keep what is open
    void save();
    void chooseAndSave();

Q_SIGNALS:
    void nameChanged();             // of the file, or whether there is something to save
    void used(const QString& file); // was opened or saved
    void message(const QString& text);

private Q_SLOTS:
    void autosave();

private:
    void askForRecovery(const QString& text, std::function<void(bool recovers)> then);
    // From the file itself or an autosave; a project that was never saved has a place instead of a file.
    struct Source {
        QString file;
        QString from;
        std::shared_ptr<UnsavedPlace> unsaved;
    };
    int beginOpening(std::function<void()> then);
    // What an opening comes back with, on any thread: it is done unless another project is wanted meanwhile.
    std::function<void()> ofOpening(int opening, std::function<void()> then);
    void chooseSource(const QString& file, const QString& autosave);
    void read(const Source& source);
    void take(const Source& source, const ProjectReading& reading);
    QString autosavedAs() const; // the name that the autosave of what is edited goes by; empty: there is none yet
    void failOpening(const QString& reason);
    void endOpening();
    void dropResources();
    Project project() const;

    Document& m_document;
    QWidget& m_window;
    std::function<QString(const nlohmann::ordered_json&)> m_showView;
    std::function<void(nlohmann::ordered_json&)> m_writeView;
    std::function<bool()> m_isStillUsed;
    std::function<void()> m_afterSaving;
    std::function<void()> m_afterOpening;
    nlohmann::ordered_json m_view = nlohmann::ordered_json::object(); // of the file; it may hold what is not ours
    QString m_file;
    std::shared_ptr<UnsavedPlace> m_unsaved; // of a project without a file, once it has been autosaved
    QTimer m_autosaveTimer;
    std::atomic<int> m_saves{0}; // by the user, so far: an autosave from before one of them is not written
    int m_opening = 0;           // the last that was wanted
    Worker m_worker;             // one file at a time; the first to go: its end waits for what runs
};

} // namespace Host
