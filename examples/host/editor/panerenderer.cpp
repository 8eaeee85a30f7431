#include "panerenderer.h"

#include <utility>

namespace Host
{
namespace
{

PaneRenderer::Shown renderedUnlessSame(const PaneRenderer::Shown& before, const Picture& picture,
                                       const DisplayOptions& options, bool isStale)
{
    PaneRenderer::Shown shown{picture, options, before.rendered};
    if (isStale || picture.image != before.picture.image || !(options == before.options))
        shown.rendered = renderWithLevels(picture, options);
    return shown;
}

} // namespace

void PaneRenderer::setFirst(const Picture& picture)
{
    m_newestFirst = picture;
    render();
}

void PaneRenderer::setSecond(const Picture& picture)
{
    m_newestSecond = picture;
    render();
}

void PaneRenderer::setOptions(const DisplayOptions& options)
{
    m_options = options;
    render();
}

void PaneRenderer::setPaused(bool paused)
{
    m_paused = paused;
    if (paused)
        return;
    m_stale = true;
    render();
}

void PaneRenderer::render()
{
    m_again = m_running || m_paused;
    if (m_again)
        return;
    m_running = true;
    const bool stale = std::exchange(m_stale, false);
    const auto renderBoth = [this, stale, wanted = m_newestFirst, other = m_newestSecond, options = m_options,
                             first = m_first, second = m_second]() -> std::function<void()> {
        const Shown newFirst = renderedUnlessSame(first, wanted, options, stale);
        const Shown newSecond = renderedUnlessSame(second, other, options, stale);
        return [this, newFirst, newSecond] {
            m_running = false;
            m_first = newFirst;
            m_second = newSecond;
            Q_EMIT rendered();
            if (m_again)
                render();
        };
    };
    m_worker.run(renderBoth, [this, stale](const QString& reason) {
        m_running = false;
        m_stale = m_stale || stale;
        Q_EMIT message(reason);
        if (m_again)
            render();
    });
}

} // namespace Host
