#pragma once

#include "viewrendering.h"
#include "worker.h"

namespace Host
{

// Renders the two pictures of a view in the background. What changes meanwhile is rendered afterwards, the newest only;
// what did not change keeps its rendering. User-interface thread only.
class PaneRenderer : public QObject
{
    Q_OBJECT
public:
    struct Shown { // a picture that is rendered
        Picture picture;
        DisplayOptions options;
        RenderedPicture rendered;
    };

    using QObject::QObject;

    void setFirst(const Picture& picture);
    void setSecond(const Picture& picture);
    void setOptions(const DisplayOptions& options);
    const Shown& first() const { return m_first; }
    const Shown& second() const { return m_second; }

    bool isBusy() const { return m_running; }
    // While paused nothing begins, and what runs comes to its end. Afterwards all is rendered anew, as the display may
    // be another one.
    void setPaused(bool paused);

Q_SIGNALS:
    void rendered();
    void message(const QString& text); // why there is no rendering; that of before stays

private:
    void render();

    Picture m_newestFirst, m_newestSecond;
    DisplayOptions m_options;
    Shown m_first, m_second;
    bool m_running = false;
    bool m_again = false; // something has changed since the rendering began
    bool m_paused = false;
    bool m_stale = false; // what is rendered is for another display
    Worker m_worker;      // the first to go: its end waits for what runs
};

} // namespace Host
